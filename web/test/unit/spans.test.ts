import assert from "node:assert/strict";
import { test } from "node:test";
import { atLeast, extent, movedTo, roundValues, scaled, spanOf } from "../../src/spans";

test("a span holds all wanted values with room around them", () => {
  assert.deepEqual(spanOf([[1500, NaN], [1600]], 0.1, 1), [1490, 1610]);
  assert.deepEqual(spanOf([[5, 5]], 0.1, 1), [4.5, 5.5], "a single value has room as well");
  assert.deepEqual(spanOf([[0, 10, 900]], 0, 1, (i) => i < 2), [0, 10]);
  assert.deepEqual(spanOf([], 0, 1), [0, 1]);
  assert.equal(extent([[NaN], []]), null);
  assert.deepEqual(extent([[3, 4], [NaN, -1]]), [-1, 4]);
});

test("a span follows a value that lies outside, and no other", () => {
  const span = [0, 10] as const;
  assert.equal(movedTo(span, 0), span);
  assert.equal(movedTo(span, 10), span);
  assert.equal(movedTo(span, NaN), span);
  assert.deepEqual(movedTo(span, 11), [6, 16]);
});

test("zooming stays within its limits and above the least length", () => {
  assert.deepEqual(scaled([0, 100], 0.5, 80, [0, 100]), [40, 90]);
  assert.deepEqual(scaled([40, 90], 4, NaN, [0, 100]), [0, 100]);
  assert.deepEqual(atLeast([5, 5.5], 1), [4.75, 5.75]);
  const span = [5, 6] as const;
  assert.equal(atLeast(span, 1), span);
});

test("ticks stand at round values within the span", () => {
  const cases: [readonly [number, number], number, number[]][] = [
    [[0, 100], 5, [0, 20, 40, 60, 80, 100]],
    [[1481.3, 1516.2], 3, [1490, 1500, 1510]],
    [[1481.3, 1516.2], 2, [1500]],
    [[-0.35, 0.35], 7, [-0.3, -0.2, -0.1, 0, 0.1, 0.2, 0.3]],
    [[0, 0.05], 5, [0, 0.01, 0.02, 0.03, 0.04, 0.05]],
    [[5, 5], 5, []],
    [[NaN, 5], 5, []],
  ];
  for (const [span, count, values] of cases) assert.deepEqual(roundValues(span, count).map((each) => each + 0), values);
});
