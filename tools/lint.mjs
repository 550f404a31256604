#!/usr/bin/env node
// Checks the form of the C++ sources: clang-format on all of them, clang-tidy and clazy on what
// has changed. A source whose preprocessed text, configuration and tools are the same as when it
// was last found clean is not looked at again; what was clean is remembered in the user's cache
// folder, so that a fresh clone on the same machine profits too.
//
// Usage: tools/lint.mjs [--all]     --all looks at every source again
import { spawn } from "node:child_process";
import { createHash } from "node:crypto";
import { existsSync, mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { cpus, homedir } from "node:os";
import path from "node:path";
import { fileURLToPath } from "node:url";

const root = path.dirname(path.dirname(fileURLToPath(import.meta.url)));
process.chdir(root);
const checkAll = process.argv.includes("--all");
const cache = path.join(process.env.XDG_CACHE_HOME ?? path.join(homedir(), ".cache"), "svp-editor-lint");
mkdirSync(cache, { recursive: true });

function run(command, args, { input } = {}) {
  return new Promise((resolve) => {
    const child = spawn(command, args, { stdio: ["pipe", "pipe", "pipe"] });
    const out = [];
    const err = [];
    child.stdout.on("data", (data) => out.push(data));
    child.stderr.on("data", (data) => err.push(data));
    child.on("error", (error) => resolve({ code: 127, out: "", err: String(error) }));
    child.on("close", (code) =>
      resolve({ code, out: Buffer.concat(out).toString(), err: Buffer.concat(err).toString() }));
    child.stdin.end(input ?? "");
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

// Which build knows how a source is compiled.
const commands = new Map();
for (const preset of ["dev", "release", "fuzz"]) {
  const file = `build/${preset}/compile_commands.json`;
  if (!existsSync(file)) continue;
  for (const entry of JSON.parse(readFileSync(file, "utf8"))) {
    const source = path.relative(root, path.resolve(entry.directory, entry.file));
    if (!commands.has(source)) commands.set(source, { ...entry, build: `build/${preset}` });
  }
}

const versions = (await run("clang-tidy", ["--version"])).out + (await run("clazy-standalone", ["--version"])).out;
const config = readFileSync(".clang-tidy", "utf8") + readFileSync(fileURLToPath(import.meta.url), "utf8");

// The text that the compiler sees, as a name for "this was clean". Compiler flags are in it too.
async function fingerprint(entry) {
  const words = entry.command.split(" ").filter((word) => word && !/(^|\/)ccache$/.test(word));
  const compiler = words.shift();
  const args = [];
  for (let i = 0; i < words.length; ++i) {
    if (["-o", "-MF", "-MT"].includes(words[i])) ++i;
    else if (!["-c", "-MD", "-MMD"].includes(words[i])) args.push(words[i].replaceAll('\\"', '"'));
  }
  const text = await run(compiler, ["-E", ...args]);
  if (text.code !== 0) return null;
  const strip = (s) => s.replaceAll(root, "");
  return createHash("sha256").update(versions).update(config).update(strip(args.join(" ")))
    .update(strip(text.out)).digest("hex");
}

// Tests keep texts in static objects, and classes of one translation unit need no parent.
const clazyChecks = "level1,no-non-pod-global-static,no-ctor-missing-parent-argument";
// The analyzer would spend two thirds of its time inside of the network library's templates.
const shallow = ["-Xclang", "-analyzer-config", "-Xclang", "c++-template-inlining=false"].map((arg) => `--extra-arg=${arg}`);
const usesNetworkLibrary = (source) => /^(tests\/)?host\//.test(source);
async function lint(source) {
  const entry = commands.get(source);
  const key = await fingerprint(entry);
  const mark = key && path.join(cache, key);
  if (mark && !checkAll && existsSync(mark)) return "known";
  const tidy = await run("clang-tidy", [
    "--quiet", "-p", entry.build, ...(usesNetworkLibrary(source) ? shallow : []), source,
  ]);
  const clazy = await run("clazy-standalone", [`--checks=${clazyChecks}`, "-p", entry.build, source]);
  const said = clazy.out + clazy.err;
  if (tidy.code !== 0 || clazy.code !== 0 || /\[-Wclazy-/.test(said)) {
    process.stderr.write(`== ${source}\n${tidy.out}${tidy.code ? tidy.err : ""}${said}\n`);
    return "faulty";
  }
  if (mark) writeFileSync(mark, source);
  return "clean";
}

const sources = tracked.filter((file) => file.endsWith(".cpp") && commands.has(file));
const counts = { known: 0, clean: 0, faulty: 0 };
const queue = [...sources];
const workers = cpus().length;
await Promise.all(Array.from({ length: workers }, async () => {
  for (let source = queue.shift(); source; source = queue.shift()) ++counts[await lint(source)];
}));
console.log(`tidy and clazy: ${counts.clean} sources clean, ${counts.known} unchanged since they were, ${counts.faulty} faulty`);
process.exit(counts.faulty ? 1 : 0);
