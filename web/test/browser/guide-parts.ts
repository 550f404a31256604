/// What the test of the user guide shares: its casts, the guide's own words, and what the page has
/// shown.
import assert from "node:assert/strict";
import { existsSync, readFileSync, readdirSync } from "node:fs";
import { mkdir, writeFile } from "node:fs/promises";
import { dirname, join, resolve } from "node:path";
import type { Locator, Page } from "playwright-core";
import type { FileLevel } from "./host";
import { commonest, decoded, packed, sizeOf } from "./png";

export const GUIDE = resolve("../docs/user-guide.md");
export const IMAGES = resolve("../docs/images/guide");
/// Pictures and the table of keys are renewed on demand only: a test run leaves the tree as it was.
export const UPDATES = process.env["SVP_UPDATE_SCREENSHOTS"] === "1";
const MOST_BYTES = 150_000;
/// Of pixels of one colour: a page has text and lines in places, a blank one has nothing else.
const MOST_OF_ONE_COLOUR = 0.97;

interface Water {
  depth: number;
  temperature: number;
  salinity: number;
  speed: number;
}

/// A summer on a shelf, made up: a warm layer over a thermocline, fresher at the surface.
export function summer(depth: number, colder = 0): Water {
  const uneven = Math.sin(depth * 12.9898) * 0.02;
  const temperature = 6.8 + (8.7 - colder) / (1 + Math.exp((depth - 24) / 4.5)) + uneven;
  const salinity = 35.05 - 1.6 * Math.exp(-depth / 18);
  return { depth, temperature, salinity, speed: mackenzie(temperature, salinity, depth) };
}

/// Sound speed (m/s) by the nine-term equation of 1981.
function mackenzie(t: number, s: number, d: number): number {
  return 1448.96 + 4.591 * t - 5.304e-2 * t ** 2 + 2.374e-4 * t ** 3 + 1.34 * (s - 35) +
    1.63e-2 * d + 1.675e-7 * d ** 2 - 1.025e-2 * t * (s - 35) - 7.139e-13 * t * d ** 3;
}

const down = Array.from({ length: 97 }, (_, i) => 0.6 + 2.5 * i);
const up = Array.from({ length: 40 }, (_, i) => 238 - 6 * i);

/// Depth (m) of the level at which the probe failed, and of the one where it gave a wrong speed, by so
/// many m/s.
export const FAILED_AT = 63.1;
export const WRONG_AT = 113.1;
export const WRONG_BY = 31.5;

/// A probe's file of that sea, with what such files have: levels in air at its start, a failure, a
/// wrong value, the way up behind the way down, and no position.
export const PROBE_FILE = [
  "[HEADER]", "Instrument=EXAMPLE SVP", "Latitude=999", "Longitude=999", "DataStartTime=2026/11/15 12:34:56", "",
  "[COLUMNS]", "Depth=Float;m;Calculated", "Sound Velocity=Float;Ms-1;", "Temperature=Float;DegC;", "Salinity=Float;PSU;Calculated", "",
  "[DATA]", "Depth\tSound Velocity\tTemperature\tSalinity", "m\tMs-1\tDegC\tPSU",
  "-0.15\t341.30\t16.200\t0.000", "0.05\t342.10\t15.900\t0.000",
  ...[...down, ...up].map((depth) => {
    const { temperature, salinity, speed } = summer(depth);
    const told = depth === down[25] ? 1298.4 : depth === down[45] ? speed + WRONG_BY : speed;
    return [depth.toFixed(2), told.toFixed(2), temperature.toFixed(3), salinity.toFixed(3)].join("\t");
  }),
  "",
].join("\r\n");

/// The cast of the station before, some warmth ago.
export const EARLIER: FileLevel[] = down.map((depth) => [depth.toFixed(2), summer(depth, 2.5).speed.toFixed(2)]);

/// A file with columns of its own.
export const LOGGER_FILE = [
  "Buoy 7", "Time;Sound velocity;Temperature;Depth", "s;m/s;C;m",
  ...down.filter((_, i) => i % 4 === 0).map((depth, i) => {
    const { temperature, speed } = summer(depth);
    return [i * 60, speed.toFixed(2), temperature.toFixed(2), depth.toFixed(1)].join(";");
  }),
  "end",
].join("\r\n");

/// What the page has shown, collected while it is walked through.
export class Seen {
  private readonly names = new Set<string>();
  private text = "";

  /// Takes in the names of all buttons, entries, fields and headings in view, and all text.
  async take(page: Page): Promise<void> {
    const { names, text } = await page.evaluate(() => {
      const kinds =
        "button, label, legend, h1, h2, h3, dt, th, select, option, input, [role=menuitem], [role=menuitemradio], .tabulator-col-title, .legend-name";
      const found = [...document.querySelectorAll<HTMLElement>(kinds)].filter((each) =>
        (each instanceof HTMLOptionElement ? each.closest("select") ?? each : each).checkVisibility());
      return {
        names: found.flatMap((each) => [each.textContent ?? "", each.getAttribute("aria-label") ?? ""]),
        text: document.body.innerText,
      };
    });
    for (const name of names) this.names.add(plain(name));
    this.text += ` ${plain(text)}`;
  }

  hasName(name: string): boolean {
    return this.names.has(plain(name));
  }

  /// Whether the page has shown a text, or has it to be shown: what stands for "…" in it may be
  /// anything.
  hasText(text: string): boolean {
    return text.split("…").map(plain).filter(Boolean).every((part) => this.text.includes(part) || sources().includes(part));
  }
}

let known = "";

/// All texts that the page, or the engine behind it, can say. Remarks in the code are none.
function sources(): string {
  known ||= plain(
    ["src", "../processing", "../datagram", "../profile", "../plugin"]
      .flatMap((folder) => readdirSync(resolve(folder)).filter((name) => /\.(ts|cpp|h)$/.test(name)).map((name) => join(resolve(folder), name)))
      .map((path) => readFileSync(path, "utf8").replace(/^\s*\/\/.*$/gm, "").replace(/["`]\s*\+?\s*["`]/g, "").replace(/\\n/g, " "))
      .join("\n"),
  );
  return known;
}

function plain(text: string): string {
  return text.replace(/[\s\u202f]+/g, " ").trim();
}

/// The guide, taken apart.
export function guideOf(text: string): { names: string[]; quotes: string[]; images: string[]; keys: string } {
  const words = text.replace(/<!--[^]*?-->/g, "");
  const all = (pattern: RegExp, from = words) => [...from.matchAll(pattern)].map((match) => match[1] ?? "");
  return {
    names: all(/\*\*([^*]+)\*\*/g),
    quotes: all(/“([^”]+)”/g),
    images: all(/!\[[^\]]*\]\(([^)]+)\)/g),
    keys: /<!-- keys -->\n([^]*?)<!-- end -->/.exec(text)?.[1] ?? "",
  };
}

/// The page's own list of keys, as a table.
export async function keyTable(page: Page): Promise<string> {
  const rows = await page.locator("#help-keys").evaluate((list) =>
    [...list.querySelectorAll("dt")].map((key) => [
      [...key.querySelectorAll("kbd")].map((each) => `\`${each.textContent}\``).join(" "),
      key.nextElementSibling?.textContent ?? "",
    ]),
  );
  assert.ok(rows.length > 20);
  return ["| key | what it does |", "|---|---|", ...rows.map((row) => `| ${row.join(" | ")} |`), ""].join("\n");
}

/// Takes a picture of the page or a part of it. It must be neither blank nor of another size than
/// its file, which is written where it is missing or to be renewed.
export async function picture(of: Page | Locator, path: string): Promise<void> {
  const shot = decoded(await of.screenshot({ animations: "disabled", caret: "hide" }));
  assert.ok(commonest(shot) < MOST_OF_ONE_COLOUR, `${path} is blank`);
  if (UPDATES || !existsSync(path)) {
    await mkdir(dirname(path), { recursive: true });
    await writeFile(path, packed(shot));
  }
  const kept = readFileSync(path);
  assert.ok(kept.length < MOST_BYTES, `${path} has ${kept.length} bytes`);
  const { width, height } = sizeOf(kept);
  // Dialogs are as high as their texts, which have paths and times in them.
  const isAsLarge = Math.abs(width - shot.width) <= 2 && Math.abs(height - shot.height) <= 40;
  assert.ok(isAsLarge, `${path} has ${width} × ${height} pixels, the page ${shot.width} × ${shot.height}`);
}
