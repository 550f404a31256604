/// The picture of the page that the documentation shows.
import assert from "node:assert/strict";
import { existsSync } from "node:fs";
import { mkdir } from "node:fs/promises";
import { dirname, resolve } from "node:path";
import { describe, test } from "node:test";
import { Stage, check, openCast, seaLevels } from "./stage";

const PICTURE = resolve("../docs/images/page.png");

describe("picture", () => {
  const stage = new Stage(async (host) => {
    const depths = [0, 5, 10, 20, 30, 50, 75, 100, 150, 200];
    for (const station of ["21", "22", "23", "24"]) {
      await host.writeCast(`station-${station}.asvp`, seaLevels(depths));
    }
  });

  test("a picture of the page is kept for the documentation", async () => {
    const page = await stage.page({ width: 1280, height: 800 });
    await openCast(page, "needs-repair.asvp");
    await check(page);
    await page.getByRole("button", { name: "Fit valid" }).click();
    await page.getByRole("button", { name: "Next invalid" }).click();
    await page.keyboard.press("n");
    await page.locator(".tabulator-row.selected").waitFor();
    await page.mouse.move(0, 0);
    await page.evaluate(() => (document.activeElement as HTMLElement | null)?.blur());
    const picture = await page.screenshot();
    assert.equal(picture.readUInt32BE(16), 1280);
    assert.equal(picture.readUInt32BE(20), 800);
    // Renewed on demand only: a test run leaves the tree as it was.
    if (process.env["SVP_UPDATE_SCREENSHOTS"] === "1" || !existsSync(PICTURE)) {
      await mkdir(dirname(PICTURE), { recursive: true });
      await page.screenshot({ path: PICTURE });
    }
  });
});
