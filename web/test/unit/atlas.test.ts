/// What the host says of the atlas.
import assert from "node:assert/strict";
import { test } from "node:test";
import { atlasIn, handedIn } from "../../src/atlas";

const FILE = { path: "/s.csv", there: true, size: 12, fault: "" };
const STATE = { use: true, salinity: FILE, temperature: { ...FILE, path: "", there: false, size: 0 }, folder: "/woa", stored: [] };

test("settings are taken when they are whole", () => {
  assert.deepEqual(atlasIn(200, JSON.stringify(STATE)), { state: STATE });
  for (const text of ["", "{", "null", "[]", "{}", JSON.stringify({ ...STATE, use: 1 }), JSON.stringify({ ...STATE, salinity: { path: "x" } }), JSON.stringify({ ...STATE, stored: null })]) {
    assert.deepEqual(atlasIn(200, text), { reason: "The host’s answer cannot be read. Load the page again." });
  }
});

test("a refusal has the host's own words, or some", () => {
  assert.deepEqual(atlasIn(503, "Another program.\n"), { reason: "Another program." });
  assert.deepEqual(atlasIn(500, " "), { reason: "The host refused it (500)." });
  assert.deepEqual(handedIn(0, ""), { reason: "The host cannot be reached. Look whether it is still running; then try again." });
  assert.deepEqual(handedIn(422, "x.csv does not look like one.\n"), { reason: "x.csv does not look like one." });
});

test("a file that was handed in has its path", () => {
  assert.deepEqual(handedIn(200, '{"path":"/woa/s.csv","size":7}'), { path: "/woa/s.csv", size: 7 });
  assert.deepEqual(handedIn(200, '{"path":7}'), { reason: "The host’s answer cannot be read. Load the page again." });
});
