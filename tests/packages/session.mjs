// What a surveyor does with an installed program: opens a cast, checks it, saves it under another
// name, and sends it to the survey system, whose place tools/qrv-listen takes.
import assert from "node:assert/strict";
import { execFileSync, spawn } from "node:child_process";
import { mkdirSync, readFileSync, readdirSync, writeFileSync } from "node:fs";
import path from "node:path";
import { fileURLToPath } from "node:url";
import { Page, fetchText, inTime } from "./client.mjs";

export const root = path.dirname(path.dirname(path.dirname(fileURLToPath(import.meta.url))));

const started = [];

/// Starts a program that is ended with the tests, however they end: they would wait for it.
export function start(command, args, options) {
  const program = spawn(command, args, options);
  started.push(program);
  return program;
}

/// What every file of tests calls after them.
export function endPrograms() {
  for (const program of started) {
    program.kill("SIGKILL");
    // What it has started in its turn may still hold these open.
    for (const stream of program.stdio) stream?.destroy();
  }
}

/// Starts a program; resolves with {process, url} once the host says its address on stdout.
export async function startHost(command, args, options = {}) {
  const host = start(command, args, { stdio: ["ignore", "pipe", "pipe"], ...options });
  let out = "";
  let log = "";
  host.stderr.on("data", (text) => (log += text));
  const address = new Promise((resolve, reject) => {
    host.stdout.on("data", (text) => {
      out += text;
      const url = /^(http:\/\/\S+)\r?\n/m.exec(out)?.[1];
      if (url) resolve(url);
    });
    host.on("exit", (code, signal) => reject(new Error(`the host ended with ${code ?? signal}`)));
    host.on("error", reject);
  });
  try {
    return { process: host, url: await inTime(address, "no address came", 60000), log: () => log };
  } catch (error) {
    host.kill("SIGKILL");
    throw new Error(`${error.message}\n${out}\n${log}`);
  }
}

/// The listener in the survey system's place; `datagram` resolves with what it says of the first
/// one that comes. The port is one for the whole machine: whoever has it is waited for.
async function listenForDatagram() {
  for (let round = 0; round < 60; ++round) {
    const listener = start(process.execPath, [path.join(root, "tools/qrv-listen"), "--count", "1"]);
    let text = "";
    const ended = new Promise((resolve) => listener.on("close", (code) => resolve({ code, text })));
    const isListening = new Promise((resolve) =>
      listener.stdout.on("data", (part) => {
        text += part;
        if (text.includes("Listening")) resolve(true);
      }));
    const comes = Promise.race([isListening, ended.then(() => false)]);
    if (await inTime(comes, "the listener does not say that it listens")) return { listener, datagram: ended };
    await new Promise((resolve) => setTimeout(resolve, 1000));
  }
  throw new Error("UDP port 14002 stays taken");
}

function assertSuccess(reply) {
  assert.equal(reply.result, "SUCCESS", JSON.stringify(reply));
}

/// `profiles` is the folder of profiles as this side sees it.
export async function useEditor(url, profiles) {
  const front = await fetchText(`${url}/`);
  assert.equal(front.status, 200);
  const script = /src="([^"]+\.js)"/.exec(front.body)?.[1];
  assert.ok(script, "the page has no script");
  const loaded = await fetchText(new URL(script, `${url}/`));
  assert.equal(loaded.status, 200);
  assert.equal(loaded.body, readFileSync(path.join(root, "web/dist", script), "utf8"));

  const { casts } = JSON.parse((await fetchText(`${url}/api/casts`)).body);
  assert.ok(casts.some((cast) => cast.name === "ocean-full-depth.asvp"), JSON.stringify(casts));

  const page = await Page.open(url);
  try {
    const cast = await page.ask("SVP_OpenSVP", "[ocean-full-depth.asvp,asvp]");
    assertSuccess(cast);
    const lines = readFileSync(path.join(root, "examples/ocean-full-depth.asvp"), "latin1").trim().split(/\r?\n/);
    const rows = lines.slice(1).map((line) => line.trim().split(/\s+/).map(Number));
    assert.deepEqual(cast.svp_Depth, rows.map(([depth]) => Math.fround(depth)));
    assert.deepEqual(cast.svp_Speed, rows.map(([, speed]) => Math.fround(speed)));

    const speeds = rows.map(([, speed]) => speed).join(",");
    const depths = rows.map(([depth]) => depth).join(",");
    const lists = `${speeds};${depths};0;0;0;0;0`;
    const head = `1.0*0*${cast.hsvp_filetime}*${cast.hsvp_filelat}*${cast.hsvp_filelon}*0*0*0*source*NA*${rows.length}`;
    const check = await page.ask("CheckProfile", `[${lists}*cast.asvp*SoundVelocity*${head}*NA]`);
    assertSuccess(check);
    assert.equal(check.tofix, "Existing profile depths and sound speeds are valid.");
    const bad = await page.ask("CheckProfile", `[${lists.replace(speeds, speeds.replace(/^[\d.]+/, "1822.4"))}*cast.asvp*SoundVelocity*${head}*NA]`);
    assert.deepEqual(bad.svpX, [Math.fround(1822.4)]);

    const name = "gespeichert Süd 測深";
    const pairs = rows.map((row) => row.join(",")).join(",");
    const saved = await page.ask("SVP_SaveAs",
      `[${pairs}*${name}*SoundVelocity*1.0*0*${cast.hsvp_filetime}*41.25*N*-29.7333*W*0*0*0*source*NA]`);
    assertSuccess(saved);
    assert.ok(saved.fullname.endsWith(`/${name}.asvp`), saved.fullname);
    const text = readFileSync(path.join(profiles, `${name}.asvp`), "latin1");
    assert.equal(text.replace(/^.*\r\n/, ""),
      rows.map(([depth, speed]) => `${depth.toFixed(2)} ${speed.toFixed(2)}\r\n`).join(""));
    const reopened = await page.ask("SVP_OpenSVP", `[${name}.asvp,asvp]`);
    assertSuccess(reopened);
    assert.deepEqual(reopened.svp_Speed, cast.svp_Speed);

    const { listener, datagram } = await listenForDatagram();
    try {
      assertSuccess(await page.ask("SendSVPtoQRV", `[0*cast.asvp*${lists}*00*${head}*sent]`));
      const arrived = await inTime(datagram, "no datagram came");
      assert.match(arrived.text, /Verdict: +sound/);
      assert.match(arrived.text, new RegExp(`Samples: +${rows.length} stated, ${rows.length} found`));
      assert.match(arrived.text, /Position: +41° 15\.0000′ N, 29° 43\.\d+′ W/);
      assert.equal(arrived.code, 0);
    } finally {
      listener.kill();
    }
  } finally {
    page.close();
  }
}

/// The survey system's database of tokens, with the atlas off and an older file in its settings.
export function makeTokenDatabase(file) {
  mkdirSync(path.dirname(file), { recursive: true });
  execFileSync("sqlite3", [file], { input: `
    create table token_value (value_id integer, token text, description_id integer);
    create table float_values (id integer primary key, value real);
    create table integer_values (id integer primary key, value integer);
    create table varchar_values (id integer primary key, value varchar(200));
    create table descriptions (id integer primary key, description text);
    create table descriptions_language (id integer, language integer, description_id integer);
    insert into integer_values values (1, 0);
    insert into varchar_values values (2, '${olderAtlas}');
    insert into token_value values (1, 'SVP_WOA_EXTEND', 1), (2, 'SVP_WOA_FILE_S', 2);` });
}
const olderAtlas = "C:\\alt\\größe 測.csv";

/// Tokens out of the database, files of the atlas and of an extension under names of any letters,
/// and a cast that is fixed with them. `profiles` is the folder of profiles as this side sees it.
export async function useAtlas(url, profiles) {
  const json = (reply) => {
    assert.equal(reply.status, 200, reply.body);
    return JSON.parse(reply.body);
  };
  const earlier = json(await fetchText(`${url}/api/atlas`));
  assert.equal(earlier.use, false);
  assert.equal(earlier.salinity.path, olderAtlas);

  const title = "made up\nDEPTHS (M):0,100,450,1000,5500\n";
  const salinities = `${title}59.5,10.5,35,35.1,35,34.9,34.7\n`;
  const upload = async (kind, text) =>
    json(await fetchText(`${url}/api/atlas/${kind}?name=${encodeURIComponent(`Süd 測深 ${kind}.csv`)}`, text)).path;
  const salinity = await upload("salinity", salinities);
  const temperature = await upload("temperature", `${title}59.5,10.5,12,8,6.5,3.5,2\n`);
  const root = path.dirname(path.dirname(profiles));
  assert.equal(readFileSync(path.join(root, "qrvdata/woa/Süd 測深 salinity.csv"), "utf8"), salinities);
  const chosen = json(await fetchText(`${url}/api/atlas`, JSON.stringify({ use: true, salinity, temperature })));
  assert.deepEqual([chosen.use, chosen.salinity.there, chosen.salinity.fault, chosen.temperature.fault], [true, true, "", ""]);
  assert.ok(readdirSync(path.join(root, "tqrv")).includes("QRVTokens.json"));

  writeFileSync(path.join(profiles, "tief Süd 測深.txt"), "//\r\n500 1480\r\n12000 1600\r\n");
  const page = await Page.open(url);
  try {
    const extended = await page.ask("ExtendWithFile", "[1500,1490*0,100*tief Süd 測深.txt]");
    assertSuccess(extended);
    assert.deepEqual([extended.svpY, extended.svpX], [[0, 100, 500, 12000], [1500, 1490, 1480, 1600]]);

    const fixed = await page.ask("FixProfile",
      "[1501,1499,1498,1496,1490,1480;0,50,60,70,100,400*Süd 測深.asvp*SoundVelocity*1.0*0*20261115123456*59.5*10.25*0*0*0*sample*NA*6*NA*0.01]");
    assertSuccess(fixed);
    assert.equal(fixed.file, "Süd 測深_fixed.asvp");
    await page.next(); // how it compares with the cast as it was
    const row = readFileSync(path.join(profiles, fixed.file), "latin1").split("\r\n").find((line) => line.startsWith("450.00 "));
    // The equation of Leroy and others in depth, which holds within 0.2 m/s, gives 1483.95.
    assert.ok(Math.abs(Number(row.split(" ")[1]) - 1483.95) < 0.2, row);
  } finally {
    page.close();
  }
}
