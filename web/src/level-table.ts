/// The table of levels. The only module that knows the table library.
import { FormatModule, InteractionModule, SelectRowModule, Tabulator } from "tabulator-tables";
import { make } from "./dom";
import { shownValue, type Column } from "./columns";
import { formatValue } from "./format";
import { isJoined, type Profile } from "./profile";

Tabulator.registerModule([FormatModule, InteractionModule, SelectRowModule]);

/// A row of the table: values stay in the profile's lists and are formatted when they scroll in.
interface Row {
  index: number;
}

/// Rows that Page Up and Page Down move by.
const PAGE = 15;

/// Pixels beside the text of a cell: its padding and border.
const BESIDE_TEXT = 17;
const SCROLLBAR = 16;

/// Measures text in the font of an element.
function measureIn(element: HTMLElement): (text: string, scale?: number) => number {
  const context = document.createElement("canvas").getContext("2d");
  const { fontFamily, fontSize } = getComputedStyle(element);
  const size = Number.parseFloat(fontSize);
  return (text, scale = 1) => {
    if (!context) return 0.65 * size * scale * text.length;
    context.font = `${size * scale}px ${fontFamily}`;
    return context.measureText(text).width;
  };
}

/// Pixels that a column needs for its heading and its longest value.
function leastWidth({ key, label, unit, decimals }: Column, profile: Profile, host: HTMLElement): number {
  const measure = measureIn(host);
  const heading = measure(label) + (unit ? measure(unit, 0.88) + 5 : 0);
  let longest = 0;
  for (const value of profile.lists[key]) {
    const digits = Number.isNaN(value) ? 1 : String(Math.trunc(Math.abs(value))).length + (value < 0 ? 1 : 0);
    if (digits > longest) longest = digits;
  }
  // Digits are all as wide as a 0, and no sign or point is wider.
  return Math.ceil(Math.max(heading, measure("0".repeat(longest + 1 + decimals)))) + BESIDE_TEXT;
}

export class LevelTable {
  private table: Tabulator | null = null;
  private built: Promise<void> = Promise.resolve();
  private invalid: ReadonlySet<number> = new Set();
  private selected = -1;
  private count = 0;
  private profile: Profile | null = null;

  constructor(
    private readonly host: HTMLElement,
    private readonly select: (level: number) => void,
  ) {
    host.addEventListener("keydown", (event) => this.move(event));
  }

  /// Shows the levels of a profile, none of them invalid or selected.
  show(profile: Profile, columns: readonly Column[]): void {
    this.table?.destroy();
    this.invalid = new Set();
    this.selected = -1;
    this.count = profile.count;
    this.profile = profile;
    // The library wants an element of its own; one that it has destroyed is not used again.
    const element = make("div", "");
    this.host.replaceChildren(element);
    const rows: Row[] = Array.from({ length: profile.count }, (_, index) => ({ index }));
    const numberWidth = profile.count > 999 ? 82 : 52;
    const widths = columns.map((column) => leastWidth(column, profile, this.host));
    // The panel takes what the columns need; the style sheet says between which bounds.
    const all = widths.reduce((sum, width) => sum + width, numberWidth + SCROLLBAR);
    this.host.closest("main")?.style.setProperty("--levels", `${all}px`);
    const table = new Tabulator(element, {
      data: rows,
      index: "index",
      height: "100%",
      layout: "fitColumns",
      selectableRows: false,
      rowFormatter: (row) => this.paint(row.getElement(), (row.getData() as Row).index),
      columns: [
        {
          title: "No.",
          field: "index",
          hozAlign: "right",
          headerHozAlign: "right",
          width: numberWidth,
          formatter: (cell) => this.numberCell((cell.getData() as Row).index),
        },
        ...columns.map((column, place) => ({
          title: column.unit ? `${column.label}<span class="unit">${column.unit}</span>` : column.label,
          field: column.key,
          hozAlign: "right" as const,
          headerHozAlign: "right" as const,
          minWidth: widths[place],
          formatter: (cell: { getData(): object }) =>
            formatValue(
              shownValue(profile, column.key, (cell.getData() as Row).index),
              column.decimals,
            ),
        })),
      ],
    });
    this.table = table;
    this.built = new Promise((resolve) => table.on("tableBuilt", () => resolve()));
    table.on("rowClick", (_event, row) => this.select((row.getData() as Row).index));
    element.setAttribute("aria-label", "Levels");
    element.setAttribute("aria-rowcount", String(profile.count + 1));
  }

  /// Marks these levels as invalid, and no others.
  async markInvalid(levels: readonly number[]): Promise<void> {
    this.invalid = new Set(levels);
    const table = this.table;
    await this.built;
    if (table === this.table) table?.redraw(true);
  }

  /// Marks one level as selected and brings it into view; -1 selects none.
  async markSelected(level: number): Promise<void> {
    const table = this.table;
    await this.built;
    if (!table || table !== this.table) return;
    const before = this.selected;
    this.selected = level;
    this.repaint(before);
    if (level < 0) return;
    this.repaint(level);
    const row = table.getRow(level);
    if (row) await table.scrollToRow(row, "nearest", false).catch(() => undefined);
    this.repaint(level);
  }

  focus(): void {
    this.host.querySelector<HTMLElement>(".tabulator-tableholder")?.focus();
  }

  private repaint(level: number): void {
    const row = level < 0 ? false : this.table?.getRow(level);
    if (row) this.paint(row.getElement(), level);
  }

  private paint(row: HTMLElement, level: number): void {
    row.classList.toggle("invalid", this.invalid.has(level));
    row.classList.toggle("joined", this.isJoined(level));
    row.classList.toggle("selected", level === this.selected);
    row.setAttribute("aria-selected", String(level === this.selected));
    row.setAttribute("aria-rowindex", String(level + 2));
    row.dataset["level"] = String(level + 1);
  }

  /// The level's number; an invalid one carries its mark and says so to a screen reader.
  private numberCell(level: number): HTMLElement {
    const cell = make("span", "level-number", String(level + 1));
    if (this.invalid.has(level)) {
      const mark = make("span", "invalid-mark", "✕");
      mark.setAttribute("role", "img");
      mark.setAttribute("aria-label", "invalid");
      cell.prepend(mark);
    } else if (this.isJoined(level)) {
      const mark = make("span", "joined-mark", "◇");
      mark.setAttribute("role", "img");
      mark.setAttribute("aria-label", "joined");
      cell.prepend(mark);
    }
    return cell;
  }

  private isJoined(level: number): boolean {
    return this.profile !== null && isJoined(this.profile, level);
  }

  private move(event: KeyboardEvent): void {
    if (this.count === 0 || event.ctrlKey || event.altKey || event.metaKey) return;
    const level = this.selected;
    const to = {
      ArrowDown: level + 1,
      ArrowUp: level - 1,
      PageDown: level + PAGE,
      PageUp: level - PAGE,
      Home: 0,
      End: this.count - 1,
    }[event.key];
    if (to === undefined) return;
    event.preventDefault();
    event.stopPropagation();
    this.select(Math.min(Math.max(to, 0), this.count - 1));
  }
}
