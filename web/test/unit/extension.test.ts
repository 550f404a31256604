import assert from "node:assert/strict";
import { test } from "node:test";
import { columnsOf, holdsPressures, shownValue, shownValues } from "../../src/columns";
import { extendDefaultBody, extendFileBody, extendWaterBody, extended } from "../../src/extension";
import { measuredAtDeepest } from "../../src/extend-dialog";
import { sameProfile } from "../../src/profile";
import { profileWith } from "./support";

const answer = (svpY: number[], svpX: number[]) => ({ whoami: "ExtendDefault", result: "SUCCESS", svpX, svpY });
const f = Math.fround;

test("requests carry speeds and depths as the page holds them", () => {
  const profile = profileWith([0, f(0.1), 12.25], [1500.1, f(1490.7), 1488]);
  assert.equal(extendDefaultBody(profile), "[1500.1,1490.7,1488;0,0.1,12.25]");
  const water = { temperature: 4.5, salinity: 35, latitude: -12.5 };
  assert.equal(extendWaterBody(profile, water), "[1500.1,1490.7,1488*0,0.1,12.25*4.5*35*-12.5]");
  assert.equal(extendFileBody(profile, "extentionfile.asvp"), "[1500.1,1490.7,1488*0,0.1,12.25*extentionfile.asvp]");
});

test("what is no number goes out as 0, as it does elsewhere, and comes back as itself", () => {
  const profile = profileWith([0, 10, NaN], [1500, NaN, 1490]);
  assert.equal(extendDefaultBody(profile), "[1500,0,1490;0,10,0]");
  const result = extended(profile, answer([0, 10, 0, 500], [1500, 0, 1490, 1498]));
  assert.deepEqual(result?.profile.lists.svp_Depth, [0, 10, NaN, 500]);
  assert.deepEqual(result?.profile.lists.svp_Speed, [1500, NaN, 1490, 1498]);
});

test("levels are joined below, and those that were there keep the page's own values", () => {
  // No 32-bit floats, as values that were typed.
  const before = profileWith([0, 10.1, 20.3], [1500.123456, 1490.7, 1488]);
  const result = extended(before, answer([0, f(10.1), f(20.3), 500, 12000], [f(1500.123456), f(1490.7), 1488, 1498, f(1602.8)]));
  assert.ok(result);
  const { profile, ...facts } = result;
  assert.deepEqual(facts, { joined: 2, from: 500, to: 12000, surface: false });
  assert.deepEqual(profile.lists.svp_Depth, [0, 10.1, 20.3, 500, 12000]);
  assert.deepEqual(profile.lists.svp_Speed, [1500.123456, 1490.7, 1488, 1498, f(1602.8)]);
  assert.deepEqual(profile.lists.svp_Depth_CTD, profile.lists.svp_Depth);
  assert.deepEqual(profile.lists.svp_Speed_CTD, profile.lists.svp_Speed);
  assert.deepEqual([...(profile.joined ?? [])], [3, 4]);
  assert.equal(profile.count, 5);
  assert.equal(profile.header.hsvp_filesamp, 5);
  assert.equal(before.count, 3, "what was there is untouched");
  assert.ok(!sameProfile(before, profile));
});

test("a level in front is told from the others and marked", () => {
  const before = profileWith([5, 100], [1501, 1490]);
  const result = extended(before, answer([0, 5, 100, 500], [1501, 1501, 1490, 1498]));
  assert.equal(result?.surface, true);
  assert.equal(result?.joined, 1);
  assert.deepEqual([...(result?.profile.joined ?? [])], [0, 3]);
  assert.deepEqual(result?.profile.lists.svp_Depth, [0, 5, 100, 500]);
  // A first level above the surface gets one as well.
  const high = extended(profileWith([-0.25, 100], [1501, 1490]), answer([0, -0.25, 100, 500], [1501, 1501, 1490, 1498]));
  assert.deepEqual(high?.profile.lists.svp_Depth, [0, -0.25, 100, 500]);
});

test("an answer to another profile is none to this one", () => {
  const before = profileWith([0, 10], [1500, 1490]);
  for (const other of [
    answer([0, 11, 500], [1500, 1490, 1498]),
    answer([0, 10, 500], [1500, 1491, 1498]),
    answer([0], [1500]),
    answer([1, 0, 10], [1500, 1500, 1490]),
    answer([0, 10, 500], [1500, 1490]),
    answer([], []),
    { whoami: "ExtendDefault" },
    { whoami: "ExtendDefault", svpX: ["1500", "1490"], svpY: ["0", "10"] },
  ]) assert.equal(extended(before, other), null, JSON.stringify(other));
});

test("an answer that adds nothing joins no level", () => {
  const before = profileWith([0, 12000], [1500, 1602.8]);
  const result = extended(before, answer([0, 12000], [1500, f(1602.8)]));
  assert.equal(result?.joined, 0);
  assert.equal(result?.surface, false);
});

test("a second extension keeps the marks of the first", () => {
  const first = extended(profileWith([5, 100], [1501, 1490]), answer([0, 5, 100, 500], [1501, 1501, 1490, 1498]));
  assert.ok(first);
  const second = extended(first.profile, answer([0, 5, 100, 500, 700], [1501, 1501, 1490, 1498, 1486]));
  assert.deepEqual([...(second?.profile.joined ?? [])], [0, 3, 4]);
});

test("joined levels repeat the last measured value, and show none", () => {
  const before = profileWith([5, 100], [1501, 1490], {
    lists: { svp_Temp: [12, 8], svp_Sal: [34, 35], svp_AbsCoef: [1, 2], svp_Depth_CTD: [5.5, 100.5], svp_Speed_CTD: [1501.5, 1490.5] },
  });
  const profile = extended(before, answer([0, 5, 100, 500], [1501, 1501, 1490, 1498]))?.profile;
  assert.ok(profile);
  assert.deepEqual(profile.lists.svp_Temp, [12, 12, 8, 8]);
  assert.deepEqual(profile.lists.svp_Sal, [34, 34, 35, 35]);
  assert.deepEqual(profile.lists.svp_AbsCoef, [1, 1, 2, 2]);
  assert.deepEqual(profile.lists.svp_Depth_CTD, [0, 5.5, 100.5, 500]);
  assert.deepEqual(profile.lists.svp_Speed_CTD, [1501, 1501.5, 1490.5, 1498]);
  assert.deepEqual(shownValues(profile, "svp_Temp"), [NaN, 12, 8, NaN]);
  assert.deepEqual(shownValues(profile, "svp_Speed"), profile.lists.svp_Speed);
  assert.ok(Number.isNaN(shownValue(profile, "svp_Sal", 3)));
  assert.equal(shownValue(profile, "svp_Sal", 2), 35);
  assert.equal(shownValue(profile, "svp_Depth", 3), 500);
});

test("among pressures a joined level has none, and they stay pressures", () => {
  const before = profileWith([5, 100], [1501, 1490], { lists: { svp_Depth_CTD: [0.0504, 1.009] } });
  assert.ok(holdsPressures(before));
  const profile = extended(before, answer([0, 5, 100, 500], [1501, 1501, 1490, 1498]))?.profile;
  assert.ok(profile && holdsPressures(profile));
  assert.deepEqual(profile.lists.svp_Depth_CTD, [NaN, 0.0504, 1.009, NaN]);
  assert.equal(columnsOf(profile).find(({ key }) => key === "svp_Depth_CTD")?.label, "Pressure");
});

test("temperature and salinity are proposed from the deepest level that has them", () => {
  const empty = { temperature: "", salinity: "" };
  assert.deepEqual(measuredAtDeepest(profileWith([0, 10], [1500, 1490])), empty);
  const lists = { svp_Temp: [12, f(8.1), 0], svp_Sal: [34, 35.25, 0] };
  const measured = profileWith([0, 10, 20], [1500, 1490, 1488], { lists });
  assert.deepEqual(measuredAtDeepest(measured), { temperature: "8.10", salinity: "35.25" });
  const cold = profileWith([0, 10], [1500, 1490], { lists: { svp_Temp: [1, 0], svp_Sal: [34, 34.5] } });
  assert.deepEqual(measuredAtDeepest(cold), { temperature: "0.00", salinity: "34.50" });
  // Joined levels repeat, they have not measured.
  const joined = { ...profileWith([0, 10], [1500, 1490], { lists: { svp_Temp: [3, 9], svp_Sal: [34, 9] } }), joined: new Set([1]) };
  assert.deepEqual(measuredAtDeepest(joined), { temperature: "3.00", salinity: "34.00" });
  const conductivity = profileWith([0, 10], [1500, 1490], { header: { hsvp_filetype: "03" }, lists: { svp_Temp: [3, 2], svp_Sal: [40, 41] } });
  assert.deepEqual(measuredAtDeepest(conductivity), { temperature: "2.00", salinity: "" });
});
