/// Dialogs of the open cast: what arrives, breaks off or is left while they are open.
import assert from "node:assert/strict";
import { describe, test } from "node:test";
import type { Page } from "playwright-core";
import { edit, stored, unsaved } from "./editing-parts";
import { drag, held } from "./handing";
import { atlasDialog, fixed, rayDialog } from "./repair-parts";
import { levels, thinDialog, undo } from "./reshape-parts";
import { Stage, aFrame, connected, failed, openCast, picture, seaLevels, shown, told } from "./stage";

const title = (page: Page) => page.locator("#cast-title").textContent();
const insertDialog = (page: Page) => page.getByRole("dialog", { name: "Insert a level" });
const headerDialog = (page: Page) => page.getByRole("dialog", { name: /^Header of/ });
const source = (page: Page) => headerDialog(page).getByLabel("Source", { exact: true });
const closing = (page: Page) => page.getByRole("dialog", { name: "Close without applying?" });
const LOST = /WebSocket connection to .* failed|ERR_CONNECTION/;

describe("open dialogs", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("a.asvp", seaLevels([0, 100, 300]));
    await host.writeCast("b.asvp", seaLevels([0, 100, 250, 300]));
    await host.writeCast("long.asvp", seaLevels([0, 10, 50, 100, 200, 300, 500, 1000]));
  });

  /// Asks for b.asvp while the host is gone: it comes as soon as that is back.
  async function askedFor(page: Page): Promise<void> {
    stage.expectTrouble(LOST);
    await stage.host.stop();
    await page.locator("#connection[data-state=lost]").waitFor();
    await page.locator('[data-name="b.asvp"]').click();
    await page.getByText("Opening b.asvp").waitFor();
  }

  async function hostIsBack(page: Page): Promise<void> {
    await stage.host.startAgain();
    await connected(page);
  }

  test("a level goes into the cast that it was stated for, whatever comes meanwhile", async () => {
    const page = await stage.page();
    await openCast(page, "a.asvp");
    await askedFor(page);
    await edit(page, "Insert by depth…");
    await insertDialog(page).getByLabel("Depth").fill("200");
    await hostIsBack(page);
    const ready = told(page, "b.asvp is ready. a.asvp stays on the page, since a dialog is open.");
    await ready.waitFor();
    assert.equal(await title(page), "a.asvp");
    await insertDialog(page).getByRole("button", { name: "Insert" }).click();
    assert.deepEqual((await levels(page)).depths, [0, 100, 200, 300]);

    // The offer outlives a question that was declined.
    await ready.getByRole("button", { name: "Open it" }).click();
    const question = page.getByRole("dialog", { name: "Leave without saving?" });
    await question.getByRole("button", { name: "Cancel" }).click();
    assert.ok(await ready.isVisible());
    assert.equal(await title(page), "a.asvp");
    await ready.getByRole("button", { name: "Open it" }).click();
    await question.getByRole("button", { name: "Leave" }).click();
    await shown(page, "b.asvp");
    await ready.waitFor({ state: "detached" });
    assert.deepEqual((await levels(page)).depths, [0, 100, 250, 300]);
  });

  test("a header that was typed is applied to its cast after the host was away", async () => {
    const page = await stage.page();
    await openCast(page, "a.asvp");
    await askedFor(page);
    await page.keyboard.press("d");
    await source(page).fill("deck probe");
    await hostIsBack(page);
    await told(page, "b.asvp is ready.").waitFor();
    assert.equal(await source(page).inputValue(), "deck probe");
    await headerDialog(page).getByRole("button", { name: "Apply" }).click();
    assert.equal(await title(page), "a.asvp");
    assert.equal(await page.locator("#header [data-key=hsvp_filesource]").textContent(), "deck probe");
    assert.ok(await unsaved(page));
  });

  test("a header that was typed is not dropped without a question", async () => {
    const page = await stage.page();
    await openCast(page, "a.asvp");
    await page.keyboard.press("d");
    await page.keyboard.press("Escape");
    await headerDialog(page).waitFor({ state: "hidden" });

    await page.keyboard.press("d");
    await source(page).fill("deck probe");
    for (const leave of [
      () => page.keyboard.press("Escape"),
      () => headerDialog(page).getByRole("button", { name: "Cancel" }).click(),
    ]) {
      await leave();
      await closing(page).getByText("in the header of no cast yet: Source.").waitFor();
      await closing(page).getByRole("button", { name: "Cancel" }).click();
      assert.equal(await source(page).inputValue(), "deck probe");
    }
    // A key that is held.
    await page.keyboard.press("Escape");
    await closing(page).waitFor();
    await page.keyboard.press("Escape");
    await closing(page).waitFor({ state: "detached" });
    assert.ok(await headerDialog(page).isVisible());
    await page.keyboard.press("Escape");
    await closing(page).getByRole("button", { name: "Close" }).click();
    await headerDialog(page).waitFor({ state: "hidden" });
    assert.ok(await undo(page).isHidden());
  });

  /// Presses a key that opens a dialog, closes that, and presses the key again, all before the browser
  /// tells that it was closed; then waits until it has.
  async function reopen(page: Page, key: string): Promise<void> {
    await page.evaluate(async (pressed) => {
      const press = () => document.body.dispatchEvent(new KeyboardEvent("keydown", { key: pressed, bubbles: true }));
      press();
      await new Promise((done) => requestAnimationFrame(() => setTimeout(done)));
      const dialog = document.querySelector<HTMLDialogElement>("dialog[open]");
      if (!dialog) throw new Error(`${pressed} opens no dialog`);
      dialog.close();
      press();
    }, key);
    await aFrame(page);
  }

  test("a dialog that is opened again at once is as good as one opened later", async () => {
    const page = await stage.page();
    await openCast(page, "long.asvp");
    await reopen(page, "a");
    await atlasDialog(page).locator("xpath=self::*[@aria-busy='false']").waitFor();
    await atlasDialog(page).getByRole("button", { name: "Cancel" }).click();
    await reopen(page, "h");
    await thinDialog(page).locator(".trace path").first().waitFor({ state: "attached" });
    await thinDialog(page).getByRole("button", { name: "Discard" }).click();
    await reopen(page, "y");
    await rayDialog(page).getByRole("textbox", { name: "Angle below the horizontal, °" }).fill("30");
    await rayDialog(page).locator(".ray-plot .chart-line path").first().waitFor({ state: "attached" });
    await page.keyboard.press("Escape");
    await reopen(page, "e");
    await page.keyboard.press("Enter");
    await told(page, "long.asvp extended").waitFor();
    await reopen(page, "x");
    await page.keyboard.press("Enter");
    await fixed(page, "long.asvp");
  });

  test("a key that follows an answer at once meets what came of it", async () => {
    const page = await stage.page();
    await openCast(page, "a.asvp");
    await page.keyboard.press("Control+s");
    const question = page.getByRole("dialog", { name: "Replace a.asvp?" });
    await question.waitFor();
    await page.evaluate(async () => {
      const dialog = document.querySelector("dialog[open]");
      const cancel = [...(dialog?.querySelectorAll("button") ?? [])].find(({ textContent }) => textContent === "Cancel");
      cancel?.click();
      // As long as what waits for the answer takes, and no frame.
      for (let i = 0; i < 20; ++i) await Promise.resolve();
      document.body.dispatchEvent(new KeyboardEvent("keydown", { key: "s", ctrlKey: true, bubbles: true }));
    });
    await question.waitFor();
    assert.equal(await told(page, "The command before is still waiting").count(), 0);
    await page.keyboard.press("Escape");
    await question.waitFor({ state: "detached" });
  });

  test("leaving the page is announced while a dialog holds what was typed", async () => {
    const page = await stage.page();
    const announced = async (): Promise<boolean> => {
      let isAnnounced = false;
      page.once("dialog", (dialog) => {
        isAnnounced = true;
        void dialog.accept();
      });
      await page.reload();
      await connected(page);
      await page.locator(".cast").first().waitFor();
      page.removeAllListeners("dialog");
      return isAnnounced;
    };
    const fillers: [string, () => Promise<unknown>, () => Promise<unknown>][] = [
      ["header", () => page.keyboard.press("d"), () => source(page).fill("deck probe")],
      ["level", () => edit(page, "Insert by depth…"), () => insertDialog(page).getByLabel("Depth").fill("200")],
      ["name", async () => {
        await page.keyboard.press("w");
        await page.getByRole("menuitem", { name: "Save as…" }).click();
      }, () => page.getByRole("dialog", { name: "Save as" }).getByLabel("File name").fill("other")],
      ["filter", () => page.keyboard.press("i"), () => page.getByRole("dialog", { name: "Import filters" }).getByLabel("Name").fill("own")],
    ];
    for (const [name, open, fill] of fillers) {
      for (const isTyped of [false, true]) {
        await openCast(page, "a.asvp");
        await open();
        await page.locator("dialog[open]").waitFor();
        if (isTyped) await fill();
        assert.equal(await announced(), isTyped, `${name}, ${isTyped ? "typed" : "as it was"}`);
      }
    }
  });

  test("files dropped while a dialog is open are not opened, and that is told", async () => {
    const page = await stage.page();
    await openCast(page, "a.asvp");
    await page.keyboard.press("d");
    await source(page).fill("deck probe");
    const file = held("dropped.asvp", "( SoundVelocity 1.0 0 20261115123456 1 1 0 0 0 NA NA 2 )\r\n0 1500\r\n10 1490\r\n");
    assert.ok(await drag(page, "dragover", file), "the browser does not leave the page for the file");
    await page.locator("#drop-hint").getByText("Close the dialog first").waitFor();
    assert.ok(await drag(page, "drop", file));
    await told(page, "dropped.asvp was not opened: a dialog is open. Close the dialog first, then drop the file again.").waitFor();
    // Over the dialog as well, where it is read.
    const over = headerDialog(page).locator(".dialog-told");
    await over.getByText("dropped.asvp was not opened: a dialog is open.").waitFor();
    await picture(page, "told-over-a-dialog");
    await over.getByRole("button", { name: /^Dismiss/ }).click();
    assert.equal(await over.count(), 0);
    assert.equal(await source(page).inputValue(), "deck probe");
    await headerDialog(page).getByRole("button", { name: "Apply" }).click();
    assert.equal(await title(page), "a.asvp");
    await page.getByRole("button", { name: "Undo header" }).click();
    await drag(page, "dragover", file);
    await page.locator("#drop-hint").getByText("Drop to open").waitFor();
    await drag(page, "drop", file);
    await shown(page, "dropped.asvp");
    assert.equal(await failed(page, /./).count(), 0);
  });

  test("unsaved edits outlive a host that is gone", async () => {
    const page = await stage.page();
    await openCast(page, "a.asvp");
    await edit(page, "Reverse");
    await stored(page, 1);
    stage.expectTrouble(LOST);
    await stage.host.stop();
    await page.locator("#connection[data-state=lost]").waitFor();
    assert.ok(await unsaved(page));
    await edit(page, "Sort by depth");
    await page.keyboard.press("Control+z");
    await page.keyboard.press("Control+z");
    await page.keyboard.press("Control+y");
    await hostIsBack(page);
    assert.ok(await unsaved(page));
    assert.deepEqual((await levels(page)).depths, [300, 100, 0]);
    assert.equal(await title(page), "a.asvp");
  });
});
