import assert from "node:assert/strict";
import { test } from "node:test";
import {
  emptyFilter,
  faultsOf,
  filterFor,
  filterOf,
  filtersOf,
  refusedField,
  replacedBy,
  rowOf,
  sameFilter,
  saveFilterBody,
  type Filter,
  type FilterField,
} from "../../src/filters";

const ROW = "lab,.csv,0,2,3,4,-1,1;3-5,0.500,1.000,comma,conductivity";

function filter(more: Partial<Filter> = {}): Filter {
  const columns = { ...emptyFilter().columns, depth: "0", speed: "1" };
  return { ...emptyFilter(), name: "lab", postfix: ".csv", columns, ...more };
}

test("a row of the table is read field by field", () => {
  assert.deepEqual(filterOf(ROW), {
    name: "lab",
    postfix: ".csv",
    columns: { depth: "0", speed: "2", temperature: "3", salinity: "4", absorption: "" },
    skip: "1;3-5",
    depthFactor: "0.5",
    speedFactor: "1",
    separator: "comma",
    salinity: "conductivity",
  });
  assert.equal(filterOf("a,.b,0,1"), null);
  assert.equal(filterOf(`${ROW},`), null);
  assert.equal(filterOf(ROW.replace("comma", "TAB"))?.separator, "tab");
  assert.equal(filterOf(ROW.replace("1;3-5", "-1"))?.skip, "");
});

test("the table of a reply is its rows, and an empty one has none", () => {
  assert.deepEqual(filtersOf(`${ROW}|x,.y,0,1,-1,-1,-1,-1,1.000,1.000,space,undef`).map(({ name }) => name), ["lab", "x"]);
  assert.deepEqual(filtersOf(""), []);
});

test("a save request has its twelve values in their own order", () => {
  const row = filterOf("n,.p,10,11,12,13,14,1;2,2.000,3.000,tab,salinity");
  assert.ok(row);
  // Depth column, speed column, lines, speed factor, depth factor, name, postfix, separator,
  // third, fourth and fifth column, what the salinity column holds.
  assert.equal(saveFilterBody(row), "[10,11,1;2,3,2,n,.p,tab,12,13,14,salinity]");
});

test("what a filter does not use goes out as -1, never as nothing", () => {
  assert.equal(saveFilterBody(filter()), "[0,1,-1,1,1,lab,.csv,space,-1,-1,-1,undef]");
});

test("a row written down is read back the same", () => {
  for (const row of [ROW, "x,.y,0,1,-1,-1,-1,-1,1.000,0.001,space,undef"]) {
    const read = filterOf(row);
    assert.ok(read);
    const again = filterOf(rowOf(read));
    assert.ok(again && sameFilter(read, again), row);
  }
  assert.ok(sameFilter(filter({ depthFactor: "1.000" }), filter({ depthFactor: "1" })));
  assert.ok(!sameFilter(filter({ depthFactor: "1.001" }), filter()));
  assert.ok(!sameFilter(filter({ name: "LAB" }), filter()));
});

test("a filter without faults has none", () => {
  assert.deepEqual(faultsOf(filter()), {});
  const read = filterOf(ROW);
  assert.deepEqual(read && faultsOf(read), {});
});

const column = (columns: Partial<Filter["columns"]>) => ({ columns: { ...filter().columns, ...columns } });
const faults: [Partial<Filter>, FilterField, RegExp][] = [
  [{ name: "" }, "name", /Give the filter a name/],
  [{ name: "my lab" }, "name", /white space, commas or brackets/],
  [{ name: "a,b" }, "name", /commas/],
  [{ name: "a[b" }, "name", /brackets/],
  [{ name: "a]b" }, "name", /brackets/],
  [{ name: "a|b" }, "name", /upright stroke/],
  [{ name: "Tür" }, "name", /Plain letters/],
  [{ name: " AsVP " }, "name", /reserved/],
  [{ name: "valeport" }, "name", /reserved/],
  [{ name: "n".repeat(61) }, "name", /too long/],
  [{ postfix: "" }, "postfix", /such as \.csv/],
  [{ postfix: "csv" }, "postfix", /Begin with a full stop/],
  [{ postfix: "." }, "postfix", /Begin with a full stop/],
  [{ postfix: ".a b" }, "postfix", /white space/],
  [{ postfix: "./x" }, "postfix", /slash/],
  ...[".asvp", ".VALEPORT", ".ssp", ".vp2", ".aml", ".amlx", ".x.vp2"].map(
    (postfix): [Partial<Filter>, FilterField, RegExp] => [{ postfix }, "postfix", /built-in filter/],
  ),
  [{ skip: "1,2" }, "skip", /semicolons/],
  [{ skip: "one" }, "skip", /semicolons/],
  [{ skip: "1;;2" }, "skip", /semicolons/],
  [{ skip: "-1" }, "skip", /semicolons/],
  [{ skip: "1;5-3" }, "skip", /5-3 runs backwards/],
  [{ depthFactor: "" }, "depthFactor", /A number/],
  [{ depthFactor: "-1" }, "depthFactor", /A number/],
  [{ depthFactor: "0,5" }, "depthFactor", /A number/],
  [{ depthFactor: "1e3" }, "depthFactor", /A number/],
  [{ depthFactor: "0.3048" }, "depthFactor", /0\.3048 would become 0\.305/],
  [{ speedFactor: "0" }, "speedFactor", /every value 0/],
  [{ speedFactor: "0.0001" }, "speedFactor", /would become 0\.000/],
  [column({ depth: "" }), "depth", /State the column/],
  [column({ speed: "" }), "speed", /State the column/],
  [column({ speed: "0" }), "speed", /Column 0 is the depth already/],
  [column({ speed: "00" }), "speed", /is the depth already/],
  [column({ temperature: "1" }), "temperature", /is the speed already/],
  [column({ salinity: "x" }), "salinity", /counted from 0/],
  [column({ absorption: "-1" }), "absorption", /counted from 0/],
  [column({ absorption: "12345" }), "absorption", /no so many/],
];
for (const [wrong, field, words] of faults) {
  test(`${JSON.stringify(wrong)} is a fault of ${field}`, () => {
    const found = faultsOf(filter(wrong));
    assert.deepEqual(Object.keys(found), [field]);
    assert.match(found[field] ?? "", words);
  });
}

const sound: Partial<Filter>[] = [
  { name: "a.b-c_d" }, { postfix: ".000" }, { postfix: ".x.csv" }, { skip: "" }, { skip: "1" }, { skip: "1;3-5" },
  { depthFactor: "0.001" }, { depthFactor: "0.5000" }, { speedFactor: ".305" }, { speedFactor: "2." },
  column({ depth: "9999" }), column({ temperature: "" }), { name: "n".repeat(60) },
];
for (const right of sound) {
  test(`${JSON.stringify(right)} is no fault`, () => assert.deepEqual(faultsOf(filter(right)), {}));
}

test("each refusal of the engine belongs to its field", () => {
  const fields: [string, FilterField | null][] = [
    ["Depthcolumn cannot be negative.", "depth"],
    ["Speedcolumn cannot be negative.", "speed"],
    ["Speedcolumn and Depthcolumn cannot be the same.", "speed"],
    ["Speed multiplier cannot be negative.", "speedFactor"],
    ["Depth multiplier cannot be negative.", "depthFactor"],
    ["Name asvp is reserved.", "name"],
    ["Postfix .asvp is reserved.", "postfix"],
    ["Name valeport is reserved.", "name"],
    ["Postfix .valeport is reserved.", "postfix"],
    ["File not opened.", null],
    ["Cannot write to file.", null],
    ["Wrong input parameters.", null],
  ];
  for (const [reason, field] of fields) assert.equal(refusedField(reason), field, reason);
});

test("a filter replaces what has its name or its postfix, in any case", () => {
  const rows = [filter({ name: "A", postfix: ".x" }), filter({ name: "B", postfix: ".Y" }), filter({ name: "C", postfix: ".z" })];
  assert.deepEqual(replacedBy(filter({ name: "a", postfix: ".y" }), rows).map(({ name }) => name), ["A", "B"]);
});

test("the first row whose postfix ends a name reads the file", () => {
  const rows = [filter({ name: "A", postfix: ".csv" }), filter({ name: "B", postfix: ".x.csv" }), filter({ name: "none", postfix: "" })];
  assert.equal(filterFor("CAST.X.CSV", rows)?.name, "A");
  assert.equal(filterFor("cast.vel", rows), undefined);
});
