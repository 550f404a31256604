import assert from "node:assert/strict";
import { test } from "node:test";
import { extensionFacts, extensionRows, rowsBelow } from "../../src/extension-file";
import { noNumberText, rangeFault, typedNumber } from "../../src/typed-number";

const read = (text: string) => extensionRows(Buffer.from(text, "latin1")).map(({ depth, speed }) => [depth, speed]);
const facts = (depths: number[], deepest = 100) =>
  extensionFacts(depths.map((depth) => ({ depth, speed: 1500 })), deepest);

test("the first line is skipped, and further lines of two words are rows", () => {
  assert.deepEqual(read("500 1498\r\n700.0 1486\r\n  1000\t 1483.5  \n\n1500 1487 1\n4000\n12000 1603"), [
    [700, 1486], [1000, 1483.5], [12000, 1603],
  ]);
  assert.deepEqual(read(""), []);
  assert.deepEqual(read("// comment 700 1486"), []);
  assert.deepEqual(read("a\r700 1486\r800 1487"), [], "a lone CR ends no line");
  assert.deepEqual(read("c\n700\u00a01486"), [[700, 1486]], "a hard blank parts words");
});

test("words become 32-bit floats, and 0 where they are no numbers", () => {
  assert.deepEqual(read("c\n0.1 1.5e3\n+5 .5\n5. -1\nx 1500\n1,5 nan\n0x10 1e39\ninf 1e400"), [
    [Math.fround(0.1), 1500], [5, 0.5], [5, -1], [0, 1500], [0, 0], [0, 0], [0, 0],
  ]);
});

test("fewer than two rows, or a row not below the first, keep a file from being used", () => {
  assert.match(facts([]).fault, /it has no row of a depth and a sound speed; at least 2/);
  assert.match(facts([500]).fault, /it has one row of/);
  assert.match(facts([500, 500]).fault, /no deeper than the first one, at 500\.00 m/);
  assert.match(facts([500, 12000, 400]).fault, /no deeper than the first one/);
  assert.equal(facts([500, 12000]).fault, "");
});

test("a row that would be read as 0 keeps a file from being used", () => {
  const fault = (text: string) => extensionFacts(extensionRows(Buffer.from(text, "latin1")), 100).fault;
  assert.match(fault("c\n500,5 1480\n12000 1600"), /^The row “500,5 1480” has a word that is no number/);
  assert.match(fault("c\n500 1e39\n12000 1600"), /would be read as 0/);
  assert.equal(fault("c\n500 1480\n12000 1600"), "");
  assert.equal(fault("c\n500 1480 x y\n600 1480\n12000 1600"), "", "lines of other words are no rows");
});

test("a file that steps back, ends early or adds nothing is remarked on, and may be used", () => {
  assert.deepEqual(facts([500, 12000]).remarks, []);
  const back = facts([500, 3000, 2000, 12000]);
  assert.equal(back.fault, "");
  assert.deepEqual(back.remarks.map((text) => text.slice(0, 52)), ["Its depths step back, from 3000.00 m to 2000.00 m: t"]);
  assert.match(facts([500, 600, 600, 12000]).remarks[0] ?? "", /step back, from 600\.00 m to 600\.00 m/);
  assert.match(facts([500, 11990]).remarks.join(), /^It does not go below 11990 m, its deepest row lies at 11990\.00 m: /);
  assert.deepEqual(facts([500, Math.fround(11990.001)]).remarks, []);
  assert.match(facts([500, 12000], 12000).remarks.join(), /None of its rows lies below .* 12000\.00 m: nothing will be joined/);
  assert.deepEqual(facts([500, 12000], 11999).remarks, []);
});

test("rows are joined from the first deeper one on, whatever follows", () => {
  const rows = [500, 3000, 2000, 12000].map((depth) => ({ depth, speed: 1500 }));
  const depths = (below: number) => rowsBelow(rows, below).map(({ depth }) => depth);
  assert.deepEqual(depths(100), [500, 3000, 2000, 12000]);
  assert.deepEqual(depths(500), [3000, 2000, 12000]);
  assert.deepEqual(depths(2500), [3000, 2000, 12000]);
  assert.deepEqual(depths(12000), []);
  // Compared as the engine does, as 32-bit floats.
  assert.deepEqual(rowsBelow([{ depth: Math.fround(100.1), speed: 1 }], 100.1), []);
});

test("numbers are typed with a point or a comma", () => {
  assert.equal(typedNumber(" 4,5 "), 4.5);
  assert.equal(typedNumber("-0.5"), -0.5);
  assert.equal(typedNumber("−0.5"), -0.5);
  assert.equal(typedNumber("+.5"), 0.5);
  // A comma with three digits behind it may stand between thousands.
  for (const text of ["1,200", "12,500", "-999,000", "+1,000", "−1,200", " 1,200 "]) assert.equal(typedNumber(text), null, text);
  for (const [text, value] of [["0,500", 0.5], ["1,20", 1.2], ["1,2000", 1.2], ["1234,500", 1234.5], [",500", 0.5], ["1.200", 1.2]] as const) {
    assert.equal(typedNumber(text), value, text);
  }
  assert.equal(noNumberText("1,200"), "“1,200” can mean 1.200 or 1200: write 1.200 for the first, 1200 for the second.");
  assert.equal(noNumberText(" x "), "“x” is no number.");
  assert.equal(rangeFault("1,200", "The depth", 0, 5000, "m"), noNumberText("1,200"));
  for (const text of ["", "a", "1.2.3", "1,2,3", "1,200.5", "1e3", "0x1", "--1", "NaN"]) assert.equal(typedNumber(text), null, text);
});

test("both bounds of a range are in it, and what is beyond is told", () => {
  const fault = (text: string) => rangeFault(text, "The salinity", 0, 500, "");
  assert.equal(fault("0"), "");
  assert.equal(fault("500"), "");
  assert.equal(fault("500.1"), "The salinity must lie from 0 to 500.");
  assert.equal(fault("-0.1"), "The salinity must lie from 0 to 500.");
  assert.equal(fault("x"), "The salinity is no number.");
  assert.equal(fault(" "), "State the salinity, 0 to 500.");
  assert.equal(rangeFault("91", "The latitude", -90, 90, "degrees"), "The latitude must lie from −90 to 90 degrees.");
  assert.equal(rangeFault("-90", "The latitude", -90, 90, "degrees"), "");
});
