import assert from "node:assert/strict";
import { test } from "node:test";
import { Connection } from "../../src/connection";
import { FilterTable, type Safe } from "../../src/filter-table";
import { filterOf, rowOf, type Filter } from "../../src/filters";
import { FakeSurroundings } from "./support";

const row = (name: string) => `${name},.${name},0,1,-1,-1,-1,-1,1.000,1.000,comma,undef`;
const filter = (name: string): Filter => {
  const read = filterOf(row(name));
  assert.ok(read);
  return read;
};

/// A table whose answers are given by hand.
function made(kept: string[] = []) {
  const around = new FakeSurroundings();
  const connection = new Connection("ws://127.0.0.1/ws", around);
  const safe: Safe & { rows: string[] } = {
    rows: kept,
    load() { return this.rows.map((each) => filterOf(each)).filter((each): each is Filter => each !== null); },
    keep(rows) { this.rows = rows.map(rowOf); },
  };
  let now = 0;
  const table = new FilterTable(connection, safe, () => now);
  connection.start();
  around.socket.onopen?.();
  const settle = () => new Promise((done) => setImmediate(done));
  const answer = async (whoami: string, packet: object) => {
    around.socket.receive({ whoami, ...packet });
    await settle();
  };
  return {
    around, table, safe, settle,
    wait: (ms: number) => { now += ms; table.expire(); },
    saved: (reason = "") => answer("SaveFilter", reason ? { result: "FAILURE", reason } : { result: "SUCCESS" }),
    deleted: (reason = "") => answer("DeleteFilter", reason ? { result: "FAILURE", reason } : { result: "SUCCESS" }),
    listed: (...names: string[]) => answer("GetAllFilters", { result: "SUCCESS", filters: names.map(row).join("|") }),
    notListed: (reason: string) => answer("GetAllFilters", { result: "FAILURE", reason }),
    sent: (action: string) => around.socket.bodies(action),
  };
}

test("the rows of the table come with the faults of those that are left out", async () => {
  const t = made();
  const listing = t.table.list();
  await t.settle();
  await t.notListed("Depthfactor cannot be negative.");
  await t.notListed("Depthfactor cannot be negative.");
  await t.listed("a", "b");
  const { filters, faults, failure } = await listing;
  assert.deepEqual(filters.map(({ name }) => name), ["a", "b"]);
  assert.equal(faults.length, 2);
  assert.equal(failure, "");
});

test("no table yet is an empty one; other failures are failures", async () => {
  const t = made();
  const none = t.table.list();
  await t.settle();
  await t.notListed("File not opened.");
  assert.deepEqual(await none, { filters: [], faults: [], failure: "" });
  const failed = t.table.list();
  await t.settle();
  await t.notListed("ProgramData not found.");
  assert.equal((await failed).failure, "ProgramData not found.");
});

test("a saved row is looked for in the table", async () => {
  const t = made();
  const good = t.table.save(filter("a"));
  await t.settle();
  await t.saved();
  await t.listed("a");
  assert.equal(await good, "");

  const lost = t.table.save(filter("b"));
  await t.settle();
  await t.saved();
  await t.listed("a");
  assert.match(await lost, /does not hold it/);

  const refused = t.table.save(filter("c"));
  await t.settle();
  await t.saved("Cannot write to file.");
  assert.equal(await refused, "Cannot write to file.");
});

test("deleting empties the table and saves the other rows again, one after the other", async () => {
  const t = made();
  const removed = t.table.remove("B");
  await t.settle();
  await t.listed("a", "b", "c");
  assert.deepEqual(t.safe.rows.map((each) => each.split(",")[0]), ["a", "c"], "kept before anything is deleted");
  assert.deepEqual(t.sent("DeleteFilter"), ["[B]"]);
  assert.equal(t.sent("SaveFilter").length, 0);
  await t.deleted();
  assert.equal(t.sent("SaveFilter").length, 1);
  await t.saved();
  assert.equal(t.sent("SaveFilter").length, 2);
  await t.saved();
  await t.listed("a", "c");
  assert.equal(await removed, "");
  assert.deepEqual(t.table.unstored, []);
  assert.deepEqual(t.safe.rows, []);
  assert.match(t.sent("SaveFilter").join(), /,a,\.a,.*,c,\.c,/);
});

test("what a deletion could not put back is kept and put back later", async () => {
  const t = made();
  const removed = t.table.remove("a");
  await t.settle();
  await t.listed("a", "b", "c");
  await t.deleted();
  await t.saved();
  await t.saved("Cannot write to file.");
  await t.listed("b");
  assert.equal(await removed, "Cannot write to file.");
  assert.deepEqual(t.table.unstored.map(({ name }) => name), ["c"]);
  assert.deepEqual(t.safe.rows.map((each) => each.split(",")[0]), ["c"]);

  const again = t.table.restore();
  await t.settle();
  await t.saved();
  await t.listed("b", "c");
  assert.equal(await again, "");
  assert.deepEqual(t.safe.rows, []);
});

test("a connection that breaks in the middle loses no row", async () => {
  const t = made();
  const removed = t.table.remove("a");
  await t.settle();
  await t.listed("a", "b");
  t.around.socket.onclose?.();
  assert.match(await removed, /connection was lost/);
  assert.deepEqual(t.safe.rows.map((each) => each.split(",")[0]), ["b"]);
});

test("a deletion that was refused changes nothing", async () => {
  const t = made();
  const removed = t.table.remove("a");
  await t.settle();
  await t.listed("a", "b");
  await t.deleted("Cannot write to file.");
  assert.equal(await removed, "Cannot write to file.");
  assert.deepEqual(t.table.unstored, []);
  assert.equal(t.sent("SaveFilter").length, 0);
});

test("the last row is deleted too", async () => {
  const t = made();
  const removed = t.table.remove("a");
  await t.settle();
  await t.listed("a");
  await t.deleted();
  await t.listed();
  assert.equal(await removed, "");
  assert.equal(t.sent("SaveFilter").length, 0);
});

test("two rows of one suffix are not put through a deletion that would lose one", async () => {
  const t = made();
  const removed = t.table.remove("a");
  await t.settle();
  const twins = `${row("b")}|${row("b").replace("b,", "d,")}`;
  t.around.socket.receive({ whoami: "GetAllFilters", result: "SUCCESS", filters: `${row("a")}|${twins}` });
  assert.match(await removed, /b stands in the table twice/);
  assert.equal(t.sent("DeleteFilter").length, 0);
});

test("rows left by an earlier page are offered, and a deletion takes them along", async () => {
  const t = made([row("old")]);
  assert.deepEqual(t.table.unstored.map(({ name }) => name), ["old"]);
  const removed = t.table.remove("a");
  await t.settle();
  await t.listed("a", "b");
  await t.deleted();
  await t.saved();
  await t.saved();
  await t.listed("b", "old");
  assert.equal(await removed, "");
  assert.deepEqual(t.safe.rows, []);
});

test("an engine that stays silent is given up on, and the next request goes out", async () => {
  const t = made();
  const silent = t.table.list();
  await t.settle();
  t.wait(30_000);
  t.wait(1);
  assert.match((await silent).failure, /No answer within 30 seconds/);
  const next = t.table.list();
  await t.settle();
  await t.listed("a");
  assert.equal((await next).filters.length, 1);
});

test("without a connection nothing is changed, then or later", async () => {
  const t = made();
  t.around.socket.onclose?.();
  assert.match(await t.table.save(filter("a")), /no connection/);
  assert.match(await t.table.remove("a"), /no connection/);
  assert.match((await t.table.list()).failure, /no connection/);
  t.around.pass();
  t.around.socket.onopen?.();
  assert.deepEqual(t.around.socket.sent, []);
});

test("answers that nobody here waits for are let go by", async () => {
  const t = made();
  await t.listed("a");
  await t.saved();
  const listing = t.table.list();
  await t.settle();
  await t.saved();
  await t.listed("b");
  assert.deepEqual((await listing).filters.map(({ name }) => name), ["b"]);
});
