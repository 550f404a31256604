import assert from "node:assert/strict";
import { test } from "node:test";
import {
  LATITUDE,
  LONGITUDE,
  degreesText,
  headerDegrees,
  hemisphere,
  typedDegrees,
  type Axis,
} from "../../src/position";

const typed: [string, Axis, number | null][] = [
  ["59.5", LATITUDE, 59.5],
  ["-59.5", LATITUDE, -59.5],
  ["−0.5", LATITUDE, -0.5],
  ["59,5", LATITUDE, 59.5],
  ["59.5 S", LATITUDE, -59.5],
  ["s59.5", LATITUDE, -59.5],
  ["59 30 N", LATITUDE, 59.5],
  ["59° 30.000′ S", LATITUDE, -59.5],
  ["59°30'36\"N", LATITUDE, 59.51],
  ["90", LATITUDE, 90],
  ["90.0001", LATITUDE, null],
  ["90 01 N", LATITUDE, null],
  ["5930", LATITUDE, null],
  ["59 60", LATITUDE, null],
  ["59.5 30", LATITUDE, null],
  ["-59.5 S", LATITUDE, null],
  ["10 E", LATITUDE, null],
  ["N 59 N", LATITUDE, null],
  ["", LATITUDE, null],
  ["N", LATITUDE, null],
  ["NA", LATITUDE, null],
  ["fifty", LATITUDE, null],
  ["1e1", LATITUDE, null],
  ["1 2 3 4", LATITUDE, null],
  ["10 15.2 W", LONGITUDE, -(10 + 15.2 / 60)],
  ["180", LONGITUDE, 180],
  ["350.5", LONGITUDE, -9.5],
  ["361", LONGITUDE, null],
  ["59 N", LONGITUDE, null],
];
for (const [text, axis, value] of typed) {
  test(`"${text}" as ${axis.limit === 90 ? "latitude" : "longitude"} is ${value}`, () => {
    const found = typedDegrees(text, axis);
    if (value === null) assert.equal(found, null);
    else assert.ok(found !== null && Math.abs(found - value) < 1e-12, String(found));
  });
}

test("a header's own digits are kept where they will do", () => {
  assert.equal(headerDegrees("41.250000", LATITUDE), "41.250000");
  assert.equal(headerDegrees(-29.7333, LONGITUDE), "-29.7333");
  assert.equal(headerDegrees("+5.5", LATITUDE), "5.5");
  assert.equal(headerDegrees("5.95e1", LATITUDE), "59.5");
  assert.equal(headerDegrees("1e-7", LATITUDE), "0.0000001");
  assert.equal(headerDegrees("200", LONGITUDE), "-160");
  for (const text of ["", "NA", "n/a", "north", "Infinity", "95"]) {
    assert.equal(headerDegrees(text, LATITUDE), "", text);
  }
});

test("degrees as text have no exponent, no needless zeros and no negative zero", () => {
  assert.equal(degreesText(59.5), "59.5");
  assert.equal(degreesText(-100), "-100");
  assert.equal(degreesText(1e-12), "0");
  assert.equal(degreesText(-1e-12), "0");
  assert.equal(degreesText(10 + 15.2 / 60), "10.253333333");
});

test("the hemisphere is that of the sign", () => {
  assert.equal(hemisphere("-0.5", LATITUDE), "S");
  assert.equal(hemisphere("0", LATITUDE), "N");
  assert.equal(hemisphere("-0.5", LONGITUDE), "W");
  assert.equal(hemisphere("179.9", LONGITUDE), "E");
});
