import assert from "node:assert/strict";
import { test } from "node:test";
import { invalidLevels } from "../../src/invalid";

const f = Math.fround;
const depths = [0, 10, 20, 30, 40].map(f);
const speeds = [1500, 1710.5, 1490.1, 1390, 1480].map(f);

/// Levels found for the pairs of these sample numbers, reported as the engine does.
function found(numbers: number[]): number[] | null {
  return invalidLevels(
    speeds,
    depths,
    numbers.map((n) => speeds[n]),
    numbers.map((n) => depths[n]),
  );
}

test("pairs are matched to their levels in order", () => {
  assert.deepEqual(found([]), []);
  assert.deepEqual(found([1, 3]), [1, 3]);
  assert.deepEqual(found([0, 1, 2, 3, 4]), [0, 1, 2, 3, 4]);
  assert.deepEqual(found([4]), [4]);
});

test("of equal samples the later are meant", () => {
  const d = [0, 10, 10, 10, 20];
  const s = [1500, 1490, 1490, 1490, 1480];
  assert.deepEqual(invalidLevels(s, d, [1490, 1490], [10, 10]), [2, 3]);
  assert.deepEqual(invalidLevels(s, d, [1490], [10]), [3]);
  assert.deepEqual(invalidLevels(s, d, [1490, 1490, 1490], [10, 10, 10]), [1, 2, 3]);
});

test("equal samples with another between them keep their order", () => {
  const d = [10, 5, 10, 5, 20];
  const s = [1490, 1480, 1490, 1480, 1470];
  assert.deepEqual(invalidLevels(s, d, [1480, 1490, 1480], [5, 10, 5]), [1, 2, 3]);
});

test("a reply that does not fit is not about this profile", () => {
  assert.equal(invalidLevels(speeds, depths, [1600], [10]), null, "no such level");
  assert.equal(found([3, 1]), null, "not in sample order");
  assert.equal(invalidLevels(speeds, depths, [1500], []), null, "lists of unequal length");
  assert.equal(invalidLevels(speeds, depths, undefined, undefined), null, "no lists");
  assert.equal(invalidLevels(speeds, depths, ["x"], [0]), null, "no numbers");
});

test("values are compared as the 32-bit floats that the engine had", () => {
  assert.deepEqual(invalidLevels([1500, 1490.1], [0, 0.1], [f(1490.1)], [f(0.1)]), [1]);
});

test("a level without a number went out as 0 and is found as 0", () => {
  assert.deepEqual(invalidLevels([1500, NaN], [0, 10], [0], [10]), [1]);
});
