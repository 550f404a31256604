/// Levels dragged, asked for and removed in the plot.
import assert from "node:assert/strict";
import { build } from "esbuild";
import { describe, test } from "node:test";
import type { Page } from "playwright-core";
import type { Harness } from "./plot-harness";
import { Stage } from "./stage";

const SPEEDS = [1500, 1502.5, 1505, 1507.5, 1510];

describe("editing in the plot", () => {
  const stage = new Stage(async () => undefined);

  /// A page with nothing but a plot of five levels, in two panels.
  async function plotPage(): Promise<Page> {
    const { outputFiles } = await build({
      entryPoints: ["test/browser/plot-harness.ts"], bundle: true, write: false, format: "iife", logLevel: "warning",
    });
    const page = await stage.page();
    const url = new URL("harness.js", stage.host.url).href;
    await page.unroute(url);
    await page.route(url, (route) => route.fulfill({ contentType: "text/javascript", body: outputFiles[0]?.text ?? "" }));
    await page.addScriptTag({ url });
    await page.locator("#harness .trace path").first().waitFor({ state: "attached" });
    return page;
  }
  const ask = <T>(page: Page, what: (harness: Harness) => T): Promise<T> =>
    page.evaluate(`(${what.toString()})(window.harness)`) as Promise<T>;
  const edits = (page: Page) => ask(page, (harness) => harness.edits);
  const points = (page: Page, key = "svp_Speed") => page.locator(`#harness [data-quantity=${key}] .level-point`);

  async function place(page: Page, level: number, key?: string): Promise<{ x: number; y: number }> {
    const box = await points(page, key).nth(level).boundingBox();
    assert.ok(box);
    return { x: box.x + box.width / 2, y: box.y + box.height / 2 };
  }

  async function drag(page: Page, from: { x: number; y: number }, by: { x: number; y: number }): Promise<void> {
    await page.mouse.move(from.x, from.y);
    await page.mouse.down();
    await page.mouse.move(from.x + by.x, from.y + by.y, { steps: 4 });
    await page.mouse.up();
  }

  test("the selected level is dragged to another sound speed, and its depth stays", async () => {
    const page = await plotPage();
    const [second, third] = [await place(page, 1), await place(page, 2)];
    await ask(page, (harness) => {
      harness.editing(true);
      harness.select(1);
    });
    // To where the next level's value is; how far down the pointer goes does not matter.
    await drag(page, second, { x: third.x - second.x, y: 40 });
    const [edit, ...others] = await edits(page);
    assert.deepEqual(others, []);
    const [what, level, value, quantity] = edit ?? [];
    assert.deepEqual([what, level, quantity], ["moved", 1, "svp_Speed"]);
    const pixel = 2.5 / (third.x - second.x);
    assert.ok(Math.abs(Number(value) - 1505) <= pixel, `${value}`);
    assert.equal(value, Number(Number(value).toFixed(2)), "with the decimals of its column");
    assert.equal(await ask(page, (harness) => harness.zoomed), false, "nothing was zoomed");
    assert.deepEqual(await ask(page, (harness) => harness.selected), 1);
    await drag(page, second, { x: 2, y: 60 });
    assert.equal((await edits(page)).length, 1, "a drag down moves nothing");
    // Held beside its middle, the point does not jump to the pointer.
    await drag(page, { x: second.x + 8, y: second.y }, { x: third.x - second.x, y: 0 });
    assert.ok(Math.abs(Number((await edits(page))[1]?.[2]) - 1505) <= pixel);
  });

  test("the panel of temperatures moves temperatures, and a value stays in view", async () => {
    const page = await plotPage();
    await ask(page, (harness) => {
      harness.editing(true);
      harness.select(2);
    });
    const at = await place(page, 2, "svp_Temp");
    await page.mouse.move(at.x, at.y);
    await page.mouse.down();
    await page.mouse.move(at.x + 3000, at.y);
    assert.match(await page.locator("#harness .tip").innerText(), /^\d+\.\d{3} °C$/);
    assert.equal(await page.locator("#harness .move-ring").count(), 1);
    await page.mouse.up();
    const [[, level, value, quantity] = []] = await edits(page);
    assert.deepEqual([level, quantity], [2, "svp_Temp"]);
    assert.ok(Number(value) > 14.125 && Number(value) < 14.5, `the edge of the panel: ${value}`);
  });

  test("outside of the mode a drag zooms, unless Alt is held on the selected level", async () => {
    const page = await plotPage();
    await ask(page, (harness) => harness.select(1));
    const at = await place(page, 1);
    await page.keyboard.down("Alt");
    await drag(page, at, { x: 60, y: 0 });
    await page.keyboard.up("Alt");
    assert.deepEqual((await edits(page)).map(([what, level]) => [what, level]), [["moved", 1]]);
    assert.equal(await ask(page, (harness) => harness.zoomed), false);
    await drag(page, at, { x: 60, y: 60 });
    assert.equal((await edits(page)).length, 1);
    assert.equal(await ask(page, (harness) => harness.zoomed), true);
  });

  test("in the mode a drag elsewhere zooms, a click selects, and Escape lets go", async () => {
    const page = await plotPage();
    await ask(page, (harness) => {
      harness.editing(true);
      harness.select(1);
    });
    const third = await place(page, 2);
    await page.mouse.click(third.x, third.y);
    assert.equal(await ask(page, (harness) => harness.selected), 2);
    await page.mouse.move(third.x, third.y);
    await page.mouse.down();
    await page.mouse.move(third.x + 50, third.y);
    await page.locator("#harness").focus();
    await page.keyboard.press("Escape");
    await page.mouse.up();
    assert.deepEqual(await edits(page), [], "it was let go");
    assert.equal(await ask(page, (harness) => harness.selected), 2);
    const last = await place(page, 4);
    await drag(page, { x: last.x - 200, y: last.y - 200 }, { x: 80, y: 80 });
    assert.equal(await ask(page, (harness) => harness.zoomed), true);
    assert.deepEqual(await edits(page), []);
  });

  test("a double click asks for a level in the mode, and shows all levels outside of it", async () => {
    const page = await plotPage();
    const [first, second] = [await place(page, 0), await place(page, 1)];
    const middle = { x: (first.x + second.x) / 2, y: (first.y + second.y) / 2 };
    await ask(page, (harness) => harness.editing(true));
    await page.mouse.dblclick(middle.x, middle.y);
    const [[what, depth, value, quantity] = [], ...others] = await edits(page);
    assert.deepEqual(others, []);
    assert.deepEqual([what, quantity], ["insert", "svp_Speed"]);
    assert.ok(Math.abs(Number(depth) - 5) < 0.2 && Math.abs(Number(value) - 1501.25) < 0.1, `${depth} ${value}`);
    await page.mouse.dblclick(4, middle.y);
    assert.equal((await edits(page)).length, 1, "beside the panels there is no value");

    await ask(page, (harness) => harness.editing(false));
    await drag(page, first, { x: 100, y: 100 });
    assert.equal(await ask(page, (harness) => harness.zoomed), true);
    await page.mouse.dblclick(middle.x + 50, middle.y);
    assert.equal(await ask(page, (harness) => harness.zoomed), false);
    assert.equal((await edits(page)).length, 1);
  });

  test("the Delete key removes the selected level, and none when none is selected", async () => {
    const page = await plotPage();
    await page.locator("#harness").focus();
    await page.keyboard.press("Delete");
    assert.deepEqual(await edits(page), []);
    await ask(page, (harness) => harness.select(3));
    await page.keyboard.press("Delete");
    assert.deepEqual(await edits(page), [["remove", 3]]);
  });

  test("an edit leaves the zoom where it is; a whole view follows the levels", async () => {
    const page = await plotPage();
    const xs = () => points(page).evaluateAll((all) => all.map((point) => Number(point.getAttribute("cx"))));
    const before = await xs();
    assert.equal(before.length, SPEEDS.length);
    await ask(page, (harness) => harness.change(4, 1520));
    const after = await xs();
    assert.equal(after.length, SPEEDS.length, "what was moved out is in view");
    assert.ok((after[3] ?? 0) < (before[3] ?? 0));
    const second = await place(page, 1);
    await drag(page, { x: second.x - 30, y: second.y - 30 }, { x: 60, y: 60 });
    assert.equal((await xs()).length, 1);
    await ask(page, (harness) => harness.select(1));
    await ask(page, (harness) => harness.change(3, 1508));
    assert.equal((await xs()).length, 1);
    assert.equal(await ask(page, (harness) => harness.zoomed), true);
    assert.equal(await page.locator("#harness .selected-ring[visibility=visible]").count(), 2, "it is still marked");
    // The ring of a level that is gone goes with it.
    await ask(page, (harness) => harness.select(4));
    await ask(page, (harness) => harness.cut(3));
    assert.equal(await page.locator("#harness .selected-ring[visibility=visible]").count(), 0);
  });
});
