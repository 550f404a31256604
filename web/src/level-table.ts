/// The table of levels. The only module that knows the table library.
import { FormatModule, InteractionModule, SelectRowModule, Tabulator, type RowComponent } from "tabulator-tables";
import { CellEditor, type Leaving } from "./cell-editor";
import { shownValue, type Column } from "./columns";
import { make, painted } from "./dom";
import { ABSENT, formatValue } from "./format";
import { isJoined, type Profile } from "./profile";
import type { ListKey } from "./protocol";
import { countRows, makeGrid } from "./table-roles";
import { leastWidth } from "./table-width";

Tabulator.registerModule([FormatModule, InteractionModule, SelectRowModule]);

/// A row of the table: values stay in the profile's lists and are formatted when they scroll in.
interface Row {
  index: number;
}

/// Rows that Page Up and Page Down move by.
const PAGE = 15;
const SCROLLBAR = 16;
/// Of a longer cast these come first, more than any window shows, and all of them a moment later.
const FIRST_ROWS = 1000;

/// Keys that begin a number. Comma and point are both taken for the decimal mark.
const BEGINS_NUMBER = /^[0-9.,\-−]$/;

export interface TableEvents {
  /// The user picked a level.
  select(level: number): void;
  /// Whether a value may be typed: why not, as a sentence, or "".
  untouchable(column: Column, level: number): string;
  /// A value was typed. False when it is refused, which is then told.
  typed(level: number, key: ListKey, text: string): boolean;
  /// What was refused is not there any more.
  mended(): void;
  /// Levels are to be deleted, from one to another, both included.
  remove(from: number, to?: number): void;
  /// A level is to be put in front of the one at `index`.
  insert(index: number): void;
}

/// What the library does a timer later than asked, which would be a frame behind the plot: done at
/// once, and once.
interface Creating {
  _create(): void;
}
class PromptTable extends (Tabulator as unknown as new (...given: ConstructorParameters<typeof Tabulator>) => Tabulator & Creating) {
  private isCreated = false;

  override _create(): void {
    if (this.isCreated) return;
    this.isCreated = true;
    super._create();
  }
}

export class LevelTable {
  private table: Tabulator | null = null;
  private built: Promise<unknown> = Promise.resolve();
  /// The first rows are on the page; of a long cast the others follow.
  drawn: Promise<unknown> = Promise.resolve();
  private invalid: ReadonlySet<number> = new Set();
  private selected = -1;
  /// The other end of the levels that are selected together.
  private anchor = -1;
  /// Place of the column that the keyboard is at.
  private place = 0;
  private profile: Profile | null = null;
  private columns: readonly Column[] = [];
  private widths: readonly number[] = [];
  private editor: CellEditor | null = null;
  /// What is typed until the cell is there to be typed into.
  private ahead: string | null = null;
  /// The library's rows, which it finds by walking them all.
  private rows: readonly RowComponent[] | null = null;
  /// Rows that are painted as selected together with others.
  private readonly ranged = new Set<HTMLElement>();

  /// `faultId` is the element in which refusals are told.
  constructor(
    private readonly host: HTMLElement,
    private readonly faultId: string,
    private readonly events: TableEvents,
  ) {
    host.addEventListener("keydown", (event) => this.key(event));
  }

  private get count(): number {
    return this.profile?.count ?? 0;
  }

  /// The selected levels from first to last; null when there are none.
  get range(): { from: number; to: number } | null {
    const { selected, anchor } = this;
    if (selected < 0) return null;
    return { from: Math.min(selected, anchor), to: Math.max(selected, anchor) };
  }

  /// Shows the levels of a profile, none of them invalid or selected.
  show(profile: Profile, columns: readonly Column[]): void {
    this.editor?.cancel();
    this.table?.destroy();
    this.invalid = new Set();
    this.selected = this.anchor = -1;
    this.profile = profile;
    this.columns = columns;
    this.place = Math.min(this.place, columns.length - 1);
    // The library wants an element of its own; one that it has destroyed is not used again.
    const element = make("div", "");
    const hadFocus = this.host.contains(document.activeElement);
    this.host.replaceChildren(element);
    const numberWidth = profile.count > 999 ? 82 : 52;
    this.widths = columns.map((column) => leastWidth(column, profile, this.host));
    // The panel takes what the columns need; the style sheet says between which bounds.
    const all = this.widths.reduce((sum, width) => sum + width, numberWidth + SCROLLBAR);
    this.host.closest("main")?.style.setProperty("--levels", `${all}px`);
    const isLong = profile.count > FIRST_ROWS;
    const table = new PromptTable(element, {
      data: rowsOf(isLong ? FIRST_ROWS : profile.count),
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
          minWidth: this.widths[place],
          formatter: (cell: { getData(): object }) => this.textOf((cell.getData() as Row).index, place),
        })),
      ],
    });
    this.table = table;
    this.rows = null;
    this.ranged.clear();
    this.drawn = new Promise<void>((resolve) => table.on("tableBuilt", () => resolve()));
    table._create();
    this.built = isLong ? this.drawn.then(painted).then(rested).then(() => this.fill(table)) : this.drawn;
    void this.built.then(() => {
      makeGrid(element, "Levels");
      countRows(element, this.count);
    });
    table.on("rowClick", (event, row) => {
      this.pick((row.getData() as Row).index, event instanceof MouseEvent && event.shiftKey);
    });
    table.on("cellClick", (_event, cell) => this.goTo(cell.getField()));
    table.on("cellDblClick", (_event, cell) => {
      this.goTo(cell.getField());
      void this.edit();
    });
    // Rows keep their looks while they are scrolled out.
    element.addEventListener("scroll", () => this.anchor !== this.selected && this.paintRows(), true);
    if (hadFocus) void this.drawn.then(() => this.focus());
  }

  /// Puts all rows into a table that has the first ones.
  private async fill(table: Tabulator): Promise<void> {
    if (table !== this.table || !this.profile) return;
    await table.replaceData(rowsOf(this.profile.count));
    this.rows = null;
  }

  /// Takes the table away for good.
  remove(): void {
    this.editor?.cancel();
    this.table?.destroy();
    this.table = null;
    this.host.replaceChildren();
  }

  /// Shows an edited profile where the table stands. `level` is the only one that differs, if it is
  /// known to be.
  update(profile: Profile, columns: readonly Column[], level?: number): void {
    const { table } = this;
    const isSame = columns.length === this.columns.length && columns.every((column, i) => {
      const before = this.columns[i];
      return column.key === before?.key && column.label === before.label && column.unit === before.unit;
    });
    const fits = columns.every((column, i) => leastWidth(column, profile, this.host) <= (this.widths[i] ?? 0));
    const isLong = (count: number) => count > 999;
    if (!table || !isSame || !fits || isLong(profile.count) !== isLong(this.count)) return this.show(profile, columns);
    this.editor?.cancel();
    const wasMarked = this.invalid.size > 0;
    const decimals = columns.some((column, i) => column.decimals !== this.columns[i]?.decimals);
    const stays = profile.count === this.count && !wasMarked && !decimals;
    const before = this.profile;
    const isSameAll = stays && columns.every(({ key }) => profile.lists[key] === before?.lists[key]);
    const isOne = stays && level !== undefined;
    this.profile = profile;
    this.columns = columns;
    this.invalid = new Set();
    if (isOne) {
      this.rowAt(level)?.reformat();
    } else if (!isSameAll) {
      this.selected = this.anchor = -1;
      void this.redraw();
      countRows(this.host, profile.count);
    }
  }

  /// Marks these levels as invalid, and no others.
  async markInvalid(levels: readonly number[]): Promise<void> {
    this.invalid = new Set(levels);
    await this.redraw();
  }

  /// Draws all rows anew where the table stands.
  private redraw(): Promise<unknown> {
    const { table } = this;
    this.ranged.clear();
    this.built = this.built.then(async () => {
      if (table) await this.fill(table);
    });
    return this.built;
  }

  /// Marks one level as selected and brings it into view; -1 selects none.
  async markSelected(level: number): Promise<void> {
    const table = this.table;
    const before = this.selected;
    if (level !== before) this.unmarkRange();
    this.anchor = this.selected = level;
    await this.built;
    if (!table || table !== this.table || this.selected !== level) return;
    this.repaint(before);
    await this.reveal(level);
  }

  focus(): void {
    this.holder?.focus();
  }

  /// Opens a cell of the selected level for typing, once the table shows what it was told last; without
  /// a key the one that the keyboard is at.
  async edit(key?: ListKey): Promise<void> {
    await this.built;
    if (key) this.goTo(key);
    const { selected: level, profile } = this;
    const column = this.columns[this.place];
    if (!profile || !column || level < 0 || this.events.untouchable(column, level)) return;
    await this.reveal(level);
    const cell = this.cellAt(level, column.key);
    if (!cell || this.editor || level !== this.selected) return;
    const begun = this.ahead ?? undefined;
    const text = this.textOf(level, this.place);
    const label = `${column.label} of level ${level + 1}${column.unit && `, ${column.unit}`}`;
    this.editor = new CellEditor(cell, text === ABSENT ? "" : text, begun, label, this.faultId, {
      take: (typed) => this.events.typed(level, column.key, typed),
      left: (how) => this.leave(level, how),
      typed: () => this.events.mended(),
    });
  }

  /// Opens the cell that the keyboard is at with what is typed in place of its value.
  private async editWith(typed: string): Promise<void> {
    if (this.ahead !== null) {
      this.ahead += typed;
      return;
    }
    this.ahead = typed;
    await this.edit();
    this.ahead = null;
  }

  private leave(level: number, how: Leaving): void {
    this.editor = null;
    // What was taken has been drawn anew already.
    if (this.host.querySelector(".cell-input")) this.rowAt(level)?.reformat();
    if (how === "away") return;
    this.focus();
    if (how !== "stay") this.editNext(how === "next" ? 1 : -1);
  }

  /// Opens the next cell that can be typed into, or the previous one.
  private editNext(step: 1 | -1): void {
    const { columns } = this;
    let [level, place] = [this.selected, this.place];
    do {
      place += step;
      if (place < 0 || place >= columns.length) {
        level += step;
        place = step > 0 ? 0 : columns.length - 1;
      }
      const column = columns[place];
      if (level < 0 || level >= this.count || !column) return;
      if (this.events.untouchable(column, level)) continue;
      this.place = place;
      if (level !== this.selected) this.events.select(level);
      void this.edit();
      return;
    } while (true);
  }

  private get holder(): HTMLElement | null {
    return this.host.querySelector<HTMLElement>(".tabulator-tableholder");
  }

  private textOf(level: number, place: number): string {
    const { profile } = this;
    const column = this.columns[place];
    return profile && column ? formatValue(shownValue(profile, column.key, level), column.decimals) : "";
  }

  private rowAt(level: number): RowComponent | null {
    if (level < 0 || level >= this.count || !this.table) return null;
    const rows = (this.rows ??= this.table.getRows());
    return rows[level] ?? null;
  }

  private cellAt(level: number, key: string): HTMLElement | null {
    return this.rowAt(level)?.getElement().querySelector<HTMLElement>(`[tabulator-field="${key}"]`) ?? null;
  }

  private goTo(field: string): void {
    const place = this.columns.findIndex(({ key }) => key === field);
    if (place < 0) return;
    this.place = place;
    this.repaint(this.selected);
  }

  /// Selects a level, or all up to it from the one selected before.
  private pick(level: number, isRange: boolean): void {
    const anchor = isRange && this.anchor >= 0 ? this.anchor : level;
    this.unmarkRange();
    this.events.select(level);
    this.anchor = anchor;
    this.paintRows();
  }

  /// Selects all levels. The first is the one that the keyboard is at: it is where a user looks next.
  private pickAll(): void {
    this.unmarkRange();
    this.events.select(0);
    this.anchor = this.count - 1;
    this.paintRows();
  }

  /// Paints the rows that are on the page.
  private paintRows(): void {
    for (const row of this.host.querySelectorAll<HTMLElement>(".tabulator-row")) this.paintAgain(row);
  }

  private unmarkRange(): void {
    if (this.anchor === this.selected) return;
    this.anchor = this.selected;
    const rows = [...this.ranged];
    this.ranged.clear();
    for (const row of rows) this.paintAgain(row);
  }

  private paintAgain(row: HTMLElement): void {
    this.paint(row, Number(row.dataset["level"]) - 1);
  }

  private async reveal(level: number): Promise<void> {
    const { table } = this;
    for (const row of this.host.querySelectorAll<HTMLElement>(".tabulator-row.selected")) this.paintAgain(row);
    const row = this.rowAt(level);
    if (!table || !row) return this.tellActive();
    this.repaint(level);
    // The library draws all rows anew even for one at the edge, which would end what is typed there.
    if (this.isInView(row.getElement())) return;
    await table.scrollToRow(row, "nearest", false).catch(() => undefined);
    // It reckons in whole pixels, which a window need not have.
    const { holder } = this;
    const over = row.getElement().getBoundingClientRect().bottom - (holder?.getBoundingClientRect().bottom ?? Infinity);
    if (holder && over > 0 && over < 2) holder.scrollTop += Math.ceil(over);
    this.repaint(level);
  }

  private isInView(row: HTMLElement): boolean {
    const [outer, inner] = [this.holder?.getBoundingClientRect(), row.getBoundingClientRect()];
    return row.isConnected && outer !== undefined && inner.top >= outer.top - 1 && inner.bottom <= outer.bottom + 1;
  }

  private repaint(level: number): void {
    const row = this.rowAt(level);
    if (row) this.paint(row.getElement(), level);
    if (level === this.selected) this.tellActive();
  }

  private paint(row: HTMLElement, level: number): void {
    const { range } = this;
    const isSelected = range !== null && level >= range.from && level <= range.to;
    row.classList.toggle("invalid", this.invalid.has(level));
    row.classList.toggle("joined", this.isJoined(level));
    row.classList.toggle("selected", level === this.selected);
    const isRanged = isSelected && range.from !== range.to;
    row.classList.toggle("in-range", isRanged);
    if (isRanged) this.ranged.add(row);
    row.setAttribute("aria-selected", String(isSelected));
    row.setAttribute("aria-rowindex", String(level + 2));
    row.dataset["level"] = String(level + 1);
    const key = this.columns[this.place]?.key;
    for (const cell of row.children) {
      const isAt = level === this.selected && cell.getAttribute("tabulator-field") === key;
      cell.classList.toggle("at", isAt);
      if (isAt) cell.id = "level-cell";
      else cell.removeAttribute("id");
    }
  }

  /// Tells a screen reader which cell the keyboard is at.
  private tellActive(): void {
    const { holder } = this;
    if (!holder) return;
    if (this.selected >= 0) holder.setAttribute("aria-activedescendant", "level-cell");
    else holder.removeAttribute("aria-activedescendant");
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

  private key(event: KeyboardEvent): void {
    if (this.count === 0 || event.altKey) return;
    if (event.ctrlKey || event.metaKey) {
      if (event.key.toLowerCase() !== "a" || event.shiftKey) return;
      this.pickAll();
    } else if (!this.move(event) && !this.act(event)) {
      return;
    }
    event.preventDefault();
    event.stopPropagation();
  }

  private move(event: KeyboardEvent): boolean {
    const level = this.selected;
    const to = {
      ArrowDown: level + 1,
      ArrowUp: level - 1,
      PageDown: level + PAGE,
      PageUp: level - PAGE,
      Home: 0,
      End: this.count - 1,
    }[event.key];
    if (to === undefined) return false;
    this.pick(Math.min(Math.max(to, 0), this.count - 1), event.shiftKey);
    return true;
  }

  private act(event: KeyboardEvent): boolean {
    const { range, columns } = this;
    if (event.key === "ArrowLeft" || event.key === "ArrowRight") {
      const place = this.place + (event.key === "ArrowRight" ? 1 : -1);
      const column = columns[Math.min(Math.max(place, 0), columns.length - 1)];
      if (column) this.goTo(column.key);
      return true;
    }
    if (!range) return false;
    switch (event.key) {
      case "Enter":
      case "F2":
        void this.edit();
        return true;
      case "Delete":
        this.events.remove(range.from, range.to);
        return true;
      case "Insert":
        this.events.insert(event.shiftKey ? range.to + 1 : range.from);
        return true;
      case "Escape":
        if (range.from === range.to) return false;
        this.pick(this.selected, false);
        return true;
      default:
        if (!BEGINS_NUMBER.test(event.key)) return false;
        void this.editWith(event.key);
        return true;
    }
  }
}

/// Resolves once others have done what they waited to do until now.
function rested(): Promise<void> {
  return new Promise((done) => setTimeout(done, 20));
}

function rowsOf(count: number): Row[] {
  return Array.from({ length: count }, (_, index) => ({ index }));
}
