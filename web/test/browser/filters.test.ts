/// The import filters: kept in their dialog, tried on a file, used to open one.
import assert from "node:assert/strict";
import { mkdir, readFile, rm, writeFile } from "node:fs/promises";
import { join } from "node:path";
import { beforeEach, describe, test } from "node:test";
import type { Locator, Page } from "playwright-core";
import { drag, held, pick } from "./handing";
import { Stage, openCast, seaLevels, shown } from "./stage";

const told = (page: Page, text: string | RegExp): Locator =>
  page.locator("#messages [role=status]").filter({ hasText: text });
const failed = (page: Page, text: string | RegExp): Locator =>
  page.locator("#messages [role=alert]").filter({ hasText: text });
const dialogOf = (page: Page): Locator => page.getByRole("dialog", { name: "Import filters" });
const field = (page: Page, label: string): Locator => dialogOf(page).getByLabel(label, { exact: true });

/// A logger's text, made up: a head, columns of which depth is not the first, and a tail.
const LOGGER = [
  "Logger 7 of the harbour",
  "Time,Sound velocity,Temperature,Salinity,Depth",
  "s,m/s,C,PSU,m",
  ...seaLevels([0.5, 1, 2, 4, 8, 16, 32]).map(([depth, speed], i) => `${i},${speed},${(12 - i / 4).toFixed(2)},34.9,${depth}`),
  "end of file",
].join("\r\n");

const row = (name: string, rest = "0,1,-1,-1,-1,-1,1.000,1.000,comma,undef") => `${name},.${name},${rest}`;

async function openFilters(page: Page): Promise<void> {
  await page.getByRole("button", { name: "Import filters…", exact: true }).last().click();
  await dialogOf(page).waitFor();
  await page.locator("dialog.filters[aria-busy=false]").waitFor();
}

async function listed(page: Page): Promise<string[]> {
  await page.locator("dialog.filters[aria-busy=false]").waitFor();
  return dialogOf(page).getByRole("list", { name: "Filters" }).locator(".cast-name").allTextContents();
}

async function fill(page: Page, values: Readonly<Record<string, string>>): Promise<void> {
  for (const [label, value] of Object.entries(values)) await field(page, label).fill(value);
}

async function choose(page: Page, name: string): Promise<void> {
  await dialogOf(page).getByRole("list", { name: "Filters" }).getByRole("button", { name }).click();
}

async function preview(page: Page, name: string, text: string): Promise<void> {
  const chooser = page.waitForEvent("filechooser");
  await dialogOf(page).getByRole("button", { name: "Choose a file…" }).click();
  await (await chooser).setFiles([held(name, text)]);
  await dialogOf(page).locator(".preview-name").filter({ hasText: name }).waitFor();
}

const press = (page: Page, name: string) => dialogOf(page).getByRole("button", { name, exact: true }).click();
const status = (page: Page, text: string | RegExp) => dialogOf(page).locator(".filter-status").filter({ hasText: text }).waitFor();
const facts = (page: Page, text: string | RegExp) => dialogOf(page).locator(".preview-facts").filter({ hasText: text }).waitFor();

describe("import filters", () => {
  const stage = new Stage(() => Promise.resolve());
  const tablePath = () => join(stage.host.folder, "svp_filters_v2.txt");
  const table = async () => (await readFile(tablePath(), "latin1")).split(/\r?\n/).filter(Boolean);
  const write = (...rows: string[]) => writeFile(tablePath(), rows.map((each) => `${each}\r\n`).join(""));
  beforeEach(() => rm(tablePath(), { force: true, recursive: true }));

  test("without a table there are no filters yet, and nothing is a failure", async () => {
    const page = await stage.samePage();
    await openFilters(page);
    await dialogOf(page).getByText("No import filters yet.").waitFor();
    await dialogOf(page).getByText("valeport2 (.vp2)").waitFor();
    assert.equal(await page.locator(".message").count(), 0);
    assert.equal(await dialogOf(page).locator(".field-fault:not([hidden])").count(), 0);
    await page.keyboard.press("Escape");
    await dialogOf(page).waitFor({ state: "hidden" });
  });

  test("a filter is added, with what stands against it told at its fields", async () => {
    const page = await stage.samePage();
    await openFilters(page);
    await press(page, "Save filter");
    const fault = (key: string) => dialogOf(page).locator(`#filter-${key}-fault`).textContent();
    assert.equal(await fault("name"), "Give the filter a name.");
    assert.equal(await fault("depth"), "State the column.");
    assert.equal(await field(page, "Name").getAttribute("aria-invalid"), "true");
    await fill(page, { Name: "my lab", Suffix: ".lab", Depth: "1", "Sound speed": "1", "Depth factor": "0.3048" });
    await field(page, "Name").press("Enter");
    assert.equal(await fault("name"), "No white space, commas or brackets.");
    assert.equal(await fault("speed"), "Column 1 is the depth already.");
    assert.equal(await fault("depthFactor"), "Three decimals are stored: 0.3048 would become 0.305.");
    await assert.rejects(table(), "nothing was written");

    await fill(page, { Name: "lab", "Sound speed": "2", "Depth factor": "2", "Lines to skip": "1;3-5" });
    await field(page, "Separator").selectOption("semicolon");
    await press(page, "Save filter");
    await status(page, "Filter lab saved.");
    await told(page, "Import filter lab for files ending in .lab saved.").waitFor();
    assert.deepEqual(await table(), ["lab,.lab,1,2,-1,-1,-1,1;3-5,2.000,1.000,semicolon,undef"]);
    assert.deepEqual(await listed(page), ["lab"]);
  });

  test("a filter is changed in its place, whatever of it is changed", async () => {
    await write(row("one"), row("two"), row("three"));
    const page = await stage.samePage();
    await openFilters(page);
    assert.deepEqual(await listed(page), ["one", "two", "three"]);
    await choose(page, "two");
    assert.equal(await field(page, "Suffix").inputValue(), ".two");
    await fill(page, { "Sound speed": "7" });
    await press(page, "Save filter");
    await status(page, "Filter two saved.");
    assert.deepEqual(await table(), [row("one"), row("three"), row("two").replace(",0,1,", ",0,7,")]);

    await fill(page, { Name: "zwei", Suffix: ".zwei" });
    await press(page, "Save filter");
    await status(page, "Filter zwei saved.");
    assert.deepEqual(await listed(page), ["one", "three", "zwei"]);
    assert.equal((await table()).length, 3, "the row of the old name and suffix is gone");

    // A name that another filter has takes that one out, which is asked first.
    await fill(page, { Name: "ONE" });
    await press(page, "Save filter");
    const question = page.getByRole("dialog", { name: "Replace one (.one)?" });
    await question.getByRole("button", { name: "Cancel" }).click();
    assert.deepEqual(await listed(page), ["one", "three", "zwei"]);
    await press(page, "Save filter");
    await question.getByRole("button", { name: "Replace" }).click();
    await status(page, "Filter ONE saved.");
    assert.deepEqual(await listed(page), ["three", "ONE"]);
  });

  test("a filter is deleted and the others stay", async () => {
    await write(row("one"), row("two", "3,4,5,6,7,2-3,0.500,2.000,tab,conductivity"), row("three"));
    const page = await stage.samePage();
    await openFilters(page);
    await choose(page, "one");
    await press(page, "Delete…");
    const question = page.getByRole("dialog", { name: "Delete the filter one?" });
    await question.getByText("Files ending in .one will not open any more.").waitFor();
    await question.getByRole("button", { name: "Cancel" }).click();
    assert.equal((await table()).length, 3);
    await press(page, "Delete…");
    await question.getByRole("button", { name: "Delete" }).click();
    await status(page, "Filter one deleted.");
    assert.deepEqual(await table(), [row("two", "3,4,5,6,7,2-3,0.500,2.000,tab,conductivity"), row("three")]);
    for (const name of ["two", "three"]) {
      await choose(page, name);
      await press(page, "Delete…");
      await page.getByRole("dialog", { name: `Delete the filter ${name}?` }).getByRole("button", { name: "Delete" }).click();
      await status(page, `Filter ${name} deleted.`);
    }
    assert.deepEqual(await table(), []);
    await dialogOf(page).getByText("No import filters yet.").waitFor();
  });

  test("rows that a deletion could not put back are kept, even by another page, until they are", async () => {
    await write(row("one"), row("two"), row("three"));
    const page = await stage.page();
    // The connection breaks when the first row is to be put back.
    await page.routeWebSocket(/\/ws$/, (socket) => {
      const host = socket.connectToServer();
      socket.onMessage((frame) => {
        if (String(frame).includes("/SaveFilter,")) void socket.close();
        else host.send(frame);
      });
    });
    await page.reload();
    await page.locator("#connection[data-state=open]").waitFor();
    await openFilters(page);
    await choose(page, "one");
    await press(page, "Delete…");
    await page.getByRole("dialog", { name: "Delete the filter one?" }).getByRole("button", { name: "Delete" }).click();
    await status(page, "Deleting did not come to its end. The connection was lost before the answer came.");
    await dialogOf(page).getByText("Not stored yet: two, three").waitFor();
    assert.deepEqual(await table(), []);
    await press(page, "Close");
    await failed(page, "Import filters that are not stored yet: two, three.").waitFor();
    const context = page.context();
    await page.close();

    const next = await stage.page({ context });
    await openFilters(next);
    await press(next, "Save all again");
    await status(next, "All filters are stored.");
    assert.deepEqual(await listed(next), ["two", "three"]);
    assert.deepEqual(await table(), [row("two"), row("three")]);
    assert.ok(await dialogOf(next).locator(".filter-unstored").isHidden());
    await next.close();
  });

  test("rows that cannot be used are told beside those that can", async () => {
    await write(row("good"), row("bad", "0,0,-1,-1,-1,-1,1.000,1.000,comma,undef"), row("odd", "0,1,-1,-1,-1,-1,1.000,1.000,stars,undef"));
    const page = await stage.samePage();
    await openFilters(page);
    await dialogOf(page).getByText(/^2 rows of the table cannot be used: Speedcolumn cannot be the same as Depthcolumn\. Separator must be/).waitFor();
    assert.deepEqual(await listed(page), ["good"]);
    await press(page, "Delete…");
    await page.getByText("The table also has 2 rows that cannot be used; deleting takes them out as well.").waitFor();
  });

  test("a table that cannot be written is told, and the form stays", async () => {
    const page = await stage.samePage();
    await openFilters(page);
    await mkdir(tablePath());
    await fill(page, { Name: "lab", Suffix: ".lab", Depth: "0", "Sound speed": "1" });
    await press(page, "Save filter");
    await status(page, /^The filter was not saved\. The filter table (cannot be written|could not be opened)\. Look whether/);
    assert.equal(await field(page, "Name").inputValue(), "lab");
  });

  test("the preview shows how each line is read, and its headings assign the columns", async () => {
    const page = await stage.samePage({ width: 1024, height: 600 });
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
    const page = await stage.samePage();
    const text = ["1;1500;x", "  +2.50 ;1501.25;9.5", "3;;1", "4;nan;1", "5;1502", "1e1;1.5e3;-1.25", "11;1503;7"].join("\r\r\n");
    await openFilters(page);
    await preview(page, "marks.odd", text);
    await fill(page, { Name: "odd", Suffix: ".odd", Depth: "0", "Sound speed": "1", Temperature: "2", "Lines to skip": "7", "Depth factor": "2" });
    await field(page, "Separator").selectOption("semicolon");
    await facts(page, "4 levels read");
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
    const page = await stage.samePage();
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
    assert.equal(await page.locator(".level-point").count(), 7);
    assert.equal(await page.locator("#header [data-key=hsvp_filetype]").textContent(), "01");
    assert.equal(await page.locator("#header [data-key=hsvp_filelat]").textContent(), "not given");
    // The folder's list knows the new kind, here and on a page that opens later.
    await page.locator('[data-name="station.log"][aria-current=true]').waitFor();
    await page.reload();
    await openCast(page, "station.log");
    await picture(page, "column-file");
  });

  test("what is not saved is not lost by Escape, and no key reaches the page behind", async () => {
    const page = await stage.samePage();
    await openCast(page, "shelf-summer.asvp");
    await page.keyboard.press("i");
    await dialogOf(page).waitFor();
    await field(page, "Name").fill("c");
    await page.keyboard.press("Escape");
    const question = page.getByRole("dialog", { name: "Leave without saving?" });
    await question.waitFor();
    await page.keyboard.press("Escape");
    await question.waitFor({ state: "detached" });
    assert.equal(await field(page, "Name").inputValue(), "c");
    assert.ok(await page.locator("#verdict").isHidden());
    await page.keyboard.press("Escape");
    await question.getByRole("button", { name: "Leave" }).click();
    await dialogOf(page).waitFor({ state: "hidden" });
  });

  test("a file dropped on the dialog is looked at, not opened; typed values stay", async () => {
    await write(row("csv", "3,1,-1,-1,-1,-1,1.000,1.000,comma,undef"));
    const page = await stage.samePage();
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
      const page = await stage.samePage({ width: 1024, height: 600 });
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

/// Keeps a picture for looking at, where a folder for it is named.
async function picture(page: Page, name: string): Promise<void> {
  const folder = process.env["SVP_PICTURES"];
  if (folder) await page.screenshot({ path: join(folder, `${name}.png`) });
}
