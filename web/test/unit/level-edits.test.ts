import assert from "node:assert/strict";
import { test } from "node:test";
import { typedValue, untouchable } from "../../src/cell-values";
import {
  byDepth, downcast, levelsInAir, offerAt, offerFor, picked, reversed, surfaceFault, upcast, withLevel,
  withSurface, withValue, withoutLevels,
} from "../../src/level-edits";
import { downcastText, droppedText, upcastText } from "../../src/level-words";
import type { Profile } from "../../src/profile";
import { profileWith } from "./support";

const depths = ({ lists }: Profile) => [...lists.svp_Depth];
const speeds = ({ lists }: Profile) => [...lists.svp_Speed];
const joined = (profile: Profile) => [...(profile.joined ?? [])].sort((a, b) => a - b);
const four = (more = {}) => profileWith([5, 10, 20, 40], [1500, 1490, 1480, 1485], more);

test("a value is changed as the 32-bit float that the engine keeps, and nothing else is", () => {
  const before = four({ joined: new Set([3]) });
  const after = withValue(before, 1, "svp_Temp", 7.1);
  assert.deepEqual(after.lists.svp_Temp, [0, 7.099999904632568, 0, 0]);
  assert.deepEqual({ ...after, edited: undefined, lists: null }, { ...before, edited: undefined, lists: null });
  assert.deepEqual(before.lists.svp_Temp, [0, 0, 0, 0]);
  assert.deepEqual(after.edited, new Set(["svp_Temp"]));
  assert.equal(after.lists.svp_Speed, before.lists.svp_Speed, "lists that stay are shared");
});

test("the probe's list follows where it says the same, and stays where it has something of its own", () => {
  assert.deepEqual(withValue(four(), 1, "svp_Depth", 12).lists.svp_Depth_CTD, [5, 12, 20, 40]);
  const own = four({ lists: { svp_Depth_CTD: [5.1, 10, 20, 40] } });
  assert.deepEqual(withValue(own, 1, "svp_Depth", 12).lists.svp_Depth_CTD, [5.1, 10, 20, 40]);
});

test("levels are taken out and put in; joined ones keep their mark", () => {
  const before = four({ joined: new Set([0, 3]) });
  const less = withoutLevels(before, 1, 2);
  assert.deepEqual([depths(less), joined(less), less.count, less.header.hsvp_filesamp], [[5, 40], [0, 1], 2, 2]);
  const { values } = offerAt(before, 1);
  const more = withLevel(before, 1, values);
  assert.deepEqual([depths(more), joined(more), more.count], [[5, 7.5, 10, 20, 40], [0, 4], 5]);
  // Between joined levels nothing was measured.
  const both = four({ joined: new Set([2, 3]) });
  assert.deepEqual(joined(withLevel(both, 3, offerAt(both, 3).values)), [2, 3, 4]);
  assert.deepEqual(joined(withLevel(both, 4, offerAt(both, 4).values)), [2, 3, 4]);
  assert.deepEqual(joined(withLevel(both, 2, offerAt(both, 2).values)), [3, 4]);
});

test("values are offered halfway, by depth on the line between two levels, and beyond the ends", () => {
  const at = (index: number) => {
    const { values, isBetween } = offerAt(four(), index);
    return [values.svp_Depth, values.svp_Speed, isBetween];
  };
  assert.deepEqual(at(0), [2.5, 1500, false]);
  assert.deepEqual(at(2), [15, 1485, true]);
  assert.deepEqual(at(4), [60, 1485, false]);
  const by = (depth: number, profile = four()) => {
    const found = offerFor(profile, depth);
    return "level" in found ? found : [found.index, found.values.svp_Speed, found.isBetween];
  };
  // 12.5 m is a quarter of the way from 10 to 20 m.
  assert.deepEqual(by(12.5), [2, 1487.5, true]);
  assert.deepEqual(by(4.99), [0, 1500, false]);
  assert.deepEqual(by(40.01), [4, 1485, false]);
  assert.deepEqual(by(20), { level: 2 });
  const up = profileWith([40, 20, 10], [1485, 1480, 1490]);
  assert.deepEqual(by(15, up), [2, 1485, true]);
  assert.deepEqual(by(50, up), [0, 1485, false]);
  assert.deepEqual(by(1, up), [3, 1490, false]);
  // A gap in one of the values does not spread.
  const gap = four({ lists: { svp_Temp: [NaN, 4, 6, NaN] } });
  const temperature = (depth: number) => {
    const found = offerFor(gap, depth);
    return "values" in found ? found.values.svp_Temp : undefined;
  };
  assert.deepEqual([temperature(7), temperature(15), temperature(30)], [4, 5, 6]);
});

test("the way down ends and the way up begins at the deepest level", () => {
  const both = profileWith([1, 30, 30, 2], [1500, 1480, 1481, 1501]);
  assert.deepEqual(downcast(both), [0, 1]);
  assert.deepEqual(upcast(both), [3, 2]);
  assert.deepEqual(downcast(four()), [0, 1, 2, 3]);
  assert.deepEqual(upcast(four()), [3]);
  assert.match(downcastText(four(), 4), /no upcast/);
  assert.match(upcastText(four(), 1), /no upcast/);
  assert.match(downcastText(four(), 1), /no downcast/);
  assert.deepEqual(reversed(four()), [3, 2, 1, 0]);
  const order = byDepth(profileWith([20, NaN, 10, 20, -1], [1, 2, 3, 4, 5]));
  assert.deepEqual(order, [4, 2, 0, 3, 1]);
  const turned = picked(four({ joined: new Set([3]) }), [3, 2, 1, 0]);
  assert.deepEqual([depths(turned), speeds(turned), joined(turned)], [[40, 20, 10, 5], [1485, 1480, 1490, 1500], [0]]);
});

test("air is what lies not below the surface, or is slow in the uppermost metres, at both ends", () => {
  const air = (levels: [number, number][]) =>
    levelsInAir(profileWith(levels.map(([depth]) => depth), levels.map(([, speed]) => speed))).levels;
  assert.deepEqual(air([[0, 1500], [10, 1490]]), [], "the surface");
  assert.deepEqual(air([[-0.01, 1500], [10, 1490]]), [0]);
  assert.deepEqual(air([[0, 1399.99], [10, 1490]]), [0]);
  assert.deepEqual(air([[0, 1400], [10, 1490]]), []);
  assert.deepEqual(air([[1, 1399.99], [2, 1400], [10, 1490]]), [0]);
  assert.deepEqual(air([[9.99, 1000], [20, 1490]]), [0]);
  assert.deepEqual(air([[10, 1000], [20, 1490]]), [], "a fault of the probe, not air");
  assert.deepEqual(air([[0, 1500], [0, 340], [0, 1501], [2, 1500]]), [0, 1], "the surface is next to the water");
  assert.deepEqual(air([[5, 1500], [1, 300], [6, 1500]]), [], "in between");
  assert.deepEqual(air([[5, 1500], [30, 1490], [0.5, 340], [-1, 340]]), [2, 3]);
  assert.deepEqual(air([[-1, 340], [0, 341]]), [0, 1]);
  assert.deepEqual(air([[-1, 340], [0, 1500]]), [0, 1], "no level in water");
  const all = profileWith([-1, 0], [340, 341]);
  assert.match(droppedText(all, levelsInAir(all)), /All levels .* none was dropped/);
});

test("a level at the surface repeats the first one, where that is a level in water and the shallowest", () => {
  const after = withSurface(four({ lists: { svp_Temp: [9, 8, 7, 6] } }));
  assert.deepEqual([depths(after), speeds(after), joined(after)], [[0, 5, 10, 20, 40], [1500, 1500, 1490, 1480, 1485], [0]]);
  assert.deepEqual([after.lists.svp_Temp[0], after.lists.svp_Depth_CTD[0]], [9, 0]);
  const faultOf = (all: number[], first = 1500) => surfaceFault(profileWith(all, all.map((_, i) => (i ? 1490 : first))));
  assert.equal(faultOf([0.01, 10]), "");
  assert.equal(faultOf([0, 10]), "there");
  assert.equal(faultOf([-0.01, 10]), "above");
  assert.equal(faultOf([20, 10]), "order");
  assert.equal(faultOf([1, 10], 1399.99), "air");
  assert.equal(faultOf([1, 10], 1400), "");
});

test("typed values are numbers within what can be meant", () => {
  const typed = (key: "svp_Depth" | "svp_Speed" | "svp_Temp", text: string) => {
    const found = typedValue(four(), key, text);
    return "value" in found ? found.value : found.fault;
  };
  assert.equal(typed("svp_Depth", " 12,5 "), 12.5);
  assert.equal(typed("svp_Depth", "−0.5"), -0.5);
  assert.equal(typed("svp_Depth", "1e3"), "“1e3” is no number.");
  assert.equal(typed("svp_Depth", "15000"), 15_000);
  assert.match(String(typed("svp_Depth", "15000.1")), /must lie from −1\u202f000 to 15\u202f000 m\./);
  assert.equal(typed("svp_Speed", "200"), 200);
  assert.match(String(typed("svp_Speed", "199.9")), /must lie/);
  assert.match(String(typed("svp_Temp", "")), /needs a temperature/);
  const some = four({ joined: new Set([3]) });
  assert.match(untouchable(some, { key: "svp_Temp" }, 3), /^Level 4 was joined, not measured: it has no temperature/);
  assert.equal(untouchable(some, { key: "svp_Temp" }, 2), "");
  assert.equal(untouchable(some, { key: "svp_Speed" }, 3), "");
});
