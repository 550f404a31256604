/// What the tests of fixing, ray paths and the atlas share.
import type { Locator, Page } from "playwright-core";
import type { FileLevel } from "./host";

export const fixDialog = (page: Page): Locator => page.locator("dialog.fix");
export const rayDialog = (page: Page): Locator => page.getByRole("dialog", { name: "Ray paths" });
export const atlasDialog = (page: Page): Locator => page.getByRole("dialog", { name: "World Ocean Atlas" });

/// Two levels of it are invalid, and it neither begins at the surface nor goes deep.
export const FAULTY: FileLevel[] = [
  ["2.00", "1504.10"], ["20.00", "1503.00"], ["40.00", "1730.00"], ["60.00", "1496.00"],
  ["50.00", "1495.00"], ["120.00", "1493.20"], ["200.00", "1491.00"], ["400.00", "1489.50"],
];

/// Presses Fix… and, once the tolerance is filled in, Fix.
export async function fix(page: Page, tolerance = "0.1"): Promise<void> {
  await page.getByRole("button", { name: "Fix…", exact: true }).click();
  await fixDialog(page).getByRole("textbox", { name: "Tolerance of thinning" }).fill(tolerance);
  await fixDialog(page).getByRole("button", { name: "Fix", exact: true }).click();
}

/// Waits for what a fix tells.
export async function fixed(page: Page, name: string): Promise<Locator> {
  await page.getByRole("dialog", { name: `${name} is fixed` }).waitFor();
  return fixDialog(page);
}

/// Chooses a file of this computer for the atlas.
export async function handIn(page: Page, quantity: "salinity" | "temperature", name: string, text: string): Promise<void> {
  const chooser = page.waitForEvent("filechooser");
  await atlasDialog(page).getByRole("button", { name: `Hand in a ${quantity} file of this computer` }).click();
  await (await chooser).setFiles([{ name, mimeType: "text/csv", buffer: Buffer.from(text) }]);
}

/// A made-up file of the atlas with one cell, that of 59.5 N 10.5 E.
export function atlasFile(depths: readonly number[], values: readonly number[]): string {
  return `Made up for a test\n#LATITUDE,LONGITUDE,VALUES AT DEPTHS (M):${depths.join(",")}\n59.5,10.5,${values.join(",")}\n`;
}
