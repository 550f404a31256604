/// Fixing: what is sent, what comes of it, and its packets among those of thinning.
import assert from "node:assert/strict";
import { test } from "node:test";
import { Asker } from "../../src/asker";
import { Connection } from "../../src/connection";
import { fixFailedText, fixedLines, isAboutAtlas, isAboutLevels } from "../../src/fix-words";
import { Fixer, type FixedFile } from "../../src/fixer";
import { fixBody, fixedName, fixedProfile, lacksSurface, validLevels } from "../../src/fixing";
import { withSurface } from "../../src/level-edits";
import { Action } from "../../src/protocol";
import { Thinner } from "../../src/thinner";
import { comparisonPacket } from "./comparisons";
import { FakeSurroundings, profileWith } from "./support";

const CAST = profileWith([5, 50, 60, 70, 100, 400], [1501, 1499, 1300, 1498, 1490, 1480]);
const OCCASION = { time: "20261115123456", latitude: "59.5", longitude: "10.25" };
const ALL = [Action.thin, Action.open, Action.fix];

function page() {
  const around = new FakeSurroundings();
  const connection = new Connection("ws://127.0.0.1/ws", around);
  const asker = new Asker(connection, ALL, () => 0);
  const fixer = new Fixer(asker, connection);
  const thinner = new Thinner(asker, connection);
  connection.start();
  around.socket.onopen?.();
  const receive = async (packet: object) => {
    around.socket.receive(packet);
    await new Promise(setImmediate);
  };
  const late: FixedFile[] = [];
  return { around, fixer, thinner, receive, late, fix: () => fixer.fix(CAST, 0.1, OCCASION, (file) => late.push(file)) };
}

const FIXED = { whoami: "FixProfile", result: "SUCCESS", file: "cast_fixed.asvp", fullname: "/f/cast_fixed.asvp" };
const READ = { whoami: "SVP_OpenSVP", result: "SUCCESS", filename: "cast_fixed.asvp", svp_Depth: [5, 50, 12000], svp_Speed: [1501, 1499, 1600] };
const ONE = comparisonPacket(() => ["1.00", "2.00"]);

test("a request has the sixteen pieces, and a file the name of its kind", () => {
  assert.match(fixBody(CAST, OCCASION, 0.25), /^\[1501,1499,1300,1498,1490,1480;5,50,.*\*cast\.asvp\*SoundVelocity\*1\.0\*0\*20261115123456\*59\.5\*10\.25\*0\*0\*0\*NA\*NA\*6\*NA\*0\.25\]$/);
  assert.equal(fixBody(CAST, OCCASION, 0.25).split("*").filter(Boolean).length, 16);
  assert.equal(fixedName(CAST), "cast_fixed.asvp");
  assert.equal(fixedName({ filename: "a.b.vp2", header: { hsvp_filetype: "01" } }), "a.b_fixed.ssp");
});

test("the file is read back, and the comparison that came before it belongs to it", async () => {
  const { around, fixer, receive, fix } = page();
  const result = fix();
  assert.equal(around.socket.bodies("FixProfile").length, 1);
  // Another page's, and its comparison.
  await receive({ ...FIXED, file: "other_fixed.asvp" });
  await receive(comparisonPacket(() => ["7.00", "7.00"]));
  assert.deepEqual(around.socket.bodies("SVP_OpenSVP"), []);
  await receive(FIXED);
  assert.deepEqual(around.socket.bodies("SVP_OpenSVP"), ["[cast_fixed.asvp,asvp]"]);
  assert.ok(fixer.isReading("/f/cast_fixed.asvp") && !fixer.isReading("cast.asvp"));
  await receive(ONE);
  await receive({ ...FIXED, file: "other_fixed.asvp" });
  await receive(comparisonPacket(() => ["7.00", "7.00"]));
  await receive(READ);
  const outcome = await result;
  assert.ok("file" in outcome && "profile" in outcome.read && "comparison" in outcome.compared);
  assert.deepEqual(outcome.file, { name: "cast_fixed.asvp", path: "/f/cast_fixed.asvp" });
  assert.equal(outcome.read.profile.count, 3);
  assert.deepEqual(outcome.compared.comparison[0]?.[0], { first: 1, second: 2 });
  assert.ok(!fixer.isReading("cast_fixed.asvp"));
});

test("a comparison that failed, or did not come, is told; the fix stands", async () => {
  for (const [sent, reason] of [
    [{ whoami: "Thin", file: "", result: "FAILURE", reason: "Cannot calculate differences." }, "Cannot calculate differences."],
    [null, "The engine did not compare them."],
  ] as const) {
    const { receive, fix } = page();
    const result = fix();
    await receive(FIXED);
    if (sent) await receive(sent);
    await receive(READ);
    const outcome = await result;
    assert.ok("compared" in outcome);
    assert.deepEqual(outcome.compared, { reason });
  }
});

test("a comparison answers no thinning, whether it succeeded or not", async () => {
  const { thinner, receive } = page();
  const thinned = thinner.keep(CAST, 0.1, OCCASION, () => assert.fail());
  await receive(ONE);
  await receive({ whoami: "Thin", file: "", result: "FAILURE", reason: "Cannot calculate differences." });
  await receive({ whoami: "Thin", result: "SUCCESS", file: "cast_thinned.asvp", fullname: "/f/cast_thinned.asvp" });
  assert.deepEqual(await thinned, { name: "cast_thinned.asvp", path: "/f/cast_thinned.asvp" });
});

test("a failure is told; a file that was written all the same is known", async () => {
  const { late, receive, fix } = page();
  const result = fix();
  await receive({ whoami: "FixProfile", result: "FAILURE", reason: "Error cleaning profile." });
  assert.deepEqual(await result, { reason: "Error cleaning profile." });
  await receive(FIXED);
  assert.deepEqual(late, [{ name: "cast_fixed.asvp", path: "/f/cast_fixed.asvp" }]);
});

test("a file that cannot be read back is told beside its path", async () => {
  const { receive, fix } = page();
  const result = fix();
  await receive(FIXED);
  await receive(ONE);
  await receive({ whoami: "SVP_OpenSVP", result: "FAILURE", reason: "File not found." });
  const outcome = await result;
  assert.ok("read" in outcome);
  assert.deepEqual(outcome.read, { reason: "File not found." });
});

test("valid are speeds from 1400 to 1700 and depths that grow by 0.01", () => {
  const valid = (depths: number[], speeds: number[]) => validLevels(profileWith(depths, speeds));
  assert.deepEqual(valid([0, 1, 2, 3], [1400, 1399.99, 1700, 1700.01]), [0, 2]);
  assert.deepEqual(valid([-0.01, 0, 0.005, 0.02, 0.02], [1500, 1500, 1500, 1500, 1500]), [1, 3]);
  // 0.01 apart, as 32-bit floats have it.
  assert.deepEqual(valid([Math.fround(0), Math.fround(0.01)], [1500, 1500]), Math.fround(0.01) - 0.01 < 0 ? [0] : [0, 1]);
  assert.deepEqual(valid([5, 900, 6], [1500, 1500, 1500]), [0, 1]);
  assert.deepEqual(valid([NaN, 1], [1500, NaN]), []);
});

test("levels below the deepest valid one were joined, and so were those that had been joined", () => {
  const before = profileWith([5, 50, 400, 9000], [1500, 1499, 1480, 9999], { joined: new Set([0]) });
  const read = profileWith([5, 400, 500, 12000], [1500, 1480, 1483, 1600], { filename: "cast_fixed.asvp" });
  const { profile, facts } = fixedProfile(before, read);
  assert.deepEqual([...(profile.joined ?? [])].sort(), [0, 2, 3]);
  assert.deepEqual(facts, { invalid: 1, from: 400 });
  const lines = fixedLines(before, profile, facts, { name: "cast_fixed.asvp", path: "/f/cast_fixed.asvp" });
  assert.deepEqual(lines, [
    "1 of 4 levels was invalid and left out.", "Continued from 400.00 m to 12000.00 m.",
    "Thinned, 4 levels remain.", "Written as /f/cast_fixed.asvp.",
  ]);
  const whole = profileWith([0, 6000, 11999], [1500, 1550, 1600]);
  assert.deepEqual(fixedProfile(whole, whole), { profile: whole, facts: { invalid: 0, from: NaN } });
});

test("a level at the surface has the speed of the first, and is no measured one", () => {
  assert.ok(lacksSurface(CAST) && !lacksSurface(profileWith([0, 1], [1500, 1500])));
  const { lists, count, joined, header } = withSurface(CAST);
  assert.equal(count, 7);
  assert.deepEqual([lists.svp_Depth.slice(0, 2), lists.svp_Speed.slice(0, 2)], [[0, 5], [1501, 1501]]);
  assert.deepEqual([...(joined ?? [])], [0]);
  assert.equal(header.hsvp_filesamp, 7);
});

test("every refusal is told in words, with what to do next", () => {
  for (const [reason, words] of [
    ["Error generating WOA extension file.", /Look at the atlas settings/],
    ["Error cleaning profile.", /Fewer than 2 of its 6 levels are valid.*Check the cast/],
    ["Error cleaning. Too few samples left.", /Check the cast/],
    ["Error thinning profile.", /Look at the extension file/],
    ["Error writing file: /f/x.asvp", /\/f\/x\.asvp could not be written\. Look whether/],
    ["Error writing file.", /could not be continued downward/],
    ["Error saving file.", /The file could not be written/],
    ["Invalid thin factor: 0.005", /must lie from 0\.01 to 1\.0/],
    ["Unsupported SSP type S99", /Its type, 99, cannot be written/],
    ["Invalid svp.", /At least 6 levels are needed/],
    ["Invalid parameters.", /Load the page again/],
    ["Something new.", /Something new\./],
  ] as const) {
    assert.match(fixFailedText(CAST, reason), words);
    assert.ok(fixFailedText(CAST, reason).startsWith("cast.asvp was not fixed. "));
  }
  assert.ok(isAboutAtlas("Error generating WOA extension file.") && !isAboutAtlas("Error writing file."));
  assert.ok(isAboutLevels("Error cleaning profile.") && !isAboutLevels("Error writing file."));
});
