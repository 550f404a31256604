/// Sizes, zoom and hover.
import assert from "node:assert/strict";
import { describe, test } from "node:test";
import { Stage, check, openCast, seaLevels } from "./stage";

const DEPTHS = Array.from({ length: 101 }, (_, i) => i * 5);

describe("display", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("steps.asvp", seaLevels(DEPTHS));
    await host.writeCast(`${"a-name-as-long-as-an-office-would-give-".repeat(3)}.asvp`, seaLevels([0, 10]));
  });

  for (const [width, height] of [[1024, 600], [1440, 900], [1920, 1080]] as const) {
    test(`nothing is cut off at ${width} by ${height}`, async () => {
      const page = await stage.page({ width, height });
      for (const name of ["a-name-as", "steps.asvp"]) {
        await page.locator(`[data-name^="${name}"]`).click();
        await page.locator(`body[data-cast^="${name}"]`).waitFor();
        await check(page);
        const overflow = await page.evaluate(() => {
          const root = document.documentElement;
          const outside = [...document.querySelectorAll<HTMLElement>("button, .panel, .plot, .verdict, dd")]
            .filter((element) => element.offsetParent !== null && !element.closest(".cast-list, .header-fields"))
            .filter((element) => {
              const box = element.getBoundingClientRect();
              return box.right > innerWidth + 0.5 || box.bottom > innerHeight + 0.5 || box.left < 0;
            })
            .map((element) => element.id || element.className);
          // Text that its own button cuts off.
          const clipped = [...document.querySelectorAll<HTMLElement>("button:not(.cast)")]
            .filter((element) => element.scrollWidth > element.clientWidth + 1)
            .map((element) => element.textContent ?? "");
          return { scrolls: root.scrollWidth > innerWidth || root.scrollHeight > innerHeight, outside, clipped };
        });
        assert.deepEqual(overflow, { scrolls: false, outside: [], clipped: [] });
        const plot = await page.locator("#plot").boundingBox();
        assert.ok(plot && plot.height > 200 && plot.width > 300, JSON.stringify(plot));
      }
    });
  }

  test("a drag zooms in, and the zoom is undone by button and by double-click", async () => {
    const page = await stage.page();
    await openCast(page, "steps.asvp");
    const points = page.locator(".level-point");
    assert.equal(await points.count(), DEPTHS.length);
    const reset = page.getByRole("button", { name: "Reset zoom" });
    assert.ok(await reset.isDisabled());

    const box = await page.locator("#plot").boundingBox();
    assert.ok(box);
    const drag = async () => {
      await page.mouse.move(box.x + box.width * 0.5, box.y + box.height * 0.4);
      await page.mouse.down();
      await page.mouse.move(box.x + box.width * 0.5 + 4, box.y + box.height * 0.6, { steps: 4 });
      await page.mouse.up();
    };
    await drag();
    const zoomed = await points.count();
    assert.ok(zoomed > 5 && zoomed < 40, `${zoomed} points in a fifth of the depth`);
    await reset.click();
    assert.equal(await points.count(), DEPTHS.length);
    await drag();
    assert.equal(await points.count(), zoomed);
    await page.locator("#plot").dblclick({ position: { x: 90, y: box.height - 40 } });
    assert.equal(await points.count(), DEPTHS.length);
    assert.ok(await reset.isDisabled());
  });

  test("plus and minus zoom, and the view follows the level selected by keys", async () => {
    const page = await stage.page();
    await openCast(page, "steps.asvp");
    const points = page.locator(".level-point");
    await page.keyboard.press("g");
    for (let i = 0; i < 6; ++i) await page.keyboard.press("+");
    assert.ok((await points.count()) < DEPTHS.length / 2);
    await page.keyboard.press("End");
    await page.getByText(/^Level 101 /).waitFor();
    assert.equal(await page.locator(".selected-ring").getAttribute("visibility"), "visible");
    for (let i = 0; i < 8; ++i) await page.keyboard.press("-");
    await page.keyboard.press("0");
    assert.equal(await points.count(), DEPTHS.length);
  });

  test("the level under the pointer shows its values; a click finds its row", async () => {
    const page = await stage.page();
    await openCast(page, "steps.asvp");
    const point = page.locator(".level-point").nth(60);
    const at = await point.boundingBox();
    assert.ok(at);
    await page.mouse.move(at.x + at.width / 2, at.y + at.height / 2);
    const tip = page.locator("#plot .tip");
    await tip.waitFor();
    const [level] = seaLevels([300]);
    assert.ok(level);
    const text = (await tip.innerText()).replace(/\s+/g, " ");
    assert.equal(text, `Level 61 Depth ${level[0]} m Speed ${level[1]} m/s`);
    await page.mouse.down();
    await page.mouse.up();
    const row = page.locator(".tabulator-row.selected");
    await row.waitFor();
    assert.equal(await row.getAttribute("data-level"), "61");
    const place = await row.boundingBox();
    const table = await page.locator("#level-table").boundingBox();
    assert.ok(place && table && place.y >= table.y && place.y + place.height <= table.y + table.height, JSON.stringify({ place, table }));
  });
});
