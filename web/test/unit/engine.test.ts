import assert from "node:assert/strict";
import { test } from "node:test";
import { Connection } from "../../src/connection";
import { Engine } from "../../src/engine";
import type { Profile } from "../../src/profile";
import { FakeSurroundings } from "./support";

/// A page's engine whose events are written down as short texts.
function page() {
  const around = new FakeSurroundings();
  const connection = new Connection("ws://127.0.0.1/ws", around);
  const told: string[] = [];
  const profiles: Profile[] = [];
  let now = 0;
  const keep = (word: string) => (profile: Profile) => {
    profiles.push(profile);
    told.push(`${word} ${profile.filename}`);
  };
  const engine = new Engine(
    connection,
    {
      opened: keep("opened"),
      openFailed: (name, reason) => told.push(`openFailed ${name}: ${reason}`),
      checked: (profile, { lines, invalid }) =>
        told.push(`checked ${profile.filename} [${invalid.join()}] ${lines.join("|")}`),
      checkFailed: (name, reason) => told.push(`checkFailed ${name}: ${reason}`),
      openedElsewhere: keep("elsewhere"),
      openFailedFalsely: (name) => told.push(`openFailedFalsely ${name}`),
      openFailedElsewhere: (reason) => told.push(`failed elsewhere: ${reason}`),
      alerted: (text) => told.push(`alert ${text}`),
      silent: () => told.push("silent"),
      refused: (reason) => told.push(`refused ${reason}`),
      waiting: () => undefined,
    },
    () => now,
  );
  connection.start();
  around.socket.onopen?.();
  const wait = (ms: number) => {
    now += ms;
    engine.expire();
  };
  return { around, engine, told, profiles, wait };
}

const cast = (filename: string, depths = [0, 10, 20], speeds = [1500, 1800, 1480]) => ({
  whoami: "SVP_OpenSVP", result: "SUCCESS", filename, svp_Depth: depths, svp_Speed: speeds,
});
const verdict = (svpX: number[], svpY: number[], tofix = "v") => ({
  whoami: "CheckProfile", result: "SUCCESS", svpX, svpY, tofix,
});
const last = <T>(list: T[]): T => list[list.length - 1] as T;

test("the page reports to the engine on every connection", () => {
  const { around } = page();
  assert.equal(around.socket.bodies("SVPReadyConnected").length, 1);
  around.socket.onclose?.();
  around.pass();
  around.socket.onopen?.();
  assert.equal(around.socket.bodies("SVPReadyConnected").length, 1);
});

test("the answer to the page's own request is opened, another page's is offered", () => {
  const { around, engine, told } = page();
  engine.open("a.asvp");
  assert.deepEqual(around.socket.bodies("SVP_OpenSVP"), ["[a.asvp,asvp]"]);
  around.socket.receive(cast("b.asvp"));
  around.socket.receive(cast("a.asvp"));
  assert.deepEqual(told, ["elsewhere b.asvp", "opened a.asvp"]);
});

test("of what others ask for only an opening that fails is told, and not for this page's own", () => {
  const { around, told } = page();
  around.socket.receive({ whoami: "CheckProfile", result: "FAILURE", reason: "no" });
  around.socket.receive(verdict([], []));
  assert.deepEqual(told, []);
  around.socket.receive({ whoami: "SVP_OpenSVP", result: "FAILURE", reason: "no" });
  assert.deepEqual(told, ["failed elsewhere: no"]);
});

test("that the engine opens no extension file is not told", () => {
  const { around, told, wait } = page();
  const refusal = { whoami: "SVP_OpenSVP", result: "FAILURE", reason: "no" };
  around.socket.receive({ whoami: "SelectExtentionFile", result: "SUCCESS", extentionfile: "e.asvp" });
  around.socket.receive(refusal);
  assert.deepEqual(told, []);
  around.socket.receive(refusal);
  assert.deepEqual(told, ["failed elsewhere: no"], "the one that was handed in is past");
  around.socket.receive({ whoami: "SelectExtentionFile", result: "SUCCESS", extentionfile: "e.asvp" });
  wait(10_000);
  around.socket.receive(refusal);
  assert.equal(told.length, 2, "it was handed in long ago, if at all");
});

test("failures name the file; alerts and refusals are passed on", () => {
  const { around, engine, told } = page();
  engine.open("a.asvp");
  around.socket.receive({ whoami: "SVP_OpenSVP", result: "FAILURE", reason: "Gone." });
  around.socket.receive({ whoami: "SVPAlert", result: "FAILURE", alert: "Look out" });
  around.socket.receive({ whoami: "host", result: "FAILURE", reason: "bad frame" });
  assert.deepEqual(told, ["openFailed a.asvp: Gone.", "alert Look out", "refused bad frame"]);
});

test("a name with brackets is refused here, and nothing is sent", () => {
  const { around, engine, told } = page();
  engine.open("a[1].asvp");
  assert.deepEqual(around.socket.bodies("SVP_OpenSVP"), []);
  assert.match(last(told), /^openFailed a\[1\]\.asvp: /);
});

test("a verdict is matched to the levels and split into its lines", () => {
  const { around, engine, told, profiles } = page();
  engine.open("a.asvp");
  around.socket.receive(cast("a.asvp"));
  engine.check(last(profiles));
  around.socket.receive(verdict([1800], [10], "Invalid entries are marked.\nMore.\n"));
  assert.equal(last(told), "checked a.asvp [1] Invalid entries are marked.|More.");
  assert.equal(engine.checking, false);
});

test("a verdict that does not fit the levels belongs to another page", () => {
  const { around, engine, told, profiles } = page();
  engine.open("a.asvp");
  around.socket.receive(cast("a.asvp"));
  engine.check(last(profiles));
  around.socket.receive(verdict([1333], [77]));
  assert.equal(engine.checking, true);
  around.socket.receive(verdict([1800], [10]));
  assert.equal(last(told), "checked a.asvp [1] v");
});

test("a late verdict on the cast before is not taken for one on the cast now open", () => {
  const { around, engine, told, profiles } = page();
  engine.open("a.asvp");
  around.socket.receive(cast("a.asvp"));
  engine.check(last(profiles));
  engine.open("b.asvp");
  around.socket.receive(cast("b.asvp"));
  engine.forgetCheck();
  engine.check(last(profiles));
  around.socket.receive(verdict([], [], "for a"));
  assert.equal(last(told), "opened b.asvp", "the first verdict was for the first request");
  around.socket.receive(verdict([1800], [10], "for b"));
  assert.equal(last(told), "checked b.asvp [1] for b");
});

test("a request without an answer ends by time or with the connection", () => {
  const { around, engine, told, wait } = page();
  around.socket.receive({ whoami: "SVPReadyConnected" });
  engine.open("a.asvp");
  wait(29_000);
  assert.deepEqual(told, []);
  wait(2_000);
  assert.deepEqual(told, ["openFailed a.asvp: No answer within 30 seconds."]);
  engine.open("b.asvp");
  around.socket.onclose?.();
  assert.match(last(told), /^openFailed b\.asvp: The connection was lost/);
  engine.open("c.asvp");
  around.pass();
  around.socket.onopen?.();
  assert.deepEqual(around.socket.bodies("SVP_OpenSVP"), ["[c.asvp,asvp]"]);
  around.socket.receive(cast("c.asvp"));
  assert.equal(last(told), "opened c.asvp");
});

test("an engine that never answers is reported", () => {
  const { told, wait } = page();
  wait(31_000);
  assert.deepEqual(told, ["silent"]);
});

test("an uploaded file's profile arrives as opened, before or after its POST is answered", async () => {
  for (const isFirst of [true, false]) {
    const { around, engine, told } = page();
    const upload = engine.beginUpload("new.vp2");
    assert.equal(engine.opening, "new.vp2");
    const receive = () => around.socket.receive(cast("new.vp2"));
    if (isFirst) receive();
    const done = upload.done();
    if (!isFirst) receive();
    assert.equal((await done)?.count, 3);
    assert.deepEqual(told, ["opened new.vp2"]);
    assert.equal(engine.opening, "");
  }
});

test("an upload's failure on the socket is left to the answer of its POST", () => {
  const { around, engine, told } = page();
  const upload = engine.beginUpload("new.vp2");
  around.socket.receive({ whoami: "SVP_OpenSVP", result: "FAILURE", reason: "Filter not found." });
  upload.failed();
  assert.deepEqual(told, []);
  assert.equal(engine.opening, "");
  around.socket.receive(cast("new.vp2"));
  assert.deepEqual(told, ["elsewhere new.vp2"], "nothing is awaited any more");
});

test("another page's failure does not end an upload", async () => {
  const { around, engine, told } = page();
  const upload = engine.beginUpload("new.vp2");
  around.socket.receive({ whoami: "SVP_OpenSVP", result: "FAILURE", reason: "Filter not found." });
  const done = upload.done();
  assert.equal(engine.opening, "new.vp2");
  around.socket.receive(cast("new.vp2"));
  assert.equal((await done)?.filename, "new.vp2");
  assert.deepEqual(told, ["opened new.vp2"]);
});

test("an upload may take long, but its answer may not once the POST is answered", async () => {
  const { around, engine, told, wait } = page();
  around.socket.receive({ whoami: "SVPReadyConnected" });
  const upload = engine.beginUpload("new.vp2");
  wait(100_000);
  const done = upload.done();
  wait(30_000);
  assert.deepEqual(told, []);
  wait(1);
  assert.equal(await done, null);
  assert.deepEqual(told, ["openFailed new.vp2: No answer within 30 seconds."]);
});

test("an upload whose answer was lost with the connection is asked for by name", async () => {
  const { around, engine, told } = page();
  const upload = engine.beginUpload("new.vp2");
  around.socket.onclose?.();
  around.pass();
  around.socket.onopen?.();
  const done = upload.done();
  assert.deepEqual(around.socket.bodies("SVP_OpenSVP"), ["[new.vp2,asvp]"]);
  around.socket.receive(cast("new.vp2"));
  assert.equal((await done)?.filename, "new.vp2");
  assert.deepEqual(told, ["opened new.vp2"]);
});

test("an uploaded file is not shown over a cast that was asked for since", async () => {
  const { around, engine, told, wait } = page();
  const upload = engine.beginUpload("new.vp2");
  engine.open("other.asvp");
  const done = upload.done();
  around.socket.receive(cast("new.vp2"));
  around.socket.receive(cast("other.asvp"));
  assert.equal(await done, null);
  assert.deepEqual(told, ["opened other.asvp"]);

  const late = engine.beginUpload("late.vp2");
  engine.open("again.asvp");
  around.socket.receive(cast("again.asvp"));
  const never = late.done();
  wait(30_001);
  assert.equal(await never, null, "and nobody waits for it for ever");
});

test("a file that a page has written for itself is opened by nobody", () => {
  const { around, engine, told } = page();
  around.socket.receive(cast("svp-preview_thinned.asvp"));
  around.socket.receive(cast("extentionfile.asvp"));
  assert.deepEqual(told, []);
  engine.open("a.asvp");
  around.socket.receive(cast("svp-preview_thinned.asvp"));
  assert.equal(engine.opening, "a.asvp");
  around.socket.receive(cast("a.asvp"));
  assert.deepEqual(told, ["opened a.asvp"]);
});

test("a file is read beside the open one and not put on the page", async () => {
  const { around, engine, told } = page();
  const looked = engine.look("a.asvp");
  assert.deepEqual(around.socket.bodies("SVP_OpenSVP"), ["[a.asvp,asvp]"]);
  assert.equal(engine.opening, "", "it is no opening to the page");
  engine.open("b.asvp");
  around.socket.receive(cast("a.asvp"));
  around.socket.receive(cast("b.asvp"));
  const look = await looked;
  assert.ok("profile" in look && look.profile.filename === "a.asvp" && look.profile.count === 3);
  assert.deepEqual(told, ["opened b.asvp"]);
});

test("why a file cannot be read beside the open one is told to who asked", async () => {
  const { around, engine, told, wait } = page();
  const failure = { whoami: "SVP_OpenSVP", result: "FAILURE", reason: "Filter not found." };
  const refused = engine.look("a.asvp");
  around.socket.receive(failure);
  assert.deepEqual(await refused, { reason: "Filter not found." });
  const bracketed = await engine.look("a[1].asvp");
  assert.ok("reason" in bracketed && bracketed.reason.includes("bracket"));
  const late = engine.look("b.asvp");
  wait(30_000);
  wait(1);
  assert.deepEqual(await late, { reason: "No answer has come." });
  const lost = engine.look("c.asvp");
  around.socket.onclose?.();
  assert.deepEqual(await lost, { reason: "No answer has come." });
  // What the engine never answered to was the page's own report.
  assert.deepEqual(told, ["silent"]);
});

test("a failure that was another page's is taken back by the answer; that of an earlier try is not", () => {
  const { around, engine, told } = page();
  const refusal = { whoami: "SVP_OpenSVP", result: "FAILURE", reason: "no" };
  engine.open("a.asvp");
  around.socket.receive(refusal);
  around.socket.receive(cast("a.asvp"));
  assert.deepEqual(told, ["openFailed a.asvp: no", "openFailedFalsely a.asvp", "opened a.asvp"]);
  engine.open("b.asvp");
  around.socket.receive(refusal);
  engine.open("b.asvp");
  around.socket.receive(cast("b.asvp"));
  assert.deepEqual(told.slice(3), ["openFailed b.asvp: no", "opened b.asvp"]);
});
