/// Import filters: rows of the engine's table, what may stand in them, and the text forms of both
/// directions.
import { builtInEnd } from "./file-kinds";

export type Separator = "space" | "tab" | "semicolon" | "colon" | "comma";
export type SalinityWord = "undef" | "salinity" | "conductivity";

/// What a filter can take from a file, in the order of its columns in the table.
export const QUANTITIES = ["depth", "speed", "temperature", "salinity", "absorption"] as const;
export type Quantity = (typeof QUANTITIES)[number];

/// A filter as a form holds it: every field is text, and may be wrong.
export interface Filter {
  name: string;
  /// The end of the names of files that it is for, with its dot.
  postfix: string;
  /// Column numbers, counted from 0; "" for a quantity that the file does not have.
  columns: Readonly<Record<Quantity, string>>;
  /// Numbers of lines that are no samples, counted from 1: "1;3-5". "" for none.
  skip: string;
  depthFactor: string;
  speedFactor: string;
  separator: Separator;
  salinity: SalinityWord;
}

/// A field that can be wrong.
export type FilterField = "name" | "postfix" | "skip" | "depthFactor" | "speedFactor" | Quantity;
export type Faults = Partial<Record<FilterField, string>>;

export const SEPARATORS: Readonly<Record<Separator, string>> = {
  space: "Blanks, tabs",
  tab: "Tab",
  semicolon: "Semicolon ;",
  colon: "Colon :",
  comma: "Comma ,",
};

export const SALINITY_WORDS: Readonly<Record<SalinityWord, string>> = {
  undef: "not said",
  salinity: "salinity",
  conductivity: "conductivity",
};

/// The engine's own filters, which come before those of the table.
export const BUILT_IN_FILTERS: readonly { name: string; postfix: string }[] = [
  { name: "asvp", postfix: ".asvp" },
  { name: "valeport", postfix: ".valeport" },
  { name: "valeport2", postfix: ".vp2" },
  { name: "SSP", postfix: ".ssp" },
  { name: "AML", postfix: ".aml" },
  { name: "AMLx", postfix: ".amlx" },
];

/// How the table says that no line is skipped, in the manner of the built-in rows.
const NO_LINES = "-1";
const FACTOR_DECIMALS = 3;
const MOST_COLUMN_DIGITS = 4;
const MOST_NAME = 60;

export function emptyFilter(): Filter {
  return {
    name: "",
    postfix: "",
    columns: { depth: "", speed: "", temperature: "", salinity: "", absorption: "" },
    skip: "",
    depthFactor: "1",
    speedFactor: "1",
    separator: "space",
    salinity: "undef",
  };
}

/// The rows of a reply; one that is no row is left out.
export function filtersOf(text: string): Filter[] {
  return text.split("|").map(filterOf).filter((row): row is Filter => row !== null);
}

/// A row of the table, or null when it is none.
export function filterOf(row: string): Filter | null {
  const fields = row.split(",");
  if (fields.length !== 12) return null;
  const [name, postfix, depth, speed, third, fourth, fifth, skip, depthFactor, speedFactor, separator, word] =
    fields as [string, string, string, string, string, string, string, string, string, string, string, string];
  const separatorWord = separator.toLowerCase();
  const salinityWord = word.toLowerCase();
  return {
    name,
    postfix,
    columns: {
      depth: columnText(depth),
      speed: columnText(speed),
      temperature: columnText(third),
      salinity: columnText(fourth),
      absorption: columnText(fifth),
    },
    skip: skip === NO_LINES ? "" : skip,
    depthFactor: factorText(depthFactor),
    speedFactor: factorText(speedFactor),
    separator: separatorWord in SEPARATORS ? (separatorWord as Separator) : "space",
    salinity: salinityWord in SALINITY_WORDS ? (salinityWord as SalinityWord) : "undef",
  };
}

/// A filter without faults as a row of the table.
export function rowOf(filter: Filter): string {
  const { columns } = filter;
  return [
    filter.name,
    filter.postfix,
    ...QUANTITIES.map((quantity) => columns[quantity] || "-1"),
    filter.skip || NO_LINES,
    filter.depthFactor,
    filter.speedFactor,
    filter.separator,
    filter.salinity,
  ].join(",");
}

/// Body of a request that saves a filter without faults.
export function saveFilterBody(filter: Filter): string {
  const { columns } = filter;
  const column = (quantity: Quantity) => columns[quantity].trim() || "-1";
  const values = [
    column("depth"),
    column("speed"),
    filter.skip.trim() || NO_LINES,
    filter.speedFactor.trim(),
    filter.depthFactor.trim(),
    filter.name.trim(),
    filter.postfix.trim(),
    filter.separator,
    column("temperature"),
    column("salinity"),
    column("absorption"),
    filter.salinity,
  ];
  return `[${values.join(",")}]`;
}

/// Whether two filters say the same, whatever digits their numbers have.
export function sameFilter(a: Filter, b: Filter): boolean {
  const plain = (filter: Filter) =>
    JSON.stringify([
      filter.name.trim(),
      filter.postfix.trim(),
      ...QUANTITIES.map((quantity) => columnText(filter.columns[quantity].trim() || "-1")),
      filter.skip.trim(),
      Number(filter.depthFactor),
      Number(filter.speedFactor),
      filter.separator,
      filter.salinity,
    ]);
  return plain(a) === plain(b);
}

/// Names and postfixes mean the same in upper and lower case.
export function sameWord(a: string, b: string): boolean {
  return a.trim().toLowerCase() === b.trim().toLowerCase();
}

/// The rows that the engine would take away to put `filter` in: those with its name or postfix.
export function replacedBy(filter: Filter, rows: readonly Filter[]): Filter[] {
  return rows.filter(
    ({ name, postfix }) => sameWord(name, filter.name) || sameWord(postfix, filter.postfix),
  );
}

/// The row by which the engine would read a file of this name: the first whose postfix ends it.
export function filterFor(name: string, rows: readonly Filter[]): Filter | undefined {
  const lower = name.toLowerCase();
  return rows.find(({ postfix }) => postfix !== "" && lower.endsWith(postfix.toLowerCase()));
}

/// What is wrong with a filter, as sentences by field.
export function faultsOf(filter: Filter): Faults {
  const faults: Faults = {};
  const set = (field: FilterField, fault: string) => {
    if (fault && !faults[field]) faults[field] = fault;
  };
  set("name", nameFault(filter.name.trim()));
  set("postfix", postfixFault(filter.postfix.trim()));
  set("skip", skipFault(filter.skip.trim()));
  set("depthFactor", factorFault(filter.depthFactor.trim()));
  set("speedFactor", factorFault(filter.speedFactor.trim()));
  QUANTITIES.forEach((quantity, i) => {
    const column = filter.columns[quantity].trim();
    const isNeeded = quantity === "depth" || quantity === "speed";
    set(quantity, columnFault(column, isNeeded));
    const earlier = QUANTITIES.slice(0, i).find(
      (other) => column !== "" && Number(filter.columns[other].trim() || NaN) === Number(column),
    );
    if (earlier) set(quantity, `Column ${column} is the ${earlier} already.`);
  });
  return faults;
}

/// The field that a refusal of the engine is about, or null when it is about none.
export function refusedField(reason: string): FilterField | null {
  if (/^Depthcolumn/i.test(reason)) return "depth";
  if (/^Speedcolumn/i.test(reason)) return "speed";
  if (/^Speed ?(multiplier|factor)/i.test(reason)) return "speedFactor";
  if (/^Depth ?(multiplier|factor)/i.test(reason)) return "depthFactor";
  if (/^Name /.test(reason)) return "name";
  if (/^Postfix /.test(reason)) return "postfix";
  return null;
}

function columnText(field: string): string {
  const column = Number(field);
  return Number.isInteger(column) && column >= 0 ? String(column) : "";
}

/// 1.000 is written 1; what is no number stays as it is.
function factorText(field: string): string {
  return /^\d+(\.\d+)?$/.test(field) ? String(Number(field)) : field;
}

function storedFault(text: string): string {
  if (/[\s,[\]]/.test(text)) return "No white space, commas or brackets.";
  if (/[^!-~]/.test(text)) return "Plain letters, digits and marks only.";
  if (text.includes("|")) return "No upright stroke.";
  return text.length > MOST_NAME ? "This is too long." : "";
}

function nameFault(name: string): string {
  if (name === "") return "Give the filter a name.";
  if (sameWord(name, "asvp") || sameWord(name, "valeport")) return `The name ${name} is reserved.`;
  return storedFault(name);
}

function postfixFault(postfix: string): string {
  if (postfix === "") return "State how the names of such files end, such as .csv.";
  const fault = storedFault(postfix);
  if (fault) return fault;
  if (!/^\../.test(postfix)) return "Begin with a full stop, as in .csv.";
  if (/[/\\]/.test(postfix)) return "No slash or backslash: they part folders from names.";
  const own = builtInEnd(postfix);
  return own ? `A built-in filter reads ${own} files.` : "";
}

function skipFault(skip: string): string {
  const isSet = skip === "" || skip.split(";").every((part) => /^\d{1,9}(-\d{1,9})?$/.test(part));
  if (!isSet) return "Lines and ranges with semicolons, as in 1;3-5; empty for none.";
  const backward = skip.split(";").find((part) => {
    const [first = "0", last = first] = part.split("-");
    return Number(first) > Number(last);
  });
  return backward ? `${backward} runs backwards and would skip no line.` : "";
}

function factorFault(factor: string): string {
  if (!/^(\d{1,9}(\.\d*)?|\.\d+)$/.test(factor)) {
    return "A number with a decimal point, as in 1 or 0.5.";
  }
  const decimals = (factor.split(".")[1] ?? "").replace(/0+$/, "").length;
  if (decimals > FACTOR_DECIMALS) {
    const stored = Number(factor).toFixed(FACTOR_DECIMALS);
    return `Three decimals are stored: ${factor} would become ${stored}.`;
  }
  return Number(factor) > 0 ? "" : "A factor of 0 would make every value 0.";
}

function columnFault(column: string, isNeeded: boolean): string {
  if (column === "") return isNeeded ? "State the column." : "";
  if (!/^\d+$/.test(column)) return "A column number, counted from 0.";
  return column.length > MOST_COLUMN_DIGITS ? "There are no so many columns." : "";
}
