// A page without a browser: fetches files from a host and talks to its engine over a web socket.
import { createHash, randomBytes } from "node:crypto";
import { request } from "node:http";

const PATIENCE = 60000; // ms

/// The outcome of a promise, or an error with the complaint if that takes longer.
export function inTime(promise, complaint, patience = PATIENCE) {
  return new Promise((resolve, reject) => {
    const timer = setTimeout(() => reject(new Error(complaint)), patience);
    promise.then(resolve, reject).finally(() => clearTimeout(timer));
  });
}

/// Fetches a page; with a body, sends that by PUT.
export function fetchText(url, body) {
  let asking;
  const answer = new Promise((resolve, reject) => {
    asking = request(url, { method: body === undefined ? "GET" : "PUT" }, (response) => {
      const parts = [];
      response.on("data", (part) => parts.push(part));
      response.on("end", () => resolve({ status: response.statusCode, body: Buffer.concat(parts).toString("utf8") }));
    }).on("error", reject);
    asking.end(body);
  });
  return inTime(answer, `no answer from ${url}`).finally(() => asking?.destroy());
}

function masked(text) {
  const payload = Buffer.from(text, "utf8");
  const key = randomBytes(4);
  // The shortest form of the length is the only one that is allowed.
  let head = Buffer.from([0x81, 0x80 | payload.length]);
  if (payload.length > 0xffff) {
    head = Buffer.from([0x81, 0x80 | 127, 0, 0, 0, 0, 0, 0, 0, 0]);
    head.writeBigUInt64BE(BigInt(payload.length), 2);
  } else if (payload.length > 125) {
    head = Buffer.from([0x81, 0x80 | 126, 0, 0]);
    head.writeUInt16BE(payload.length, 2);
  }
  return Buffer.concat([head, key, payload.map((byte, i) => byte ^ key[i % 4])]);
}

/// The frame at the start of the bytes: {isLast, kind, payload, size}, or null if it is not whole.
function frameOf(bytes) {
  if (bytes.length < 2) return null;
  let length = bytes[1] & 0x7f;
  let start = 2;
  if (length === 126) {
    if (bytes.length < 4) return null;
    length = bytes.readUInt16BE(2);
    start = 4;
  } else if (length === 127) {
    if (bytes.length < 10) return null;
    length = Number(bytes.readBigUInt64BE(2));
    start = 10;
  }
  if (bytes.length < start + length) return null;
  return {
    isLast: (bytes[0] & 0x80) !== 0,
    kind: bytes[0] & 0x0f,
    payload: bytes.subarray(start, start + length),
    size: start + length,
  };
}

export class Page {
  #socket;
  #bytes = Buffer.alloc(0);
  #message = [];
  #packets = [];
  #waiting = [];

  static open(url) {
    let opening;
    const opened = new Promise((resolve, reject) => {
      const key = randomBytes(16).toString("base64");
      opening = request(`${url}/ws`, {
        headers: { Connection: "Upgrade", Upgrade: "websocket", "Sec-WebSocket-Version": "13", "Sec-WebSocket-Key": key },
      });
      opening.on("upgrade", (response, socket, head) => {
        const wanted = createHash("sha1").update(`${key}258EAFA5-E914-47DA-95CA-C5AB0DC85B11`).digest("base64");
        if (response.headers["sec-websocket-accept"] !== wanted) return reject(new Error("not a web socket"));
        const page = new Page();
        page.#socket = socket;
        socket.on("data", (part) => page.#take(part));
        socket.on("error", () => {}); // whoever asks is told that no answer came
        page.#take(head);
        resolve(page);
      });
      opening.on("response", (response) => reject(new Error(`web socket refused: ${response.statusCode}`)));
      opening.on("error", reject);
      opening.end();
    });
    return inTime(opened, `no web socket at ${url}`).catch((error) => {
      opening?.destroy();
      throw error;
    });
  }

  #take(part) {
    this.#bytes = Buffer.concat([this.#bytes, part]);
    for (let frame = frameOf(this.#bytes); frame; frame = frameOf(this.#bytes)) {
      this.#bytes = this.#bytes.subarray(frame.size);
      if (frame.kind > 2) continue; // pings and closings
      this.#message.push(frame.payload);
      if (!frame.isLast) continue;
      const packet = JSON.parse(Buffer.concat(this.#message).toString("utf8")).packet;
      this.#message = [];
      const waiting = this.#waiting.shift();
      if (waiting) waiting(packet);
      else this.#packets.push(packet);
    }
  }

  /// Sends an action and returns the first packet that comes then.
  ask(action, body) {
    this.#packets = [];
    this.#socket.write(masked(JSON.stringify({
      name: "SVP_WebInterface",
      data: `page,ACTION=SVP_WebInterface/${action},${body}`,
    })));
    return this.next(`no answer to ${action}`);
  }

  /// The next packet that comes after the one that was returned last.
  next(complaint = "no further packet") {
    if (this.#packets.length > 0) return Promise.resolve(this.#packets.shift());
    return inTime(new Promise((resolve) => this.#waiting.push(resolve)), complaint);
  }

  close() {
    this.#socket.destroy();
  }
}
