import assert from "node:assert/strict";
import { test } from "node:test";
import { ComparedCasts, MOST_REMEMBERED } from "../../src/compared-casts";
import { profileWith } from "./support";

const cast = (filename: string) => profileWith([0, 10], [1500, 1499], { filename });

/// A comparison that notes what it reads.
function comparison() {
  const read: string[] = [];
  const subject = new ComparedCasts((name) => {
    read.push(name);
    return Promise.resolve(name === "gone.asvp" ? { reason: "File does not exist." } : { profile: cast(name) });
  });
  return { subject, read };
}

test("casts of this session come first, the last one opened first; the rest of the folder follows", () => {
  const { subject } = comparison();
  const open = cast("c.asvp");
  for (const each of [cast("a.asvp"), cast("b.asvp"), open]) subject.opened(each);
  const candidates = subject.candidates(open, ["a.asvp", "b.asvp", "c.asvp", "d.asvp"]);
  assert.deepEqual(candidates.map(({ label, isRemembered }) => [label, isRemembered]), [
    ["b.asvp", true], ["a.asvp", true], ["d.asvp", false],
  ]);
});

test("a cast that was changed since can be compared with what was opened", async () => {
  const { subject, read } = comparison();
  const opened = cast("a.asvp");
  subject.opened(opened);
  assert.deepEqual(subject.candidates(opened, ["a.asvp"]), []);
  const [candidate] = subject.candidates(cast("a.asvp"), ["a.asvp"]);
  assert.equal(candidate?.label, "a.asvp, as it was opened");
  const look = candidate && (await subject.profileOf(candidate));
  assert.ok(look && "profile" in look && look.profile === opened);
  assert.deepEqual(read, [], "it is at hand");
});

test("a cast of the folder is read, or not with the reason", async () => {
  const { subject, read } = comparison();
  const candidates = subject.candidates(cast("a.asvp"), ["b.asvp", "gone.asvp"]);
  const looks = await Promise.all(candidates.map((each) => subject.profileOf(each)));
  assert.deepEqual(read, ["b.asvp", "gone.asvp"]);
  assert.ok(looks[0] && "profile" in looks[0] && looks[0].profile.filename === "b.asvp");
  assert.deepEqual(looks[1], { reason: "File does not exist." });
});

test("a file opened again is remembered as it is now, and only so many are", () => {
  const { subject } = comparison();
  for (let i = 0; i <= MOST_REMEMBERED; ++i) subject.opened(cast(`${i}.asvp`));
  subject.opened(cast("5.asvp"));
  const names = subject.candidates(cast("x.asvp"), []).map(({ name }) => name);
  assert.equal(names.length, MOST_REMEMBERED);
  assert.equal(names[0], "5.asvp");
  assert.ok(!names.includes("0.asvp"));
});
