// The Debian package in a clean Debian 12: installed, its service's program run as its user, used
// through the page, removed. Needs root, since it changes into that system (chroot).
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { chmodSync, copyFileSync, existsSync, mkdtempSync, readFileSync, readdirSync, realpathSync, rmSync, statSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import path from "node:path";
import { after, before, test } from "node:test";
import { inTime } from "./client.mjs";
import { endPrograms, makeTokenDatabase, root, startHost, useAtlas, useEditor } from "./session.mjs";

const system = realpathSync(mkdtempSync(path.join(tmpdir(), "svp-deb-")));
const state = path.join(system, "var/lib/svp-editor");
// A mirror that falls silent is asked again soon, instead of after a quarter of an hour.
const wgetrc = path.join(mkdtempSync(path.join(tmpdir(), "svp-wget-")), "wgetrc");
writeFileSync(wgetrc, "timeout = 30\ntries = 5\n");
const quiet = {
  stdio: ["ignore", "pipe", "pipe"],
  timeout: 400000,
  env: { PATH: "/usr/sbin:/usr/bin:/sbin:/bin", DEBIAN_FRONTEND: "noninteractive", LC_ALL: "C.UTF-8", WGETRC: wgetrc },
};
const apt = ["apt-get", "-o", "Acquire::http::Timeout=30", "-o", "Acquire::Retries=5"];
const inside = (...command) => execFileSync("chroot", [system, ...command], quiet).toString();
let file;
let clean;

/// Every file of the system, and its users and groups, without the state folder, what goes at the
/// next start, and what the packaging system writes about its own work.
function inventory() {
  const files = execFileSync("find", [".", "-xdev", "(", "-path", "./var/lib/svp-editor", "-o", "-path", "./proc",
    "-o", "-path", "./var/cache", "-o", "-path", "./var/log/dpkg.log", "-o", "-path", "./var/log/apt", "-o", "-path", "./var/log/alternatives.log", "-o", "-path", "./var/lib/dpkg", "-o", "-path", "./var/lib/apt",
    "-o", "-path", "./tmp", "-o", "-path", "./run", ")", "-prune", "-o", "-printf", "%p %y %m %u:%g %l\\n"], { cwd: system, maxBuffer: 1 << 26 }).toString();
  return new Set([files, inside("getent", "passwd"), inside("getent", "group")].join("\n").split("\n"));
}

/// What has come and gone since `clean` was written down.
function changes() {
  const now = inventory();
  return {
    come: [...now].filter((line) => !clean.has(line)),
    gone: [...clean].filter((line) => !now.has(line)),
  };
}
const nothing = { come: [], gone: [] };

/// Broken off, debootstrap leaves what it has mounted.
function removeSystem() {
  const mounted = readFileSync("/proc/mounts", "utf8").split("\n").map((line) => line.split(" ")[1] ?? "");
  for (const place of mounted.filter((each) => each.startsWith(`${system}/`)).reverse()) execFileSync("umount", ["-l", place]);
  rmSync(system, { recursive: true, force: true });
}

/// Debian's mirror may fail once.
function makeSystem(attempts = 2) {
  try {
    // Ends what it started with it, which time-outs of this side do not.
    execFileSync("timeout", ["-k", "10", "300", "debootstrap", "--variant=minbase", "bookworm", system, "http://deb.debian.org/debian"], quiet);
  } catch (error) {
    console.error(`debootstrap: ${error.message}\n${error.stdout}`);
    if (attempts === 1) throw error;
    removeSystem();
    makeSystem(attempts - 1);
  }
}

before(() => {
  const packages = path.join(root, "build/packages");
  const debs = readdirSync(packages).filter((name) => /^svp-editor_\d+\.\d+\.\d+_amd64\.deb$/.test(name));
  assert.equal(debs.length, 1, `in ${packages}: ${debs}`);
  makeSystem();
  chmodSync(system, 0o755); // as the root of a system is
  copyFileSync(path.join(packages, debs[0]), path.join(system, "tmp", debs[0]));
  file = `/tmp/${debs[0]}`;
});
after(() => {
  endPrograms();
  removeSystem();
  rmSync(path.dirname(wgetrc), { recursive: true, force: true });
});

test("it installs with what it depends on", () => {
  // Its dependencies first, so that what comes and goes with it alone can be told apart.
  const depends = inside("dpkg-deb", "-f", file, "Depends").split(",").map((each) => each.trim().split(" ")[0]);
  inside(...apt, "update");
  inside(...apt, "install", "-y", "--no-install-recommends", ...depends);
  // As on a machine that starts services.
  inside(...apt, "install", "-y", "--no-install-recommends", "systemd");
  clean = inventory();
  inside("dpkg", "-i", file);
  assert.match(inside("dpkg", "-s", "svp-editor"), /Status: install ok installed/);
  assert.equal(inside("stat", "-c", "%U:%G %a", "/var/lib/svp-editor").trim(), "svp-editor:svp-editor 755");
});

function unitLine(name) {
  const unit = readFileSync(path.join(system, "usr/lib/systemd/system/svp-editor.service"), "utf8");
  return new RegExp(`^${name}=(.*)$`, "m").exec(unit)?.[1];
}

test("its unit is one that systemd understands, and shuts the program in", () => {
  assert.equal(inside("systemd-analyze", "verify", "--man=no", "/usr/lib/systemd/system/svp-editor.service"), "");
  const said = inside("systemd-analyze", "security", "--offline=true", "--no-pager", "/usr/lib/systemd/system/svp-editor.service");
  const exposure = Number(/Overall exposure level for svp-editor\.service: ([\d.]+)/.exec(said)?.[1]);
  assert.ok(exposure < 2, said);
  inside("systemctl", "enable", "svp-editor.service");
  assert.ok(existsSync(path.join(system, "etc/systemd/system/multi-user.target.wants")));
});

test("its service's program serves a cast from opening to sending", async () => {
  const [program, ...args] = unitLine("ExecStart").split(" ");
  assert.match(unitLine("ExecStart"), /--listen 127\.0\.0\.1:8080$/);
  const user = unitLine("User");
  const group = unitLine("Group");
  makeTokenDatabase(path.join(state, "Ardentide/tqrv/tqrv.db"));
  inside("chown", "-R", `${user}:${group}`, "/var/lib/svp-editor");
  // Any free port, since other programs run on this machine; sample casts to have something to open.
  const host = await startHost("chroot", [`--userspec=${user}:${group}`, system, program, ...args,
    "--listen", "127.0.0.1:0", "--samples", "/usr/share/svp-editor/samples"], { env: { PATH: quiet.env.PATH } });
  const ended = new Promise((resolve) => host.process.on("close", resolve));
  try {
    const profiles = path.join(state, "Ardentide/qrvdata/svp_abscoeff");
    await useEditor(host.url, profiles);
    await useAtlas(host.url, profiles);
  } finally {
    host.process.kill("SIGTERM");
  }
  assert.equal(await inTime(ended, "SIGTERM did not stop it"), 0, host.log());
  assert.ok(existsSync(path.join(state, "Ardentide/tqrv/SVPEditor.ini")));
});

test("probe files are converted", () => {
  const said = inside("svp-convert", "/usr/share/svp-editor/samples/edf-xbt.edf", "--to", "/tmp/converted");
  assert.match(said, /EDF probe file; 10 levels, 1\.00 to 60\.00 m/);
  rmSync(path.join(system, "tmp/converted"), { recursive: true });
});

test("removed, it leaves its state folder and nothing else", () => {
  assert.match(inside("dpkg", "-r", "svp-editor"), /the profiles stay in \/var\/lib\/svp-editor/);
  assert.deepEqual(changes(), nothing);
  assert.ok(existsSync(path.join(state, "Ardentide/qrvdata/svp_abscoeff/gespeichert Süd 測深.asvp")));
});

test("installed anew, the profiles belong to its user again", () => {
  inside("dpkg", "-i", file);
  const owner = Number(inside("id", "-u", "svp-editor"));
  assert.equal(statSync(path.join(state, "Ardentide/qrvdata/svp_abscoeff/ocean-full-depth.asvp")).uid, owner);
});

test("a later version takes its place, and its settings and profiles stay", () => {
  const later = path.join(system, "tmp/later");
  inside("dpkg-deb", "-R", file, "/tmp/later");
  const control = path.join(later, "DEBIAN/control");
  const text = readFileSync(control, "utf8");
  writeFileSync(control, text.replace(/^Version: .*$/m, (line) => `${line}.1`));
  inside("dpkg-deb", "-b", "/tmp/later", "/tmp/later.deb");
  const before = readFileSync(path.join(state, "Ardentide/tqrv/SVPEditor.ini"));
  inside("dpkg", "-i", "/tmp/later.deb");
  assert.match(inside("dpkg", "-s", "svp-editor"), /Status: install ok installed[^]*\nVersion: \S+\.1\n/);
  assert.deepEqual(readFileSync(path.join(state, "Ardentide/tqrv/SVPEditor.ini")), before);
  const owner = Number(inside("id", "-u", "svp-editor"));
  assert.equal(statSync(path.join(state, "Ardentide/qrvdata/svp_abscoeff/ocean-full-depth.asvp")).uid, owner);
  assert.ok(existsSync(path.join(system, "usr/bin/svp-host")));
});

test("purged, it keeps the profiles and nothing else; an empty state folder goes too", () => {
  inside("dpkg", "-P", "svp-editor");
  assert.deepEqual(changes(), nothing);
  assert.deepEqual(readdirSync(path.join(system, "var/lib/dpkg/info")).filter((name) => name.startsWith("svp-editor")), []);
  assert.ok(existsSync(state));
  rmSync(state, { recursive: true });
  inside("dpkg", "-i", file);
  inside("dpkg", "-P", "svp-editor");
  assert.ok(!existsSync(state));
  assert.deepEqual(changes(), nothing);
});
