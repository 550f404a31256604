import assert from "node:assert/strict";
import { test } from "node:test";
import { SILENT, checkFailedText, elsewhereFailedText, refusedText } from "../../src/engine-words";
import { openFailedText, refusedDropText } from "../../src/open-words";

const LOST = "The connection was lost before the answer came.";
const LATE = "No answer within 30 seconds.";

test("what failed says why and what to do next", () => {
  const begin = "a.asvp could not be checked.";
  assert.equal(
    checkFailedText("a.asvp", "Too few samples in profile."),
    `${begin} Too few samples in profile. At least two levels are needed, each with a depth and a sound speed: put levels in, or open the cast again.`,
  );
  assert.equal(checkFailedText("a.asvp", LATE), `${begin} ${LATE} Look whether the host is still running; then check again.`);
  assert.equal(checkFailedText("a.asvp", LOST), `${begin} ${LOST} Wait until the page is connected; then check again.`);
  assert.equal(checkFailedText("a.asvp", ""), `${begin} Open the cast again; then check again.`);
  assert.match(openFailedText("a.asvp", LATE), /Look whether the host is still running; then open it again\.$/);
  assert.match(openFailedText("a.asvp", LOST), /Wait until the page is connected; then open it again\.$/);
  assert.match(refusedText("Bad frame."), /^The host refused a request\. Bad frame\. Load the page again/);
  assert.match(SILENT, /load the page again/);
});

test("a failure elsewhere does not name a file that is not known", () => {
  const begin = "A file that another page or program asked for could not be opened.";
  assert.equal(elsewhereFailedText("Filter not found."), `${begin} No import filter fits it. Describe its columns in Import filters…`);
  for (const reason of ["Header not correct in file.", "Too few points in file.", LATE, ""]) {
    const text = elsewhereFailedText(reason);
    assert.ok(text.startsWith(`${begin} `), text);
    assert.ok(text.endsWith("Look there which file it was, and whether it is in the profile folder."), text);
  }
  assert.match(elsewhereFailedText(""), /The engine gives no reason\./);
});

test("files that were dropped beside a dialog are named", () => {
  assert.equal(refusedDropText([{ name: "a" }, { name: "b" }]), "a, b were not opened: a dialog is open. Close the dialog first, then drop the files again.");
});
