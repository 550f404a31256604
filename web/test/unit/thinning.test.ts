import assert from "node:assert/strict";
import { test } from "node:test";
import { keptLevels, largestDifference, previewBody, thinBody, thinKind, thinned, thinnedName } from "../../src/thinning";
import { profileWith } from "./support";

const occasion = { time: "20261115123456", latitude: "59.5", longitude: "10.25" };

test("a request has 16 pieces, and none of them is empty", () => {
  const profile = profileWith([0, 6000, 12000], [1500, 1510.5, 1600], { header: {} });
  const pieces = thinBody(profile, "cast.asvp", "SoundVelocity", occasion, 0.1).slice(1, -1).split("*");
  assert.deepEqual(pieces, [
    "1500,1510.5,1600;0,6000,12000;0,6000,12000;1500,1510.5,1600;0,0,0;0,0,0;0,0,0",
    "cast.asvp", "SoundVelocity", "0", "0", "20261115123456", "59.5", "10.25", "0", "0", "0", "NA", "NA", "3", "NA", "0.1",
  ]);
  const preview = previewBody(profile, "svp-preview.asvp", 1).slice(1, -1).split("*");
  assert.deepEqual(preview.slice(1), ["svp-preview.asvp", "SoundVelocity", "0", "0", "0", "0", "0", "0", "0", "0", "NA", "NA", "3", "NA", "1"]);
});

test("a profile is thinned under its own kind and named after its file", () => {
  const kind = (hsvp_filetype?: string) => thinKind({ header: hsvp_filetype === undefined ? {} : { hsvp_filetype } });
  assert.equal(kind("SoundVelocity"), "SoundVelocity");
  assert.equal(kind("01"), "01");
  assert.equal(kind("3"), "03");
  assert.equal(kind("Speed"), "SoundVelocity", "a kind that cannot be written");
  assert.equal(kind("15"), "SoundVelocity");
  assert.equal(kind(), "SoundVelocity");
  assert.equal(thinnedName("cast.asvp", "SoundVelocity"), "cast_thinned.asvp");
  assert.equal(thinnedName("north/a.b.vp2", "01"), "a.b_thinned.ssp");
  assert.equal(thinnedName("odd*name.asvp", "SoundVelocity"), "odd_name_thinned.asvp");
});

test("rows with two decimals are found among the levels, in order", () => {
  const depths = [0, 10.004, 10.0151, 20.1234, 12000];
  const speeds = [1500, 1499.125, 1499.1251, 1490.98765, 1600];
  const profile = profileWith(depths, speeds);
  const rows = (...pairs: [number, number][]) =>
    profileWith(pairs.map(([depth]) => Math.fround(depth)), pairs.map(([, speed]) => Math.fround(speed)));
  assert.deepEqual(keptLevels(profile, rows([0, 1500], [10, 1499.12], [12000, 1600])), [0, 1, 4]);
  // A tie may have been rounded either way.
  assert.deepEqual(keptLevels(profile, rows([0, 1500], [10, 1499.13], [20.12, 1490.99], [12000, 1600])), [0, 1, 3, 4]);
  assert.deepEqual(keptLevels(profile, rows([0, 1500], [10.02, 1499.13], [12000, 1600])), [0, 2, 4]);
});

test("of levels that read the same the first ones are taken, each once", () => {
  const profile = profileWith([0, 5.001, 5.004, 5.0049, 12000], [1500, 1490, 1490, 1490, 1600]);
  const rows = profileWith([0, 5, 5, 12000], [1500, 1490, 1490, 1600]);
  assert.deepEqual(keptLevels(profile, rows), [0, 1, 2, 4]);
});

test("rows of another profile are not found", () => {
  const profile = profileWith([0, 10, 12000], [1500, 1490, 1600]);
  assert.equal(keptLevels(profile, profileWith([0, 11, 12000], [1500, 1490, 1600])), null);
  assert.equal(keptLevels(profile, profileWith([0, 10, 12000], [1500, 1490.02, 1600])), null);
  assert.equal(keptLevels(profile, profileWith([10, 12000], [1490, 1600])), null, "the first level is always kept");
  assert.equal(keptLevels(profile, profileWith([0, 10], [1500, 1490])), null, "and so is the last");
  assert.equal(keptLevels(profile, profileWith([], [])), null);
});

test("the largest difference is that to the line at a level's own depth", () => {
  const profile = profileWith([0, 10, 20, 40, 12000], [1500, 1501, 1499, 1505, 1600]);
  // Line from (0, 1500) to (40, 1505): 1501.25 at 10, 1502.5 at 20.
  assert.deepEqual(largestDifference(profile, [0, 3, 4]), { speed: 3.5, depth: 20 });
  assert.deepEqual(largestDifference(profile, [0, 2, 3, 4]), { speed: 1.5, depth: 10 });
  assert.deepEqual(largestDifference(profile, [0, 1, 2, 3, 4]), { speed: 0, depth: 0 });
});

test("a thinned profile has all columns of its levels, and says where and when", () => {
  const before = {
    ...profileWith([0, 10, 20, 12000], [1500, 1490, 1489, 1600], { lists: { svp_Temp: [9, 8, 7, 7], svp_Sal: [35, 34, 33, 33] } }),
    joined: new Set([0, 3]),
  };
  const after = thinned(before, [0, 2, 3], "cast_thinned.asvp", occasion);
  assert.equal(after.filename, "cast_thinned.asvp");
  assert.deepEqual(after.lists.svp_Depth, [0, 20, 12000]);
  assert.deepEqual(after.lists.svp_Temp, [9, 7, 7]);
  assert.deepEqual([...(after.joined ?? [])], [0, 2]);
  assert.equal(after.count, 3);
  assert.deepEqual(after.header, {
    hsvp_filetype: "SoundVelocity", hsvp_fileversion: "1.0", hsvp_filetime: "20261115123456",
    hsvp_filelat: "59.5", hsvp_filelon: "10.25", hsvp_filesamp: 3,
  });
  const { joined: _, ...measured } = before;
  assert.equal(thinned(measured, [0, 3], "x", occasion).joined, undefined);
});
