/// Extending and thinning against an engine that is played by hand.
import assert from "node:assert/strict";
import { test } from "node:test";
import { Asker } from "../../src/asker";
import { Connection } from "../../src/connection";
import { Extender, OTHER_ROWS, type ExtendWay } from "../../src/extender";
import type { PostAnswer } from "../../src/post-file";
import { Action } from "../../src/protocol";
import { DISTURBED, Thinner, type ThinnedFile } from "../../src/thinner";
import { FakeSurroundings, profileWith } from "./support";

const PROFILE = profileWith([0, 100], [1500, 1490]);
const WHOLE = profileWith([0, 100, 200, 300, 400, 12000], [1500, 1499, 1498, 1497, 1496, 1600]);
const ALL = [Action.extendDefault, Action.extendTempSal, Action.extendFile, Action.extensionName, Action.thin, Action.open];

function page(posts: PostAnswer[] = []) {
  const around = new FakeSurroundings();
  const connection = new Connection("ws://127.0.0.1/ws", around);
  let now = 0;
  const asker = new Asker(connection, ALL, () => now);
  const posted: string[] = [];
  const extender = new Extender(asker, (url, file, name) => {
    posted.push(`${url} ${name} ${file.size}`);
    return Promise.resolve(posts.shift() ?? { status: 200, text: "" });
  });
  const thinner = new Thinner(asker, connection);
  connection.start();
  const receive = async (packet: object) => {
    around.socket.receive(packet);
    // What waits for the packet goes on before the next one.
    await new Promise(setImmediate);
  };
  return { around, asker, extender, thinner, posted, receive, open: () => around.socket.onopen?.(), wait: (ms: number) => (now += ms) };
}

const extension = (depths: number[], speeds: number[], whoami = "ExtendDefault") =>
  ({ whoami, result: "SUCCESS", svpY: [0, 100, ...depths], svpX: [1500, 1490, ...speeds] });
const file = (rows: [number, number][]): ExtendWay => ({
  kind: "file",
  file: { file: Object.assign(new Blob(["12345"]), { name: "own.txt" }), rows: rows.map(([depth, speed]) => ({ depth, speed })) },
});
const NAMED = { whoami: "SelectExtentionFile", result: "SUCCESS", extentionfile: "extentionfile.asvp" };

test("the answer to another page's profile is waited past", async () => {
  const { around, extender, receive, open } = page();
  open();
  const result = extender.extend(PROFILE, { kind: "default" });
  assert.deepEqual(around.socket.bodies("ExtendDefault"), ["[1500,1490;0,100]"]);
  await receive({ ...extension([500], [1498]), svpY: [0, 99, 500] });
  await receive(extension([500], [1498]));
  assert.deepEqual((await result as { extended: { joined: number } }).extended.joined, 1);
});

test("a failure is told with its reason, and so is the success that is none", async () => {
  const { extender, receive, open } = page();
  open();
  const first = extender.extend(PROFILE, { kind: "default" });
  await receive({ whoami: "ExtendDefault", result: "FAILURE", reason: "Depths are not sorted.\n" });
  assert.deepEqual(await first, { reason: "Depths are not sorted.\n" });
  const water = { temperature: 4, salinity: 35, latitude: 59.5 };
  const second = extender.extend(PROFILE, { kind: "water", water });
  await receive({ whoami: "ExtendTempSal", result: "SUCCESS", reason: "Invalid input parameters." });
  assert.deepEqual(await second, { reason: "Invalid input parameters." });
});

test("nothing is asked without a connection, and a lost or silent one is told", async () => {
  const { around, asker, extender, open, wait } = page();
  assert.deepEqual(await extender.extend(PROFILE, { kind: "default" }), { reason: "There is no connection to the host." });
  open();
  assert.deepEqual(around.socket.bodies("ExtendDefault"), []);
  const late = extender.extend(PROFILE, { kind: "default" });
  wait(30_000);
  asker.expire();
  wait(1);
  asker.expire();
  assert.deepEqual(await late, { reason: "No answer within 30 seconds." });
  const lost = extender.extend(PROFILE, { kind: "default" });
  around.socket.close();
  assert.deepEqual(await lost, { reason: "The connection was lost before the answer came." });
});

test("a file is handed in under the engine's name, and its refusal as a cast means nothing", async () => {
  const { around, extender, posted, receive, open } = page([{ status: 500, text: "Header not correct in file." }]);
  open();
  const result = extender.extend(PROFILE, file([[50, 1400], [500, 1498], [12000, 1600]]));
  await receive({ ...NAMED, extentionfile: "other.asvp" });
  assert.deepEqual(posted, ["SVP_WebInterface other.asvp 5"]);
  assert.deepEqual(around.socket.bodies("ExtendWithFile"), ["[1500,1490*0,100*other.asvp]"]);
  await receive(extension([500, 12000], [1498, 1600], "ExtendWithFile"));
  assert.ok("extended" in (await result));
});

test("a file that was not stored is told, and not joined", async () => {
  for (const [answer, reason] of [
    [{ status: 500, text: "Error saving file." }, "Error saving file."],
    [{ status: 413, text: "The body is too large." }, "The body is too large."],
    [{ status: 503, text: "" }, "The host refused the file (503)."],
    [{ status: 0, text: "" }, "The file could not be handed to the host."],
  ] as const) {
    const { around, extender, receive, open } = page([answer]);
    open();
    const result = extender.extend(PROFILE, file([[500, 1498], [12000, 1600]]));
    await receive(NAMED);
    assert.deepEqual(await result, { reason });
    assert.deepEqual(around.socket.bodies("ExtendWithFile"), []);
  }
});

test("rows of a file that another page has handed in are not taken for one's own", async () => {
  const { extender, receive, open } = page();
  open();
  const result = extender.extend(PROFILE, file([[500, 1498], [12000, 1600]]));
  await receive(NAMED);
  await receive(extension([500, 12000], [1498, 1601], "ExtendWithFile"));
  assert.deepEqual(await result, { reason: OTHER_ROWS });
});

const PREVIEWED = { whoami: "Thin", result: "SUCCESS", file: "svp-preview_thinned.asvp", fullname: "/f/svp-preview_thinned.asvp" };
const READ = { whoami: "SVP_OpenSVP", result: "SUCCESS", filename: "svp-preview_thinned.asvp", svp_Depth: [0, 100, 12000], svp_Speed: [1500, 1499, 1600] };

test("a preview is written under its own name, read back and found among the levels", async () => {
  const { around, thinner, receive, open } = page();
  open();
  const result = thinner.preview(WHOLE, 0.5);
  assert.match(around.socket.bodies("Thin")[0] ?? "", /\*svp-preview\.asvp\*SoundVelocity\*.*\*0\.5\]$/);
  await receive(PREVIEWED);
  assert.deepEqual(around.socket.bodies("SVP_OpenSVP"), ["[svp-preview_thinned.asvp,asvp]"]);
  await receive({ ...READ, filename: "another.asvp" });
  await receive(READ);
  assert.deepEqual(await result, { kept: [0, 1, 5] });
});

test("a preview that another page has written over is made again", async () => {
  const { around, thinner, receive, open } = page();
  open();
  const result = thinner.preview(WHOLE, 0.5);
  await receive(PREVIEWED);
  await receive(PREVIEWED);
  await receive({ ...READ, svp_Depth: [0, 200, 12000], svp_Speed: [1500, 1498, 1600] });
  assert.equal(around.socket.bodies("Thin").length, 2);
  await receive(PREVIEWED);
  await receive(READ);
  assert.deepEqual(await result, { kept: [0, 1, 5] });
});

test("what cannot be read back three times is given up", async () => {
  const { around, thinner, receive, open } = page();
  open();
  const result = thinner.preview(WHOLE, 0.5);
  for (let i = 0; i < 3; ++i) {
    await receive(PREVIEWED);
    await receive(i === 1 ? { whoami: "SVP_OpenSVP", result: "FAILURE", reason: "no" } : { ...READ, svp_Depth: [0, 7, 9] });
  }
  assert.deepEqual(await result, { reason: DISTURBED });
  assert.equal(around.socket.bodies("Thin").length, 3);
  const refused = thinner.preview(WHOLE, 0.5);
  await receive({ whoami: "Thin", result: "FAILURE", reason: "Depths not sorted." });
  assert.deepEqual(await refused, { reason: "Depths not sorted." });
});

test("a file that was written is known even when another page's failure came first", async () => {
  const { around, thinner, receive, open } = page();
  open();
  const occasion = { time: "20261115123456", latitude: "59.5", longitude: "10.25" };
  const late: ThinnedFile[] = [];
  const keep = () => thinner.keep(WHOLE, 0.1, occasion, (written) => late.push(written));
  const written = { ...PREVIEWED, file: "cast_thinned.asvp", fullname: "/f/cast_thinned.asvp" };
  const first = keep();
  assert.match(around.socket.bodies("Thin")[0] ?? "", /\*cast\.asvp\*SoundVelocity\*1\.0\*0\*20261115123456\*59\.5\*10\.25\*.*\*0\.1\]$/);
  await receive(PREVIEWED);
  await receive(written);
  assert.deepEqual(await first, { name: "cast_thinned.asvp", path: "/f/cast_thinned.asvp" });
  const second = keep();
  await receive({ whoami: "Thin", result: "FAILURE", reason: "Wrong svp input." });
  assert.deepEqual(await second, { reason: "Wrong svp input." });
  assert.deepEqual(late, []);
  await receive(written);
  assert.deepEqual(late, [{ name: "cast_thinned.asvp", path: "/f/cast_thinned.asvp" }]);
});
