/// A survey system that only listens: what arrives on its port, taken apart.
import assert from "node:assert/strict";
import { createSocket, type Socket } from "node:dgram";
import { once } from "node:events";
import { setTimeout as pause } from "node:timers/promises";

const PORT = 14002;
/// The port is one for the whole machine; other test files may hold it for their while, which on a busy
/// one is some minutes.
const TRIES = 1200;
const ARRIVAL_LIMIT_MS = 5000;

/// A datagram in its parts.
export interface Arrival {
  text: string;
  identifier: string;
  stated: number;
  /// First column and sound speed of each row, as they stand in it.
  rows: [string, string][];
  time: string[];
  tail: string[];
}

export class SurveySystem {
  private readonly arrived: Buffer[] = [];

  private constructor(private readonly socket: Socket) {
    socket.on("message", (message) => this.arrived.push(message));
  }

  static async listen(): Promise<SurveySystem> {
    for (let i = 0; ; ++i) {
      const socket = createSocket("udp4");
      try {
        socket.bind(PORT, "127.0.0.1");
        await once(socket, "listening");
        return new SurveySystem(socket);
      } catch (error) {
        socket.close();
        if (i === TRIES) throw error;
        await pause(250);
      }
    }
  }

  /// The next datagram, with a right checksum and end.
  async next(): Promise<Arrival> {
    for (let waited = 0; this.arrived.length === 0; waited += 20) {
      assert.ok(waited < ARRIVAL_LIMIT_MS, "no datagram has arrived");
      await pause(20);
    }
    return takenApart((this.arrived.shift() as Buffer).toString("latin1"));
  }

  /// Fails when anything has arrived.
  async assertQuiet(): Promise<void> {
    await pause(300);
    assert.equal(this.arrived.length, 0, "a datagram has arrived");
  }

  async close(): Promise<void> {
    const closed = once(this.socket, "close");
    this.socket.close();
    await closed;
  }
}

/// The parts of a datagram text; fails when its checksum or its end is wrong.
export function takenApart(text: string): Arrival {
  const match = /^\$QZS(\d\d),00000,(\d+),(\d{6}),(\d\d),(\d\d),(\d{4}),([^]*\r\n)([^\r\n]*)\*([0-9A-F]{2})\\\r\n$/.exec(text);
  assert.ok(match, text);
  const [, identifier = "", stated, clock = "", day = "", month = "", year = "", rows = "", tail = "", digits] = match;
  let sum = 0;
  for (let i = 1; i < text.lastIndexOf("*"); ++i) sum ^= text.charCodeAt(i);
  assert.equal(digits, sum.toString(16).toUpperCase().padStart(2, "0"));
  return {
    text,
    identifier,
    stated: Number(stated),
    time: [year, month, day, clock],
    rows: rows.trimEnd().split("\r\n").map((row) => {
      const fields = row.split(",");
      assert.equal(fields.length, 5, row);
      return [fields[0] ?? "", fields[1] ?? ""];
    }),
    tail: tail.split(","),
  };
}
