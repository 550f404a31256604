import assert from "node:assert/strict";
import { test } from "node:test";
import { Edits } from "../../src/edits";
import { withValue } from "../../src/level-edits";
import { extendFailedText, extendedText, notWholeText, previewLines, thinFailedText, thinnedText } from "../../src/extend-words";
import { isOwnFile } from "../../src/own-files";
import { finalName, isOwnName, nameFault } from "../../src/file-names";
import type { Profile } from "../../src/profile";
import { profileWith } from "./support";

const cast = (name = "a.asvp") => profileWith([0, 10], [1500, 1490], { filename: name });

interface Verdict {
  lines: string[];
}
const now = (profile: Profile, verdict: Verdict | null = null) => ({ profile, verdict });

test("a cast is unsaved from the first change to the save, and again after a step back", () => {
  const edits = new Edits<Verdict>();
  const [opened, longer] = [cast(), withValue(cast(), 0, "svp_Speed", 1501)];
  edits.opened(opened);
  assert.ok(!edits.isUnsaved(opened));
  assert.equal(edits.undoLabel, "");
  assert.equal(edits.undo(now(opened)), null);
  edits.changed("Undo extend", now(opened), longer);
  assert.ok(edits.isUnsaved(longer));
  assert.equal(edits.undoLabel, "Undo extend");
  edits.saved("a.asvp", longer);
  assert.ok(!edits.isUnsaved(longer));
  assert.equal(edits.inFile, longer);
  // The file does not hold what a step back brings, and holds what a step forth brings.
  const back = edits.undo(now(longer));
  assert.deepEqual(back?.profile, opened);
  assert.ok(back && edits.isUnsaved(back.profile));
  const forth = edits.redo(back);
  assert.deepEqual(forth?.profile, longer);
  assert.ok(forth && !edits.isUnsaved(forth.profile));
});

test("a cast that was saved under another name is still in its own file", () => {
  const edits = new Edits<Verdict>();
  const [opened, longer] = [cast(), withValue(cast(), 0, "svp_Speed", 1501)];
  edits.opened(opened);
  edits.changed("Undo extend", now(opened), longer);
  edits.saved("/folder/b.asvp", longer);
  assert.ok(!edits.isUnsaved(longer));
  assert.ok(!edits.isUnsaved(edits.undo(now(longer))?.profile ?? longer));
});

test("a file that was written without all of the edits saves nothing, and holds what was opened no more", () => {
  const edits = new Edits<Verdict>();
  const [opened, longer] = [cast(), withValue(cast(), 0, "svp_Speed", 1501)];
  edits.opened(opened);
  edits.changed("Undo change", now(opened), longer);
  edits.overwritten("/folder/other.asvp");
  assert.ok(edits.isUnsaved(longer));
  assert.ok(!edits.isUnsaved(edits.undo(now(longer))?.profile ?? longer), "its own file is as it was");
  edits.overwritten("/folder/a.asvp");
  assert.ok(edits.isUnsaved(opened));
});

test("a step back to what was opened or saved brings the very profile, and the one before is known without a step", () => {
  const edits = new Edits<Verdict>();
  const first = cast();
  const second = withValue(first, 0, "svp_Speed", 1501);
  const third = withValue(second, 1, "svp_Depth", 20);
  edits.opened(first);
  assert.equal(edits.earlier(first), null);
  edits.changed("Undo change", now(first), second, true);
  edits.saved("b.asvp", second);
  edits.changed("Undo change", now(second), third, true);
  assert.equal(edits.earlier(third), second);
  assert.equal(edits.undoLabel, "Undo change");
  const back = edits.undo(now(third));
  assert.equal(back?.profile, second);
  assert.equal(edits.undo(now(second))?.profile, first);
  assert.equal(edits.earlier(first), null);
  assert.equal(edits.redo(now(first))?.profile, second);
  // What no file holds is made anew, with the same levels.
  edits.saved("b.asvp", edits.redo(now(second))?.profile ?? first);
  const made = edits.undo(now(third))?.profile;
  assert.deepEqual({ ...made, edited: null }, { ...second, edited: null });
});

test("steps go back and forth one by one with the verdict of each state, and end with another cast", () => {
  const edits = new Edits<Verdict>();
  const [first, second, third] = [cast(), withValue(cast(), 0, "svp_Speed", 1501), withValue(cast(), 1, "svp_Depth", 20)];
  const [one, three] = [{ lines: ["1"] }, { lines: ["3"] }];
  edits.opened(first);
  edits.changed("Undo extend", now(first, one), second);
  edits.changed("Undo change", now(second), third, true);
  assert.equal(edits.undoLabel, "Undo change");
  assert.equal(edits.redoLabel, "");
  const a = edits.undo(now(third, three));
  assert.deepEqual({ ...a?.profile, edited: null }, { ...second, edited: null });
  assert.deepEqual([a?.verdict, a?.place], [null, 0]);
  assert.equal(edits.redoLabel, "Redo change");
  assert.ok(a);
  const b = edits.undo(a);
  assert.deepEqual(b?.profile, first);
  assert.deepEqual([b?.verdict, b?.place], [one, "whole"]);
  assert.ok(b);
  assert.equal(edits.undo(b), null);
  const c = edits.redo(b);
  assert.ok(c);
  const d = edits.redo(c);
  assert.deepEqual(d?.profile, third);
  assert.equal(d?.verdict, three, "the check of the last state comes back with it");
  assert.ok(d);
  assert.equal(edits.redo(d), null);
  // A change of one's own ends the way forth.
  const e = edits.undo(d);
  assert.ok(e);
  edits.changed("Undo insert", e, cast());
  assert.equal(edits.redoLabel, "");
  edits.opened(cast("b.asvp"));
  assert.equal(edits.undoLabel, "");
});

test("the page's own files are known by their names, and no cast gets such a name", () => {
  for (const name of [
    "extentionfile.asvp", "EXTENTIONFILE.ASVP", "/folder/extentionfile.asvp", "c:\\x\\extentionfile.asvp",
    "extentionfile_bck_20261115_123456.asvp", "extentionfile_bck_20261115_123456_2.asvp", "svp-preview_thinned.asvp",
  ]) assert.ok(isOwnFile(name), name);
  for (const name of [
    "extentionfile.ssp", "my extentionfile.asvp", "extentionfile_bck_x.asvp", "svp-preview.asvp", "svp-preview_thinned.ssp",
    "a_thinned.asvp", "",
  ]) assert.ok(!isOwnFile(name), name);
  for (const name of ["extentionfile", "extentionfile.asvp", "svp-preview", "svp-preview.asvp", "svp-preview_thinned"]) {
    assert.ok(isOwnName(name), name);
    assert.match(nameFault(name), /The page uses this name itself/);
    assert.equal(finalName(name, ".asvp").replace(/\.asvp$/, ""), name.replace(/\.asvp$/, ""));
  }
  assert.equal(nameFault("extension"), "");
});

const extended = (joined: number, surface: boolean) =>
  ({ profile: cast(), joined, from: 500, to: 12000, surface });

test("an extension is told by its levels, their depths and the surface", () => {
  const way = { kind: "default" } as const;
  assert.equal(
    extendedText(cast(), way, extended(8, false)),
    "a.asvp extended with the default rows: 8 levels joined, from 500.00 m to 12000.00 m. No surface level was added. It is not saved yet.",
  );
  assert.match(extendedText(cast(), way, extended(1, true)), /1 level joined, at 12000\.00 m\. A level at 0 m was put in front/);
  assert.equal(
    extendedText(cast(), way, extended(0, false)),
    "a.asvp: no level was joined, since none lies below 10.00 m. No surface level was added.",
  );
  assert.match(
    extendedText(cast(), { kind: "water", water: { temperature: 4.5, salinity: 35, latitude: -12 } }, extended(8, false)),
    /extended with 4\.5 °C, salinity 35 and latitude −12°: /,
  );
});

test("each failure of an extension says what to do", () => {
  const text = (reason: string, kind: "default" | "water" | "file" = "default") => extendFailedText(cast(), kind, reason);
  assert.match(text("Depths are not sorted.\nMore.\n"), /^a\.asvp was not extended\. Depths are not sorted\. More\. Check the cast/);
  assert.match(text("Invalid svp."), /At least 3 levels are needed; this cast has 2\./);
  assert.match(text("Invalid svp.", "water"), /At least 4 levels are needed/);
  assert.match(text("Invalid svp.", "file"), /does not take its levels/);
  assert.match(text("Failed to extend svp.", "water"), /comes within 1\.0 m\/s of the deepest level/);
  assert.match(text("Error in file.", "file"), /at least 2 rows/);
  assert.match(text("Cannot open extention svp.", "file"), /cannot be read from the profile folder/);
  assert.match(text("Error saving file.", "file"), /disk has room/);
  assert.match(text("Invalid input parameters."), /Load the page again/);
  assert.match(text("There is no connection to the host."), /Wait until the page is connected; then extend again/);
  assert.match(text("Something else."), /^a\.asvp was not extended\. Something else\. Try to extend it once more; if that fails too, look into the host’s log\.$/);
});

test("thinning is told by what remains, where it is, and the limit of the survey system", () => {
  const file = { name: "a_thinned.asvp", path: "/f/a_thinned.asvp" };
  assert.equal(thinnedText(cast(), file, 2, []), "a.asvp thinned from 2 levels to 2 levels, written as /f/a_thinned.asvp.");
  assert.doesNotMatch(thinnedText(cast(), file, 1000, []), /survey system/);
  assert.match(thinnedText(cast(), file, 1001, ["Remark."]), /asvp\. Remark\. The survey system takes at most 1\u202f000 levels; this profile has 1\u202f001\./);
  assert.deepEqual(previewLines(cast(), 2, { speed: 0.12345, depth: 10 }), ["2 of 2 levels remain.", "Largest difference 0.123 m/s, at 10.00 m."]);
  assert.equal(previewLines(cast(), 2, { speed: 0, depth: 0 })[1], "No level is off the thinned line by 0.001 m/s or more.");
});

test("a cast that is not whole is told so before anything is sent", () => {
  const text = (depths: number[]) => notWholeText(profileWith(depths, depths), 12_000);
  assert.equal(text([0, 12000]), "");
  assert.match(text([0, 11999.9]), /must be extended first, .* goes from 0\.00 m to 11999\.90 m\.$/);
  assert.match(text([0.01, 12000]), /extended first/);
  assert.match(text([0, 12000.5]), /extended first/);
  assert.match(text([0, NaN]), /extended first/);
});

test("each failure of thinning says what to do", () => {
  const text = (reason: string) => thinFailedText(cast(), reason);
  assert.match(text("Depths not sorted."), /Check the cast/);
  assert.match(text("Wrong svp input."), /At least 6 levels are needed.* has 2\./);
  assert.match(text("Unsupported SSP type S15"), /Its type, 15, cannot be written/);
  assert.match(text("Profile not extended."), /Extend it first/);
  assert.match(text("Input parameter error"), /from 0\.01 to 1\.0/);
  assert.match(text("Memory allocation error"), /short of memory/);
  assert.match(text("Error writing file."), /disk has room/);
  assert.match(text("Thinning error"), /No profile came of it/);
  assert.equal(text("No samples extracted."), "a.asvp was not thinned. No samples extracted. Try to thin it once more; if that fails too, look into the host’s log.");
});

test("what a file no longer holds is in no file; it is work only where the user did it, or the file is gone", () => {
  const opened = cast();
  const longer = withValue(opened, 0, "svp_Speed", 1501);
  const edits = new Edits<Verdict>();
  edits.opened(opened);
  assert.equal(edits.openedFrom("a.asvp"), opened);
  edits.lost("a.asvp", "changed");
  assert.ok(edits.isUnsaved(opened));
  assert.ok(!edits.isWork(opened));
  assert.equal(edits.openedFrom("a.asvp"), null);
  edits.changed("Undo change", now(opened), longer);
  assert.ok(edits.isWork(longer));
  edits.saved("a.asvp", longer);
  assert.ok(!edits.isWork(longer));
  assert.equal(edits.openedFrom("a.asvp"), null, "it was written here");
  edits.lost("a.asvp", "changed");
  assert.ok(edits.isUnsaved(longer) && edits.isWork(longer), "another page has written over it");

  edits.opened(opened);
  edits.lost("a.asvp", "gone");
  assert.ok(edits.isWork(opened), "the page alone has it");
  edits.opened(opened, "b.asvp");
  assert.equal(edits.inFileName, "b.asvp");
  assert.equal(edits.openedFrom("b.asvp"), opened);
});
