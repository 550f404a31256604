import assert from "node:assert/strict";
import { test } from "node:test";
import { Connection } from "../../src/connection";
import { FakeSurroundings } from "./support";

function connected(): { connection: Connection; around: FakeSurroundings; states: string[] } {
  const around = new FakeSurroundings();
  const connection = new Connection("ws://127.0.0.1/ws", around);
  const states: string[] = [];
  connection.onState(({ kind }) => states.push(kind));
  connection.start();
  return { connection, around, states };
}

test("frames wait for the connection and leave in order", () => {
  const { connection, around } = connected();
  assert.equal(connection.send("one"), false);
  assert.equal(connection.send("two"), false);
  assert.deepEqual(around.socket.sent, []);
  around.socket.onopen?.();
  assert.deepEqual(around.socket.sent, ["one", "two"]);
  assert.equal(connection.send("three"), true);
  assert.deepEqual(around.socket.sent, ["one", "two", "three"]);
});

test("packets go to the listener of their sender only", () => {
  const { connection, around } = connected();
  const heard: unknown[] = [];
  connection.on("SVPAlert", (packet) => heard.push(packet));
  around.socket.onopen?.();
  around.socket.receive({ whoami: "SVPAlert", alert: "a" });
  around.socket.receive({ whoami: "Thin" });
  around.socket.onmessage?.({ data: "no frame" });
  around.socket.onmessage?.({ data: new ArrayBuffer(1) });
  assert.deepEqual(heard, [{ whoami: "SVPAlert", alert: "a" }]);
});

test("a broken connection is tried again, ever later up to five seconds", () => {
  const { around, states } = connected();
  for (let i = 0; i < 6; ++i) {
    around.socket.onclose?.();
    around.pass();
  }
  assert.deepEqual(around.waits, [500, 1000, 2000, 4000, 5000, 5000]);
  around.socket.onopen?.();
  assert.equal(states.at(-1), "open");
  around.socket.onclose?.();
  assert.equal(around.waits.at(-1), 500, "success starts the waiting afresh");
});

test("what is sent while there is no connection goes out on the next", () => {
  const { connection, around } = connected();
  around.socket.onopen?.();
  around.socket.onclose?.();
  assert.equal(connection.send("later"), false);
  around.pass();
  around.socket.onopen?.();
  assert.deepEqual(around.socket.sent, ["later"]);
});
