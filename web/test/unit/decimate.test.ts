import assert from "node:assert/strict";
import { test } from "node:test";
import { thinLine, thinMarks } from "../../src/decimate";

const COUNT = 20_000;
const x = Array.from({ length: COUNT }, (_, i) => 1500 + Math.sin(i * 12.9898) * 40);
const rowOf = (i: number) => Math.floor((i / COUNT) * 400);

test("a long line keeps at most four levels a row, in order, with both ends", () => {
  const kept = thinLine(x, rowOf);
  assert.ok(kept.length <= 4 * 400, `${kept.length} kept`);
  assert.equal(kept[0], 0);
  assert.equal(kept.at(-1), COUNT - 1);
  assert.ok(kept.every((index, i) => i === 0 || index > (kept[i - 1] ?? NaN)));
});

test("the lowest and highest value of every row survive", () => {
  const kept = new Set(thinLine(x, rowOf));
  for (let row = 0; row < 400; ++row) {
    const levels = x.map((_, i) => i).filter((i) => rowOf(i) === row);
    const values = levels.map((i) => x[i] ?? NaN);
    for (const edge of [Math.min(...values), Math.max(...values)]) {
      assert.ok(levels.some((i) => x[i] === edge && kept.has(i)), `row ${row}`);
    }
  }
});

test("a short line is kept whole", () => {
  assert.deepEqual(thinLine([5, 6, 7], (i) => i), [0, 1, 2]);
  assert.deepEqual(thinLine([], () => 0), []);
  assert.deepEqual(thinLine([5], () => 0), [0]);
});

test("a line that comes back to a row does not lose the way in between", () => {
  assert.deepEqual(thinLine([1, 2, 3, 4], (i) => [0, 1, 0, 1][i] ?? NaN), [0, 1, 2, 3]);
});

test("a level without a position still breaks the line", () => {
  assert.deepEqual(thinLine([1, NaN, 3, 4], () => 0), [0, 1, 2, 3]);
  assert.deepEqual(thinLine([1, 2, 3], (i) => (i === 1 ? NaN : 0)), [0, 1, 2]);
});

test("levels without a position in a row break the line once", () => {
  assert.deepEqual(thinLine([1, NaN, NaN, NaN, 5, NaN, 7], (i) => i), [0, 1, 4, 5, 6]);
  assert.equal(thinLine(new Array<number>(COUNT).fill(NaN), rowOf).length, 1);
});

test("marks on one pixel are drawn once", () => {
  const pixels: [number, number][] = [[1, 1], [1.2, 0.9], [2, 1], [1, 1]];
  assert.deepEqual(thinMarks([0, 1, 2, 3], (i) => pixels[i] ?? [0, 0]), [0, 2]);
});
