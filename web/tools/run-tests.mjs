// Bundles the tests of one kind ("unit" or "browser") from TypeScript and runs them with Node's
// own runner: node tools/run-tests.mjs unit [part of a test file's name]
//
// The bundles go to web/test-output, inside the package, so that what they import from
// node_modules is still found.
import { build } from "esbuild";
import { spawn } from "node:child_process";
import { readdirSync, rmSync } from "node:fs";
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

const outdir = join(web, "test-output", kind);
rmSync(outdir, { recursive: true, force: true });
await build({
  absWorkingDir: web,
  entryPoints: names.map((name) => join("test", kind, name)),
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

// Files are named one by one: what a directory means to "node --test" differs between versions.
const files = names.map((name) => join(outdir, name.replace(/\.ts$/, ".mjs")));
// Each browser test file has a host and a browser of its own. The one that measures times runs by
// itself: they should not be those of a machine that does two such things at once.
const measuring = files.filter((file) => kind === "browser" && /long-casts/.test(file));
const others = files.filter((file) => !measuring.includes(file));
// They wait for the page more than they work; the longest one begins, so that none is left over.
const concurrent = kind === "browser" ? 3 : 1;
others.sort((one, other) => Number(/output/.test(other)) - Number(/output/.test(one)));
const batches = kind === "browser" ? others.map((file) => [file]) : [others];

function run(batch) {
  return new Promise((resolve) => {
    const child = spawn(process.execPath, ["--enable-source-maps", "--test", ...batch], { cwd: web });
    const output = [];
    child.stdout.on("data", (data) => output.push(data));
    child.stderr.on("data", (data) => output.push(data));
    child.on("close", (code) => {
      process.stdout.write(Buffer.concat(output));
      resolve(code === 0);
    });
  });
}

let failed = false;
async function work(queue) {
  for (let batch = queue.shift(); batch; batch = queue.shift()) failed = !(await run(batch)) || failed;
}
await work(measuring.map((file) => [file]));
await Promise.all(Array.from({ length: concurrent }, () => work(batches)));
process.exit(failed ? 1 : 0);
