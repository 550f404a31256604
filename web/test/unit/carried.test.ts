import assert from "node:assert/strict";
import { test } from "node:test";
import { PAIR_COLUMNS, absentText, joinedText, notCarried, otherKinds } from "../../src/carried";
import { kindFault } from "../../src/header-edit";
import { columnsSent } from "../../src/identifiers";
import { KeptEdits, editsLost, lostText } from "../../src/kept";
import { withValue } from "../../src/level-edits";
import { rangesText } from "../../src/level-ranges";
import { writable } from "../../src/output";
import { withEdited, type Profile } from "../../src/profile";
import { profileWith } from "./support";

const CTD = { svp_Temp: [9, 8, 8], svp_Sal: [34, 35, 35] };
/// Two measured levels with pressures (MPa), and one below that was joined.
const pressed = (type: string): Profile =>
  profileWith([10, 50, 500], [1490, 1488, 1498], {
    filename: "p.aml", header: { hsvp_filetype: type }, joined: new Set([2]),
    lists: { ...CTD, svp_Depth_CTD: [0.1008, 0.504, NaN] },
  });

test("levels are named in stretches, and many stretches are counted", () => {
  assert.equal(rangesText([3]), "level 4");
  assert.equal(rangesText([0, 1, 2, 8]), "levels 1 to 3 and 9");
  assert.equal(rangesText([0, 2, 4, 5]), "levels 1, 3 and 5 to 6");
  assert.equal(rangesText([0, 2, 4, 6, 8, 10, 12, 13]), "levels 1, 3, 5, 7, 9, 11 and 2 more");
});

test("values that are not there are told with their levels, in the columns that go out", () => {
  assert.equal(absentText(pressed("04"), columnsSent("04")), "Level 3 has no pressure.");
  assert.equal(absentText(pressed("04"), columnsSent("01")), "");
  const holes = profileWith([0, NaN, 20], [NaN, NaN, 1490]);
  assert.equal(absentText(holes, PAIR_COLUMNS), "Level 2 has no depth; levels 1 to 2 have no sound speed.");
});

test("other kinds are offered where the cast has all their values", () => {
  assert.deepEqual(otherKinds(pressed("04"), "04"), ["00", "01"]);
  assert.deepEqual(otherKinds(pressed("05"), "05"), ["00"], "conductivities are no salinities");
  assert.deepEqual(otherKinds(profileWith([0, 10], [1500, 1490]), "02"), ["00"]);
  assert.deepEqual(otherKinds(profileWith([0, NaN], [1500, 1490]), "04"), []);
  assert.deepEqual(otherKinds(pressed("01"), "00"), ["01"]);
});

test("a kind is not to be chosen for which a value is missing", () => {
  const all = pressed("01");
  assert.equal(kindFault(all, "04"), "Its rows carry what is not there: Level 3 has no pressure.");
  assert.equal(kindFault({ ...all, lists: { ...all.lists, svp_Depth_CTD: [0.1008, 0.504, 5.05] } }, "04"), "");
});

test("a change that the rows of a kind do not carry is told, and so are joined sound speeds", () => {
  const four = (more = {}) => profileWith([5, 10, 20, 40], [1504, 1503, 1500, 1495], more);
  const changed = withValue(four(), 0, "svp_Speed", 1501);
  assert.deepEqual(notCarried(changed, "00"), []);
  assert.deepEqual(notCarried(four(), "02"), []);
  assert.match(notCarried(changed, "02").join(), /changed the sound speed of this cast\. The rows of kind 02 do not carry that/);
  assert.match(notCarried(withValue(four(), 0, "svp_Depth", 6), "04").join(), /changed the depth/);
  const joined = pressed("02");
  assert.deepEqual(notCarried(joined, "01"), []);
  assert.deepEqual(notCarried(joined, "00"), []);
  for (const kind of ["02", "20", "04"]) {
    assert.deepEqual(notCarried(joined, kind), [
      `Level 3 was joined and has a sound speed of its own. The rows of kind ${kind} do not carry it: whoever reads ` +
        "them computes one anew from temperature 8.00 and salinity 35.00, which nobody measured there, and may come to another.",
    ]);
  }
});

test("what the rows carry for joined levels is told where the page shows none of it", () => {
  assert.equal(
    joinedText(pressed("01"), "01"),
    "Level 3 was joined, not measured: the rows carry temperature 8.00 and salinity 35.00 there, where the page shows “–”.",
  );
  assert.equal(joinedText(pressed("01"), "00"), "");
  const more = { ...pressed("01"), joined: new Set([0, 2]) };
  assert.match(joinedText(more, "01"), /^Levels 1 and 3 were joined, not measured: the rows carry temperature 8\.00 to 9\.00 and salinity 34\.00 to 35\.00/);
  const { joined: _joined, ...measured } = pressed("01");
  assert.equal(joinedText(measured, "01"), "");
});

test("an .asvp file does not keep temperatures, type, comment and a third decimal that were typed", () => {
  const cast = profileWith([0, 10], [1500, 1490], { lists: { svp_Temp: [9, 8] } });
  assert.deepEqual(editsLost(cast, "asvp"), [], "nothing was changed");
  assert.deepEqual(editsLost(withValue(cast, 1, "svp_Temp", 7), "asvp"), ["temperature"]);
  assert.deepEqual(editsLost(withValue(cast, 1, "svp_Speed", 1490.25), "asvp"), []);
  assert.deepEqual(editsLost(withValue(cast, 1, "svp_Speed", 1490.255), "asvp"), ["more than two decimals of sound speed"]);
  assert.deepEqual(editsLost(withValue(cast, 1, "svp_Depth", 10.001), "asvp"), ["more than two decimals of depth"]);
  const noted = withEdited({ ...cast, header: { hsvp_filetype: "01", hsvp_filecomment: "x" } }, ["hsvp_filetype", "hsvp_filecomment", "hsvp_filesource"]);
  assert.deepEqual(editsLost(noted, "asvp"), ["type", "comment"]);
  assert.equal(
    lostText(editsLost(noted, "asvp"), "asvp"),
    "Not kept of what you have changed: type, comment. A datagram file keeps what its kind carries.",
  );
  const plain = withEdited({ ...cast, header: { hsvp_filetype: "SoundVelocity" } }, ["hsvp_filetype"]);
  assert.deepEqual(editsLost(plain, "asvp"), [], "that is what it states");
});

test("a datagram file does not keep what its kind leaves out", () => {
  const cast = profileWith([0, 10], [1500, 1490], { header: { hsvp_filetype: "02" }, lists: { svp_Temp: [9, 8], svp_Sal: [35, 35] } });
  assert.deepEqual(editsLost(withValue(cast, 1, "svp_Speed", 1491), { kind: "02" }), ["sound speed"]);
  assert.deepEqual(editsLost(withValue(cast, 1, "svp_Temp", 7), { kind: "02" }), []);
  assert.deepEqual(editsLost(withValue(cast, 1, "svp_Temp", 7), { kind: "00" }), ["temperature"]);
  assert.deepEqual(editsLost({ ...cast, joined: new Set([1]) }, { kind: "02" }), ["sound speed of the joined levels"]);
  const headed = withEdited(cast, ["hsvp_filetype", "hsvp_filesource", "hsvp_filecomment", "hsvp_filelat"]);
  assert.deepEqual(editsLost(headed, { kind: "02" }), ["source"]);
  assert.deepEqual(editsLost(headed, { kind: "00" }), ["source"], "the kind is chosen when it is written");
  assert.equal(lostText([], "asvp"), "");
});

test("two files together may keep what neither keeps alone", () => {
  const [cast, other] = [profileWith([0], [1500]), profileWith([0], [1500])];
  const kept = new KeptEdits();
  assert.deepEqual(kept.wrote(cast, ["comment", "type"]), ["comment", "type"]);
  assert.deepEqual(kept.wrote(cast, ["source", "type"]), ["type"]);
  assert.deepEqual(kept.wrote(other, ["source"]), ["source"], "another state of the cast");
  assert.deepEqual(kept.wrote(cast, ["source"]), []);
});

test("a cast is thinned and fixed under its own kind where its rows can be written", async () => {
  const whole = pressed("01");
  assert.equal(await writable(whole), whole);
  const plain = pressed("SoundVelocity");
  assert.equal(await writable(plain), plain, "whose files have no pressures");
  const untyped = profileWith([0, 10], [1500, 1490], { header: {} });
  assert.equal(await writable(untyped), untyped);
  const holes = profileWith([0, NaN], [1500, 1490]);
  assert.equal(await writable(holes, PAIR_COLUMNS), holes, "a fix leaves such levels out");
});
