/// An extension file of the user's, read in the page as the engine will read it, before it is handed
/// in: the first line is a comment, each further one a depth and a sound speed.
import { formatValue } from "./format";

export interface ExtensionRow {
  /// m and m/s, as the 32-bit floats that the engine reads; 0 for a word that is no number.
  depth: number;
  speed: number;
  /// The line, where one of its words is no number.
  unread?: string;
}

/// What a file lets expect: a fault keeps it from being handed in, remarks do not.
export interface ExtensionFacts {
  rows: readonly ExtensionRow[];
  fault: string;
  remarks: readonly string[];
}

/// A file that reaches no deeper does not continue a profile to full ocean depth.
const REACH = 11_990;
const LARGEST_FLOAT = 3.4028234663852886e38;
const NUMBER = /^[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?$/;

/// The rows of an extension file. Lines of other than two words have none.
export function extensionRows(bytes: Uint8Array): ExtensionRow[] {
  const lines = new TextDecoder("latin1").decode(bytes).split("\n").slice(1);
  return lines.flatMap((line) => {
    const words = line.split(/[\s\u0085]+/).filter(Boolean);
    const [depth, speed] = words;
    if (words.length !== 2 || depth === undefined || speed === undefined) return [];
    const row: ExtensionRow = { depth: floatOf(depth), speed: floatOf(speed) };
    return [isNumber(depth) && isNumber(speed) ? row : { ...row, unread: `${depth} ${speed}` }];
  });
}

/// What can be said of a file's rows for a profile whose deepest level lies at `deepest` m.
export function extensionFacts(rows: readonly ExtensionRow[], deepest: number): ExtensionFacts {
  const facts = (fault: string, remarks: readonly string[] = []) => ({ rows, fault, remarks });
  const [first] = rows;
  if (!first || rows.length < 2) {
    const found = rows.length === 0 ? "no row" : "one row";
    return facts(
      `Behind its first line it has ${found} of a depth and a sound speed; at least 2 are needed. ` +
        "The first line is a comment and is not read.",
    );
  }
  const unread = rows.find((row) => row.unread !== undefined)?.unread;
  if (unread !== undefined) {
    return facts(
      `The row “${unread}” has a word that is no number and would be read as 0. ` +
        "Numbers are written with a decimal point.",
    );
  }
  if (rows.some(({ depth }, i) => i > 0 && !(depth > first.depth))) {
    return facts(`A row lies no deeper than the first one, at ${metres(first.depth)}. Sort the rows by depth.`);
  }
  const remarks: string[] = [];
  const back = rows.findIndex(({ depth }, i) => i > 0 && !(depth > (rows[i - 1]?.depth ?? NaN)));
  const last = rows[back - 1];
  const next = rows[back];
  if (last && next) {
    remarks.push(
      `Its depths step back, from ${metres(last.depth)} to ${metres(next.depth)}: ` +
        "the extended profile will not pass the check.",
    );
  }
  const reach = rows.reduce((most, { depth }) => Math.max(most, depth), -Infinity);
  if (!(reach > REACH)) {
    remarks.push(
      `It does not go below ${REACH} m, its deepest row lies at ${metres(reach)}: ` +
        "the profile will not reach full ocean depth.",
    );
  }
  if (!(reach > deepest)) {
    remarks.push(
      `None of its rows lies below the cast’s deepest level, ${metres(deepest)}: nothing will be joined.`,
    );
  }
  return facts("", remarks);
}

/// The rows that are joined below a depth: the first deeper one, and all behind it.
export function rowsBelow(rows: readonly ExtensionRow[], depth: number): readonly ExtensionRow[] {
  const first = rows.findIndex((row) => row.depth > Math.fround(depth));
  return first < 0 ? [] : rows.slice(first);
}

function metres(depth: number): string {
  return `${formatValue(depth)} m`;
}

function isNumber(word: string): boolean {
  return NUMBER.test(word) && Math.abs(Number(word)) <= LARGEST_FLOAT;
}

function floatOf(word: string): number {
  return isNumber(word) ? Math.fround(Number(word)) : 0;
}
