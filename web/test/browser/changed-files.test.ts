/// Files of the open cast that somebody else changes: other pages, other programs.
import assert from "node:assert/strict";
import { readFile, stat } from "node:fs/promises";
import { join } from "node:path";
import { describe, test } from "node:test";
import type { Locator, Page } from "playwright-core";
import { cell, edit, stored, unsaved } from "./editing-parts";
import { levels } from "./reshape-parts";
import { Stage, connected, openCast, openListed, seaLevels, shown, told } from "./stage";

const leaving = (page: Page): Locator => page.getByRole("dialog", { name: "Leave without saving?" });
const changed = (page: Page): Locator => told(page, "a.asvp has changed on disk since it was opened.");
const openIt = (notice: Locator): Promise<void> => notice.getByRole("button", { name: "Open it" }).click();
const refresh = (page: Page): Promise<void> => page.getByRole("button", { name: "Refresh" }).click();

async function saveOver(page: Page): Promise<void> {
  await page.keyboard.press("w");
  await page.getByRole("menuitem", { name: "Save", exact: true }).click();
  await page.getByRole("dialog", { name: "Replace a.asvp?" }).getByRole("button", { name: "Replace" }).click();
  await told(page, "Saved as").waitFor();
}

describe("files that change on disk", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("a.asvp", seaLevels([0, 100, 300]));
    await host.writeCast("b.asvp", seaLevels([0, 100]));
  });

  const opened = async (page: Page): Promise<void> => {
    await stage.host.writeCast("a.asvp", seaLevels([0, 100, 300]));
    await refresh(page);
    await openListed(page, "a.asvp");
  };

  test("“Open it” brings the file as it is then, and not as it was when it was offered", async () => {
    const one = await stage.page();
    const two = await stage.newPage();
    await openCast(two, "b.asvp");
    await opened(one);
    const offer = told(two, "a.asvp was opened elsewhere.");
    await offer.waitFor();
    await edit(one, "Reverse");
    await saveOver(one);
    await openIt(offer);
    await shown(two, "a.asvp");
    assert.deepEqual((await levels(two)).depths, [300, 100, 0]);
    assert.ok(!(await unsaved(two)));
    await offer.waitFor({ state: "detached" });
    // The page that saved it hears of its own file being read, and has nothing to tell.
    await one.waitForTimeout(400);
    assert.equal(await changed(one).count(), 0);
    assert.ok(!(await unsaved(one)));
    await two.close();
  });

  test("another page that saves the open file is told, and what is here is not saved any more", async () => {
    const one = await stage.page();
    const two = await stage.newPage();
    await opened(one);
    await opened(two);
    await edit(one, "Reverse");
    await saveOver(one);
    await changed(two).waitFor();
    assert.ok(await unsaved(two));
    assert.ok(!(await unsaved(one)));
    assert.equal(await changed(two).getByText("times").count(), 0, "it is told once");
    // Nothing was done here, so nothing is asked.
    await openIt(changed(two));
    await two.waitForFunction(() => document.querySelector("#unsaved")?.textContent === "");
    assert.deepEqual((await levels(two)).depths, [300, 100, 0]);
    await changed(two).waitFor({ state: "detached" });

    // The other way round, with edits on both pages.
    await edit(one, "Reverse");
    await edit(two, "Sort by depth");
    await edit(two, "Add level at 0 m");
    await saveOver(two);
    await changed(one).waitFor();
    await one.keyboard.press("Control+z");
    assert.ok(await unsaved(one), "not even the state that was saved here is in the file now");
    await openIt(changed(one));
    await leaving(one).getByRole("button", { name: "Cancel" }).click();
    assert.ok(await changed(one).isVisible(), "the offer stays");
    await openIt(changed(one));
    await leaving(one).getByRole("button", { name: "Leave" }).click();
    await one.waitForFunction(() => document.querySelector("#unsaved")?.textContent === "");
    assert.deepEqual((await levels(one)).depths, [0, 100, 300]);
    await two.close();
  });

  test("another program that writes the open file is told with the next list, also in the question before replacing", async () => {
    const page = await stage.page();
    await opened(page);
    await edit(page, "Reverse");
    await stage.host.rewriteCast("a.asvp", seaLevels([0, 50, 100, 300]));
    const path = join(stage.host.folder, "a.asvp");
    const theirs = await readFile(path, "latin1");
    await page.keyboard.press("w");
    await page.getByRole("menuitem", { name: "Save", exact: true }).click();
    const question = page.getByRole("dialog", { name: "Replace a.asvp?" });
    await question.getByText("It has changed on disk since it was opened here").waitFor();
    await question.getByRole("button", { name: "Cancel" }).click();
    await changed(page).waitFor();
    await page.keyboard.press("Control+z");
    assert.ok(await unsaved(page), "what was opened is not in the file any more");
    assert.equal(await readFile(path, "latin1"), theirs);
    await page.keyboard.press("Control+y");
    await saveOver(page);
    assert.ok(!(await unsaved(page)));
    await changed(page).waitFor({ state: "detached" });
    await refresh(page);
    await page.waitForTimeout(300);
    assert.equal(await changed(page).count(), 0, "this page's own writing is no change");
  });

  test("a file of another time that holds the same has not changed", async () => {
    const page = await stage.page();
    await opened(page);
    await stage.host.rewriteCast("a.asvp", seaLevels([0, 100, 300]));
    await refresh(page);
    await page.waitForTimeout(500);
    assert.equal(await changed(page).count(), 0);
    assert.ok(!(await unsaved(page)));
  });

  test("an open file that is deleted leaves the page the only one that has it", async () => {
    const page = await stage.page();
    await opened(page);
    await stage.host.removeCast("a.asvp");
    await refresh(page);
    await told(page, "a.asvp is no longer in the profile folder.").waitFor();
    assert.ok(await unsaved(page));
    await page.locator('[data-name="b.asvp"]').click();
    await leaving(page).getByRole("button", { name: "Cancel" }).click();
    await page.keyboard.press("Control+s");
    await told(page, "Saved as").waitFor();
    assert.ok((await stat(join(stage.host.folder, "a.asvp"))).size > 0);
    assert.ok(!(await unsaved(page)));
    await told(page, "no longer in").waitFor({ state: "detached" });
  });

  test("another page that opens the unchanged file says nothing, be the cast edited here or not", async () => {
    const one = await stage.page();
    const two = await stage.newPage();
    await opened(one);
    await edit(one, "Reverse");
    await openCast(two, "a.asvp");
    await one.waitForTimeout(400);
    assert.equal(await one.locator(".message-text").allTextContents().then((all) => all.join()), "a.asvp reversed: 3 levels.");
    await two.close();
  });

  test("edits that come back with the page know a file that has changed since", async () => {
    const page = await stage.page();
    await opened(page);
    await edit(page, "Reverse");
    await stored(page, 1);
    await stage.host.rewriteCast("a.asvp", seaLevels([0, 50, 100, 300]));
    // The second time it was known before that the file is another.
    for (const isTold of [false, true]) {
      page.once("dialog", (dialog) => void dialog.accept());
      await page.reload();
      await connected(page);
      await told(page, "The edits of a.asvp that were not saved are back").waitFor();
      await changed(page).waitFor();
      await edit(page, "Reverse");
      await page.waitForTimeout(200);
      await stored(page, 1);
      if (isTold) await page.keyboard.press("Control+z");
    }
    await page.keyboard.press("Control+z");
    assert.equal(await cell(page, 1, "svp_Depth").textContent(), "0.00");
    assert.ok(await unsaved(page));
    await openIt(changed(page));
    await page.waitForFunction(() => document.querySelector("#level-count")?.textContent === "4");
    assert.ok(!(await unsaved(page)));
  });
});
