// The Windows package as a user has it: unpacked into an empty folder, with nothing of the build
// in reach, run by wine.
import assert from "node:assert/strict";
import { execFileSync, spawnSync } from "node:child_process";
import { mkdtempSync, mkdirSync, readdirSync, readFileSync, rmSync, existsSync } from "node:fs";
import { tmpdir } from "node:os";
import path from "node:path";
import { after, before, test } from "node:test";
import { fetchText, inTime } from "./client.mjs";
import { endPrograms, makeTokenDatabase, root, start, startHost, useAtlas, useEditor } from "./session.mjs";

const folder = mkdtempSync(path.join(tmpdir(), "svp-zip-"));
const packages = path.join(root, "build/packages");
let unpacked;

const wine = path.join(root, "tools/windows/wine-run");
const bare = { cwd: "", env: { ...process.env, SVP_BARE: "1" } };
const windowsPath = (name) => `Z:${name.replaceAll("/", "\\")}`;

before(() => {
  const zips = readdirSync(packages).filter((name) => /^svp-editor-\d+\.\d+\.\d+-windows\.zip$/.test(name));
  assert.equal(zips.length, 1, `in ${packages}: ${zips}`);
  execFileSync("unzip", ["-q", path.join(packages, zips[0]), "-d", folder]);
  assert.deepEqual(readdirSync(folder), [zips[0].replace(/\.zip$/, "")]);
  unpacked = path.join(folder, zips[0].replace(/\.zip$/, ""));
  bare.cwd = unpacked;
});
after(() => {
  endPrograms();
  rmSync(folder, { recursive: true, force: true });
});

/// What every Windows has of itself.
const OF_WINDOWS = ["advapi32", "bcrypt", "dnsapi", "iphlpapi", "kernel32", "mpr", "mswsock", "msvcrt", "netapi32", "ole32",
  "shell32", "user32", "userenv", "version", "winmm", "ws2_32"];

const filesBelow = (place) =>
  execFileSync("find", [".", "-type", "f", "-printf", "%P\n"], { cwd: place }).toString().trim().split("\n");

const imports = (file) =>
  [...execFileSync("x86_64-w64-mingw32-objdump", ["-p", file], { maxBuffer: 1 << 28 }).toString().matchAll(/DLL Name: (\S+)/g)]
    .map(([, name]) => name.toLowerCase());

test("every library that is needed is there, and no other", () => {
  const libraries = readdirSync(unpacked).filter((name) => /\.dll$/i.test(name));
  const needed = new Set();
  const queue = ["svp-host.exe", "svp-convert.exe", "svpwebinterface.dll", "sqldrivers/qsqlite.dll"];
  while (queue.length > 0) {
    for (const name of imports(path.join(unpacked, queue.pop()))) {
      const own = libraries.find((library) => library.toLowerCase() === name);
      if (own && !needed.has(own)) {
        needed.add(own);
        queue.push(own);
      } else if (!own) {
        assert.ok(OF_WINDOWS.includes(name.replace(/\.dll$/, "")), name);
      }
    }
  }
  assert.deepEqual([...needed].sort(), libraries.filter((name) => name !== "svpwebinterface.dll").sort());
  for (const name of ["Qt5Core.dll", "Qt5Network.dll", "Qt5Sql.dll"]) assert.ok(needed.has(name), name);

  const others = filesBelow(unpacked).filter((name) => !libraries.includes(name) && !name.startsWith("licences/"));
  const page = filesBelow(path.join(root, "web/dist")).filter((name) => !name.endsWith(".map"));
  assert.deepEqual(others.sort(), [
    "README.txt", "sqldrivers/qsqlite.dll", "svp-convert.exe", "svp-host.exe",
    ...filesBelow(path.join(root, "examples")).map((name) => `samples/${name}`),
    ...page.map((name) => `web/${name}`),
  ].sort());
});

test("the terms of what is passed on are there", () => {
  const licences = readdirSync(path.join(unpacked, "licences")).sort();
  assert.deepEqual(licences, ["boost.txt", "gcc-runtime.txt", "mingw-runtime.txt", "page.txt", "qt"]);
  const qt = path.join(unpacked, "licences/qt");
  for (const name of ["LICENSE.LGPL3", "LICENSE.GPL3", "qt-copyright.txt"]) assert.ok(existsSync(path.join(qt, name)), name);
  const sources = readFileSync(path.join(qt, "sources.txt"), "utf8");
  assert.match(sources, /^qtbase-opensource-src_5\.15\S*\.dsc$/m);
  assert.match(sources, /^sqlite3_\S+\.dsc$/m);
  assert.match(sources, /-xplatform win32-g\+\+/);
  assert.match(readFileSync(path.join(unpacked, "README.txt"), "utf8"), /svp-host\.exe/);
});

test("started by a double click it finds its parts beside itself and makes its folders", async () => {
  const drive = path.join(process.env.SVP_WINE ?? path.join(root, "build/windows/wine"), "prefix/drive_c");
  const made = path.join(drive, "ProgramData/Ardentide");
  rmSync(made, { recursive: true, force: true });
  // Any free port, since other programs run on this machine.
  const host = await startHost(wine, ["svp-host.exe", "--listen", "127.0.0.1:0"], bare);
  try {
    const front = await fetchText(`${host.url}/`);
    assert.equal(front.body, readFileSync(path.join(root, "web/dist/index.html"), "utf8"));
    const { folder: profiles, casts } = JSON.parse((await fetchText(`${host.url}/api/casts`)).body);
    assert.equal(profiles, "C:/ProgramData/Ardentide/qrvdata/svp_abscoeff");
    assert.deepEqual(casts, []);
    assert.ok(existsSync(path.join(made, "tqrv/SVPEditor.ini")));
    assert.ok(existsSync(path.join(made, "qrvdata/svp_abscoeff/SVPExtension.txt")));
  } finally {
    host.process.kill();
    rmSync(made, { recursive: true });
  }
});

const deep = ["Süd 測深", ..."abcdefgh"].map((letter) => letter.repeat(letter.length > 1 ? 1 : 40)).join("/");

for (const [what, place] of [["of any letters", "Daten Süd 測深 & more"], ["of more than 260 letters", deep]]) {
  test(`the host starts where it was unpacked and serves a cast from opening to sending: data root ${what}`, async () => {
    const data = path.join(folder, place);
    // What of the survey system has its fixed place on the drive C.
    const drive = path.join(process.env.SVP_WINE ?? path.join(root, "build/windows/wine"), "prefix/drive_c");
    const database = path.join(drive, "ProgramData/Ardentide/tqrv/tqrv.db");
    rmSync(database, { force: true });
    makeTokenDatabase(database);
    const host = await startHost(wine,
      ["svp-host.exe", "--data", windowsPath(data), "--samples", "samples", "--listen", "127.0.0.1:0"], bare);
    try {
      const profiles = path.join(data, "Ardentide/qrvdata/svp_abscoeff");
      await useEditor(host.url, profiles);
      await useAtlas(host.url, profiles);
      const settings = readFileSync(path.join(data, "Ardentide/tqrv/SVPEditor.ini"), "latin1");
      assert.match(settings, /\r\n\[iniVer\]\r\nSVPEditorVersion=8\r\n/);
      assert.ok(existsSync(path.join(profiles, "SVPExtension.txt")));
    } finally {
      host.process.kill();
      rmSync(database);
    }
  });
}

test("Ctrl+C in its window stops the host", async () => {
  // script(1) is the window; it takes what is typed from its input.
  const data = path.join(folder, "window");
  const shell = (word) => `'${word.replaceAll("'", "'\\''")}'`;
  const command = [wine, "svp-host.exe", "--data", windowsPath(data), "--listen", "127.0.0.1:0"].map(shell).join(" ");
  const said = path.join(folder, "said");
  const window = start("script", ["-qefc", `exec ${command} >${shell(said)} 2>&1`, "/dev/null"],
    { ...bare, stdio: ["pipe", "ignore", "ignore"] });
  const ended = new Promise((resolve) => window.on("exit", resolve));
  let address = "";
  for (let i = 0; i < 600 && !address; ++i) {
    await new Promise((resolve) => setTimeout(resolve, 100));
    address = existsSync(said) ? /^http:\S+(?=\r?\n)/m.exec(readFileSync(said, "utf8"))?.[0] ?? "" : "";
  }
  assert.ok(address, existsSync(said) ? readFileSync(said, "utf8") : "nothing was said");
  assert.equal((await fetchText(`${address}/`)).status, 200);
  window.stdin.on("error", () => {}); // if it is gone already, its end tells
  window.stdin.write("\x03");
  assert.equal(await inTime(ended, "Ctrl+C did not stop it"), 0, readFileSync(said, "utf8"));
  await assert.rejects(fetchText(`${address}/`));
});

test("a start that fails says why", () => {
  const { status, stdout, stderr } = spawnSync(wine, ["svp-host.exe", "--web", "none"], { ...bare, timeout: 60000, encoding: "utf8" });
  assert.match(stdout + stderr, /^svp-host: --web: there is no folder .*none\.\r?\n$/);
  assert.ok(status > 0, `${status}`);
});

test("probe files are converted", () => {
  const to = path.join(folder, "Profile für 測深");
  mkdirSync(to);
  const said = execFileSync(wine, ["svp-convert.exe", "samples\\edf-xbt.edf", "--to", windowsPath(to)], { ...bare, timeout: 60000 }).toString();
  assert.match(said, /EDF probe file; 10 levels, 1\.00 to 60\.00 m/);
  assert.deepEqual(readdirSync(to), ["edf-xbt.asvp"]);
});
