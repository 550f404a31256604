/// What the tests of extending and thinning share: the dialogs, and what the page shows of a cast.
import type { Locator, Page } from "playwright-core";
import type { FileLevel } from "./host";

export const extendDialog = (page: Page): Locator => page.getByRole("dialog", { name: "Extend to full ocean depth" });
export const thinDialog = (page: Page): Locator => page.getByRole("dialog", { name: "Thin the cast" });
export const undo = (page: Page): Locator => page.locator("#undo");

/// Depths and sound speeds of the table's rows, and which of them are joined.
export async function levels(page: Page): Promise<{ depths: number[]; speeds: number[]; joined: number[] }> {
  // The table follows the cast a moment later; a short cast has all its rows in view.
  await page.waitForFunction(() => {
    const count = Number(document.getElementById("level-count")?.textContent);
    const rows = document.querySelectorAll(".tabulator-row").length;
    return count > 12 ? rows > 0 : rows === count;
  });
  const rows = await page.locator(".tabulator-row").evaluateAll((all) =>
    all.map((row) => ({
      level: Number(row.getAttribute("data-level")),
      isJoined: row.classList.contains("joined") && row.querySelector("[aria-label=joined]") !== null,
      depth: Number(row.querySelector("[tabulator-field=svp_Depth]")?.textContent),
      speed: Number(row.querySelector("[tabulator-field=svp_Speed]")?.textContent),
    })),
  );
  return {
    depths: rows.map(({ depth }) => depth),
    speeds: rows.map(({ speed }) => speed),
    joined: rows.filter(({ isJoined }) => isJoined).map(({ level }) => level),
  };
}

/// Opens the extend dialog with one of its ways chosen.
export async function openExtend(page: Page, way: string): Promise<Locator> {
  await page.getByRole("button", { name: "Extend…", exact: true }).click();
  const dialog = extendDialog(page);
  await dialog.getByRole("radio", { name: way }).check();
  return dialog;
}

/// Extends the open cast with the default rows.
export async function extendByDefault(page: Page): Promise<void> {
  const dialog = await openExtend(page, "Default rows");
  await dialog.getByRole("button", { name: "Extend", exact: true }).click();
  await dialog.waitFor({ state: "hidden" });
}

export async function casts(page: Page): Promise<string[]> {
  return page.locator("#cast-list .cast-name").allTextContents();
}

/// Made up: what a probe that measures sound speed, temperature and salinity could write.
export const PROBE = [
  "[HEADER]", "Latitude=-33.25", "Longitude=5.5", "DataStartTime=2026/06/18 07:42:10", "", "[COLUMNS]",
  "Depth=Float;m;Calculated", "Sound Velocity=Float;Ms-1;", "Temperature=Float;DegC;", "Salinity=Float;PSU;Calculated",
  "", "[DATA]", "Depth\tSound Velocity\tTemperature\tSalinity",
  "2\t1504.1\t13.2\t34.9", "20\t1503.0\t12.7\t35.0", "60\t1496.0\t10.4\t35.1", "120\t1493.2\t9.4\t35.2", "",
].join("\r\n");

/// A hundredth of a metre per second per metre, all the way down.
export const STRAIGHT: FileLevel[] = Array.from({ length: 121 }, (_, i) => [String(i * 100), (1500 + i).toFixed(2)]);

/// Presses a button of the thin dialog.
export const press = (page: Page, name: string): Promise<void> =>
  thinDialog(page).getByRole("button", { name, exact: true }).click();
/// A line of what the preview tells.
export const facts = (page: Page, text: string | RegExp): Locator =>
  thinDialog(page).locator(".thin-facts p").filter({ hasText: text });

/// Opens the thin dialog with a tolerance filled in.
export async function openThin(page: Page, tolerance: string): Promise<void> {
  await page.getByRole("button", { name: "Thin…", exact: true }).click();
  await thinDialog(page).getByRole("textbox", { name: "Tolerance" }).fill(tolerance);
}

/// Opens the thin dialog and waits for what remains.
export async function preview(page: Page, tolerance: string): Promise<void> {
  await openThin(page, tolerance);
  await press(page, "Preview");
  await facts(page, "remain.").waitFor();
}

/// Levels of an .asvp file.
export function fileLevels(text: string): [number, number][] {
  return text.trimEnd().split("\r\n").slice(1).map((line) => line.split(" ").map(Number) as [number, number]);
}

/// Made up likewise: so many levels, one every `step` metres, a little uneven from the hundredth on.
export function probeCast(count: number, step: number, colder = 0): string {
  const head = PROBE.slice(0, PROBE.indexOf("2\t1504.1"));
  const rows = Array.from({ length: count }, (_, i) => {
    const depth = 1 + i * step;
    const uneven = i < 100 ? 0 : Math.sin(i * 12.9898) * 0.05;
    const speed = 1482 + 34 * Math.exp(-depth / 70) + 0.0165 * depth + uneven - 3 * colder;
    const temperature = 4 + 14 * Math.exp(-depth / 70) + uneven / 3 - colder;
    const salinity = 35.1 - 1.2 * Math.exp(-depth / 30);
    return `${[depth.toFixed(2), speed.toFixed(2), temperature.toFixed(3), salinity.toFixed(3)].join("\t")}\r\n`;
  });
  return head + rows.join("");
}
