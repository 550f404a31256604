/// The comparison that follows a fix.
import assert from "node:assert/strict";
import { test } from "node:test";
import { ANGLES, RANGES, anglesText, comparisonOf, differenceOf, isComparison, largestOf } from "../../src/comparison";
import { largestText } from "../../src/fix-words";
import type { Packet } from "../../src/protocol";
import { comparisonPacket } from "./comparisons";

const NONE = ["nan", "nan"] as const;

test("the nine angles and eleven ranges are found in their places", () => {
  const packet = comparisonPacket((range, angle) => [(range + angle).toFixed(2), (range - angle).toFixed(2)]);
  const comparison = comparisonOf(packet);
  assert.ok(comparison);
  assert.equal(comparison.length, 9);
  for (const [row, angle] of ANGLES.entries()) {
    assert.equal(comparison[row]?.length, 11);
    for (const [column, range] of RANGES.entries()) {
      assert.deepEqual(comparison[row]?.[column], { first: range + angle, second: range - angle });
    }
  }
});

test("what is not the whole of a comparison is none", () => {
  const whole = comparisonPacket(() => ["1.00", "2.00"]) as Packet & Record<string, unknown>;
  assert.ok(comparisonOf(whole));
  for (const broken of [
    { ...whole, result: "FAILURE" },
    { ...whole, err7000: undefined },
    { ...whole, err10: [] },
    { ...whole, err10: (whole["err10"] as unknown[]).slice(1) },
    { ...whole, err10: Array.from({ length: 9 }, () => ["1.00"]) },
    { ...whole, err10: Array.from({ length: 9 }, () => ["1.00", 2]) },
    { ...whole, err10: Array.from({ length: 9 }, () => ["1.00", "two"]) },
    { ...whole, err10: "1.00" },
  ]) assert.equal(comparisonOf(broken), null);
});

test("a comparison is told from the answers of thinning by its empty file name", () => {
  assert.ok(isComparison({ whoami: "Thin", file: "", result: "SUCCESS" }));
  assert.ok(isComparison({ whoami: "Thin", file: "", result: "FAILURE", reason: "Cannot calculate differences." }));
  assert.ok(!isComparison({ whoami: "Thin", result: "FAILURE", reason: "Thinning error" }));
  assert.ok(!isComparison({ whoami: "Thin", result: "SUCCESS", file: "x_thinned.asvp" }));
  assert.ok(!isComparison({ whoami: "FixProfile", file: "" }));
});

test("a difference has two decimals, and none where a ray does not come", () => {
  assert.equal(differenceOf({ first: 0.1, second: 0.3 }), 0.2);
  assert.equal(differenceOf({ first: 1763.27, second: 1763.02 }), -0.25);
  assert.ok(Number.isNaN(differenceOf({ first: NaN, second: 1 })));
  assert.ok(Number.isNaN(differenceOf({ first: 1, second: NaN })));
});

test("the largest difference is the largest either way, at the nearest range of equals", () => {
  const comparison = comparisonOf(comparisonPacket((range, angle) => {
    if (angle === 90) return NONE;
    if (range === 500 && angle === 30) return ["300.00", "299.25"];
    if (range === 1000 && angle === 20) return ["400.00", "400.75"];
    return ["10.00", "10.50"];
  }));
  assert.ok(comparison);
  assert.deepEqual(largestOf(comparison), { difference: -0.75, angle: 30, range: 500, pair: { first: 300, second: 299.25 } });
  assert.equal(
    largestText(comparison, "before", "after"),
    "The largest difference is 0.75 m, at 500 m of the ray of 30°: 300.00 m before, 299.25 m after.",
  );
});

test("no pair that is whole, and no difference, are said as such", () => {
  const none = comparisonOf(comparisonPacket((_, angle) => (angle < 45 ? ["nan", "7.00"] : NONE)));
  const equal = comparisonOf(comparisonPacket(() => ["7.00", "7.00"]));
  assert.ok(none && equal);
  assert.equal(largestOf(none), null);
  assert.equal(largestText(none, "a", "b"), "None of the rays comes to one of the ranges in both of them.");
  assert.equal(largestText(equal, "a", "b"), "Wherever rays come through both of them, their depths agree to 0.01 m.");
});

test("angles whose lines end together are named together", () => {
  for (const [rows, text] of [[[1], "80°"], [[1, 2], "80° 70°"], [[1, 2, 3], "80°–60°"], [[0, 1, 8], "90° 80° 10°"]] as const) {
    assert.equal(anglesText(rows), text);
  }
});
