/// The panels of the plot: linked by depth, by what is pointed at, and by the selected level.
import assert from "node:assert/strict";
import { writeFile } from "node:fs/promises";
import { join } from "node:path";
import { describe, test } from "node:test";
import type { Locator, Page } from "playwright-core";
import { extendByDefault, probeCast } from "./reshape-parts";
import { Stage, check, openCast, seaLevels } from "./stage";

const LEVELS = 41;
const NAMES = { svp_Speed: "Sound speed (m/s)", svp_Temp: "Temperature (°C)", svp_Sal: "Salinity (PSU)" };
type Key = keyof typeof NAMES;
const KEYS = Object.keys(NAMES) as Key[];

const panel = (page: Page, key: Key) => page.locator(`.profile-plot[data-quantity=${key}]`);
const points = (page: Page, key: Key) => panel(page, key).locator(".level-point");

/// Vertical middle of each element, in pixels of the window.
const middles = (all: Locator) => all.evaluateAll((elements) =>
  elements.map((element) => {
    const { top, height } = element.getBoundingClientRect();
    return Math.round((top + height / 2) * 2) / 2;
  }));

async function middleOf(element: Locator): Promise<{ x: number; y: number }> {
  const box = await element.boundingBox();
  assert.ok(box);
  return { x: box.x + box.width / 2, y: box.y + box.height / 2 };
}

describe("panels", () => {
  const stage = new Stage(async (host) => {
    await writeFile(join(host.folder, "probe.vp2"), probeCast(LEVELS, 5));
    await host.writeCast("speeds.asvp", seaLevels([0, 10, 20]));
    await writeFile(join(host.folder, "faulty.vp2"), probeCast(10, 5).replace(/\r\n21\.00\t[\d.]+/, "\r\n21.00\t1822.40"));
  });

  test("each quantity that a cast has is a panel, all over the same depths", async () => {
    const page = await stage.page();
    await openCast(page, "speeds.asvp");
    assert.equal(await page.locator(".profile-plot").count(), 1);
    assert.ok(await page.getByRole("group", { name: "Panels beside sound speed" }).isHidden());
    await openCast(page, "probe.vp2");
    assert.equal(await page.locator(".profile-plot").count(), 3);
    const heights = await middles(points(page, "svp_Speed"));
    for (const key of KEYS) {
      await panel(page, key).getByText(NAMES[key]).waitFor();
      assert.equal(await points(page, key).count(), LEVELS);
      assert.deepEqual(await middles(points(page, key)), heights, key);
    }
    assert.equal(await page.locator(".profile-plot").getByText("Depth (m)").count(), 1, "one depth axis");
    // A level is further right than another exactly where its temperature is higher.
    const across = await points(page, "svp_Temp").evaluateAll((all) => all.map((point) => Number(point.getAttribute("cx"))));
    const rows = await page.locator(".tabulator-row").evaluateAll((all) =>
      all.map((row) => Number(row.querySelector("[tabulator-field=svp_Temp]")?.textContent)));
    assert.ok(rows.length > 5);
    rows.slice(1).forEach((value, i) => {
      const step = Math.sign(value - (rows[i] ?? NaN));
      assert.equal(Math.sign((across[i + 1] ?? NaN) - (across[i] ?? NaN)), step, `level ${i + 2}`);
    });
  });

  test("a panel is put away and brought back, in the next cast as well", async () => {
    const page = await stage.page();
    await openCast(page, "probe.vp2");
    const toggle = page.getByRole("button", { name: "Temperature", exact: true });
    assert.equal(await toggle.getAttribute("aria-pressed"), "true");
    await toggle.click();
    await panel(page, "svp_Temp").waitFor({ state: "detached" });
    assert.equal(await toggle.getAttribute("aria-pressed"), "false");
    await openCast(page, "speeds.asvp");
    await openCast(page, "shelf-slope.vp2");
    assert.equal(await panel(page, "svp_Sal").count(), 1);
    assert.equal(await panel(page, "svp_Temp").count(), 0);
    await page.getByRole("button", { name: "Temperature", exact: true }).press("Enter");
    await panel(page, "svp_Temp").waitFor();
  });

  test("a drag in one panel zooms its own quantity and the depths of all", async () => {
    const page = await stage.page();
    await openCast(page, "probe.vp2");
    const [from, to] = [await middleOf(points(page, "svp_Temp").nth(5)), await middleOf(points(page, "svp_Temp").nth(20))];
    const ticks = (key: Key) => panel(page, key).locator("[aria-label='x-axis tick label'] text").allTextContents();
    const before = await ticks("svp_Speed");
    assert.ok(before.length >= 2, `an axis of ${before.join()}`);
    await page.mouse.move(to.x - 8, from.y - 2);
    await page.mouse.down();
    await page.mouse.move(from.x + 8, to.y + 2, { steps: 5 });
    const band = await page.locator(".drag-band").boundingBox();
    const whole = await page.locator("#plot").boundingBox();
    assert.ok(band && whole && band.width > whole.width * 0.8, "the depths are marked in all panels");
    await page.mouse.up();
    assert.equal(await points(page, "svp_Temp").count(), 16, "levels 6 to 21");
    for (const key of KEYS) assert.deepEqual(await middles(points(page, key)), await middles(points(page, "svp_Temp")), key);
    assert.deepEqual(await ticks("svp_Speed"), before, "sound speed is zoomed in depth alone");
    await page.getByRole("button", { name: "Reset zoom" }).click();
    for (const key of KEYS) assert.equal(await points(page, key).count(), LEVELS);
    // A thin drag zooms depth alone.
    await page.mouse.move(from.x, from.y - 2);
    await page.mouse.down();
    await page.mouse.move(from.x + 3, to.y + 2, { steps: 5 });
    await page.mouse.up();
    for (const key of KEYS) assert.equal(await points(page, key).count(), 16, key);
  });

  test("pointing at a panel shows all quantities at that depth, with a crosshair through all panels", async () => {
    const page = await stage.page();
    await openCast(page, "probe.vp2");
    const { y } = await middleOf(points(page, "svp_Temp").nth(10));
    // Beside the line, in another panel.
    const box = await panel(page, "svp_Sal").locator(".frame").boundingBox();
    assert.ok(box);
    await page.mouse.move(box.x + 12, y + 1);
    const tip = page.locator("#plot .tip");
    await tip.waitFor();
    const row = page.locator('.tabulator-row[data-level="11"] .tabulator-cell');
    const [, depth, speed, temperature, salinity] = await row.allTextContents();
    assert.equal(
      (await tip.innerText()).replace(/\s+/g, " "),
      `Level 11 Depth ${depth} m Speed ${speed} m/s Temp. ${temperature} °C Salinity ${salinity} PSU`,
    );
    const rings = page.locator("#plot .hover-ring");
    assert.equal(await rings.count(), 3);
    for (const middle of await middles(rings)) assert.ok(Math.abs(middle - y) < 1);
    const cross = await page.locator("#plot .crosshair").boundingBox();
    assert.ok(cross && cross.x + cross.width >= box.x + box.width - 1);
    await page.mouse.move(0, 0);
    await tip.waitFor({ state: "hidden" });
    assert.equal(await rings.count(), 0);
  });

  test("a level picked in any panel is selected in all of them and in the table, and the other way", async () => {
    const page = await stage.page();
    await openCast(page, "probe.vp2");
    const at = await middleOf(points(page, "svp_Sal").nth(30));
    await page.mouse.click(at.x, at.y);
    const row = page.locator(".tabulator-row.selected");
    await row.waitFor();
    assert.equal(await row.getAttribute("data-level"), "31");
    const rings = page.locator(".selected-ring[visibility=visible]");
    assert.equal(await rings.count(), 3);
    await page.locator('.tabulator-row[data-level="29"]').click();
    await page.getByText(/^Level 29 /).waitFor();
    const { y } = await middleOf(points(page, "svp_Speed").nth(28));
    for (const middle of await middles(rings)) assert.ok(Math.abs(middle - y) < 1);
  });

  test("invalid levels and what was joined are marked in every panel", async () => {
    const page = await stage.page();
    await openCast(page, "faulty.vp2");
    await check(page);
    for (const key of KEYS) assert.equal(await panel(page, key).locator(".level-invalid").count(), 1, key);
    await openCast(page, "probe.vp2");
    await extendByDefault(page);
    await page.locator(".joined-zone path, .joined-zone rect").first().waitFor({ state: "attached" });
    const levels = Number(await page.locator("#level-count").textContent());
    assert.equal(await points(page, "svp_Speed").count(), levels);
    for (const key of KEYS) assert.ok(await panel(page, key).locator(".joined-zone rect").count() > 0, key);
    assert.equal(await points(page, "svp_Temp").count(), LEVELS, "no temperature was measured of a joined level");
    await page.getByRole("button", { name: "Fit measured" }).click();
    for (const key of KEYS) assert.equal(await panel(page, key).locator(".level-points circle").count(), LEVELS, key);
    assert.ok(await panel(page, "svp_Speed").locator(".level-joined").count() < 3);
  });

  test("a screen reader is told what the plot shows", async () => {
    const page = await stage.page();
    await openCast(page, "speeds.asvp");
    const described = await page.locator("#plot").evaluate((plot) =>
      (plot.getAttribute("aria-describedby") ?? "").split(" ").map((id) => document.getElementById(id)?.textContent ?? "?"));
    const [shallow, , deep] = seaLevels([0, 10, 20]).map(([, speed]) => speed);
    assert.equal(described[0], `3 levels of speeds.asvp, depth 0.00 to 20.00 m. Sound speed ${deep} to ${shallow} m/s.`);
    assert.match(described[1] ?? "", /arrows select a level/);
    await page.keyboard.press("g");
    for (let i = 0; i < 3; ++i) await page.keyboard.press("+");
    assert.match((await page.locator("#plot-summary").textContent()) ?? "", / In view: depth .* to .* m\.$/);
  });
});
