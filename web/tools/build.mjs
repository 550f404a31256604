// Builds the page into web/dist: one script, one style sheet, and the files that are copied as
// they are. Everything is bundled, so that the page fetches nothing but from its own host.
import { build } from "esbuild";
import { copyFile, mkdir, readFile, readdir, rm, writeFile } from "node:fs/promises";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const web = dirname(dirname(fileURLToPath(import.meta.url)));
const dist = join(web, "dist");

await rm(dist, { recursive: true, force: true });
await mkdir(dist, { recursive: true });

const { metafile } = await build({
  absWorkingDir: web,
  entryPoints: { page: "src/main.ts", style: "styles/main.css" },
  outdir: dist,
  bundle: true,
  format: "esm",
  // The oldest browsers met on survey laptops; nothing newer than their syntax may go out.
  target: ["chrome100", "firefox100", "safari15"],
  minify: true,
  sourcemap: true,
  legalComments: "none",
  metafile: true,
  logLevel: "warning",
});

await writeFile(join(dist, "licences.txt"), await licences(Object.keys(metafile.inputs)));
for (const name of ["index.html", "favicon.svg"]) {
  await copyFile(join(web, name), join(dist, name));
}

// The licence texts of all packages that went into the bundle, which ask to be passed on with it.
async function licences(inputs) {
  const packages = new Set();
  for (const input of inputs) {
    const name = /node_modules\/((?:@[^/]+\/)?[^/]+)\//.exec(input)?.[1];
    if (name) packages.add(name);
  }
  const texts = [...packages].sort().map(async (name) => {
    const folder = join(web, "node_modules", name);
    const { version, license } = JSON.parse(await readFile(join(folder, "package.json"), "utf8"));
    const file = (await readdir(folder)).find((each) => /^licen[cs]e/i.test(each));
    const text = file ? await readFile(join(folder, file), "utf8") : `Licence: ${license}\n`;
    return `${name} ${version}\n\n${text.trim()}\n`;
  });
  return (await Promise.all(texts)).join(`\n${"-".repeat(80)}\n\n`);
}
