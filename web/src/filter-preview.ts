/// A file as an import filter would read it.
import { linesOf, textOf, type Level } from "./column-text";
import { make } from "./dom";
import { formatOf, readLines, type Fate, type Reading } from "./filter-reading";
import { QUANTITIES, type Filter, type Quantity } from "./filters";
import { decimalsFor, formatCount, formatSize, formatValue } from "./format";
import { levelCount } from "./outbox-words";
import type { PickedFile } from "./uploads";

/// What is read of a file for the preview; opening reads all of it.
const MOST_BYTES = 4 * 1024 * 1024;
const MOST_LINES = 200;
const MOST_COLUMNS = 40;
const MOST_LEVELS = 12;
/// Characters of a field that are shown.
const MOST_FIELD = 40;

const FATES: Readonly<Record<Fate, string>> = { level: "level", skipped: "skipped", passed: "passed over" };

/// A file that the user wants to see read.
export class PreviewFile {
  private constructor(
    readonly file: PickedFile,
    /// Its name in the profile folder, where it is there already; otherwise "".
    readonly stored: string,
    readonly lines: readonly string[],
    readonly isCut: boolean,
  ) {}

  /// Rejects when the file cannot be read.
  static async read(file: PickedFile, stored: string): Promise<PreviewFile> {
    const bytes = new Uint8Array(await file.slice(0, MOST_BYTES).arrayBuffer());
    const lines = linesOf(textOf(bytes));
    const isCut = file.size > MOST_BYTES;
    // The last line may be a part of one.
    if (isCut) lines.pop();
    return new PreviewFile(file, stored, lines, isCut);
  }
}

export class FilterPreview {
  readonly element = make("div", "preview");
  private readonly facts = make("p", "preview-facts");
  private readonly head = make("tr");
  private readonly body = make("tbody");
  private readonly levels = make("table", "preview-table preview-levels");
  private readonly choices: HTMLSelectElement[] = [];
  private readonly parts = make("div", "preview-parts");

  /// `assign` gives a quantity, or none, to a column.
  constructor(private readonly assign: (column: number, quantity: Quantity | null) => void) {
    this.facts.setAttribute("role", "status");
    const lines = make("table", "preview-table", make("thead", "", this.head), this.body);
    lines.setAttribute("aria-label", "Lines of the file");
    this.levels.setAttribute("aria-label", "First levels");
    const scroll = (table: HTMLElement, name: string) => {
      const place = make("div", "preview-scroll", table);
      place.tabIndex = 0;
      place.setAttribute("role", "group");
      place.setAttribute("aria-label", name);
      return place;
    };
    this.parts.append(scroll(lines, "Lines of the file"), scroll(this.levels, "First levels"));
    this.element.append(this.facts, this.parts);
    this.parts.hidden = true;
  }

  /// Shows how `filter` reads `file`; without a file, what to do to see it.
  show(file: PreviewFile | null, filter: Filter): void {
    this.parts.hidden = file === null;
    if (!file) {
      this.facts.textContent = "Choose a file, or drop it here, to see how this filter reads it.";
      return;
    }
    const format = formatOf(filter);
    const reading = readLines(file.lines, format, MOST_LINES, MOST_LEVELS);
    this.facts.textContent = factsText(reading, file);
    this.showLines(reading, format.columns, filter);
    this.showLevels(reading.levels, filter);
  }

  private showLines({ lines }: Reading, columns: Readonly<Record<Quantity, number>>, filter: Filter): void {
    const width = Math.min(MOST_COLUMNS, Math.max(1, ...lines.map(({ fields }) => fields.length)));
    this.showHead(width, columns, filter);
    const used = new Set(Object.values(columns));
    this.body.replaceChildren(
      ...lines.map(({ number, fields, fate }) => {
        const row = make("tr", `line-${fate}`, make("th", "", String(number)), make("td", "line-fate", FATES[fate]));
        for (let i = 0; i < width; ++i) {
          row.append(make("td", used.has(i) ? "used" : "", (fields[i] ?? "").slice(0, MOST_FIELD)));
        }
        return row;
      }),
    );
  }

  /// The headings stay where they can, since the user may have the keyboard on one.
  private showHead(width: number, columns: Readonly<Record<Quantity, number>>, filter: Filter): void {
    if (this.choices.length !== width) {
      this.choices.splice(0, this.choices.length, ...Array.from({ length: width }, (_, i) => this.choice(i)));
      this.head.replaceChildren(
        make("th", "", "Line"),
        make("th", "", "Read as"),
        ...this.choices.map((select, i) => make("th", "", make("span", "column-number", String(i)), select)),
      );
    }
    this.choices.forEach((select, i) => {
      const quantity = QUANTITIES.find((each) => columns[each] === i) ?? "";
      select.replaceChildren(
        new Option("–", ""),
        ...QUANTITIES.map((each) => new Option(quantityWord(each, filter), each)),
      );
      select.value = quantity;
      select.classList.toggle("used", quantity !== "");
    });
  }

  private choice(column: number): HTMLSelectElement {
    const select = make("select");
    select.setAttribute("aria-label", `Column ${column} holds`);
    select.addEventListener("change", () => this.assign(column, (select.value || null) as Quantity | null));
    return select;
  }

  private showLevels(levels: readonly Level[], filter: Filter): void {
    const shown = QUANTITIES.filter((each) => filter.columns[each].trim() !== "");
    const decimals = shown.map((each) => decimalsFor(levels.map((level) => level[each])));
    const unit: Partial<Record<Quantity, string>> = { depth: " m", speed: " m/s" };
    const head = make("tr", "", make("th", "", "Level"));
    for (const each of shown) head.append(make("th", "", quantityWord(each, filter) + (unit[each] ?? "")));
    const rows = levels.map((level, i) =>
      make("tr", "", make("th", "", String(i + 1)),
        ...shown.map((each, at) => make("td", "used", formatValue(level[each], decimals[at])))),
    );
    this.levels.replaceChildren(make("thead", "", head), make("tbody", "", ...rows));
  }
}

/// What a column of this quantity is called.
function quantityWord(quantity: Quantity, filter: Filter): string {
  return quantity === "salinity" && filter.salinity === "conductivity" ? "conductivity" : quantity;
}

function factsText({ counts, depths, speeds }: Reading, { lines, isCut }: PreviewFile): string {
  const range = (values: readonly [number, number] | null, unit: string) =>
    values ? [`${formatValue(values[0])} to ${formatValue(values[1])} ${unit}`] : [];
  return [
    `${levelCount(counts.level)} read`,
    ...range(depths, "m"),
    ...range(speeds, "m/s"),
    `${formatCount(counts.passed)} of ${formatCount(lines.length)} lines passed over`,
    ...(counts.skipped > 0 ? [`${formatCount(counts.skipped)} skipped`] : []),
    ...(isCut ? [`only the first ${formatSize(MOST_BYTES)} are looked at here`] : []),
  ].join("  ·  ");
}
