import assert from "node:assert/strict";
import { test } from "node:test";
import { linesOf } from "../../src/column-text";
import { guessFilter } from "../../src/filter-guess";
import { formatOf, readLines } from "../../src/filter-reading";
import { emptyFilter, faultsOf, type Filter } from "../../src/filters";

const columns = (more: Partial<Filter["columns"]>) => ({ ...emptyFilter().columns, ...more });
const TEXT = ["depth;speed", "1 2 3", "0.5;1500;10", "", "1.5;1501;11", "9;bad", "3;1499.5;"].join("\r\n");

test("every line is a level, skipped or passed over, and is counted", () => {
  const filter = { ...emptyFilter(), separator: "semicolon" as const, skip: "1;5", columns: columns({ depth: "0", speed: "1", temperature: "2" }) };
  const reading = readLines(linesOf(TEXT), formatOf(filter), 200, 12);
  assert.deepEqual(reading.lines.map(({ fate }) => fate), ["skipped", "passed", "level", "passed", "skipped", "passed", "level"]);
  assert.deepEqual(reading.counts, { level: 2, skipped: 2, passed: 3 });
  assert.deepEqual(reading.depths, [0.5, 3]);
  assert.deepEqual(reading.speeds, [1499.5, 1500]);
  assert.deepEqual(reading.levels.map(({ temperature }) => temperature), [10, 0]);
});

test("only the first lines and levels are kept, but all are counted", () => {
  const lines = Array.from({ length: 1000 }, (_, i) => `${i} 1500`);
  const filter = { ...emptyFilter(), columns: columns({ depth: "0", speed: "1" }) };
  const reading = readLines(lines, formatOf(filter), 200, 12);
  assert.equal(reading.lines.length, 200);
  assert.equal(reading.levels.length, 12);
  assert.equal(reading.counts.level, 1000);
  assert.deepEqual(reading.depths, [0, 999]);
});

test("without columns or with a factor that is no number nothing is read", () => {
  const lines = ["1 1500", "2 1501"];
  assert.equal(readLines(lines, formatOf(emptyFilter()), 9, 9).counts.passed, 2);
  const filter = { ...emptyFilter(), columns: columns({ depth: "0", speed: "1" }), depthFactor: "" };
  const reading = readLines(lines, formatOf(filter), 9, 9);
  assert.equal(reading.counts.passed, 2);
  assert.equal(reading.depths, null);
});

interface Guess {
  what: string;
  name: string;
  lines: string[];
  separator: Filter["separator"];
  columns: Partial<Filter["columns"]>;
  salinity?: Filter["salinity"];
}
const guesses: Guess[] = [
  {
    what: "a bare list of depths and speeds",
    name: "a.vel",
    lines: ["HEAD 1 line of words", "0.0 1481.5", "1.0 1481.0", "2.0 1480.5", "3.0 1480.0"],
    separator: "space",
    columns: { depth: "0", speed: "1" },
  },
  {
    what: "named columns with a line of units",
    name: "b.csv",
    lines: ["Time,Sound velocity,Temperature,Salinity,Depth", "s,m/s,C,PSU,m", "1,1500,10,35,0.5", "2,1501,10,35,1.5", "3,1502,10,35,2.5"],
    separator: "comma",
    columns: { depth: "4", speed: "1", temperature: "2", salinity: "3" },
    salinity: "salinity",
  },
  {
    what: "a conductivity in place of a salinity",
    name: "c.txt",
    lines: ["# Depth\tSV\tTemp\tCond", "1\t1500\t10\t42", "2\t1501\t10\t42", "3\t1502\t10\t42"],
    separator: "tab",
    columns: { depth: "0", speed: "1", temperature: "2", salinity: "3" },
    salinity: "conductivity",
  },
  {
    what: "a clock before the values",
    name: "d.csv",
    lines: ["3-14-26, 8:05:7, 1481.5, 0.5, 8.1", "3-14-26, 8:05:8, 1481.0, 1.0, 8.0", "3-14-26, 8:05:9, 1480.5, 1.5, 7.9"],
    separator: "comma",
    columns: { depth: "3", speed: "2" },
  },
  {
    what: "names far above the samples, and speeds that no water has",
    name: "g.sva",
    lines: ["# depth  veloc.  temp.", "# [m] [m/s] [C]", "", ".begin 0", "2.0 1900.0 0.0", "4.0 1900.0 0.0", "6.0 1900.0 0.0"],
    separator: "space",
    columns: { depth: "0", speed: "1", temperature: "2" },
  },
  { what: "a text without numbers", name: "e.txt", lines: ["nothing", "here"], separator: "space", columns: {} },
  { what: "an empty file", name: "f.txt", lines: [], separator: "space", columns: {} },
];
for (const { what, name, lines, separator, columns: expected, salinity = "undef" } of guesses) {
  test(`a first guess at ${what}`, () => {
    const guess = guessFilter(name, lines);
    assert.equal(guess.separator, separator);
    assert.deepEqual(guess.columns, columns(expected));
    assert.equal(guess.salinity, salinity);
    assert.equal(guess.postfix, name.slice(1));
    if (expected.depth) assert.deepEqual(faultsOf(guess), {});
  });
}

test("a suffix that could not be stored as a name gives one that can", () => {
  assert.equal(guessFilter("x.a,b", []).name, "a_b");
  assert.equal(guessFilter("none", []).postfix, "");
});
