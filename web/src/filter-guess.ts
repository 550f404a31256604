/// A first idea of how a file is to be read, from its own lines. It only fills a form that the user
/// looks at beside the file.
import { fieldsOf, numberIn } from "./column-text";
import { suffixOf } from "./file-kinds";
import { emptyFilter, type Filter, type Quantity, type Separator } from "./filters";

/// Lines that are looked at.
const SAMPLE = 300;
/// Rows of numbers that make a block of samples; fewer may be part of a header.
const LEAST_ROWS = 3;
/// How far above the samples the names of the columns may stand.
const LINES_ABOVE = 6;
/// Sound speeds in m/s that occur in water, hardly ever another quantity of a cast.
const SPEEDS = [1350, 1750] as const;

const NAMES: readonly { quantity: Quantity; pattern: RegExp }[] = [
  { quantity: "speed", pattern: /sound|speed|veloc|svel|^(calc)?sv\b/i },
  { quantity: "depth", pattern: /dep(th)?\b|depth|tiefe|profondeur/i },
  { quantity: "temperature", pattern: /temp/i },
  { quantity: "salinity", pattern: /sal/i },
  { quantity: "absorption", pattern: /absorp/i },
];

interface Block {
  separator: Separator;
  /// Samples, each with the same number of columns.
  rows: readonly (readonly string[])[];
  /// Index of the first one's line.
  start: number;
  width: number;
}

/// A filter for a file of this name and these lines.
export function guessFilter(name: string, lines: readonly string[]): Filter {
  const suffix = suffixOf(name);
  const filter = {
    ...emptyFilter(),
    name: suffix.slice(1).replace(/[^!-~]|[,[\]|]/g, "_"),
    postfix: suffix.toLowerCase(),
  };
  const block = findBlock(lines.slice(0, SAMPLE));
  if (!block) return filter;
  const columns: Record<Quantity, string> = { ...filter.columns };
  const isNumber = (column: number) => block.rows.every((row) => numberIn(row[column]) !== null);
  const numeric = Array.from({ length: block.width }, (_, i) => i).filter(isNumber);
  const free = () => numeric.filter((column) => !Object.values(columns).includes(String(column)));

  const names = namesAbove(lines, block);
  let salinity: Filter["salinity"] = "undef";
  for (const { quantity, pattern } of NAMES) {
    const column = free().find((each) => pattern.test(names[each]?.trim() ?? ""));
    if (column === undefined) continue;
    columns[quantity] = String(column);
    if (quantity === "salinity") salinity = "salinity";
  }
  if (columns.salinity === "") {
    const column = free().find((each) => /cond/i.test(names[each] ?? ""));
    if (column !== undefined) {
      columns.salinity = String(column);
      salinity = "conductivity";
    }
  }
  if (columns.speed === "") columns.speed = text(free().find((each) => holdsSpeeds(block, each)));
  if (columns.depth === "") columns.depth = text(free().find((each) => holdsDepths(block, each)));
  return { ...filter, separator: block.separator, columns, salinity };
}

function text(column: number | undefined): string {
  return column === undefined ? "" : String(column);
}

/// The longest run of lines with the same number of columns, at least two of them numbers, by the
/// separator that gives it.
function findBlock(lines: readonly string[]): Block | null {
  // What occurs inside times and dates comes last.
  const separators: readonly Separator[] = ["tab", "semicolon", "comma", "space", "colon"];
  let best: Block | null = null;
  for (const separator of separators) {
    for (const block of blocksOf(lines, separator)) {
      if (block.rows.length >= LEAST_ROWS && block.rows.length > (best?.rows.length ?? 0)) best = block;
    }
  }
  return best;
}

function blocksOf(lines: readonly string[], separator: Separator): Block[] {
  const blocks: Block[] = [];
  let rows: (readonly string[])[] = [];
  let start = 0;
  const end = () => {
    if (rows[0]) blocks.push({ separator, rows, start, width: rows[0].length });
    rows = [];
  };
  lines.forEach((line, i) => {
    const fields = fieldsOf(line, separator);
    const numbers = fields.filter((field) => numberIn(field) !== null).length;
    if (rows[0] && (numbers < 2 || fields.length !== rows[0].length)) end();
    if (numbers < 2) return;
    if (rows.length === 0) start = i;
    rows.push(fields);
  });
  end();
  return blocks;
}

/// Names of the columns from a line above the samples (units and marks often stand between); none
/// where neither has as many.
function namesAbove(lines: readonly string[], block: Block): readonly string[] {
  for (let i = block.start - 1; i >= Math.max(0, block.start - LINES_ABOVE); --i) {
    const fields = fieldsOf((lines[i] ?? "").replace(/^\s*[#%*/]+\s*/, ""), block.separator);
    const named = fields.some((field) => NAMES.some(({ pattern }) => pattern.test(field.trim())));
    if (named && fields.length >= block.width) return fields;
  }
  return [];
}

function valuesOf({ rows }: Block, column: number): number[] {
  return rows.map((row) => numberIn(row[column]) ?? NaN);
}

function holdsSpeeds(block: Block, column: number): boolean {
  return valuesOf(block, column).every((value) => value >= SPEEDS[0] && value <= SPEEDS[1]);
}

/// A probe goes down or comes up: most steps of a depth go one way.
function holdsDepths(block: Block, column: number): boolean {
  const values = valuesOf(block, column);
  let down = 0;
  let up = 0;
  for (let i = 1; i < values.length; ++i) {
    const step = (values[i] ?? 0) - (values[i - 1] ?? 0);
    if (step > 0) ++down;
    else if (step < 0) ++up;
  }
  return Math.max(down, up) >= 0.8 * (values.length - 1);
}
