#!/usr/bin/env node
// Checks the form of the C++ sources: clang-format on all of them, clang-tidy and clazy on what
// has changed. A source whose preprocessed text, configuration and tools are the same as when it
// was last found clean is not looked at again; what was clean is remembered in the user's cache
// folder, so that a fresh clone on the same machine profits too.
//
// Usage: tools/lint.mjs [--all]     --all looks at every source again
import { spawn } from "node:child_process";
import { createHash } from "node:crypto";
import { copyFileSync, existsSync, mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { cpus, homedir } from "node:os";
import path from "node:path";
import { fileURLToPath } from "node:url";

const root = path.dirname(path.dirname(fileURLToPath(import.meta.url)));
process.chdir(root);
const checkAll = process.argv.includes("--all");
const cache = path.join(process.env.XDG_CACHE_HOME ?? path.join(homedir(), ".cache"), "svp-editor-lint");
mkdirSync(cache, { recursive: true });

function run(command, args) {
  return new Promise((resolve) => {
    const child = spawn(command, args, { stdio: ["ignore", "pipe", "pipe"] });
    const out = [];
    const err = [];
    child.stdout.on("data", (data) => out.push(data));
    child.stderr.on("data", (data) => err.push(data));
    child.on("error", (error) => resolve({ code: 127, out: "", err: String(error) }));
    child.on("close", (code) =>
      resolve({ code, out: Buffer.concat(out).toString(), err: Buffer.concat(err).toString() }));
  });
}

const tracked = (await run("git", ["ls-files", "-co", "--exclude-standard", "*.cpp", "*.h"])).out
  .split("\n").filter((file) => file && existsSync(file));

const format = await run("clang-format", ["--dry-run", "-Werror", ...tracked]);
if (format.code !== 0) {
  process.stderr.write(format.err);
  console.error("lint: run clang-format -i on these files");
  process.exit(1);
}
console.log(`format: ${tracked.length} files clean`);

// Sources of the one build that these tools do not take part in.
const isOfWindows = (file) => /windows(_test)?\.cpp$|^tests\/support\/hold_file\.cpp$/.test(file);
// Which build knows how a source is compiled.
const commands = new Map();
for (const preset of ["dev", "release", "fuzz"]) {
  const file = `build/${preset}/compile_commands.json`;
  if (!existsSync(file)) continue;
  for (const entry of JSON.parse(readFileSync(file, "utf8"))) {
    const source = path.relative(root, path.resolve(entry.directory, entry.file));
    // Without precompiled headers, which are another compiler's and would hide an include that a
    // source lacks.
    const command = entry.command.replaceAll(/ -include \S+\/cmake_pch\.hxx| -Winvalid-pch| -fpch-preprocess/g, "");
    if (!commands.has(source)) commands.set(source, { ...entry, command });
  }
}
const unknown = tracked.filter((file) => file.endsWith(".cpp") && !commands.has(file) && !isOfWindows(file));
if (unknown.length > 0) {
  console.error(`lint: no build here knows how these are compiled: ${unknown.join(" ")}\n` +
    "lint: run tools/build dev, and cmake --preset release and --preset fuzz");
  process.exit(1);
}
const database = "build/lint";
mkdirSync(database, { recursive: true });

const versions = (await run("clang-tidy", ["--version"])).out + (await run("clazy-standalone", ["--version"])).out;
// Folders may have a configuration of their own.
const ownConfigs = (await run("git", ["ls-files", "*/.clang-tidy"])).out.split("\n").filter(Boolean);
const config = [".clang-tidy", ...ownConfigs].map((file) => readFileSync(file, "utf8")).join("") + readFileSync(fileURLToPath(import.meta.url), "utf8");

// What each object was made of, as the builds have it.
const headersOf = new Map();
for (const preset of ["dev", "release", "fuzz"]) {
  if (!existsSync(`build/${preset}/.ninja_deps`)) continue;
  let headers;
  for (const line of (await run("ninja", ["-C", `build/${preset}`, "-t", "deps"])).out.split("\n")) {
    if (line.startsWith("    ")) headers?.push(path.resolve(`build/${preset}`, line.trim()));
    else if (/: #deps .*\(VALID\)$/.test(line)) headersOf.set(path.resolve(`build/${preset}`, line.replace(/: #deps .*/, "")), headers = []);
  }
}
const hashes = new Map();
function hashOf(file) {
  if (!hashes.has(file)) hashes.set(file, existsSync(file) ? createHash("sha256").update(readFileSync(file)).digest("hex") : "none");
  return hashes.get(file);
}

// The content of a source and of all that it includes, as a name for "this was clean". Compiler flags
// are in it too. Null for what has not been built.
const strip = (text) => text.replaceAll(root, "");
function fingerprint(source) {
  const entry = commands.get(source);
  const object = path.resolve(entry.directory, /-o (\S+)/.exec(entry.command)?.[1] ?? "");
  const headers = headersOf.get(object);
  if (!headers) return null;
  const all = new Set(headers.flatMap((file) => (file.endsWith(".gch") ? headersOf.get(file) ?? [file] : [file])));
  const name = createHash("sha256").update(versions).update(config).update(strip(entry.command));
  for (const file of [path.resolve(source), ...[...all].sort()]) name.update(strip(file)).update(hashOf(file));
  return name.digest("hex");
}

// Most of the time goes into the headers that sources share, and into what the tools say of those and
// is not heard. So several sources of a room are looked at as one where they can be: parts of a
// program, which builds join as well, and programs and tests, each in a namespace of its own.
const together = /^((platform|seawater|settings|raytrace|profile|processing|datagram|convert|plugin|host|tests\/support)\/|tests\/host\/(client|host_process|main)\.cpp$)/;
const apart = /^(tests\/.*_test|bench\/.*_bench|fuzz\/.*_fuzz)\.cpp$/;
// Null for a source that includes something further down, or twice, which is told of it alone.
const leading = /^(?:\s*(?:\/\/[^\n]*)?\n|\s*#[^\n]*\n)*/;
function partsOf(source) {
  const text = readFileSync(source, "utf8");
  const head = leading.exec(text)[0];
  const includes = head.slice(0, head.lastIndexOf("#")) + /#[^\n]*\n/.exec(head.slice(head.lastIndexOf("#")))?.[0];
  const body = text.slice(includes.length);
  const conditions = includes.match(/^\s*#\s*if/gm)?.length ?? 0;
  const ends = includes.match(/^\s*#\s*endif/gm)?.length ?? 0;
  const included = includes.match(/^#\s*include.*/gm) ?? [];
  return conditions !== ends || new Set(included).size < included.length || /^\s*#\s*(include|define)/m.test(body) || /^\s*#\s*define/m.test(includes) ? null : { includes, body };
}

/// The text of several sources as one.
function unitOf(sources) {
  const parts = sources.map(partsOf);
  const seen = new Set();
  // No include twice, which is for one source to mind.
  const heads = parts.map(({ includes }) => includes.split("\n")
    .filter((line) => !/^#\s*include/.test(line) || (!seen.has(line) && seen.add(line))).join("\n"));
  const bodies = parts.map(({ body }, k) => (apart.test(sources[k])
    ? `namespace apart_${k} {\n${body.replaceAll("LLVMFuzzerTestOneInput", `$&_${k}`)}\n}\n` : body));
  return [...heads, ...bodies].join("\n");
}

// Tests keep texts in static objects, and classes of one translation unit need no parent.
const clazyChecks = "level1,no-non-pod-global-static,no-ctor-missing-parent-argument";
// In the host the analyzer would spend nine tenths of its time inside of the templates of the network
// library.
const shallow = ["-Xclang", "-analyzer-config", "-Xclang", "c++-template-inlining=false"].map((arg) => `--extra-arg=${arg}`);
async function look(file, source) {
  const tidy = await run("clang-tidy", [
    "--quiet", "-p", database, ...(source.startsWith("host/") ? shallow : []), file,
  ]);
  const clazy = await run("clazy-standalone", [`--checks=${clazyChecks}`, "-p", database, file]);
  const said = clazy.out + clazy.err;
  const isClean = tidy.code === 0 && clazy.code === 0 && !/\[-Wclazy-/.test(said);
  return { isClean, said: `${tidy.out}${tidy.code ? tidy.err : ""}${said}` };
}

/// Whether all of them are clean.
async function lint(sources, file) {
  if (sources.length > 1) {
    const { isClean, said } = await look(file, sources[0]);
    if (isClean) {
      sources.forEach(markClean);
      return true;
    }
    // Not to be looked at as one, or faulty: each by itself says which, and where.
    let areClean = true;
    for (const source of sources) areClean = (await lint([source])) && areClean;
    if (areClean) console.log(`lint: each clean alone, but not as one:\n${said}`);
    return areClean;
  }
  const [source] = sources;
  const { isClean, said } = await look(source, source);
  if (isClean) {
    markClean(source);
  } else {
    process.stderr.write(`== ${source}\n${said}\n`);
    ++counts.faulty;
  }
  return isClean;
}

const marks = new Map();
function markClean(source) {
  const mark = marks.get(source);
  if (mark) writeFileSync(mark, source);
  ++counts.clean;
}

const counts = { known: 0, clean: 0, faulty: 0 };
const news = tracked.filter((file) => {
  if (!file.endsWith(".cpp") || !commands.has(file)) return false;
  const key = fingerprint(file);
  if (key) marks.set(file, path.join(cache, key));
  if (!key || checkAll || !existsSync(marks.get(file))) return true;
  ++counts.known;
  return false;
});

// Sources of a room together; what takes longest first.
const MOST = 16;
const rooms = new Map();
const groups = [];
for (const source of news) {
  const kind = [together, apart].findIndex((pattern) => pattern.test(source));
  if (kind < 0 || !partsOf(source)) groups.push([source]);
  else rooms.set(`${path.dirname(source)} ${kind}`, [...(rooms.get(`${path.dirname(source)} ${kind}`) ?? []), source]);
}
for (const files of rooms.values()) {
  const size = Math.ceil(files.length / Math.ceil(files.length / MOST));
  for (let k = 0; k < files.length; k += size) groups.push(files.slice(k, k + size));
}
groups.sort((a, b) => b.length - a.length);

const joined = [...commands.values()];
for (const file of ownConfigs) {
  mkdirSync(path.join(database, path.dirname(file)), { recursive: true });
  copyFileSync(file, path.join(database, file));
}
const queue = groups.map((sources, number) => {
  if (sources.length === 1) return [sources];
  // In a folder with the configuration of theirs.
  const folder = path.resolve(database, sources[0].split("/")[0]);
  const file = path.join(folder, `unit${number}.cpp`);
  mkdirSync(folder, { recursive: true });
  writeFileSync(file, unitOf(sources));
  // Programs of a room differ in the libraries whose headers they may include.
  const entry = sources.map((source) => commands.get(source)).sort((a, b) => b.command.length - a.command.length)[0];
  joined.push({ ...entry, file, command: entry.command.replace(/\S+\.cpp$/, file) });
  return [sources, file];
});
writeFileSync(`${database}/compile_commands.json`, JSON.stringify(joined));

await Promise.all(Array.from({ length: cpus().length }, async () => {
  for (let next = queue.shift(); next; next = queue.shift()) await lint(...next);
}));
console.log(`tidy and clazy: ${counts.clean} sources clean, ${counts.known} unchanged since they were, ${counts.faulty} faulty`);
process.exit(counts.faulty ? 1 : 0);
