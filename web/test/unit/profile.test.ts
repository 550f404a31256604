import assert from "node:assert/strict";
import { test } from "node:test";
import { sameContent } from "../../src/profile";
import { profileWith } from "./support";

test("two readings of a file are the same in levels and header, but for the time that a column file has not", () => {
  const read = (filename: string, time: string, speed = 1490, source = "probe") =>
    profileWith([0, 10], [1500, speed], { filename, header: { hsvp_filetime: time, hsvp_filesource: source } });
  assert.ok(sameContent(read("a.asvp", "1"), read("a.asvp", "1")));
  assert.ok(!sameContent(read("a.asvp", "1"), read("a.asvp", "2")));
  assert.ok(sameContent(read("a.col", "1"), read("a.col", "2")));
  assert.ok(!sameContent(read("a.col", "1"), read("a.col", "1", 1491)));
  assert.ok(!sameContent(read("a.col", "1"), read("a.col", "1", 1490, "other")));
});
