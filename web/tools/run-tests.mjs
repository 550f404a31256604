// Bundles the tests of one kind ("unit" or "browser") from TypeScript and runs them with Node's
// own runner: node tools/run-tests.mjs unit [part of a test file's name]
//
// The bundles go to web/test-output, inside the package, so that what they import from
// node_modules is still found.
import { build } from "esbuild";
import { spawnSync } from "node:child_process";
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
// Browser tests go file by file: each has a host and a browser of its own, and the times they
// print should not be those of a machine that does several such things at once.
const batches = kind === "browser" ? files.map((file) => [file]) : [files];
let failed = false;
for (const batch of batches) {
  const run = spawnSync(process.execPath, ["--enable-source-maps", "--test", ...batch], {
    cwd: web,
    stdio: "inherit",
  });
  failed ||= run.status !== 0;
}
process.exit(failed ? 1 : 0);
