/// The list of casts, and opening one.
import assert from "node:assert/strict";
import { readFile, readdir } from "node:fs/promises";
import { join } from "node:path";
import { describe, test } from "node:test";
import type { Page } from "playwright-core";
import { held, pick } from "./handing";
import { Stage, aFrame, failed, openCast, seaLevels, shown } from "./stage";

const DEPTHS = [0, 1, 2.5, 5, 10, 20, 30.25, 50, 75, 100, 150, 200];

/// Waits until a page that was loaded has read the list twice, as it does when it is connected: what comes
/// after that is in neither.
async function listsRead(page: Page): Promise<void> {
  await page.waitForFunction(() =>
    performance.getEntriesByType("resource").filter(({ name }) => name.includes("api/casts")).length >= 2);
}

describe("opening a cast", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("tide.asvp", seaLevels(DEPTHS));
    await host.writeCast("second.asvp", seaLevels([0, 10, 20, 40]));
    await host.writeCast("with, comma.asvp", seaLevels([0, 10]));
    await host.writeCast("with [bracket].asvp", seaLevels([0, 10]));
    await host.writeCast(
      "south.asvp",
      seaLevels([0, 10, 20]),
      "( SoundVelocity 1.0 42 20240229235959 -0.5 -70.1 15 0 0 CTD_7 P 3 )",
    );
  });

  test("the page lists the casts of the profile folder by name", async () => {
    const page = await stage.page();
    const listed = await page.locator(".cast-name").allTextContents();
    const files = (await readdir(stage.host.folder)).filter((name) => /\.(asvp|ssp|vp2|amlx?|valeport)$/.test(name));
    assert.deepEqual([...listed].sort(), files.sort());
    assert.ok(listed.includes("tide.asvp"));
    assert.match((await page.locator("#cast-summary").textContent()) ?? "", /^\d+ casts in /);
  });

  test("Refresh finds a cast that came since", async () => {
    const page = await stage.page();
    await listsRead(page);
    await stage.host.writeCast("later.asvp", seaLevels([0, 5, 10]));
    assert.equal(await page.locator('[data-name="later.asvp"]').count(), 0);
    await page.getByRole("button", { name: "Refresh" }).click();
    await openCast(page, "later.asvp");
  });

  test("an opened cast has one point a level, its table and its header", async () => {
    const page = await stage.page();
    await openCast(page, "tide.asvp");
    assert.equal(await page.locator(".level-point").count(), DEPTHS.length);
    assert.equal(await page.locator(".level-invalid").count(), 0);

    const cells = await page.locator(".tabulator-row .tabulator-cell").allInnerTexts();
    const levels = seaLevels(DEPTHS);
    assert.deepEqual(cells, levels.flatMap(([depth, speed], i) => [String(i + 1), depth, speed]));

    const field = (key: string) => page.locator(`#header [data-key=hsvp_file${key}]`).textContent();
    assert.equal(await page.locator("#header dt").count(), 13);
    assert.equal(await field("time"), "2026-11-15 12:34:56 UTC");
    assert.equal(await field("lat"), "59° 30.000′ N");
    assert.equal(await field("lon"), "010° 15.000′ E");
    assert.equal(await field("type"), "Sound velocity");
    assert.equal(await field("source"), "source");
    assert.equal(await field("samp"), "12");
    assert.equal(await field("validfrom"), "not given");
    assert.match((await page.locator("#cast-facts").textContent()) ?? "", /12 levels/);
  });

  test("positions south and west keep their signs", async () => {
    const page = await stage.page();
    await openCast(page, "south.asvp");
    const header = (await page.locator("#header").textContent()) ?? "";
    for (const text of ["2024-02-29 23:59:59 UTC", "00° 30.000′ S", "070° 06.000′ W", "CTD_7"]) {
      assert.ok(header.includes(text), `${text} in ${header}`);
    }
  });

  test("every sample cast opens with as many points as its file has levels", async () => {
    const page = await stage.page();
    const samples = process.env["SVP_SAMPLES"] ?? "../examples";
    const names = (await readdir(samples)).filter((name) => name.endsWith(".asvp"));
    assert.ok(names.length > 0);
    for (const name of names) {
      const lines = (await readFile(join(samples, name), "utf8")).split(/\r?\n/).slice(1);
      const levels = lines.filter((line) => /^\s*-?[\d.]+\s+-?[\d.]+/.test(line)).length;
      await openCast(page, name);
      assert.equal(await page.locator(".level-point").count(), levels, name);
    }
  });

  test("a cast is opened with the keyboard alone", async () => {
    const page = await stage.page();
    const names = await page.locator(".cast-name").allTextContents();
    await page.keyboard.press("l");
    for (let i = 0; i < names.indexOf("tide.asvp"); ++i) await page.keyboard.press("ArrowDown");
    await page.keyboard.press("Enter");
    await shown(page, "tide.asvp");

    await page.keyboard.press("g");
    await page.keyboard.press("ArrowDown");
    await page.keyboard.press("ArrowDown");
    await page.getByText(/^Level 2 /).waitFor();
    await page.keyboard.press("v");
    await page.keyboard.press("End");
    await page.getByText(/^Level 12 /).waitFor();
    assert.equal(await page.locator(".tabulator-row.selected").getAttribute("data-level"), "12");
    await page.keyboard.press("c");
    await page.getByRole("heading", { name: /^Check of/ }).waitFor();

    await page.keyboard.press("?");
    const help = page.getByRole("dialog", { name: "Keys and hints" });
    await help.getByText("Check the open cast").waitFor();
    const keys = await help.locator("kbd").allTextContents();
    assert.deepEqual(keys.filter((key, i) => keys.indexOf(key) !== i), [], "each key does one thing");
    await page.keyboard.press("Escape");
    await help.waitFor({ state: "hidden" });
  });

  test("the Tab key reaches the list, the tools, the plot and the table", async () => {
    const page = await stage.page();
    await openCast(page, "tide.asvp");
    const reached = new Set<string>();
    for (let i = 0; i < 26; ++i) {
      await page.keyboard.press("Tab");
      reached.add(
        await page.evaluate(() => {
          const at = document.activeElement;
          return at?.id || (at?.getAttribute("class") ?? "").split(" ")[0] || "";
        }),
      );
    }
    for (const stop of ["theme", "help-open", "refresh", "cast", "header", "check", "plot", "tabulator-tableholder"]) {
      assert.ok(reached.has(stop), `${stop} in ${[...reached].join(", ")}`);
    }
  });

  test("a press on a cast counts though the list changes before it ends", async () => {
    const page = await stage.page();
    await listsRead(page);
    const target = page.locator('[data-name="needs-repair.asvp"]');
    await target.hover();
    await page.mouse.down();
    await stage.host.writeCast("aa.asvp", seaLevels([0, 10]));
    const listed = page.waitForResponse(/api\/casts/);
    await page.keyboard.press("r");
    await (await listed).finished();
    await aFrame(page);
    await page.mouse.up();
    await shown(page, "needs-repair.asvp");
    await page.locator('[data-name="aa.asvp"]').waitFor();
    await stage.host.removeCast("aa.asvp");
    await page.keyboard.press("r");
    await page.locator('[data-name="aa.asvp"]').waitFor({ state: "detached" });
    assert.equal(await target.getAttribute("aria-current"), "true");
  });

  test("a failure is told, stays while work goes on, and goes when dismissed", async () => {
    const page = await stage.page();
    await stage.host.writeCast("gone.asvp", seaLevels([0, 10]));
    await page.getByRole("button", { name: "Refresh" }).click();
    await page.locator('[data-name="gone.asvp"]').waitFor();
    await stage.host.removeCast("gone.asvp");
    await page.locator('[data-name="gone.asvp"]').click();

    const message = page.getByRole("alert").filter({ hasText: "gone.asvp could not be opened" });
    await message.waitFor();
    assert.match((await message.textContent()) ?? "", /File does not exist or cannot be opened/);
    await openCast(page, "tide.asvp");
    await page.getByRole("button", { name: "Refresh" }).click();
    await page.waitForTimeout(1500);
    assert.ok(await message.isVisible());
    await message.getByRole("button", { name: /^Dismiss/ }).click();
    await message.waitFor({ state: "detached" });
    assert.ok(await page.locator("#messages").isHidden());
  });

  test("a failure stays when its button was used, and when the file opens later", async () => {
    const page = await stage.page();
    stage.expectTrouble(/status of 500/);
    await pick(page, held("odd.nokind", "0 1500\n10 1490\n"));
    const noFilter = failed(page, "odd.nokind could not be opened.");
    await noFilter.getByRole("button", { name: "Import filters…", exact: true }).click();
    const filters = page.getByRole("dialog", { name: "Import filters" });
    await filters.waitFor();
    await page.keyboard.press("Escape");
    await filters.waitFor({ state: "hidden" });
    assert.ok(await noFilter.isVisible());

    await stage.host.writeCast("back.asvp", seaLevels([0, 10]));
    await page.getByRole("button", { name: "Refresh" }).click();
    await page.locator('[data-name="back.asvp"]').waitFor();
    await stage.host.removeCast("back.asvp");
    await page.locator('[data-name="back.asvp"]').click();
    const gone = failed(page, "back.asvp could not be opened");
    await gone.waitFor();
    await stage.host.writeCast("back.asvp", seaLevels([0, 10]));
    await openCast(page, "back.asvp");
    assert.ok(await gone.isVisible());
    assert.ok(await noFilter.isVisible());
  });

  test("a name with a comma opens; one with brackets is refused with a reason", async () => {
    const page = await stage.page();
    await openCast(page, "with, comma.asvp");
    await page.locator('[data-name="with [bracket].asvp"]').click();
    await page.getByRole("alert").filter({ hasText: "holds a bracket" }).waitFor();
    assert.equal(await page.locator("#cast-title").textContent(), "with, comma.asvp");
  });
});
