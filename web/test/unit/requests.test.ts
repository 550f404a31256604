import assert from "node:assert/strict";
import { test } from "node:test";
import { Action } from "../../src/protocol";
import { PendingRequests } from "../../src/requests";

const open = (pending: PendingRequests<null>, name: string, sent = true, now = 0) =>
  pending.begin(Action.open, name, null, sent, now);
const opened = (pending: PendingRequests<null>, name: string) =>
  pending.succeeded(Action.open, ({ key }) => key === name);

test("an answer that nobody here asked for is foreign", () => {
  const pending = new PendingRequests<null>();
  assert.equal(opened(pending, "a"), "foreign");
  assert.equal(pending.failed(Action.open).standing, "foreign");
  open(pending, "b");
  assert.equal(opened(pending, "a"), "foreign");
  assert.equal(opened(pending, "b"), "mine");
  assert.equal(opened(pending, "b"), "foreign", "an answer is taken once");
});

test("an answer to what the user has left for another cast is stale", () => {
  const pending = new PendingRequests<null>();
  open(pending, "a");
  open(pending, "b");
  assert.equal(pending.waiting(Action.open)?.key, "b");
  assert.equal(opened(pending, "a"), "stale");
  assert.equal(opened(pending, "b"), "mine");
});

test("a cast asked for twice is shown by its second answer", () => {
  const pending = new PendingRequests<null>();
  open(pending, "a");
  open(pending, "a");
  assert.equal(opened(pending, "a"), "stale");
  assert.equal(opened(pending, "a"), "mine");
});

test("a failure goes to the oldest request, and a success after it still counts", () => {
  const pending = new PendingRequests<null>();
  open(pending, "a");
  assert.deepEqual(pending.failed(Action.open), { standing: "mine", key: "a", subject: null });
  assert.equal(pending.waiting(Action.open), undefined);
  assert.equal(pending.failed(Action.open).standing, "foreign");
  assert.equal(opened(pending, "a"), "mine");
});

test("after a failure, the answer to a second try is taken for that try", () => {
  const pending = new PendingRequests<null>();
  open(pending, "a");
  pending.failed(Action.open);
  open(pending, "a");
  assert.equal(opened(pending, "a"), "mine");
  assert.equal(pending.waiting(Action.open), undefined);
});

test("queued requests all stay wanted, and are answered in their order", () => {
  const pending = new PendingRequests<number>();
  pending.queue(Action.save, "a", 1, true, 0);
  pending.queue(Action.save, "b", 2, true, 0);
  pending.queue(Action.save, "a", 3, true, 0);
  assert.equal(pending.waiting(Action.save)?.subject, 1);
  assert.deepEqual(pending.failed(Action.save), { standing: "mine", key: "a", subject: 1 });
  assert.equal(pending.waiting(Action.save)?.subject, 2);
  assert.equal(pending.succeeded(Action.save, ({ key }) => key === "b"), "mine");
  assert.equal(pending.waiting(Action.save)?.subject, 3);
});

test("actions do not answer for each other", () => {
  const pending = new PendingRequests<null>();
  open(pending, "a");
  assert.equal(pending.failed(Action.check).standing, "foreign");
  pending.giveUp(Action.check);
  assert.equal(opened(pending, "a"), "mine");
});

test("a lost connection ends what had been sent, and only that", () => {
  const pending = new PendingRequests<null>();
  open(pending, "sent");
  pending.begin(Action.check, "queued", null, false, 0);
  assert.deepEqual(pending.dropSent().map(({ key }) => key), ["sent"]);
  assert.equal(pending.waiting(Action.check)?.key, "queued");
  pending.markSent(0);
  assert.deepEqual(pending.dropSent().map(({ key }) => key), ["queued"]);
});

test("nothing is said about the end of what was not wanted or has failed already", () => {
  const pending = new PendingRequests<null>();
  open(pending, "left");
  open(pending, "failed");
  pending.failed(Action.open);
  pending.failed(Action.open);
  assert.deepEqual(pending.dropSent(), []);
});

test("age is counted from when a request left", () => {
  const pending = new PendingRequests<null>();
  open(pending, "a", false, 0);
  assert.deepEqual(pending.dropOlder(1_000_000, 1000), []);
  pending.markSent(1_000_000);
  assert.deepEqual(pending.dropOlder(1_000_900, 1000), []);
  assert.deepEqual(pending.dropOlder(1_001_001, 1000).map(({ key }) => key), ["a"]);
});

test("a request made elsewhere neither ages nor ends with the connection until it is carried out", () => {
  const pending = new PendingRequests<null>();
  const request = pending.beginElsewhere(Action.open, "a", null);
  assert.deepEqual(pending.dropOlder(1e9, 1000), []);
  assert.deepEqual(pending.dropSent(), []);
  pending.failed(Action.open);
  pending.carriedOut(request, 1e9);
  assert.equal(pending.waiting(Action.open)?.key, "a", "the failure was another page's");
  assert.equal(pending.dropOlder(1e9 + 1000, 1000).length, 0);
  assert.equal(pending.dropOlder(1e9 + 1001, 1000).length, 1);
  assert.ok(!pending.holds(request));
});
