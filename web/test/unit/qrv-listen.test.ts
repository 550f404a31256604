/// The listener that stands in for the survey system, run as a program of its own.
import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { createSocket } from "node:dgram";
import { once } from "node:events";
import { resolve } from "node:path";
import { test } from "node:test";

const LISTENER = resolve("../tools/qrv-listen");

/// A datagram with the checksum that belongs to it.
function sealed(text: string, behind = ""): Buffer {
  let sum = 0;
  for (const byte of Buffer.from(text.slice(1, text.lastIndexOf("*")))) sum ^= byte;
  const digits = sum.toString(16).toUpperCase().padStart(2, "0");
  return Buffer.from(`${text}${digits}\\\r\n${behind}`);
}

const HEAD = "$QZS00,00000,3,123456,15,11,2026,";
const ROWS = "0.00,1500.00,,,\r\n10.13,1499.99,,,\r\n12000.00,1550.10,,,\r\n";
const TAIL = "5930.000000,N,1015.000000,W,,,calm, grey sea*";
const SOUND = sealed(HEAD + ROWS + TAIL);

/// What the listener prints about some datagrams, and its exit code.
async function listen(...datagrams: Buffer[]): Promise<{ output: string; code: number | null }> {
  const child = spawn(LISTENER, ["--port", "0", "--count", String(datagrams.length)]);
  let output = "";
  const socket = createSocket("udp4");
  try {
    child.stdout.on("data", (text: Buffer) => {
      const isFirst = output === "";
      output += text.toString();
      const port = /^Listening on UDP 127\.0\.0\.1:(\d+)$/m.exec(output)?.[1];
      if (!isFirst || !port) return;
      for (const datagram of datagrams) socket.send(datagram, Number(port), "127.0.0.1");
    });
    const [code] = (await once(child, "close", { signal: AbortSignal.timeout(60_000) })) as [number | null];
    return { output, code };
  } finally {
    child.kill();
    socket.close();
  }
}

test("a sound datagram is told in full, with its verdict", async () => {
  const { output, code } = await listen(SOUND);
  const told = (name: string) => new RegExp(`^  ${name}: +(.*)$`, "m").exec(output)?.[1];
  assert.match(output, new RegExp(`UTC  ${SOUND.length} bytes from 127\\.0\\.0\\.1`));
  assert.equal(told("Sentence"), "$QZS00");
  assert.equal(told("Identifier"), "00");
  assert.equal(told("Samples"), "3 stated, 3 found");
  assert.equal(told("Time"), "2026-11-15 12:34:56 UTC");
  assert.equal(told("Position"), "59° 30.0000′ N, 10° 15.0000′ W");
  assert.equal(told("First row"), "0.00,1500.00,,,");
  assert.equal(told("Last row"), "12000.00,1550.10,,,");
  assert.equal(told("Comment"), "calm, grey sea");
  assert.match(told("Checksum") ?? "", /^[0-9A-F]{2}, right$/);
  assert.equal(told("Verdict"), "sound");
  assert.equal(code, 0);
});

test("the zero byte of the short form is allowed, and said", async () => {
  const { output, code } = await listen(sealed(HEAD + ROWS + TAIL, "\0"));
  assert.match(output, /Zero byte: .*short form/);
  assert.match(output, /Verdict: +sound/);
  assert.equal(code, 0);
});

const text = HEAD + ROWS + TAIL;
const faults: [string, Buffer, RegExp][] = [
  ["a wrong checksum", Buffer.from(SOUND.toString().replace("1500.00", "1500.10")), /checksum is wrong/],
  ["no dollar", sealed(text.replace("$", "#")), /does not begin with "\$"/],
  ["another sentence", sealed(text.replace("QZS", "QZX")), /fourth byte/],
  ["an illegal identifier", sealed(text.replace("S00", "S08")), /"08" is not legal/],
  ["an identifier of three digits", sealed(text.replace("S00", "S001")), /"001" is not legal/],
  ["a wrong count", sealed(text.replace(",3,", ",4,")), /4 samples are stated, 3 found/],
  ["no samples", sealed(HEAD.replace(",3,", ",0,") + TAIL), /0 samples: 1 to 1000/],
  ["too many samples", sealed(HEAD.replace(",3,", ",1001,") + "1.00,1500.00,,,\r\n".repeat(1001) + TAIL), /1001 samples: 1 to 1000/],
  ["a row of four fields", sealed(text.replace("1499.99,,,", "1499.99,,")), /row 2 has 4 fields/],
  ["a row with a word", sealed(text.replace("1499.99", "fast")), /row 2 holds what is no number/],
  ["hour 24", sealed(text.replace("123456", "240000")), /time "240000"/],
  ["minute 60", sealed(text.replace("123456", "126000")), /time "126000"/],
  ["day 0", sealed(text.replace(",15,", ",0,")), /day "0"/],
  ["month 13", sealed(text.replace(",11,", ",13,")), /month "13"/],
  ["a year of five digits", sealed(text.replace("2026", "20260")), /year "20260"/],
  ["hemisphere E for a latitude", sealed(text.replace(",N,", ",E,")), /hemisphere "E"/],
  ["more than 60 minutes", sealed(text.replace("5930", "5970")), /more than 60 minutes/],
  ["a latitude beyond the pole", sealed(text.replace("5930", "9130")), /beyond 90/],
  ["a signed coordinate", sealed(text.replace("1015", "-1015")), /"-1015.000000" is no coordinate/],
  ["no end", SOUND.subarray(0, -3), /does not end in a backslash/],
  ["no checksum", Buffer.from(text.replace("*", "\\\r\n")), /no "\*" ends the comment/],
];
test("each fault is named, and one of them makes the whole run fail", async () => {
  const { output, code } = await listen(SOUND, ...faults.map(([, datagram]) => datagram));
  const verdicts = output.split("\n").filter((line) => line.startsWith("  Verdict:"));
  assert.equal(verdicts.length, faults.length + 1);
  assert.match(verdicts[0] ?? "", /sound$/);
  faults.forEach(([name, , words], i) => {
    assert.match(verdicts[i + 1] ?? "", /NOT SOUND/, name);
    assert.match(verdicts[i + 1] ?? "", words, name);
  });
  assert.equal(code, 1);
});

test("junk of any kind is survived, and cannot steer the terminal", async () => {
  const cuts = Array.from({ length: SOUND.length }, (_, i) => SOUND.subarray(0, i));
  const noise = Buffer.from(Array.from({ length: 500 }, (_, i) => (i * 151 + 27) % 256));
  const { output, code } = await listen(noise, Buffer.from("$QZS\u001b[2J,"), ...cuts.slice(0, 60));
  assert.equal(output.match(/NOT SOUND/g)?.length, 62);
  assert.ok(!output.includes("\u001b"));
  assert.equal(code, 1);
});

test("it explains itself, and refuses what it does not know", async () => {
  for (const [words, code, said] of [
    [["--help"], 0, "Usage:"], [["--nonsense"], 2, "cannot read"], [["--count", "0"], 2, "cannot read"],
    [["--port"], 2, "cannot read"], [["--port", "70000"], 2, "cannot read"],
  ] as const) {
    const child = spawn(LISTENER, words);
    let output = "";
    child.stdout.on("data", (part: Buffer) => (output += part.toString()));
    child.stderr.on("data", (part: Buffer) => (output += part.toString()));
    assert.deepEqual(await once(child, "close"), [code, null], words.join(" "));
    assert.ok(output.includes(said), output);
  }
});

test("a taken port is told", async () => {
  const socket = createSocket("udp4");
  socket.bind(0, "127.0.0.1");
  await once(socket, "listening");
  const child = spawn(LISTENER, ["--port", String(socket.address().port)]);
  let output = "";
  child.stderr.on("data", (part: Buffer) => (output += part.toString()));
  const [code] = (await once(child, "close")) as [number | null];
  socket.close();
  assert.equal(code, 2);
  assert.match(output, /is taken/);
});
