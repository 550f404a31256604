/// What the tests of editing share: the table's cells, the edit menu, and storing.
import type { Locator, Page } from "playwright-core";

export const edit = async (page: Page, item: string): Promise<void> => {
  await page.getByRole("button", { name: "Edit", exact: true }).click();
  await page.getByRole("menu", { name: "Edit" }).getByRole("menuitem", { name: item, exact: true }).click();
};

export const row = (page: Page, level: number): Locator => page.locator(`.tabulator-row[data-level="${level}"]`);
export const cell = (page: Page, level: number, key: string): Locator =>
  row(page, level).locator(`[tabulator-field=${key}]`);
export const typing = (page: Page): Locator => page.locator(".cell-input");
export const fault = (page: Page): Locator => page.locator("#edit-fault");
export const unsaved = async (page: Page): Promise<boolean> =>
  (await page.locator("#unsaved").textContent()) === "Not saved";

/// Selects a level by its row, and the cell that the keyboard is at.
export async function goTo(page: Page, level: number, key = "svp_Depth"): Promise<void> {
  await cell(page, level, key).click();
  await page.locator(`.tabulator-row.selected[data-level="${level}"]`).waitFor();
  await page.keyboard.press("v");
}

/// Waits until what was not saved is stored in the browser, or is not any more.
export async function stored(page: Page, count: number): Promise<void> {
  await page.waitForFunction(
    (wanted) =>
      new Promise((done) => {
        const opening = indexedDB.open("svp-editor", 1);
        opening.onupgradeneeded = () => opening.result.createObjectStore("unsaved", { keyPath: "page" });
        opening.onsuccess = () => {
          const counting = opening.result.transaction("unsaved").objectStore("unsaved").count();
          counting.onsuccess = () => {
            opening.result.close();
            done(counting.result === wanted);
          };
        };
      }),
    count,
  );
}

/// Waits until the browser knows that no other page of this one's storage is open. What such a page has
/// left is offered then, and not before.
export async function alone(page: Page): Promise<void> {
  await page.waitForFunction(async () => (await navigator.locks.query()).held?.length === 1);
}
