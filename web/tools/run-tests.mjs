// Bundles the tests of one kind ("unit" or "browser") from TypeScript and runs them with Node's
// own runner: node tools/run-tests.mjs unit [part of a test file's name]
//
// The bundles go to web/test-output, inside the package, so that what they import from
// node_modules is still found.
import { build } from "esbuild";
import { spawn } from "node:child_process";
import { mkdirSync, readFileSync, readdirSync, rmSync, writeFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const web = dirname(dirname(fileURLToPath(import.meta.url)));
const [kind, only = ""] = process.argv.slice(2);
if (kind !== "unit" && kind !== "browser") {
  console.error("usage: node tools/run-tests.mjs unit|browser [part of a test file's name]");
  process.exit(2);
}

const names = readdirSync(join(web, "test", kind))
  .filter((name) => name.endsWith(".test.ts") && name.includes(only))
  .sort();
if (names.length === 0) {
  console.error(`no ${kind} test matches "${only}"`);
  process.exit(2);
}

/// Deals the browser tests out to as many processes, each with one browser. They wait for the page
/// more than they work, so there are more processes than cores.
function dealtOut(files, processes) {
  const weight = (name) => readFileSync(join(web, "test", kind, name), "utf8").split(/\btest\(/).length;
  const hands = Array.from({ length: processes }, () => ({ files: [], weight: 0 }));
  const heaviestFirst = files.map((name) => [name, weight(name)]).sort(([, one], [, other]) => other - one);
  for (const [name, added] of heaviestFirst) {
    const hand = hands.reduce((least, each) => (each.weight < least.weight ? each : least));
    hand.files.push(name);
    hand.weight += added;
  }
  return hands.map((hand) => hand.files).filter((hand) => hand.length > 0);
}

// The file that measures times runs by itself: they should not be those of a machine that does two
// such things at once. So does the one whose engine needs the port for datagrams, which is one for the
// whole machine.
const ALONE = ["datagrams.test.ts", "long-casts.test.ts"];
const isAlone = (name) => kind === "browser" && ALONE.includes(name);
const alone = names.filter(isAlone);
const others = names.filter((name) => !isAlone(name));
const together = kind === "browser" ? dealtOut(others, 3) : [others];
const turns = [alone, ...together].filter((files) => files.length > 0);

const outdir = join(web, "test-output", kind);
rmSync(outdir, { recursive: true, force: true });
mkdirSync(outdir, { recursive: true });
const entries = turns.map((files, index) => {
  const entry = join(outdir, `tests-${index}.ts`);
  const imports = files.map((name) => `import ${JSON.stringify(join(web, "test", kind, name))};\n`);
  writeFileSync(entry, imports.join(""));
  return entry;
});
await build({
  absWorkingDir: web,
  entryPoints: entries,
  outdir,
  outExtension: { ".js": ".mjs" },
  bundle: true,
  platform: "node",
  format: "esm",
  packages: "external",
  target: "node18",
  sourcemap: "inline",
  logLevel: "warning",
});

function run(entry) {
  const bundle = entry.replace(/\.ts$/, ".mjs");
  return new Promise((resolve) => {
    const child = spawn(process.execPath, ["--enable-source-maps", "--test", bundle], { cwd: web });
    const output = [];
    child.stdout.on("data", (data) => output.push(data));
    child.stderr.on("data", (data) => output.push(data));
    child.on("close", (code) => {
      process.stdout.write(Buffer.concat(output));
      resolve(code === 0);
    });
  });
}

let passed = true;
const [first, ...rest] = entries;
if (alone.length > 0) passed = await run(first);
const results = await Promise.all((alone.length > 0 ? rest : entries).map(run));
process.exit(passed && results.every(Boolean) ? 0 : 1);
