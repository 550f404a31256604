/// The check: invalid levels marked in plot and table, the verdict in words.
import assert from "node:assert/strict";
import { describe, test } from "node:test";
import type { FileLevel } from "./host";
import { Stage, check, invalidRows, openCast, seaLevels } from "./stage";


/// Level 4 too fast, level 7 too slow, level 9 a repetition of level 8, level 12 shallower than
/// the one before.
const FAULTY: FileLevel[] = [
  ["0.00", "1512.40"], ["5.00", "1511.90"], ["10.00", "1510.20"], ["15.00", "1733.50"],
  ["20.00", "1506.80"], ["30.00", "1501.30"], ["40.00", "1388.25"], ["50.00", "1494.10"],
  ["50.00", "1494.10"], ["75.00", "1489.60"], ["100.00", "1487.90"], ["90.00", "1488.30"],
  ["150.00", "1486.70"], ["200.00", "1486.90"],
];
const INVALID = [4, 7, 9, 12];

describe("checking a cast", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("faulty.asvp", FAULTY);
    await host.writeCast("whole.asvp", seaLevels([0, 10, 100, 1000, 6000, 12000]));
    await host.writeCast("deep-start.asvp", seaLevels([5, 10, 100]));
    await host.writeCast("odd*name.asvp", FAULTY);
  });

  test("invalid levels are marked in plot and table, and the verdict is shown line by line", async () => {
    const page = await stage.page();
    await openCast(page, "faulty.asvp");
    await check(page);
    assert.deepEqual(await page.locator("#verdict-lines li").allTextContents(), [
      "Invalid entries are marked.",
      "SVP must be extended to full ocean depth (12000.00m).",
    ]);
    assert.equal(await page.locator(".level-invalid").count(), INVALID.length);
    assert.equal(await page.locator(".level-point").count(), FAULTY.length);
    assert.deepEqual(await invalidRows(page), INVALID);
    assert.equal(await page.locator('.tabulator-row.invalid [aria-label="invalid"]').count(), INVALID.length);
    assert.match((await page.locator("#cast-facts").textContent()) ?? "", /4 invalid/);
  });

  test("the sample that needs repair has invalid levels in plot and table alike", async () => {
    const page = await stage.page();
    await openCast(page, "needs-repair.asvp");
    await check(page);
    const crosses = await page.locator(".level-invalid").count();
    assert.ok(crosses > 0);
    assert.equal((await invalidRows(page)).length, crosses);
  });

  test("a cast from the surface to full depth is valid and nothing is marked", async () => {
    const page = await stage.page();
    await openCast(page, "whole.asvp");
    await check(page);
    assert.deepEqual(await page.locator("#verdict-lines li").allTextContents(), [
      "Existing profile depths and sound speeds are valid.",
    ]);
    assert.equal(await page.locator("#verdict").getAttribute("data-state"), "valid");
    assert.equal(await page.locator(".level-invalid").count(), 0);
    assert.ok(await page.getByRole("button", { name: "Next invalid" }).isHidden());
  });

  test("a cast that begins below the surface and ends above the bottom is told both", async () => {
    const page = await stage.page();
    await openCast(page, "deep-start.asvp");
    await check(page);
    assert.deepEqual(await page.locator("#verdict-lines li").allTextContents(), [
      "Existing profile depths and sound speeds are valid.",
      "SVP must be extended to full ocean depth (12000.00m).",
      "SVP must be extended upwards to 0.00m",
    ]);
  });

  test("a file name with a star does not break the request", async () => {
    const page = await stage.page();
    await openCast(page, "odd*name.asvp");
    await check(page);
    assert.deepEqual(await invalidRows(page), INVALID);
  });

  test("the invalid levels are gone through one by one, and the valid ones can fill the plot", async () => {
    const page = await stage.page();
    await openCast(page, "faulty.asvp");
    await check(page);
    for (const level of [...INVALID, INVALID[0]]) {
      await page.getByRole("button", { name: "Next invalid" }).click();
      await page.getByText(new RegExp(`^Level ${level} .*invalid$`)).waitFor();
      assert.equal(
        await page.locator(".tabulator-row.selected").getAttribute("data-level"),
        String(level),
      );
    }
    await page.getByRole("button", { name: "Fit valid" }).click();
    assert.equal(await page.locator(".level-point").count(), FAULTY.length - 2, "two lie far out");
    assert.deepEqual(await page.locator(".invalid-beyond text").allTextContents(), ["◂", "▸"]);
    // Going to a level whose speed lies far out must not take the others from view.
    await page.keyboard.press("n");
    await page.getByText(/^Level 7 .*invalid$/).waitFor();
    assert.equal(await page.locator(".level-point").count(), FAULTY.length - 2);
    assert.equal(await page.locator(".selected-ring").getAttribute("visibility"), "visible");
    await page.getByRole("button", { name: "Reset zoom" }).click();
    assert.equal(await page.locator(".level-point").count(), FAULTY.length);
  });

  test("another cast does not inherit the marks and the verdict", async () => {
    const page = await stage.page();
    await openCast(page, "faulty.asvp");
    await check(page);
    await openCast(page, "whole.asvp");
    assert.equal(await page.locator(".level-invalid").count(), 0);
    assert.deepEqual(await invalidRows(page), []);
    assert.ok(await page.locator("#verdict").isHidden());
  });
});
