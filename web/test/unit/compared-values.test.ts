import assert from "node:assert/strict";
import { test } from "node:test";
import { columnsOf, plotQuantities } from "../../src/columns";
import { comparedValues, valueAtDepth } from "../../src/compared-values";
import { differenceText } from "../../src/format";
import { plottedOf } from "../../src/plot-panels";
import { profileOf, type Profile } from "../../src/profile";

test("a line has the values between its corners, and none beyond", () => {
  const [depths, values] = [[0, 10, 30], [1500, 1490, 1494]];
  for (const [depth, value] of [[0, 1500], [5, 1495], [10, 1490], [15, 1491], [30, 1494]] as const) {
    assert.equal(valueAtDepth(depths, values, depth), value);
  }
  for (const depth of [-0.001, 30.001, NaN]) assert.ok(Number.isNaN(valueAtDepth(depths, values, depth)));
  assert.ok(Number.isNaN(valueAtDepth([], [], 0)));
});

test("the way down comes before the way up, and gaps are no values", () => {
  assert.equal(valueAtDepth([0, 20, 0], [1500, 1480, 1460], 10), 1490);
  assert.equal(valueAtDepth([20, 0], [1480, 1500], 10), 1490);
  assert.equal(valueAtDepth([5, 5, 9], [1500, 1400, 1440], 5), 1500);
  assert.ok(Number.isNaN(valueAtDepth([0, 10, 20], [1500, NaN, 1480], 15)));
  assert.equal(valueAtDepth([0, 10, 20, 10], [1500, NaN, 1480, 1470], 10), 1470);
});

test("differences say which way they go, and no zero has a sign", () => {
  assert.equal(differenceText(2.305, 2), "+2.31");
  assert.equal(differenceText(-0.5, 1), "\u22120.5");
  for (const small of [0.004, -0.004, 0, -0]) assert.equal(differenceText(small, 2), "0.00");
});

test("what both plots have is compared, with the unit of its column", () => {
  const plotted = (lists: object) => {
    const profile: Profile = profileOf({ whoami: "", filename: "a", ...lists } as never);
    const columns = columnsOf(profile);
    return plottedOf(profile, columns, plotQuantities(columns));
  };
  const own = plotted({ svp_Depth: [0, 10], svp_Speed: [1500, 1492.5], svp_Temp: [12, 11], hsvp_filetype: "01" });
  const other = plotted({ svp_Depth: [0, 20], svp_Speed: [1510, 1480] });
  assert.deepEqual(comparedValues(own, other, 1).map(({ column, text }) => [column.key, text]), [
    ["svp_Speed", "1495.00 m/s (\u22122.50)"],
  ]);
  assert.deepEqual(comparedValues(other, own, 1), []);
});
