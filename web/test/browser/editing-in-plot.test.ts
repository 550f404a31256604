/// Levels changed in the plot of the open cast, in one history with all else that is done to it.
import assert from "node:assert/strict";
import { writeFile } from "node:fs/promises";
import { join } from "node:path";
import { describe, test } from "node:test";
import type { Page } from "playwright-core";
import { cell, fault, goTo, row, unsaved } from "./editing-parts";
import { PROBE, extendByDefault, levels, undo } from "./reshape-parts";
import { Stage, openCast, picture } from "./stage";

describe("editing the open cast in the plot", () => {
  const stage = new Stage(async (host) => {
    for (const name of ["probe.vp2", "other.vp2"]) await writeFile(join(host.folder, name), PROBE);
  });
  const inPlot = (page: Page) => page.getByRole("button", { name: "Edit in plot" });

  async function place(page: Page, level: number, key = "svp_Speed"): Promise<{ x: number; y: number }> {
    const box = await page.locator(`#plot [data-quantity=${key}] .level-point`).nth(level - 1).boundingBox();
    assert.ok(box);
    return { x: box.x + box.width / 2, y: box.y + box.height / 2 };
  }

  async function drag(page: Page, from: { x: number; y: number }, by: number): Promise<void> {
    await page.mouse.move(from.x, from.y);
    await page.mouse.down();
    await page.mouse.move(from.x + by, from.y, { steps: 4 });
    await page.mouse.up();
  }

  test("a level is dragged in the panel of either quantity, and the table follows", async () => {
    const page = await stage.page();
    assert.ok(await inPlot(page).isHidden());
    await openCast(page, "probe.vp2");
    await page.keyboard.press("p");
    assert.equal(await inPlot(page).getAttribute("aria-pressed"), "true");
    await goTo(page, 3);
    const [second, third] = [await place(page, 2), await place(page, 3)];
    await drag(page, third, second.x - third.x);
    await undo(page).filter({ hasText: "Undo change" }).waitFor();
    const speed = Number(await cell(page, 3, "svp_Speed").textContent());
    assert.ok(Math.abs(speed - 1503) < 0.2, `${speed}`);
    assert.equal(await row(page, 3).getAttribute("aria-selected"), "true");
    await picture(page, "edit-in-plot");

    const warm = await place(page, 3, "svp_Temp");
    await drag(page, warm, (await place(page, 2, "svp_Temp")).x - warm.x);
    const temperature = Number(await cell(page, 3, "svp_Temp").textContent());
    assert.ok(Math.abs(temperature - 12.7) < 0.2, `${temperature}`);
    assert.equal(Number(await cell(page, 3, "svp_Speed").textContent()), speed, "the speed is as it was");
    assert.ok(await unsaved(page));
    await page.keyboard.press("Control+z");
    await page.keyboard.press("Control+z");
    assert.deepEqual((await levels(page)).speeds, [1504.1, 1503, 1496, 1493.2]);
    assert.ok(!(await unsaved(page)));
    await page.keyboard.press("Control+y");
    assert.equal(Number(await cell(page, 3, "svp_Speed").textContent()), speed);
  });

  test("a double click puts a level in while the mode is on, and Delete takes it out", async () => {
    const page = await stage.page();
    await openCast(page, "probe.vp2");
    await inPlot(page).click();
    const [first, second] = [await place(page, 1), await place(page, 2)];
    const middle = { x: (first.x + second.x) / 2, y: (first.y + second.y) / 2 };
    await page.mouse.dblclick(middle.x, middle.y);
    await row(page, 5).waitFor();
    const { depths, speeds } = await levels(page);
    assert.ok(Math.abs((depths[1] ?? 0) - 11) < 0.5 && Math.abs((speeds[1] ?? 0) - 1503.55) < 0.2, `${depths} ${speeds}`);
    assert.equal(await row(page, 2).getAttribute("aria-selected"), "true");
    // Halfway between its neighbours.
    assert.ok(Math.abs(Number(await cell(page, 2, "svp_Temp").textContent()) - 12.95) < 0.05);
    await page.keyboard.press("g");
    await page.keyboard.press("Delete");
    assert.deepEqual((await levels(page)).depths, [2, 20, 60, 120]);
    assert.equal(await undo(page).textContent(), "Undo delete");
    await page.keyboard.press("u");
    assert.equal((await levels(page)).depths.length, 5);
    await page.keyboard.press("u");
    await page.keyboard.press("p");
    assert.equal(await inPlot(page).getAttribute("aria-pressed"), "false");
    await page.mouse.dblclick(middle.x, middle.y);
    assert.deepEqual((await levels(page)).depths, [2, 20, 60, 120], "outside of the mode it shows all levels");
    // With Alt a level is moved at any time.
    await goTo(page, 2);
    await page.keyboard.down("Alt");
    await drag(page, await place(page, 2), -60);
    await page.keyboard.up("Alt");
    assert.ok((await levels(page)).speeds[1] !== 1503);
    assert.equal(await undo(page).textContent(), "Undo change");
  });

  test("what is joined has no temperature to be put in", async () => {
    const page = await stage.page();
    await openCast(page, "probe.vp2");
    await extendByDefault(page);
    const before = (await levels(page)).depths.length;
    await inPlot(page).click();
    const panel = await page.locator("#plot [data-quantity=svp_Temp]").boundingBox();
    assert.ok(panel);
    await page.mouse.dblclick(panel.x + panel.width / 2, panel.y + panel.height * 0.7);
    assert.match((await fault(page).textContent()) ?? "", /was joined, not measured: it has no temperature of its own\./);
    assert.equal((await levels(page)).depths.length, before);
  });

  test("what lies under the cast stays through edits and steps back", async () => {
    const page = await stage.page();
    await openCast(page, "other.vp2");
    await openCast(page, "probe.vp2");
    await page.keyboard.press("k");
    await page.keyboard.press("Enter");
    const under = page.locator(".legend").getByText("other.vp2");
    await under.waitFor();
    await page.getByRole("button", { name: "Add 0 m level" }).click();
    await page.keyboard.press("Control+z");
    await under.waitFor();
    assert.ok((await page.locator(".trace-under path").count()) > 0);

    // What was opened and then edited can be laid under itself, and no more once it is that again.
    await page.getByRole("button", { name: "Add 0 m level" }).click();
    await page.keyboard.press("k");
    const choice = page.getByRole("listbox", { name: "Cast to compare with" });
    await choice.selectOption({ label: "probe.vp2, as it was opened" });
    await page.keyboard.press("Enter");
    await page.locator(".legend").getByText("probe.vp2").waitFor();
    await page.keyboard.press("Control+z");
    await page.locator(".legend").getByText("probe.vp2").waitFor({ state: "hidden" });
    await page.keyboard.press("k");
    assert.deepEqual((await choice.locator("option").allTextContents()).filter((text) => text.includes("as it was")), []);
    await page.keyboard.press("Escape");
  });

  test("a ray is laid beside the cast before its last change, whatever steps led there", async () => {
    const page = await stage.page();
    await openCast(page, "probe.vp2");
    await page.getByRole("button", { name: "Add 0 m level" }).click();
    await extendByDefault(page);
    const options = async () => {
      await page.keyboard.press("y");
      const all = await page.getByRole("dialog").getByRole("combobox").first().locator("option").allTextContents();
      await page.keyboard.press("Escape");
      return all.filter((text) => text.startsWith("probe.vp2"));
    };
    assert.deepEqual(await options(), ["probe.vp2 before the last change, 5 levels"]);
    await page.keyboard.press("u");
    assert.deepEqual(await options(), ["probe.vp2 before the last change, 4 levels"]);
    await page.keyboard.press("u");
    assert.deepEqual(await options(), []);
    await page.keyboard.press("Control+y");
    await page.keyboard.press("Control+Shift+Z");
    assert.deepEqual(await options(), ["probe.vp2 before the last change, 5 levels"]);
  });
});
