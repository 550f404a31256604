/// Column text, cut into lines, columns and numbers exactly as the engine does it when it opens a
/// file with an import filter: what the preview shows is what opening will give.
import type { Quantity, Separator } from "./filters";

const CHARACTERS: Readonly<Record<Exclude<Separator, "space">, string>> = {
  tab: "\t",
  semicolon: ";",
  colon: ":",
  comma: ",",
};

const LARGEST_FLOAT = 3.4028234663852886e38;
const LARGEST_LINE = 9223372036854775807n;

export interface ColumnFormat {
  /// Counted from 0; -1 for an absent one.
  columns: Readonly<Record<Quantity, number>>;
  /// As it stands in the table.
  skip: string;
  depthFactor: number;
  speedFactor: number;
  separator: Separator;
}

/// A level as it goes into a profile: 32-bit floats, factors applied, 0 where the line has nothing.
export type Level = Readonly<Record<Quantity, number>>;

/// The text of a file: a byte order mark tells UTF-16 and is dropped; bytes that are no UTF-8 are
/// Latin-1.
export function textOf(bytes: Uint8Array): string {
  const [first, second, third] = bytes;
  const utf8 = new TextDecoder("utf-8", { fatal: true, ignoreBOM: true });
  if (first === 0xff && second === 0xfe) return new TextDecoder("utf-16le").decode(bytes);
  if (first === 0xfe && second === 0xff) return new TextDecoder("utf-16be").decode(bytes);
  const hasMark = first === 0xef && second === 0xbb && third === 0xbf;
  const plain = hasMark ? bytes.subarray(3) : bytes;
  try {
    return utf8.decode(plain);
  } catch {
    return new TextDecoder("latin1").decode(plain);
  }
}

/// The lines of a text. LF, CR LF, CR CR LF and a lone CR each end one; an end at the very end of
/// the text opens no further line.
export function linesOf(text: string): string[] {
  const lines = text.split(/\r\r\n|\r\n|\r|\n/);
  if (lines[lines.length - 1] === "") lines.pop();
  return lines;
}

/// A set of line numbers, written as numbers and ranges with semicolons between them: "1;3-5".
/// Anything else in the text means no line.
export class LineSet {
  private readonly ranges: { first: bigint; last: bigint }[] = [];

  constructor(text: string) {
    for (const part of text.split(";")) {
      const dash = part.indexOf("-");
      const first = lineNumber(dash < 0 ? part : part.slice(0, dash));
      const last = dash < 0 ? first : lineNumber(part.slice(dash + 1));
      if (first !== null && last !== null && first <= last) this.ranges.push({ first, last });
    }
    this.ranges.sort((a, b) => (a.first < b.first ? -1 : a.first > b.first ? 1 : 0));
    // Overlapping ranges become one, so that a line is looked for in one place only.
    let kept = -1;
    for (const range of this.ranges) {
      const before = this.ranges[kept];
      if (before && range.first <= before.last) {
        if (range.last > before.last) before.last = range.last;
      } else {
        this.ranges[++kept] = { ...range };
      }
    }
    this.ranges.length = kept + 1;
  }

  has(line: number): boolean {
    const wanted = BigInt(line);
    let from = 0;
    let to = this.ranges.length;
    while (from < to) {
      const middle = (from + to) >> 1;
      const range = this.ranges[middle];
      if (!range || range.first > wanted) to = middle;
      else if (range.last < wanted) from = middle + 1;
      else return true;
    }
    return false;
  }
}

/// The columns of a line. "space" means runs of blanks and tabs; any other separator keeps empty
/// columns.
export function fieldsOf(line: string, separator: Separator): string[] {
  if (separator !== "space") return line.split(CHARACTERS[separator]);
  return line.split(/[ \t]+/).filter((field) => field !== "");
}

/// The number in a column, or null when it holds none, or no finite one.
export function numberIn(field: string | undefined): number | null {
  if (field === undefined) return null;
  const text = trimmed(field);
  if (!/^(?:\+|-)?(?:\d+\.?\d*|\.\d+)(?:[eE][+-]?\d+)?$/.test(text)) return null;
  const value = Number(text);
  return Number.isFinite(value) ? value : null;
}

/// The level of a line, or null when it holds none.
export function levelOf(fields: readonly string[], format: ColumnFormat): Level | null {
  const { columns, depthFactor, speedFactor } = format;
  const read = (quantity: Quantity, factor: number) => {
    const value = numberIn(fields[columns[quantity]]);
    if (value === null) return null;
    const scaled = value * factor;
    return Math.abs(scaled) <= LARGEST_FLOAT ? Math.fround(scaled) : null;
  };
  const depth = read("depth", depthFactor);
  const speed = read("speed", speedFactor);
  if (depth === null || speed === null) return null;
  return {
    depth,
    speed,
    temperature: read("temperature", 1) ?? 0,
    salinity: read("salinity", 1) ?? 0,
    absorption: read("absorption", 1) ?? 0,
  };
}

function lineNumber(text: string): bigint | null {
  if (!/^\s*[+-]?\d+\s*$/.test(text)) return null;
  const value = BigInt(text.trim().replace(/^\+/, ""));
  return value <= LARGEST_LINE && value >= -LARGEST_LINE ? value : null;
}

/// Without white space at the ends, by hand: a pattern would look at long runs again and again.
function trimmed(text: string): string {
  const isBlank = (at: number) => " \t\r\n\v\f".includes(text.charAt(at));
  let from = 0;
  let to = text.length;
  while (from < to && isBlank(from)) ++from;
  while (to > from && isBlank(to - 1)) --to;
  return text.slice(from, to);
}
