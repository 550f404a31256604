import assert from "node:assert/strict";
import { test } from "node:test";
import { isBuiltIn, kindWords, suffixOf } from "../../src/file-kinds";
import { isAboutFilter, openFailedText, uploadFailedText, uploadedText } from "../../src/open-words";

test("a suffix is what stands behind the last full stop", () => {
  assert.equal(suffixOf("a.b.CSV"), ".CSV");
  assert.equal(suffixOf("FILE2.000"), ".000");
  assert.equal(suffixOf("none"), "");
  assert.equal(suffixOf("a.b/none"), "");
});

test("kinds are told in words, whatever the case of the suffix", () => {
  assert.equal(kindWords("a.VP2"), "Valeport instrument file (.vp2)");
  assert.equal(kindWords("a.csv"), "column file (.csv), read with an import filter");
  assert.ok(isBuiltIn("a.AMLX"));
  assert.ok(!isBuiltIn("a.csv"));
});

// Every reason that opening may give, and what the user is told to do about it.
const reasons: [string, string, RegExp][] = [
  ["a.xyz", "Filter not found.", /No import filter fits files ending in \.xyz\. Describe its columns in Import filters…/],
  ["none", "Filter not found.", /Its name has no suffix/],
  ["a.csv", "Too few points in file.", /Compare the two in Import filters…/],
  ["a.asvp", "Too few points in file.", /Look whether the file is whole/],
  ["a.ssp", "Too few points in file.", /not accepted as it stands; the alert that comes with this says why/],
  ["a.asvp", "Header not correct in file.", /first line is no \.asvp header/],
  ["a.ssp", "Header not correct in file.", /does not begin with a sound speed profile datagram/],
  ["a.ssp", "Unsupported SSP type S99", /content identifier 99, .* Have it written with another/],
  ["a.vp2", "Valeport vp2 decode problem.", /not laid out as a Valeport \.vp2 file.* have it written again/],
  ["a.aml", "AML aml format decode problem.", /not laid out as an AML file.* have it written again/],
  ["a.vp2", "Error saving file.", /its disk has room; then open it again/],
  ["a.vp2", "Memory allocation error", /Close other programs/],
  ["a.vp2", "File does not exist or cannot be opened for reading", /^a\.vp2 could not be opened\. File does not exist .* Read the list/],
  ["a.vp2", "Something new.", /^a\.vp2 could not be opened\. Something new\.$/],
];
for (const [name, reason, words] of reasons) {
  test(`"${reason}" of ${name} comes with what to do next`, () => assert.match(openFailedText(name, reason), words));
}

test("a filter may help against a missing one, and against too few levels of a column file", () => {
  assert.ok(isAboutFilter("a.csv", "Filter not found."));
  assert.ok(isAboutFilter("a.csv", "Too few points in file."));
  assert.ok(!isAboutFilter("a.vp2", "Too few points in file."));
  assert.ok(!isAboutFilter("a.csv", "Error saving file."));
});

const refused: [number, string, RegExp][] = [
  [413, "The body of the request is too long; at most 32 MiB are taken.", /too large: it has 40\.0 MB, and the host takes at most 32 MiB/],
  [413, "", /the host takes less at once/],
  [0, "", /40\.0 MB\) could not be handed to the host: the connection broke/],
  [500, "Filter not found.", /No import filter fits.*The file itself is stored in the profile folder\.$/],
  [500, "Error saving file.", /could not be stored\. Look whether/],
  [500, "File does not exist or cannot be opened for reading", /could not be stored/],
  [500, "", /The engine gives no reason/],
  [503, "Too many", /Close some pages/],
  [504, "", /did not answer in time/],
  [403, "Pages of other sites are not served.", /The host refused it \(403\)\. Pages of other sites/],
];
for (const [status, text, words] of refused) {
  test(`an upload answered ${status} "${text}" is told in words`, () => {
    assert.match(uploadFailedText("a.xyz", 40_000_000, { status, text }), words);
  });
}

test("a stored file is not said to be stored when it was not", () => {
  assert.doesNotMatch(uploadFailedText("a.vp2", 10, { status: 500, text: "Error saving file." }), /is stored/);
});

test("an opened upload says its name, levels, kind and what else there is", () => {
  assert.equal(
    uploadedText("a.vp2", 1, ["The older a.vp2 is kept."]),
    "a.vp2 opened: 1 level, Valeport instrument file (.vp2). It is stored in the profile folder. The older a.vp2 is kept.",
  );
});

test("a column file is said to carry no time of its own", () => {
  assert.match(uploadedText("a.csv", 2, []), /Its time is that of opening, since column files give none\.$/);
});
