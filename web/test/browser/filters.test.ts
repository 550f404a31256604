/// The import filters, kept in their dialog.
import assert from "node:assert/strict";
import { mkdir, readFile, rm, writeFile } from "node:fs/promises";
import { join } from "node:path";
import { beforeEach, describe, test } from "node:test";
import { choose, dialogOf, field, fill, listed, openFilters, press, row, status } from "./filter-parts";
import { Stage, failed, openCast, told } from "./stage";

describe("import filters", () => {
  const stage = new Stage(() => Promise.resolve());
  const tablePath = () => join(stage.host.folder, "svp_filters_v2.txt");
  const table = async () => (await readFile(tablePath(), "latin1")).split(/\r?\n/).filter(Boolean);
  const write = (...rows: string[]) => writeFile(tablePath(), rows.map((each) => `${each}\r\n`).join(""));
  beforeEach(() => rm(tablePath(), { force: true, recursive: true }));

  test("without a table there are no filters yet, and nothing is a failure", async () => {
    const page = await stage.page();
    await openFilters(page);
    await dialogOf(page).getByText("No import filters yet.").waitFor();
    await dialogOf(page).getByText("valeport2 (.vp2)").waitFor();
    assert.equal(await page.locator(".message").count(), 0);
    assert.equal(await dialogOf(page).locator(".field-fault:not([hidden])").count(), 0);
    await page.keyboard.press("Escape");
    await dialogOf(page).waitFor({ state: "hidden" });
  });

  test("a filter is added, with what stands against it told at its fields", async () => {
    const page = await stage.page();
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

  test("Enter asks before another filter is replaced, and does not answer by itself", async () => {
    await write(row("one"));
    const page = await stage.page();
    await openFilters(page);
    await press(page, "New filter");
    await fill(page, { Name: "one", Suffix: ".one", Depth: "0", "Sound speed": "2" });
    await field(page, "Name").press("Enter");
    const question = page.getByRole("dialog", { name: /^Replace/ });
    await question.getByRole("button", { name: "Replace" }).click();
    await status(page, "Filter one saved.");
    assert.deepEqual(await listed(page), ["one"]);
  });

  test("a file that is not chosen after all leaves the dialog as it is", async () => {
    const page = await stage.page();
    await openFilters(page);
    await fill(page, { Name: "typed" });
    // As the browser tells of it.
    await dialogOf(page).locator("input[type=file]").evaluate((picker) => picker.dispatchEvent(new Event("cancel", { bubbles: true })));
    assert.equal(await page.locator("dialog[open]").count(), 1);
    assert.equal(await field(page, "Name").inputValue(), "typed");
    await page.keyboard.press("Escape");
    await page.getByRole("button", { name: "Leave", exact: true }).click();
  });

  test("a filter is changed in its place, whatever of it is changed", async () => {
    await write(row("one"), row("two"), row("three"));
    const page = await stage.page();
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
    const page = await stage.page();
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
    const page = await stage.newPage();
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

    const next = await stage.newPage({ context });
    await openFilters(next);
    await press(next, "Save all again");
    await status(next, "All filters are stored.");
    assert.deepEqual(await listed(next), ["two", "three"]);
    assert.deepEqual(await table(), [row("two"), row("three")]);
    assert.ok(await dialogOf(next).locator(".filter-unstored").isHidden());
    await context.close();
  });

  test("rows that cannot be used are told beside those that can", async () => {
    await write(row("good"), row("bad", "0,0,-1,-1,-1,-1,1.000,1.000,comma,undef"), row("odd", "0,1,-1,-1,-1,-1,1.000,1.000,stars,undef"));
    const page = await stage.page();
    await openFilters(page);
    await dialogOf(page).getByText(/^2 rows of the table cannot be used: Speedcolumn cannot be the same as Depthcolumn\. Separator must be/).waitFor();
    assert.deepEqual(await listed(page), ["good"]);
    await press(page, "Delete…");
    await page.getByText("The table also has 2 rows that cannot be used; deleting takes them out as well.").waitFor();
  });

  test("a table that cannot be written is told, and the form stays", async () => {
    const page = await stage.page();
    await openFilters(page);
    await mkdir(tablePath());
    await fill(page, { Name: "lab", Suffix: ".lab", Depth: "0", "Sound speed": "1" });
    await press(page, "Save filter");
    await status(page, /^The filter was not saved\. The filter table (cannot be written|could not be opened)\. Look whether/);
    assert.equal(await field(page, "Name").inputValue(), "lab");
  });

  test("Escape leaves it while the rows are still read", async () => {
    await write(row("one"));
    const page = await stage.page();
    // No answer comes before the key.
    await page.evaluate(() => {
      [...document.querySelectorAll("button")].filter(({ textContent }) => textContent === "Import filters…").at(-1)?.click();
      document.activeElement?.dispatchEvent(new KeyboardEvent("keydown", { key: "Escape", bubbles: true, cancelable: true }));
    });
    assert.ok(await dialogOf(page).isHidden());
    await openFilters(page);
    assert.deepEqual(await listed(page), ["one"]);
    assert.equal(await field(page, "Suffix").inputValue(), ".one");
  });

  test("what is not saved is not lost by Escape, and no key reaches the page behind", async () => {
    const page = await stage.page();
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
});
