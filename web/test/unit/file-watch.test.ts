import assert from "node:assert/strict";
import { test } from "node:test";
import { FileWatch, UNKNOWN } from "../../src/file-watch";

const file = (name: string, second: number, size = 100) => ({
  name, size, modified: `2026-11-15T12:40:0${second}Z`,
});

/// A watch of one file that a list has told of.
function watching(name = "a.asvp", second = 1): FileWatch {
  const watch = new FileWatch();
  watch.opened(name);
  watch.take([file(name, second)], watch.ask());
  return watch;
}

test("a file that is another than it was is told once for each change", () => {
  const watch = watching();
  assert.deepEqual(watch.take([file("a.asvp", 1)], watch.ask()), []);
  assert.ok(!watch.isChanged("a.asvp"));
  assert.deepEqual(watch.take([file("a.asvp", 2)], watch.ask()), [{ name: "a.asvp", what: "changed" }]);
  assert.ok(watch.isChanged("a.asvp"));
  assert.deepEqual(watch.stamp("a.asvp"), UNKNOWN, "what is on the page was read from another state");
  assert.deepEqual(watch.take([file("a.asvp", 2)], watch.ask()), []);
  assert.deepEqual(watch.take([file("a.asvp", 2, 99)], watch.ask()), [{ name: "a.asvp", what: "changed" }], "size alone");
  watch.confirm("a.asvp");
  assert.ok(!watch.isChanged("a.asvp"));
  assert.deepEqual(watch.stamp("a.asvp"), { modified: "2026-11-15T12:40:02Z", size: 99 });
});

test("a list that was asked for before a file was opened or written tells nothing of it", () => {
  const watch = watching();
  const early = watch.ask();
  watch.saved("a.asvp");
  assert.deepEqual(watch.take([file("a.asvp", 1)], early), []);
  assert.deepEqual(watch.take([file("a.asvp", 3)], watch.ask()), [], "this page's own doing");
  const slow = watch.ask();
  assert.deepEqual(watch.take([file("a.asvp", 4)], watch.ask()).length, 1);
  assert.deepEqual(watch.take([file("a.asvp", 3)], slow), [], "an older list that comes later");
});

test("what a file was like in an earlier life of the page counts", () => {
  const watch = new FileWatch();
  watch.opened("a.asvp", { modified: "2026-11-15T12:40:01Z", size: 100 });
  assert.deepEqual(watch.take([file("a.asvp", 2)], watch.ask()), [{ name: "a.asvp", what: "changed" }]);
  watch.opened("a.asvp", UNKNOWN);
  assert.deepEqual(watch.take([file("a.asvp", 2)], watch.ask()), [{ name: "a.asvp", what: "changed" }]);
});

test("a file that is gone is told, but not one that filters list", () => {
  const known = watching();
  assert.deepEqual(known.take([], known.ask()), [{ name: "a.asvp", what: "gone" }]);
  assert.deepEqual(known.take([], known.ask()), []);
  const filtered = watching("a.col");
  assert.deepEqual(filtered.take([], filtered.ask()), []);
});

test("what another page has written is changed, be its size and second the same", () => {
  const watch = watching();
  assert.equal(watch.savedElsewhere("/profiles/b.asvp"), "");
  assert.equal(watch.savedElsewhere("/profiles/a.asvp"), "a.asvp");
  assert.deepEqual(watch.take([file("a.asvp", 1)], watch.ask()), [], "it is known already");
  assert.ok(watch.isChanged("a.asvp"));
});

test("a file of the same name in another folder is another one", () => {
  const watch = new FileWatch();
  watch.opened("sub/a.asvp");
  assert.deepEqual(watch.stamp("sub/a.asvp"), UNKNOWN);
  watch.opened("sub/a.asvp", UNKNOWN);
  assert.deepEqual(watch.take([file("a.asvp", 1)], watch.ask()), []);
  assert.deepEqual(watch.take([file("a.asvp", 2)], watch.ask()), []);
  assert.equal(watch.savedElsewhere("/profiles/a.asvp"), "");
});

test("the files that a cast was written to are watched beside its own, until another is opened", () => {
  const watch = watching();
  watch.saved("b.asvp");
  watch.take([file("a.asvp", 1), file("b.asvp", 1)], watch.ask());
  assert.deepEqual(watch.take([file("a.asvp", 1), file("b.asvp", 2)], watch.ask()), [{ name: "b.asvp", what: "changed" }]);
  watch.opened("c.asvp");
  assert.deepEqual(watch.take([file("a.asvp", 5)], watch.ask()), []);
});
