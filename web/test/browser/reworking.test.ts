/// A cast brought into shape as a whole; unsaved edits over a reload.
import assert from "node:assert/strict";
import { describe, test } from "node:test";
import type { Page } from "playwright-core";
import { alone, cell, edit, goTo, stored, unsaved } from "./editing-parts";
import { levels } from "./reshape-parts";
import { Stage, failed, openCast, picture, shown, told } from "./stage";

describe("reworking a cast", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("both.asvp", [
      ["-0.50", "340.00"], ["0.00", "341.00"], ["1.00", "1200.00"], ["2.00", "1500.00"], ["10.00", "1490.00"],
      ["30.00", "1480.00"], ["20.00", "1481.00"], ["3.00", "1501.00"], ["0.00", "339.00"],
    ]);
    await host.writeCast("tidy.asvp", [["0.00", "1500.00"], ["10.00", "1490.00"], ["20.00", "1480.00"]]);
    await host.writeCast("low.asvp", [["2.50", "1500.00"], ["10.00", "1490.00"], ["20.00", "1480.00"]]);
  });

  test("levels in air are dropped and told, at the start and where an upcast comes out", async () => {
    const page = await stage.page();
    await openCast(page, "both.asvp");
    assert.ok(await page.getByRole("button", { name: "Add 0 m level" }).isHidden());
    await edit(page, "Drop levels in air");
    await told(page, "4 levels in air dropped: 3 not below the surface, 1 below it with a sound speed under 1400 m/s. They were levels 1 to 3 and 9.").waitFor();
    assert.deepEqual((await levels(page)).depths, [2, 10, 30, 20, 3]);
    await page.getByRole("button", { name: "Undo drop" }).click();
    assert.equal((await levels(page)).depths.length, 9);
    await openCast(page, "tidy.asvp");
    await edit(page, "Drop levels in air");
    await told(page, "No level of tidy.asvp lies in air; nothing was dropped.").waitFor();
    assert.ok(!(await unsaved(page)), "the surface is no air");
  });

  test("the way down or the way up is kept, reversed and sorted only when asked", async () => {
    const page = await stage.page();
    await openCast(page, "both.asvp");
    await edit(page, "Drop levels in air");
    await edit(page, "Keep downcast");
    await told(page, "Downcast kept: 3 of 5 levels, to the deepest one.").waitFor();
    assert.deepEqual((await levels(page)).depths, [2, 10, 30]);
    await edit(page, "Keep upcast");
    await told(page, "both.asvp has no upcast: its last level is the deepest. Nothing was changed.").waitFor();
    await page.getByRole("button", { name: "Undo downcast" }).click();
    await edit(page, "Keep upcast");
    await told(page, "Upcast kept: 3 of 5 levels, turned so that depth grows.").waitFor();
    assert.deepEqual(await levels(page), { depths: [3, 20, 30], speeds: [1501, 1481, 1480], joined: [] });
    await edit(page, "Reverse");
    assert.deepEqual((await levels(page)).depths, [30, 20, 3]);
    await page.keyboard.press("u");
    await page.keyboard.press("u");
    await edit(page, "Sort by depth");
    await told(page, "both.asvp sorted by depth: 3 levels moved.").waitFor();
    assert.deepEqual((await levels(page)).depths, [2, 3, 10, 20, 30]);
    await edit(page, "Sort by depth");
    await told(page, "The levels of both.asvp are in the order of depth already.").waitFor();
  });

  test("the surface level is there in one click, marked as joined", async () => {
    const page = await stage.page();
    await openCast(page, "low.asvp");
    await picture(page, "surface-button");
    await page.getByRole("button", { name: "Add 0 m level" }).click();
    assert.deepEqual(await levels(page), { depths: [0, 2.5, 10, 20], speeds: [1500, 1500, 1490, 1480], joined: [1] });
    assert.ok(await page.getByRole("button", { name: "Add 0 m level" }).isHidden());
    await page.getByRole("button", { name: "Undo 0 m" }).click();
    assert.deepEqual((await levels(page)).depths, [2.5, 10, 20]);
    assert.ok(await page.getByRole("button", { name: "Add 0 m level" }).isVisible());
  });

  test("unsaved edits survive a reload, and can be discarded", async () => {
    const page = await stage.page();
    await openCast(page, "low.asvp");
    await page.getByRole("button", { name: "Add 0 m level" }).click();
    await goTo(page, 3, "svp_Speed");
    await page.keyboard.press("Enter");
    await page.keyboard.type("1491.5");
    await page.keyboard.press("Enter");
    await stored(page, 1);
    // Leaving is announced; the test agrees.
    const announced = page.waitForEvent("dialog");
    const reloaded = page.reload();
    const dialog = await announced;
    assert.equal(dialog.type(), "beforeunload");
    await dialog.accept();
    await reloaded;
    await shown(page, "low.asvp");
    await told(page, "The edits of low.asvp that were not saved are back, as of").waitFor();
    assert.deepEqual(await levels(page), { depths: [0, 2.5, 10, 20], speeds: [1500, 1500, 1491.5, 1480], joined: [1] });
    assert.ok(await unsaved(page));
    await told(page, "are back").getByRole("button", { name: "Discard", exact: true }).click();
    assert.deepEqual((await levels(page)).depths, [2.5, 10, 20]);
    assert.ok(!(await unsaved(page)));
    await stored(page, 0);
    // Even that is a step that can be taken back.
    await page.keyboard.press("Control+z");
    assert.equal((await levels(page)).depths.length, 4);
    await page.keyboard.press("Control+z");
    await stored(page, 0);
    await page.reload();
    await page.locator(".cast").first().waitFor();
    assert.equal(await page.locator("#cast-title").textContent(), "No cast open");
    await page.context().close();
  });

  /// Opens a cast and edits it, and waits until that is kept in the browser.
  async function editLow(page: Page): Promise<void> {
    await openCast(page, "low.asvp");
    await page.getByRole("button", { name: "Add 0 m level" }).click();
    await stored(page, 1);
  }

  /// Loads the page again; leaving is announced, and the test agrees.
  async function again(page: Page): Promise<void> {
    page.once("dialog", (dialog) => void dialog.accept());
    await page.reload();
    await told(page, "The edits of low.asvp that were not saved are back, as of").waitFor();
  }

  test("edits that come back are kept in the browser all the while", async () => {
    const page = await stage.newPage({
      before: () => {
        const plain = IDBObjectStore.prototype.delete;
        Object.assign(window, { deleted: 0 });
        IDBObjectStore.prototype.delete = function (...given) {
          (window as unknown as { deleted: number }).deleted += 1;
          return plain.apply(this, given);
        };
      },
    });
    const deleted = () => page.evaluate(() => (window as unknown as { deleted: number }).deleted);
    await editLow(page);
    await again(page);
    await stored(page, 1);
    assert.equal(await deleted(), 0);
    await told(page, "are back").getByRole("button", { name: "Discard", exact: true }).click();
    await stored(page, 0);
    assert.equal(await deleted(), 1);
    await page.context().close();
  });

  test("edits of a cast go on where the browser keeps nothing, and that is told once", async () => {
    const page = await stage.newPage({
      before: () => Object.defineProperty(window, "sessionStorage", {
        get: () => {
          throw new DOMException("It was refused.", "SecurityError");
        },
      }),
    });
    await openCast(page, "low.asvp");
    await page.getByRole("button", { name: "Add 0 m level" }).click();
    await failed(page, "This browser cannot keep unsaved edits over a reload.").waitFor();
    await page.keyboard.press("Control+z");
    await page.keyboard.press("Control+y");
    assert.deepEqual((await levels(page)).depths, [0, 2.5, 10, 20]);
    assert.equal(await page.locator(".message-count").count(), 0);
    await page.context().close();
  });

  test("edits that are offered beside another cast stay until the offer is answered", async () => {
    const page = await stage.newPage({
      before: () => {
        if (!sessionStorage.getItem("is-late")) return;
        const plain = navigator.locks.query.bind(navigator.locks);
        const asked = new Promise((go) => Object.assign(window, { go }));
        navigator.locks.query = () => asked.then(plain);
      },
    });
    await editLow(page);
    await page.evaluate(() => sessionStorage.setItem("is-late", "yes"));
    page.once("dialog", (dialog) => void dialog.accept());
    await page.reload();
    // A cast is there before what was kept has been read.
    await openCast(page, "low.asvp");
    await page.evaluate(() => {
      sessionStorage.removeItem("is-late");
      (window as unknown as { go(): void }).go();
    });
    const offer = told(page, "There are edits of low.asvp that were not saved, of");
    await offer.waitFor();
    await edit(page, "Reverse");
    await stored(page, 2);
    await page.keyboard.press("Control+z");
    await stored(page, 1);
    await page.reload();
    await offer.getByRole("button", { name: "Restore", exact: true }).click();
    await shown(page, "low.asvp");
    assert.deepEqual((await levels(page)).depths, [0, 2.5, 10, 20]);
    await stored(page, 1);
    await page.context().close();
  });

  test("edits come back though the browser is late to let go of the page that had them", async () => {
    const page = await stage.page();
    const late = await stage.newPage({ context: page.context() });
    await editLow(page);
    const name = await page.evaluate(() => sessionStorage.getItem("svp-editor-page"));
    // Has the page's lock until the page that is loaded asks for it.
    await late.evaluate((lock) => new Promise<void>((held) => {
      void navigator.locks.request(lock, { steal: true }, async () => {
        held();
        const isAskedFor = async () => (await navigator.locks.query()).pending?.some((each) => each.name === lock);
        while (!(await isAskedFor())) await new Promise((done) => setTimeout(done, 5));
      });
    }), `svp-editor-page:${name}`);
    await again(page);
    assert.deepEqual((await levels(page)).depths, [0, 2.5, 10, 20]);
    await late.close();
  });

  test("edits that a closed page has left are offered; those of an open one are not", async () => {
    const page = await stage.page();
    const other = await stage.newPage({ context: page.context() });
    await editLow(other);
    const third = await stage.newPage({ context: page.context() });
    await third.waitForTimeout(300);
    assert.equal(await third.locator("#messages").isHidden(), true);
    await third.close();
    await other.close({ runBeforeUnload: false });
    await alone(page);
    await page.reload();
    const offer = told(page, "There are edits of low.asvp that were not saved, of");
    await offer.waitFor();
    await offer.getByRole("button", { name: "Restore", exact: true }).click();
    await shown(page, "low.asvp");
    assert.equal(await cell(page, 1, "svp_Depth").textContent(), "0.00");
    assert.ok(await unsaved(page));
    await page.context().close();
  });
});
