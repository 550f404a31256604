/// What the tests of the import filters share: the dialog, a logger's file, and rows of the table.
import type { Locator, Page } from "playwright-core";
import { held } from "./handing";
import { seaLevels } from "./stage";

export const dialogOf = (page: Page): Locator => page.getByRole("dialog", { name: "Import filters" });
export const field = (page: Page, label: string): Locator => dialogOf(page).getByLabel(label, { exact: true });

/// A logger's text, made up: a head, columns of which depth is not the first, and a tail.
export const LOGGER = [
  "Logger 7 of the harbour",
  "Time,Sound velocity,Temperature,Salinity,Depth",
  "s,m/s,C,PSU,m",
  ...seaLevels([0.5, 1, 2, 4, 8, 16, 32]).map(([depth, speed], i) => `${i},${speed},${(12 - i / 4).toFixed(2)},34.9,${depth}`),
  "end of file",
].join("\r\n");

export const row = (name: string, rest = "0,1,-1,-1,-1,-1,1.000,1.000,comma,undef") => `${name},.${name},${rest}`;

export async function openFilters(page: Page): Promise<void> {
  await page.getByRole("button", { name: "Import filters…", exact: true }).last().click();
  await dialogOf(page).waitFor();
  await page.locator("dialog.filters[aria-busy=false]").waitFor();
}

export async function listed(page: Page): Promise<string[]> {
  await page.locator("dialog.filters[aria-busy=false]").waitFor();
  return dialogOf(page).getByRole("list", { name: "Filters" }).locator(".cast-name").allTextContents();
}

export async function fill(page: Page, values: Readonly<Record<string, string>>): Promise<void> {
  for (const [label, value] of Object.entries(values)) await field(page, label).fill(value);
}

export async function choose(page: Page, name: string): Promise<void> {
  await dialogOf(page).getByRole("list", { name: "Filters" }).getByRole("button", { name }).click();
}

export async function preview(page: Page, name: string, text: string): Promise<void> {
  const chooser = page.waitForEvent("filechooser");
  await dialogOf(page).getByRole("button", { name: "Choose a file…" }).click();
  await (await chooser).setFiles([held(name, text)]);
  await dialogOf(page).locator(".preview-name").filter({ hasText: name }).waitFor();
}

export const press = (page: Page, name: string) => dialogOf(page).getByRole("button", { name, exact: true }).click();
export const status = (page: Page, text: string | RegExp) => dialogOf(page).locator(".filter-status").filter({ hasText: text }).waitFor();
export const facts = (page: Page, text: string | RegExp) => dialogOf(page).locator(".preview-facts").filter({ hasText: text }).waitFor();
