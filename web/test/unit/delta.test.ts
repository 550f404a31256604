import assert from "node:assert/strict";
import { test } from "node:test";
import { serialize } from "node:v8";
import { deltaOf, redone, undone } from "../../src/delta";
import { picked, reversed, withLevel, withSurface, withValue, withoutLevels, offerAt } from "../../src/level-edits";
import type { Profile } from "../../src/profile";
import { profileWith } from "./support";

const cast = (): Profile => profileWith([0, 10, 20, 40, 80], [1500, 1490, 1480, 1485, 1490], {
  lists: { svp_Temp: [9, NaN, 7, -0, 0] },
  joined: new Set([0, 4]),
});

function assertBothWays(before: Profile, after: Profile, what: string): void {
  const delta = deltaOf(before, after);
  assert.deepEqual(undone(after, delta), before, `${what}, undone`);
  assert.deepEqual(redone(before, delta), after, `${what}, redone`);
}

test("each edit is taken back and done again to the last bit, marks and header with it", () => {
  const before = cast();
  assertBothWays(before, withValue(before, 2, "svp_Temp", 7.5), "a value");
  assertBothWays(before, withValue(before, 1, "svp_Temp", 7.5), "a value where there was none");
  assertBothWays(before, withValue(before, 4, "svp_Temp", -0), "a sign");
  assertBothWays(before, withoutLevels(before, 0, 0), "the first level out");
  assertBothWays(before, withoutLevels(before, 3, 4), "the last levels out");
  assertBothWays(before, withLevel(before, 2, offerAt(before, 2).values), "a level in");
  assertBothWays(withoutLevels(before, 0, 0), withSurface(withoutLevels(before, 0, 0)), "the surface");
  assertBothWays(before, picked(before, reversed(before)), "reversed");
  assertBothWays(before, picked(before, [4, 1]), "others, in another order");
  assertBothWays(before, { ...before, filename: "b.asvp", header: { hsvp_filecomment: "b" } }, "the frame");
  assertBothWays(before, before, "nothing");
  const { joined: _joined, ...measured } = before;
  assertBothWays(before, measured, "marks alone");
  assertBothWays(profileWith([1, 1, 1], [5, 5, 5]), profileWith([1, 1], [5, 5]), "one of equal levels");
});

test("a cast that was turned round keeps no values for the step back", () => {
  const delta = deltaOf(cast(), picked(cast(), reversed(cast())));
  assert.ok(delta.mirrored);
  assert.deepEqual([delta.before.lists, delta.after.lists], [{}, {}]);
});

test("a thousand edits of 20 000 levels are a history of less than 2 MB", (t) => {
  const count = 20_000;
  const list = (scale: number) => Array.from({ length: count }, (_, i) => Math.fround(1 + i * scale));
  let profile = profileWith(list(0.5), list(0.01), { lists: { svp_Temp: list(0.001) } });
  const history = [];
  const start = performance.now();
  for (let i = 0; i < 1000; ++i) {
    const level = (i * 7919) % profile.count;
    const after = i % 3 === 0 ? withValue(profile, level, "svp_Speed", 1500 + i)
      : i % 3 === 1 ? withoutLevels(profile, level, level)
        : withLevel(profile, level, offerAt(profile, level).values);
    history.push(deltaOf(profile, after));
    profile = after;
  }
  const bytes = serialize(history).length;
  t.diagnostic(`${Math.round(bytes / 1000)} kB, ${((performance.now() - start) / 1000).toFixed(1)} ms an edit`);
  assert.ok(bytes < 2_000_000, `${bytes} bytes`);
});
