/// Levels changed, put in and taken out in the table, with undo and redo.
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { join } from "node:path";
import { describe, test } from "node:test";
import { cell, edit, fault, goTo, row, typing, unsaved } from "./editing-parts";
import { extendByDefault, levels, undo } from "./reshape-parts";
import { Stage, assertInside, check, invalidRows, openCast, picture, seaLevels, told } from "./stage";

describe("editing levels", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("four.asvp", [["5.00", "1500.00"], ["10.00", "1490.00"], ["20.00", "1480.00"], ["40.00", "1485.00"]]);
    await host.writeCast("bad.asvp", [["0.00", "1500.00"], ["10.00", "1300.00"], ["20.00", "1480.00"], ["40.00", "1485.00"]]);
    await host.writeCast("sea.asvp", seaLevels(Array.from({ length: 60 }, (_, i) => i * 10)));
  });

  test("values are typed into cells: Enter, F2, Tab, a decimal comma, and Escape", async () => {
    const page = await stage.page();
    await openCast(page, "four.asvp");
    await goTo(page, 2);
    await page.keyboard.press("Enter");
    assert.equal(await typing(page).inputValue(), "10.00");
    assert.equal(await typing(page).getAttribute("aria-label"), "Depth of level 2, m");
    await page.keyboard.type("12,5");
    await page.keyboard.press("Tab");
    assert.equal(await typing(page).inputValue(), "1490.00", "the speed is next");
    await page.keyboard.type("1491.25");
    await page.keyboard.press("Tab");
    assert.equal(await typing(page).inputValue(), "20.00", "then the next level");
    await page.keyboard.press("Shift+Tab");
    assert.equal(await typing(page).inputValue(), "1491.25");
    await page.keyboard.type("9");
    await page.keyboard.press("Escape");
    assert.equal(await typing(page).count(), 0);
    assert.deepEqual(await levels(page), { depths: [5, 12.5, 20, 40], speeds: [1500, 1491.25, 1480, 1485], joined: [] });
    assert.ok(await unsaved(page));
    assert.equal(await page.locator("#level-table [tabulator-field=svp_Depth_CTD]").count(), 0, "the probe's column follows");
    // The keyboard is still in the table.
    await page.keyboard.press("F2");
    assert.equal(await typing(page).inputValue(), "1491.25");
    await page.keyboard.press("Escape");
    await page.keyboard.press("Control+z");
    await page.keyboard.press("Control+z");
    assert.deepEqual((await levels(page)).depths, [5, 10, 20, 40]);
    assert.ok(!(await unsaved(page)));
    await page.keyboard.press("Control+Shift+Z");
    await page.keyboard.press("Control+y");
    assert.deepEqual((await levels(page)).speeds, [1500, 1491.25, 1480, 1485]);
    assert.equal(await page.locator("#redo").isHidden(), true);
  });

  test("a digit typed on a cell opens it with that, and Ctrl+S saves what is being typed", async () => {
    const page = await stage.page();
    await openCast(page, "sea.asvp");
    await goTo(page, 2, "svp_Speed");
    await page.keyboard.type("1499,5");
    assert.equal(await typing(page).inputValue(), "1499,5");
    await page.keyboard.press("Escape");
    assert.ok(!(await unsaved(page)));
    await page.keyboard.type("0");
    assert.equal(await typing(page).inputValue(), "0", "not the key that shows all levels");
    await page.keyboard.press("Escape");
    // At a level that is not in view yet.
    await page.keyboard.press("End");
    await page.keyboard.type("1501.25");
    assert.equal(await typing(page).inputValue(), "1501.25");
    assert.equal(await typing(page).getAttribute("aria-label"), "Speed of level 60, m/s");
    await page.keyboard.press("Control+s");
    await page.getByRole("dialog", { name: "Replace sea.asvp?" }).getByRole("button", { name: "Replace" }).click();
    await told(page, "Saved as").waitFor();
    assert.ok(!(await unsaved(page)));
    assert.match(await readFile(join(stage.host.folder, "sea.asvp"), "latin1"), /\r\n590\.00 1501\.25\r\n$/);

    // What is refused is not saved.
    await page.keyboard.press("v");
    await page.keyboard.press("End");
    await page.keyboard.type("9999");
    await page.keyboard.press("Control+s");
    assert.equal(await typing(page).getAttribute("aria-invalid"), "true");
    assert.ok(await fault(page).isVisible());
    assert.equal(await page.locator("dialog[open]").count(), 0);
    await page.keyboard.press("Escape");
  });

  test("the browser's own saving of pages is kept away, also while a dialog is open", async () => {
    const page = await stage.page();
    const isPrevented = () =>
      page.evaluate(() => {
        const event = new KeyboardEvent("keydown", { key: "s", ctrlKey: true, bubbles: true, cancelable: true });
        return !(document.activeElement ?? document.body).dispatchEvent(event);
      });
    assert.ok(await isPrevented(), "without a cast");
    await page.keyboard.press("?");
    assert.ok(await isPrevented(), "in a dialog");
    const help = page.getByRole("dialog", { name: "Keys and hints" });
    for (const text of ["Save the open cast as .asvp", "type a number in place of the cell’s", "select all levels"]) {
      await help.getByText(text).waitFor();
    }
  });

  test("Ctrl+A in the table selects all levels, and nothing of it elsewhere", async () => {
    const page = await stage.page();
    await openCast(page, "four.asvp");
    await page.locator("body").press("Control+a");
    assert.equal(await page.locator(".tabulator-row[aria-selected=true]").count(), 0);
    await goTo(page, 3);
    await page.keyboard.press("Control+a");
    assert.equal(await page.locator(".tabulator-row[aria-selected=true]").count(), 4);
    await page.keyboard.press("Delete");
    await told(page, "At least one level has to stay; none was deleted.").waitFor();
    await page.keyboard.press("Escape");
    assert.equal(await page.locator(".tabulator-row[aria-selected=true]").count(), 1);
    await page.keyboard.press("Enter");
    await page.keyboard.press("Control+a");
    await page.keyboard.type("7");
    assert.equal(await typing(page).inputValue(), "7", "in a cell it is the text");
    await page.keyboard.press("Escape");
  });

  test("what is no value says why and leaves the old one", async () => {
    const page = await stage.page();
    await openCast(page, "four.asvp");
    await goTo(page, 3, "svp_Speed");
    await page.keyboard.press("F2");
    for (const [text, why] of [
      ["14x0", "“14x0” is no number. Level 3 keeps 1480.00."],
      ["1,5", "The sound speed must lie from 200 to 2\u202f000 m/s. Level 3 keeps 1480.00."],
      ["", "A level needs a sound speed. To take the level out, press Escape, then Delete. Level 3 keeps 1480.00."],
    ] as const) {
      await typing(page).fill(text);
      await page.keyboard.press("Enter");
      assert.equal(await fault(page).textContent(), why);
      assert.equal(await typing(page).getAttribute("aria-invalid"), "true");
    }
    await picture(page, "edit-refused");
    // What is refused when the user goes elsewhere is told as well.
    await typing(page).fill("no");
    await page.locator("#plot").focus();
    assert.match((await fault(page).textContent()) ?? "", /“no” is no number/);
    assert.equal(await cell(page, 3, "svp_Speed").textContent(), "1480.00");
    assert.ok(!(await unsaved(page)));
    assert.ok(await undo(page).isHidden());
  });

  test("levels are taken out, several by Shift, and never all", async () => {
    const page = await stage.page();
    await openCast(page, "four.asvp");
    await goTo(page, 2);
    await page.keyboard.press("Shift+ArrowDown");
    assert.deepEqual(await page.locator(".tabulator-row[aria-selected=true]").evaluateAll((all) => all.map((each) => each.getAttribute("data-level"))), ["2", "3"]);
    await page.keyboard.press("Delete");
    assert.deepEqual((await levels(page)).depths, [5, 40]);
    assert.equal(await page.locator("#header [data-key=hsvp_filesamp]").textContent(), "2");
    assert.equal(await page.locator(".level-point").count(), 2);
    assert.equal(await row(page, 2).getAttribute("aria-selected"), "true");
    await page.getByRole("button", { name: "Undo delete" }).click();
    assert.deepEqual((await levels(page)).depths, [5, 10, 20, 40]);
    await row(page, 1).click();
    await row(page, 4).click({ modifiers: ["Shift"] });
    await edit(page, "Delete");
    await told(page, "At least one level has to stay; none was deleted.").waitFor();
    assert.deepEqual((await levels(page)).depths, [5, 10, 20, 40]);
  });

  test("levels are put in above, below and by depth, with values offered", async () => {
    const page = await stage.page();
    await openCast(page, "four.asvp");
    await goTo(page, 3);
    await page.keyboard.press("Insert");
    await typing(page).waitFor();
    assert.equal(await typing(page).inputValue(), "15.00");
    await page.keyboard.type("16");
    await page.keyboard.press("Enter");
    assert.deepEqual(await levels(page), { depths: [5, 10, 16, 20, 40], speeds: [1500, 1490, 1485, 1480, 1485], joined: [] });
    await page.keyboard.press("End");
    await page.keyboard.press("Shift+Insert");
    await typing(page).waitFor();
    await page.keyboard.press("Escape");
    assert.deepEqual((await levels(page)).depths, [5, 10, 16, 20, 40, 60]);

    await edit(page, "Insert by depth…");
    const dialog = page.getByRole("dialog", { name: "Insert a level" });
    const field = (name: string) => dialog.getByRole("textbox", { name });
    await field("Depth (m)").fill("20");
    await dialog.getByRole("button", { name: "Insert" }).click();
    await dialog.getByText("Level 4 is at this depth already: change that one.").waitFor();
    await field("Depth (m)").fill("30");
    assert.equal(await field("Speed (m/s)").inputValue(), "1482.50", "half of 1480 and 1485");
    await dialog.getByText("Between levels 4 and 5").waitFor();
    await picture(page, "insert-by-depth");
    await field("Speed (m/s)").fill("1483,75");
    await field("Depth (m)").fill("25");
    assert.equal(await field("Speed (m/s)").inputValue(), "1483,75", "what was typed stays");
    await page.keyboard.press("Enter");
    assert.deepEqual(await levels(page), {
      depths: [5, 10, 16, 20, 25, 40, 60], speeds: [1500, 1490, 1485, 1480, 1483.75, 1485, 1485], joined: [],
    });
    assert.equal(await row(page, 5).getAttribute("aria-selected"), "true");
  });

  test("an edit takes the marks of a check away, and a step back brings them again", async () => {
    const page = await stage.page();
    await openCast(page, "bad.asvp");
    await check(page);
    assert.deepEqual(await invalidRows(page), [2]);
    const verdict = await page.locator("#verdict").innerText();
    await goTo(page, 4, "svp_Speed");
    await page.keyboard.press("F2");
    await page.keyboard.type("1486");
    await page.keyboard.press("Enter");
    assert.ok(await page.locator("#verdict").isHidden());
    assert.deepEqual(await invalidRows(page), []);
    assert.equal(await page.locator(".level-invalid").count(), 0);
    await page.keyboard.press("u");
    assert.equal(await page.locator("#verdict").innerText(), verdict);
    await page.locator(".tabulator-row.invalid").waitFor();
    assert.deepEqual(await invalidRows(page), [2]);
    await page.keyboard.press("Control+y");
    assert.ok(await page.locator("#verdict").isHidden());
  });

  test("joined levels keep their mark, and one history holds extending and editing", async () => {
    const page = await stage.page();
    await openCast(page, "four.asvp");
    await extendByDefault(page);
    assert.deepEqual((await levels(page)).joined.slice(0, 2), [1, 6]);
    await goTo(page, 3);
    await page.keyboard.press("Delete");
    assert.deepEqual((await levels(page)).joined.slice(0, 2), [1, 5]);
    await goTo(page, 6, "svp_Speed");
    await page.keyboard.press("F2");
    await page.keyboard.type("1490");
    await page.keyboard.press("Enter");
    assert.deepEqual((await levels(page)).joined.slice(0, 2), [1, 5]);
    assert.equal(await page.locator(".level-joined").count(), (await levels(page)).joined.length);
    await page.getByRole("button", { name: "Undo change" }).click();
    await page.getByRole("button", { name: "Undo delete" }).click();
    await page.getByRole("button", { name: "Undo extend" }).click();
    assert.deepEqual(await levels(page), { depths: [5, 10, 20, 40], speeds: [1500, 1490, 1480, 1485], joined: [] });
    assert.ok(!(await unsaved(page)));
    await page.getByRole("button", { name: "Redo extend" }).click();
    assert.deepEqual((await levels(page)).joined.slice(0, 2), [1, 6]);
  });

  test("what was edited is what is saved", async () => {
    const page = await stage.page({ width: 1024, height: 600 });
    await openCast(page, "sea.asvp");
    await goTo(page, 1, "svp_Speed");
    await page.keyboard.press("Enter");
    await page.keyboard.type("1515.55");
    await page.keyboard.press("Enter");
    for (const part of ["#edit", "#undo", "#header-edit", "#level-table"]) await assertInside(page, page.locator(part));
    await page.keyboard.press("m");
    await assertInside(page, page.getByRole("menu", { name: "Edit" }));
    await picture(page, "edit-menu-1024");
    await page.keyboard.press("Escape");
    await page.getByRole("button", { name: "Save", exact: true }).click();
    await page.getByRole("menuitem", { name: "Save as…" }).click();
    await page.getByRole("dialog").getByLabel("File name").fill("edited");
    await page.keyboard.press("Enter");
    await told(page, "Saved as").waitFor();
    assert.ok(!(await unsaved(page)));
    const lines = (await readFile(join(stage.host.folder, "edited.asvp"), "latin1")).split("\r\n");
    assert.equal(lines[1], "0.00 1515.55");
    assert.equal(lines.length, 62);
  });
});
