import assert from "node:assert/strict";
import { test } from "node:test";
import { LineSet, fieldsOf, levelOf, linesOf, numberIn, textOf, type ColumnFormat } from "../../src/column-text";

const f = Math.fround;
const bytes = (...values: number[]) => Uint8Array.from(values);

test("every kind of line end ends one line, and the last end opens none", () => {
  for (const end of ["\n", "\r\n", "\r\r\n", "\r"]) {
    assert.deepEqual(linesOf(`1 1500${end}${end}2 1501${end}`), ["1 1500", "", "2 1501"], JSON.stringify(end));
  }
  assert.deepEqual(linesOf("a"), ["a"]);
  assert.deepEqual(linesOf(""), []);
  assert.deepEqual(linesOf("\n"), [""]);
  assert.deepEqual(linesOf("a\r\r\rb"), ["a", "", "", "b"]);
  assert.deepEqual(linesOf("a\r\r\r\nb"), ["a", "", "b"]);
});

const sets: [string, number[]][] = [
  ["1", [1]],
  ["1-3", [1, 2, 3]],
  ["1;3-5", [1, 3, 4, 5]],
  ["3-5;1;4-6", [1, 3, 4, 5, 6]],
  [" 2 ; 4 - 5 ", [2, 4, 5]],
  ["5-3", []],
  ["-1", []],
  ["0", []],
  ["x;2;y-3;4-z", [2]],
  ["", []],
  [";;", []],
  ["1-9223372036854775807", [1, 2, 3, 4, 5, 6, 7, 8, 9]],
  ["1-9223372036854775808", []],
  ["1-99999999999999999999", []],
  ["1-2-3", []],
  ["0;1;2;3;4;5;6;7;8;9", [1, 2, 3, 4, 5, 6, 7, 8, 9]],
];
for (const [text, lines] of sets) {
  test(`the line set "${text}"`, () => {
    const set = new LineSet(text);
    assert.deepEqual([1, 2, 3, 4, 5, 6, 7, 8, 9].filter((line) => set.has(line)), lines);
    assert.ok(!new LineSet("1-3").has(0));
  });
}

test("blanks and tabs part columns in runs, other separators one by one", () => {
  assert.deepEqual(fieldsOf("  1 \t 1500  ", "space"), ["1", "1500"]);
  assert.deepEqual(fieldsOf("", "space"), []);
  assert.deepEqual(fieldsOf("1\t\t1500", "tab"), ["1", "", "1500"]);
  assert.deepEqual(fieldsOf("1;;2;", "semicolon"), ["1", "", "2", ""]);
  assert.deepEqual(fieldsOf("1:2", "colon"), ["1", "2"]);
  assert.deepEqual(fieldsOf(" 1, 2", "comma"), [" 1", " 2"]);
});

const numbers: [string, number | null][] = [
  ["1", 1], [" 1.5\t", 1.5], ["\v-1.5\f", -1.5], ["+1", 1], ["+-1", null], ["-+1", null], ["++1", null],
  ["+", null], ["-", null], ["", null], ["1e1", 10], ["1.5E+3", 1500], ["1e", null], [".5", 0.5],
  ["5.", 5], [".", null], ["1e-400", 0], ["1e400", null], ["nan", null], ["inf", null],
  ["Infinity", null], ["0x10", null], ["1,5", null], ["1500m", null], ["1 2", null],
  ["\u00a01", null], ["007", 7],
];
for (const [text, value] of numbers) {
  test(`the number in ${JSON.stringify(text)} is ${value}`, () => assert.equal(numberIn(text), value));
}

test("a column that is not there holds no number", () => {
  const row: string[] = ["1"];
  assert.equal(numberIn(row[1]), null);
  assert.equal(numberIn(row[-1]), null);
});

const format = (more: Partial<ColumnFormat> = {}): ColumnFormat => ({
  columns: { depth: 0, speed: 1, temperature: 2, salinity: 3, absorption: 4 },
  skip: "", depthFactor: 1, speedFactor: 1, separator: "comma", ...more,
});

test("a level has its factors applied, and 0 where a further column holds nothing", () => {
  const scaled = format({ depthFactor: 0.1, speedFactor: 2 });
  assert.deepEqual(levelOf(["100", "750.5", "-1.5", "35", "0.02"], scaled), {
    depth: 10, speed: 1501, temperature: -1.5, salinity: 35, absorption: f(0.02),
  });
  assert.deepEqual(levelOf(["200", "751", "", "x"], scaled), {
    depth: 20, speed: 1502, temperature: 0, salinity: 0, absorption: 0,
  });
});

test("a line without readable depth or speed is no level", () => {
  for (const line of ["1", "one,1500", "1,", "1,nan", "1,1e39", "1e39,1500", "1,1500m"]) {
    assert.equal(levelOf(fieldsOf(line, "comma"), format()), null, line);
  }
  assert.equal(levelOf(["1", "3.5e38"], format()), null, "more than a 32-bit float holds");
  assert.equal(levelOf(["1", "3.4e38"], format())?.speed, f(3.4e38));
  assert.equal(levelOf(["1", "1500"], format({ depthFactor: NaN })), null);
  const none = { depth: 0, speed: -1, temperature: -1, salinity: -1, absorption: -1 };
  assert.equal(levelOf(["1", "1500"], format({ columns: none })), null);
});

test("a further value too large for a 32-bit float is 0", () => {
  assert.equal(levelOf(["1", "1500", "1e39"], format())?.temperature, 0);
});

test("bytes become text by their mark, as UTF-8, or as Latin-1", () => {
  assert.equal(textOf(bytes(0x31, 0xc3, 0xb6)), "1ö");
  assert.equal(textOf(bytes(0x31, 0xf6)), "1ö");
  assert.equal(textOf(bytes(0xef, 0xbb, 0xbf, 0x31)), "1");
  assert.equal(textOf(bytes(0xff, 0xfe, 0x31, 0, 0x0a, 0)), "1\n");
  assert.equal(textOf(bytes(0xfe, 0xff, 0, 0x31)), "1");
  assert.equal(textOf(bytes()), "");
});

test("long runs of blanks inside a field cost no more than their length", () => {
  const field = `1${" ".repeat(2_000_000)}1`;
  const begun = performance.now();
  assert.equal(numberIn(field), null);
  assert.ok(performance.now() - begun < 1000);
});
