/// The page's colours: chosen, remembered, and looked at with casts of all sizes.
import assert from "node:assert/strict";
import { writeFile } from "node:fs/promises";
import { join } from "node:path";
import { describe, test } from "node:test";
import type { Page } from "playwright-core";
import { probeCast } from "./reshape-parts";
import { Stage, assertInside, check, openCast, picture } from "./stage";

const theme = (page: Page) => page.locator("html").getAttribute("data-theme");
const ground = (page: Page) => page.evaluate(() => getComputedStyle(document.body).backgroundColor);

/// Chooses from the menu of themes.
async function choose(page: Page, name: string): Promise<void> {
  await page.getByRole("button", { name: "Theme" }).click();
  await page.getByRole("menuitemradio", { name, exact: true }).click();
}

describe("themes", () => {
  const stage = new Stage(async (host) => {
    await writeFile(join(host.folder, "twenty.vp2"), probeCast(20, 12));
    await writeFile(join(host.folder, "older.vp2"), probeCast(22, 12, 1));
    await writeFile(join(host.folder, "long.vp2"), probeCast(20_000, 0.05));
  });

  test("night comes first; a choice of the menu is told and remembered", async () => {
    const page = await stage.page();
    assert.equal(await theme(page), "dark");
    const night = await ground(page);
    await choose(page, "Day");
    assert.equal(await theme(page), "light");
    assert.notEqual(await ground(page), night);
    await page.getByRole("button", { name: "Theme" }).click();
    assert.equal(await page.getByRole("menuitemradio", { checked: true }).textContent(), "Day");
    await page.keyboard.press("Escape");

    const again = await stage.newPage({ context: page.context() });
    assert.equal(await theme(again), "light");
    for (const next of ["contrast", "red", "dark"]) {
      await again.keyboard.press("t");
      assert.equal(await theme(again), next);
    }
    assert.equal(await ground(again), night);
    await page.context().close();
  });

  test("a system that asks for contrast gets it until the user chooses", async () => {
    const page = await stage.page();
    await page.emulateMedia({ contrast: "more" });
    await page.evaluate(() => localStorage.clear());
    await page.reload();
    assert.equal(await theme(page), "contrast");
    await choose(page, "Night");
    await page.reload();
    assert.equal(await theme(page), "dark");
    await page.context().close();
  });

  for (const name of ["Night", "Day", "High contrast", "Red"]) {
    test(`everything has its place at 1024 by 600: ${name}`, async () => {
      const page = await stage.page({ width: 1024, height: 600 });
      await choose(page, name);
      const word = name.toLowerCase().replace(" ", "-");
      await picture(page, `${word}-empty`);
      await openCast(page, "older.vp2");
      await openCast(page, "twenty.vp2");
      await page.keyboard.press("k");
      await assertInside(page, page.getByRole("dialog", { name: "Compare with…" }));
      await picture(page, `${word}-compare`);
      await page.keyboard.press("Enter");
      await page.locator(".legend").getByText("older.vp2").waitFor();
      await check(page);
      await page.keyboard.press("g");
      for (let i = 0; i < 5; ++i) await page.keyboard.press("ArrowDown");
      for (const part of ["#plot-legend", "#plot-panels", "#compare", "#plot", "#verdict", "#readout"]) {
        await assertInside(page, page.locator(part));
      }
      // One number alone is no scale.
      for (const panel of await page.locator(".profile-plot").all()) {
        assert.ok((await panel.locator("[aria-label='x-axis tick label'] text").count()) >= 2);
      }
      // The lines of a legend and of the plot are one colour, and those of the two casts are two.
      const stroke = (selector: string) =>
        page.locator(selector).first().evaluate((line) => getComputedStyle(line).stroke);
      assert.equal(await stroke(".trace-under path"), await stroke(".swatch-under .swatch-line"));
      assert.notEqual(await stroke(".trace-under path"), await stroke(".trace path"));
      await picture(page, `${word}-20`);
      await openCast(page, "long.vp2");
      await picture(page, `${word}-20000`);
    });
  }
});
