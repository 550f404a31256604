/// The import filters, tried on a file and used to open one.
import assert from "node:assert/strict";
import { rm, writeFile } from "node:fs/promises";
import { join } from "node:path";
import { beforeEach, describe, test } from "node:test";
import type { Locator } from "playwright-core";
import { dialogOf, facts, field, fill, LOGGER, openFilters, press, preview, row, status } from "./filter-parts";
import { drag, held, pick } from "./handing";
import { Stage, aFrame, failed, openCast, picture, shown, told } from "./stage";

describe("import filters and files", () => {
  const stage = new Stage(() => Promise.resolve());
  const tablePath = () => join(stage.host.folder, "svp_filters_v2.txt");
  const write = (...rows: string[]) => writeFile(tablePath(), rows.map((each) => `${each}\r\n`).join(""));
  beforeEach(() => rm(tablePath(), { force: true, recursive: true }));

  test("the preview shows how each line is read, and its headings assign the columns", async () => {
    const page = await stage.page({ width: 1024, height: 600 });
    await openFilters(page);
    await picture(page, "filters-empty");
    await preview(page, "cast.csv", LOGGER);
    // A first guess from the names of the columns.
    await facts(page, "7 levels read  ·  0.50 to 32.00 m");
    await status(page, "A first guess from the file");
    assert.equal(await field(page, "Suffix").inputValue(), ".csv");
    const fates = () => dialogOf(page).locator(".line-fate").allTextContents();
    assert.deepEqual(await fates(), [...Array<string>(3).fill("passed over"), ...Array<string>(7).fill("level"), "passed over"]);
    const heading = (column: number) => dialogOf(page).getByLabel(`Column ${column} holds`);
    assert.equal(await heading(4).inputValue(), "depth");
    assert.equal(await heading(1).inputValue(), "speed");
    await picture(page, "filters-guess");

    await heading(0).selectOption("depth");
    await facts(page, "0.00 to 6.00 m");
    assert.equal(await field(page, "Depth").inputValue(), "0");
    assert.equal(await heading(4).inputValue(), "", "a quantity is in one column");
    await heading(4).focus();
    await page.keyboard.press("d");
    assert.equal(await field(page, "Depth").inputValue(), "4", "with the keyboard alone");
    assert.ok(await heading(4).evaluate((element) => element === document.activeElement), "the keyboard stays there");

    await fill(page, { "Lines to skip": "4-6;11", "Depth factor": "0.5" });
    await facts(page, "4 levels read  ·  2.00 to 16.00 m");
    await facts(page, "3 of 11 lines passed over  ·  4 skipped");
    assert.equal(await dialogOf(page).locator(".line-skipped").count(), 4);
    await field(page, "Separator").selectOption("tab");
    await facts(page, "0 levels read");
  });

  test("what is shown is what opening gives, level by level", async () => {
    const page = await stage.page();
    const text = ["1;1500;x", "  +2.50 ;1501.25;9.5", "3;;1", "4;nan;1", "5;1502", "1e1;1.5e3;-1.25", "11;1503;7"].join("\r\r\n");
    await openFilters(page);
    await preview(page, "marks.odd", text);
    await fill(page, { Name: "odd", Suffix: ".odd", Depth: "0", "Sound speed": "1", Temperature: "2", "Lines to skip": "7", "Depth factor": "2" });
    await field(page, "Separator").selectOption("semicolon");
    // Each entry is drawn with the next frame: what is read here is not to be replaced meanwhile.
    await aFrame(page);
    await facts(page, "4 levels read  ·  2.00 to 20.00 m");
    const levels = await dialogOf(page).getByRole("table", { name: "First levels" }).locator("tbody tr").allInnerTexts();
    const read = levels.map((line) => line.split("\t").slice(1).map(Number));
    assert.deepEqual(read, [[2, 1500, 0], [5, 1501.25, 9.5], [10, 1502, 0], [20, 1500, -1.25]]);
    await press(page, "Save filter");
    await press(page, "Open marks.odd");
    await shown(page, "marks.odd");
    const cells = await page.locator(".tabulator-row .tabulator-cell").allInnerTexts();
    assert.deepEqual(cells.map(Number), read.flatMap((level, i) => [i + 1, ...level]));
    await told(page, "marks.odd opened: 4 levels, column file (.odd), read with an import filter.").waitFor();
  });

  test("a file that no filter fits leads to a filter, and the filter opens it", async () => {
    stage.expectTrouble(/Failed to load resource: the server responded with a status of 500/);
    const page = await stage.page();
    await pick(page, held("station.log", LOGGER));
    const message = failed(page, "No import filter fits files ending in .log. Describe its columns in Import filters…");
    await message.getByRole("button", { name: "Import filters…", exact: true }).click();
    await dialogOf(page).waitFor();
    await facts(page, "7 levels read");
    assert.equal(await field(page, "Suffix").inputValue(), ".log");
    await press(page, "Save filter");
    await status(page, "Filter log saved.");
    await press(page, "Open station.log");
    await shown(page, "station.log");
    assert.ok(await dialogOf(page).isHidden());
    assert.deepEqual(await page.locator(".tabulator-col-title").allInnerTexts(), ["No.", "Depthm", "Speedm/s", "Temp.°C", "SalinityPSU"]);
    assert.equal(await page.locator("[data-quantity=svp_Speed] .level-point").count(), 7);
    assert.equal(await page.locator("#header [data-key=hsvp_filetype]").textContent(), "01 – depth, sound speed, temperature and salinity");
    assert.equal(await page.locator("#header [data-key=hsvp_filelat]").textContent(), "not given");
    // The folder's list knows the new kind, here and on a page that opens later.
    await page.locator('[data-name="station.log"][aria-current=true]').waitFor();
    await page.reload();
    await openCast(page, "station.log");
    await picture(page, "column-file");
  });

  test("a file dropped on the dialog is looked at, not opened; typed values stay", async () => {
    await write(row("csv", "3,1,-1,-1,-1,-1,1.000,1.000,comma,undef"));
    const page = await stage.page();
    await openFilters(page);
    await dialogOf(page).locator(".cast[aria-current=true]").waitFor();
    assert.ok(await drag(page, "drop", held("cast.csv", LOGGER)));
    await facts(page, "7 levels read  ·  34.90 to 34.90 m");
    assert.equal(await field(page, "Depth").inputValue(), "3", "the filter of the file's suffix is shown");
    await fill(page, { Depth: "4" });
    await facts(page, "0.50 to 32.00 m");
    await drag(page, "drop", held("other.dat", "1 1500"));
    await facts(page, "0 levels read");
    assert.equal(await field(page, "Suffix").inputValue(), ".csv");
    await press(page, "New filter");
    await page.getByRole("dialog", { name: "Leave without saving?" }).getByRole("button", { name: "Leave" }).click();
    await status(page, "A first guess from the file");
    assert.equal(await field(page, "Suffix").inputValue(), ".dat");
    assert.equal(await page.locator("#cast-title").textContent(), "No cast open");
  });

  for (const theme of ["dark", "light"]) {
    test(`the dialog lies inside a small screen, ${theme}`, async () => {
      await write(row("harbour"), row("a-rather-long-name-of-a-filter-for-the-old-logger"));
      const page = await stage.page({ width: 1024, height: 600 });
      if (theme === "light") await page.keyboard.press("t");
      await openFilters(page);
      await preview(page, "cast.csv", LOGGER);
      await facts(page, "7 levels read");
      await fill(page, { Name: "a b", "Depth factor": "0.3048", "Lines to skip": "4;5" });
      await press(page, "Save filter");
      await facts(page, "2 skipped");
      const inside = async (part: Locator) => {
        const box = await part.boundingBox();
        assert.ok(box && box.x >= 0 && box.y >= 0 && box.x + box.width <= 1024 && box.y + box.height <= 600, JSON.stringify(box));
      };
      await inside(dialogOf(page));
      await inside(dialogOf(page).getByRole("button", { name: "Save filter" }));
      await inside(dialogOf(page).locator(".preview-facts"));
      const lines = await dialogOf(page).getByRole("group", { name: "Lines of the file" }).boundingBox();
      assert.ok(lines && lines.height > 90, "faults leave room for the lines");
      await picture(page, `filters-${theme}`);
    });
  }
});
