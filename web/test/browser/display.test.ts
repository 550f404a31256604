/// Themes, sizes, zoom, hover, and long casts.
import assert from "node:assert/strict";
import { describe, test } from "node:test";
import type { Page } from "playwright-core";
import { Stage, check, openCast, seaLevels } from "./stage";

const LONG = 20_000;
/// Generous: a machine that is busy with other things must not fail it, a page that draws
/// every level anew on each move must.
const SLOWEST_MS = 4000;

const DEPTHS = Array.from({ length: 101 }, (_, i) => i * 5);

const theme = (page: Page) => page.locator("html").getAttribute("data-theme");
const ground = (page: Page) =>
  page.evaluate(() => getComputedStyle(document.body).backgroundColor);

describe("display", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("steps.asvp", seaLevels(DEPTHS));
    await host.writeCast("long.asvp", seaLevels(Array.from({ length: LONG }, (_, i) => i * 0.5)));
    await host.writeCast("two-thousand.asvp", seaLevels(Array.from({ length: 2000 }, (_, i) => i)));
    await host.writeCast(`${"a-name-as-long-as-an-office-would-give-".repeat(3)}.asvp`, seaLevels([0, 10]));
  });

  test("night colours come first; the light theme is remembered", async () => {
    const page = await stage.page();
    assert.equal(await theme(page), "dark");
    const night = await ground(page);
    await page.getByRole("button", { name: "Light theme" }).click();
    assert.equal(await theme(page), "light");
    assert.notEqual(await ground(page), night);

    const again = await stage.page({ context: page.context() });
    assert.equal(await theme(again), "light");
    await again.keyboard.press("t");
    assert.equal(await theme(again), "dark");
    assert.equal(await ground(again), night);
    await page.context().close();
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
      await page.close();
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
    await page.close();
  });

  test("plus and minus zoom, and the view follows the level selected by keys", async () => {
    const page = await stage.page();
    await openCast(page, "steps.asvp");
    const points = page.locator(".level-point");
    await page.keyboard.press("p");
    for (let i = 0; i < 6; ++i) await page.keyboard.press("+");
    assert.ok((await points.count()) < DEPTHS.length / 2);
    await page.keyboard.press("End");
    await page.getByText(/^Level 101 /).waitFor();
    assert.equal(await page.locator(".selected-ring").getAttribute("visibility"), "visible");
    for (let i = 0; i < 8; ++i) await page.keyboard.press("-");
    await page.keyboard.press("0");
    assert.equal(await points.count(), DEPTHS.length);
    await page.close();
  });

  test("the level under the pointer shows its values; a click finds its row", async () => {
    const page = await stage.page();
    await openCast(page, "steps.asvp");
    const point = page.locator(".level-point").nth(60);
    const at = await point.boundingBox();
    assert.ok(at);
    await page.mouse.move(at.x + at.width / 2, at.y + at.height / 2);
    const tip = page.locator(".tip");
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
    assert.ok(place && table && place.y >= table.y && place.y + place.height <= table.y + table.height);
    await page.close();
  });

  test("up to 2000 levels each have their mark", async () => {
    const page = await stage.page();
    await openCast(page, "two-thousand.asvp");
    assert.equal(await page.locator(".level-point").count(), 2000);
    await page.close();
  });

  test(`${LONG} levels are opened, checked, hovered and reached quickly`, async (t) => {
    const page = await stage.page();
    const timed = async (what: string, act: () => Promise<void>) => {
      const start = performance.now();
      await act();
      const took = Math.round(performance.now() - start);
      t.diagnostic(`${what}: ${took} ms`);
      assert.ok(took < SLOWEST_MS, `${what} took ${took} ms`);
    };
    await timed(`open ${LONG} levels`, () => openCast(page, "long.asvp"));
    assert.match((await page.locator("#cast-facts").textContent()) ?? "", /20.000 levels/);
    const drawn = (await page.locator(".trace path").getAttribute("d")) ?? "";
    const corners = drawn.split("L").length;
    assert.ok(corners > 300 && corners < 4000, `${corners} corners of the line`);
    await timed(`check ${LONG} levels`, () => check(page));
    const box = await page.locator("#plot").boundingBox();
    assert.ok(box);
    await timed("100 moves of the pointer", async () => {
      for (let i = 0; i < 100; ++i) {
        await page.mouse.move(box.x + box.width / 2, box.y + 60 + (i / 100) * (box.height - 90));
      }
    });
    await timed("10 zooms", async () => {
      await page.keyboard.press("p");
      for (let i = 0; i < 10; ++i) await page.keyboard.press("+");
      await page.locator(".level-point").first().waitFor({ state: "attached" });
    });
    await timed("select the last level", async () => {
      await page.keyboard.press("End");
      await page.locator(`.tabulator-row.selected[data-level="${LONG}"]`).waitFor();
    });
    await page.close();
  });
});
