import assert from "node:assert/strict";
import { test } from "node:test";
import {
  ABSENT,
  decimalsFor,
  formatCount,
  formatHeaderTime,
  formatLatitude,
  formatLongitude,
  formatMoment,
  formatSize,
  formatValue, shownName
} from "../../src/format";

const f = Math.fround;

test("values show no noise of widened floats, and at least two decimals", () => {
  assert.equal(formatValue(f(0.1)), "0.10");
  assert.equal(formatValue(f(1487.32)), "1487.32");
  assert.equal(formatValue(f(-0.5)), "-0.50");
  assert.equal(formatValue(12000), "12000.00");
  assert.equal(formatValue(f(1500.125), 3), "1500.125");
  assert.equal(formatValue(NaN), ABSENT);
  assert.equal(formatValue(undefined), ABSENT);
});

test("a column gets as many decimals as its finest value needs", () => {
  assert.equal(decimalsFor([1, 2, 3].map(f)), 2);
  assert.equal(decimalsFor([0.1, 0.25, 10].map(f)), 2);
  assert.equal(decimalsFor([0.1, 0.125, 10].map(f)), 3);
  assert.equal(decimalsFor([1487.3217].map(f)), 4);
  assert.equal(decimalsFor([1e-9].map(f)), 6, "more than six decimals help nobody");
  assert.equal(decimalsFor([NaN]), 2);
  assert.equal(decimalsFor([]), 2);
});

const times: [name: string, value: string | number | undefined, shown: string][] = [
  ["digits with seconds", "20261115123456", "2026-11-15 12:34:56 UTC"],
  ["digits without seconds", "202611151234", "2026-11-15 12:34:00 UTC"],
  ["digits as a number", 20261115123456, "2026-11-15 12:34:56 UTC"],
  ["milliseconds", Date.UTC(2026, 10, 15, 12, 34, 56), "2026-11-15 12:34:56 UTC"],
  ["milliseconds as text", String(Date.UTC(2026, 10, 15)), "2026-11-15 00:00:00 UTC"],
  ["twelve digits that are no date are milliseconds", "946684800000", "2000-01-01 00:00:00 UTC"],
  ["leap day", "20240229000000", "2024-02-29 00:00:00 UTC"],
  ["a day that does not exist stays as it is", "20260230000000", "20260230000000"],
  ["zero is not 1970", 0, ""],
  ["zero as text", "0", ""],
  ["NA", "NA", ""],
  ["missing", undefined, ""],
  ["other text", "yesterday", "yesterday"],
];
for (const [name, value, shown] of times) {
  test(`header time: ${name}`, () => assert.equal(formatHeaderTime(value), shown));
}

const positions: [name: string, shown: string, expected: string][] = [
  ["north", formatLatitude("59.5"), "59° 30.000′ N"],
  ["south of the equator by half a degree", formatLatitude(-0.5), "00° 30.000′ S"],
  ["minutes carry into degrees", formatLatitude(59.99999999), "60° 00.000′ N"],
  ["east", formatLongitude(10.25), "010° 15.000′ E"],
  ["west", formatLongitude("-70.1"), "070° 06.000′ W"],
  ["above 180 is west", formatLongitude(200), "160° 00.000′ W"],
  ["180 stays", formatLongitude(180), "180° 00.000′ E"],
  ["latitude out of range stays as it is", formatLatitude(91), "91"],
  ["missing is not the equator", formatLatitude(undefined), ""],
  ["empty is not the equator", formatLatitude(""), ""],
  ["NA", formatLongitude("NA"), ""],
  ["text stays as it is", formatLatitude("59 30.0 N"), "59 30.0 N"],
  ["zero is a place", formatLatitude(0), "00° 00.000′ N"],
  ["decimal degrees", formatLatitude(-59.5083333333, "decimal"), "59.508333° S"],
  ["decimal degrees that mean west", formatLongitude("200", "decimal"), "160.000000° W"],
  ["decimal degrees out of range", formatLongitude("361", "decimal"), "361"],
  ["no decimal degrees", formatLatitude("NA", "decimal"), ""],
];
for (const [name, shown, expected] of positions) {
  test(`position: ${name}`, () => assert.equal(shown, expected));
}

test("counts, sizes and moments", () => {
  assert.equal(formatCount(999), "999");
  assert.equal(formatCount(20000), "20\u202f000");
  assert.equal(formatSize(980), "980 B");
  assert.equal(formatSize(12345), "12 kB");
  assert.equal(formatSize(999_499), "999 kB");
  assert.equal(formatSize(3_400_000), "3.4 MB");
  assert.equal(formatMoment(new Date(Date.UTC(2026, 0, 2, 3, 4, 5))), "2026-01-02 03:04:05 UTC");
});

test("decimals are found of widened floats and of doubles alike", () => {
  const floats = [1500.25, 1499.123, 0.1, 12000].map(Math.fround);
  assert.equal(decimalsFor(floats), 3);
  assert.equal(decimalsFor([...floats, Math.fround(3.4567)]), 4);
  assert.equal(decimalsFor([Math.fround(0.1), Math.fround(-0.25)]), 2);
  assert.equal(decimalsFor([0.1, 0.123]), 3, "a double that is no widened float");
});

test("two decimals are seen in any value that a 32-bit float can tell from its neighbours", () => {
  for (const value of [0.1, 0.01, 1500.25, -0.07, 12000.26, 99999.99]) {
    assert.equal(decimalsFor([Math.fround(value)]), 2, String(value));
  }
  assert.equal(decimalsFor([Math.fround(0.125)]), 3);
  assert.equal(decimalsFor([Math.fround(0.001)]), 3);
  assert.equal(decimalsFor([1500.001]), 3);
});

test("a name is shown with a mark for what is not seen or turns others round", () => {
  assert.equal(shownName("cast\u202egpj.asvp"), "cast\ufffdgpj.asvp");
  assert.equal(shownName("a\u200bb\tc\u2028d"), "a\ufffdb\ufffdc\ufffdd");
  assert.equal(shownName("Ærø 測 ’24.vp2"), "Ærø 測 ’24.vp2");
});
