import assert from "node:assert/strict";
import { test } from "node:test";
import { Connection } from "../../src/connection";
import { Outbox, type Job, type Way } from "../../src/outbox";
import { failedText, handedOnText, savedText, sentText } from "../../src/outbox-words";
import { Action } from "../../src/protocol";
import { FakeSurroundings } from "./support";

/// An outbox whose events are written down as short texts.
function page() {
  const around = new FakeSurroundings();
  const connection = new Connection("ws://127.0.0.1/ws", around);
  const told: string[] = [];
  let now = 0;
  const outbox = new Outbox(
    connection,
    {
      sent: ({ name }, svptype) => told.push(`sent ${name} ${svptype}`),
      saved: ({ name }, path) => told.push(`saved ${name} ${path}`),
      handedOn: ({ way, name }, words) => told.push(`${way} ${name}: ${words}`),
      failed: ({ way, name }, reason) => told.push(`failed ${way} ${name}: ${reason}`),
      savedElsewhere: () => told.push("savedElsewhere"),
      waiting: () => undefined,
    },
    () => now,
  );
  connection.start();
  around.socket.onopen?.();
  const wait = (ms: number) => {
    now += ms;
    outbox.expire();
  };
  return { around, outbox, told, wait };
}

const job = (way: Way, name = "a.asvp"): Job => ({ way, name, levels: 3 });
const sent = (file: string) => ({ whoami: "SendSVPtoQRV", result: "SUCCESS", file, svptype: "S00" });
const saved = (fullname: string) => ({ whoami: "SVP_Save", result: "SUCCESS", fullname });
const failure = (whoami: string, reason = "no") => ({ whoami, result: "FAILURE", reason });

test("each way out is asked for by its action and told by its answer", () => {
  const { around, outbox, told } = page();
  outbox.begin(job("send"), Action.send, "[s]");
  outbox.begin(job("save"), Action.saveAs, "[a]");
  outbox.begin(job("receiver"), Action.receiver, "[r]");
  outbox.begin(job("distribute"), Action.distribute, "[d]");
  assert.deepEqual(around.socket.bodies("SendSVPtoQRV"), ["[s]"]);
  assert.deepEqual(around.socket.bodies("SVP_SaveAs"), ["[a]"]);
  assert.deepEqual(around.socket.bodies("RVT300"), ["[r]"]);
  assert.deepEqual(around.socket.bodies("Distribute"), ["[d]"]);
  assert.equal(outbox.current?.way, "send");
  around.socket.receive(sent("a.asvp"));
  around.socket.receive(saved("/data/a.asvp"));
  around.socket.receive({ whoami: "RVT300", result: "SUCCESS", reason: "R." });
  around.socket.receive({ whoami: "Distribute", result: "SUCCESS", reason: "D." });
  assert.deepEqual(told, [
    "sent a.asvp S00", "saved a.asvp /data/a.asvp", "receiver a.asvp: R.", "distribute a.asvp: D.",
  ]);
  assert.equal(outbox.current, null);
});

test("saves are answered in their order, each by its own name", () => {
  const { around, outbox, told } = page();
  outbox.begin(job("save", "a.asvp"), Action.save, "[1]");
  outbox.begin(job("save", "b.asvp"), Action.saveAs, "[2]");
  outbox.begin(job("save", "c.ssp"), Action.save, "[3]");
  around.socket.receive(failure("SVP_Save"));
  around.socket.receive(saved("C:\\data\\b.asvp"));
  around.socket.receive(saved("/data/c.ssp"));
  assert.deepEqual(told, [
    "failed save a.asvp: no", "saved b.asvp C:\\data\\b.asvp", "saved c.ssp /data/c.ssp",
  ]);
});

test("after a failure the answer to a second try is told, and nothing is waited for", () => {
  const { around, outbox, told, wait } = page();
  outbox.begin(job("send"), Action.send, "[1]");
  around.socket.receive(failure("SendSVPtoQRV"));
  outbox.begin(job("send"), Action.send, "[2]");
  around.socket.receive(sent("a.asvp"));
  assert.equal(outbox.current, null);
  wait(31_000);
  assert.deepEqual(told, ["failed send a.asvp: no", "sent a.asvp S00"]);
});

test("what another page has sent or saved is not told, but its file is noticed", () => {
  const { around, told } = page();
  around.socket.receive(sent("a.asvp"));
  around.socket.receive(saved("/data/x.asvp"));
  around.socket.receive(failure("SVP_Save"));
  around.socket.receive({ whoami: "RVT300", result: "SUCCESS", reason: "R." });
  assert.deepEqual(told, ["savedElsewhere"]);
});

test("a name that the request changes is still recognised in the answer", () => {
  const { around, outbox, told } = page();
  outbox.begin(job("send", "odd*[1].asvp"), Action.send, "[s]");
  around.socket.receive(sent("odd__1_.asvp"));
  assert.deepEqual(told, ["sent odd*[1].asvp S00"]);
});

test("without a connection nothing is kept for later", () => {
  const { around, outbox, told } = page();
  around.socket.onclose?.();
  outbox.begin(job("send"), Action.send, "[s]");
  assert.deepEqual(told, ["failed send a.asvp: There is no connection to the host."]);
  around.pass();
  around.socket.onopen?.();
  assert.deepEqual(around.socket.bodies("SendSVPtoQRV"), []);
});

test("a lost connection and a silent engine leave the outcome open, and it is said", () => {
  const { around, outbox, told, wait } = page();
  outbox.begin(job("save"), Action.save, "[1]");
  wait(29_000);
  assert.deepEqual(told, []);
  wait(2_000);
  outbox.begin(job("save"), Action.save, "[2]");
  around.socket.onclose?.();
  assert.deepEqual(told, [
    "failed save a.asvp: No answer within 30 seconds. Whether it was done all the same is not known.",
    "failed save a.asvp: The connection was lost before the answer came. Whether it was done all the same is not known.",
  ]);
  assert.equal(outbox.current, null);
});

test("success is told with what went where", () => {
  assert.equal(
    sentText({ way: "send", name: "a.asvp", levels: 42 }, "S00"),
    "Sent to the survey system on this machine (UDP port 14002): a.asvp, 42 levels as S00. The survey system does not confirm receipt.",
  );
  assert.equal(savedText(job("save"), "/data/a.asvp"), "Saved as /data/a.asvp");
  assert.equal(savedText({ ...job("save"), remark: "kept" }, "/data/a.ssp"), "Saved as /data/a.ssp – kept");
  assert.equal(
    savedText({ ...job("save"), remark: "Not kept of what you have changed: comment." }, "/data/a.asvp", ["comment"]),
    "Written as /data/a.asvp – Not kept of what you have changed: comment. The cast still counts as not saved.",
  );
  const note = "The engine has taken note of a.asvp, 3 levels, for";
  assert.equal(
    handedOnText(job("receiver"), "SVP sent to RVT300."),
    `${note} the receiver; it sends nothing itself. Its answer: “SVP sent to RVT300.”`,
  );
  assert.equal(handedOnText(job("distribute"), ""), `${note} distribution; it sends nothing itself.`);
});

const failures: [Way, string, RegExp][] = [
  ["send", "Profile contains errors and will not be sent to QRV.", /mend what is marked; then send again\.$/],
  ["send", "Invalid parameters.", /Load the page again.*send again\.$/],
  ["send", "Invalid svp.", /At least 3 levels/],
  ["save", "Wrong svp input.", /At least 3 levels/],
  ["save", "Sample count mismatch or too small.", /Open the cast again; then save again\.$/],
  ["save", "Stated sample count mismatch.", /Open the cast again; then save again\.$/],
  ["save", "No samples extracted.", /Save it as \.asvp/],
  ["send", "Memory allocation error.", /Close other programs; then send again\.$/],
  ["save", "Error saving file.", /profile folder.*save again\.$/],
  ["save", "Error writing file.", /profile folder.*save again\.$/],
  ["save", "Wrong number of input parameters.", /Load the page again.*save again\.$/],
  ["receiver", "Invalid svp.", /handed to the receiver.*At least 3 levels/],
  ["distribute", "Invalid svp.", /not distributed.*At least 3 levels/],
];
for (const [way, reason, words] of failures) {
  test(`a failure says what to do next: ${way}, ${reason}`, () => {
    const text = failedText(job(way), reason);
    assert.ok(text.startsWith("a.asvp was not ") && text.includes(reason), text);
    assert.match(text, words);
  });
}

test("a failure of another kind is told as it is, with what is left to do", () => {
  const rest = "Try once more; if it fails again, look into the host’s log.";
  assert.equal(failedText(job("save"), "Odd."), `a.asvp was not saved. Odd. ${rest}`);
  assert.equal(failedText(job("save"), ""), `a.asvp was not saved. ${rest}`);
});

test("where it is not known whether it was done, each way out says how to find out", () => {
  const text = (way: Way) => failedText(job(way), "The connection was lost before the answer came. Whether it was done all the same is not known.");
  assert.match(text("send"), /not known\. Look whether the survey system shows the profile; if it does not, send again\.$/);
  assert.match(text("save"), /not known\. Look for the file and its time in the list of casts; if it is not there, save again\.$/);
  assert.match(text("receiver"), /not known\. Hand it over again: once more does no harm\.$/);
  assert.match(text("distribute"), /not known\. Distribute again: once more does no harm\.$/);
});
