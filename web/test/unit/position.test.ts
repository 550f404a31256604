import assert from "node:assert/strict";
import { test } from "node:test";
import {
  LATITUDE,
  LONGITUDE,
  degreesText,
  headerDegrees,
  hemisphere,
  readDegrees,
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
  // As charts, other programs and log sheets have them.
  ["5930.5N", LATITUDE, 59 + 30.5 / 60],
  ["5930.5 S", LATITUDE, -(59 + 30.5 / 60)],
  ["5960N", LATITUDE, null],
  ["9959N", LATITUDE, null],
  ["930.5N", LATITUDE, null],
  ["5930.5", LATITUDE, null],
  ["01015.2E", LONGITUDE, 10 + 15.2 / 60],
  ["1015.2W", LONGITUDE, -(10 + 15.2 / 60)],
  ["355E", LONGITUDE, -5],
  ["59-30.5N", LATITUDE, 59 + 30.5 / 60],
  ["59-30-12 S", LATITUDE, -(59 + 30 / 60 + 12 / 3600)],
  ["59:30.5", LATITUDE, 59 + 30.5 / 60],
  ["-59:30.5", LATITUDE, -(59 + 30.5 / 60)],
  ["59d30m N", LATITUDE, 59.5],
  ["59d30.5m S", LATITUDE, -(59 + 30.5 / 60)],
  ["59d30m12s N", LATITUDE, 59 + 30 / 60 + 12 / 3600],
  ["59 deg 30 min 12 sec S", LATITUDE, -(59 + 30 / 60 + 12 / 3600)],
  ["59d30m12s", LATITUDE, null],
  ["10d15m12s", LONGITUDE, 10 + 15 / 60 + 12 / 3600],
  ["59°30′12S", LATITUDE, -(59 + 30 / 60 + 12 / 3600)],
  ["59.500000° N", LATITUDE, 59.5],
  ["+59.5 N", LATITUDE, null],
];
for (const [text, axis, value] of typed) {
  test(`"${text}" as ${axis.limit === 90 ? "latitude" : "longitude"} is ${value}`, () => {
    const found = readDegrees(text, axis);
    if (value === null) assert.ok("fault" in found && found.fault.endsWith("."), JSON.stringify(found));
    else assert.ok("degrees" in found && Math.abs(found.degrees - value) < 1e-12, JSON.stringify(found));
  });
}

const faults: [string, Axis, string][] = [
  ["-59.5 S", LATITUDE, "A sign and S together may contradict each other: write one of them, -59.5 or 59.5 S."],
  ["59 60 N", LATITUDE, "There are 60 minutes in it; they go up to 59.999. Write it as in 59 30.5 N or 59.508."],
  ["59 30 60 N", LATITUDE, "There are 60 seconds in it; they go up to 59.999. Write it as in 59 30.5 N or 59.508."],
  ["59 30.5 E", LATITUDE, "E is for a longitude; a latitude has N or S."],
  ["59 30.5 N", LONGITUDE, "N is for a latitude; a longitude has E or W."],
  ["90.1", LATITUDE, "This is no latitude up to 90° N or S."],
  ["5930.5", LATITUDE, "If this means 59° 30.5′, write 59 30.5 N or 59 30.5 S; degrees go up to 90."],
  ["59.5 30 N", LATITUDE, "Only the last number may have decimals. Write it as in 59 30.5 N or 59.508."],
  ["fifty", LONGITUDE, "This is no longitude. Write it as in 010 15.2 E or 10.253."],
  ["N 59 N", LATITUDE, "The hemisphere stands twice: write it once."],
  ["59d30m12s", LATITUDE, "Whether the last S means seconds or south is not clear: write 59 30 12 N or 59 30 12 S."],
];
for (const [text, axis, fault] of faults) {
  test(`"${text}" is refused with its own reason`, () => assert.deepEqual(readDegrees(text, axis), { fault }));
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
