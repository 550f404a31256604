/// What is under way when the host hangs, ends or is slow.
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { join } from "node:path";
import { describe, test } from "node:test";
import type { Locator, Page } from "playwright-core";
import { edit, unsaved } from "./editing-parts";
import { Stage, connected, failed, openCast, seaLevels, told } from "./stage";

const LOST = /WebSocket connection to .* failed|ERR_CONNECTION/;
const doing = (page: Page, text: string): Locator => page.locator("#doing").getByText(text);

describe("work under way", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("nowhere.asvp", seaLevels([0, 100, 1000, 12000]), "( SoundVelocity 1.0 0 0 0 0 0 0 0 NA NA 4 )");
  });

  /// Begins a job with an edited cast and has the host hang before the last question is answered.
  async function begin(page: Page, way: "send" | "save"): Promise<void> {
    await openCast(page, "nowhere.asvp");
    await edit(page, "Insert by depth…");
    await page.getByRole("dialog", { name: "Insert a level" }).getByLabel("Depth").fill("500");
    await page.keyboard.press("Enter");
    assert.ok(await unsaved(page));
    if (way === "send") {
      await page.keyboard.press("s");
      await page.keyboard.press("Enter");
    } else {
      await page.keyboard.press("w");
      await page.getByRole("menuitem", { name: "Save as…" }).click();
      await page.getByRole("dialog", { name: "Save as" }).getByLabel("File name").fill("kept");
      await page.keyboard.press("Enter");
    }
    const question = page.getByRole("dialog", { name: "When and where was this cast taken?" });
    await question.getByLabel("Latitude").fill("12 30.5 S");
    await question.getByLabel("Longitude").fill("10 E");
    await question.getByLabel("Time of the cast, UTC").fill("2026-11-15 12:34:56");
    await stage.host.hang();
    await page.keyboard.press("Enter");
    await doing(page, way === "send" ? "Sending nowhere.asvp…" : "Saving kept.asvp…").waitFor();
  }

  for (const way of ["send", "save"] as const) {
    test(`a ${way} whose host is killed is not known to be done, and the cast stays unsaved`, async () => {
      const page = await stage.page();
      await begin(page, way);
      stage.expectTrouble(LOST);
      await stage.host.kill();
      const subject = way === "send" ? "nowhere.asvp was not sent to the survey system." : "kept.asvp was not saved.";
      const failure = failed(page, `${subject} The connection was lost before the answer came. Whether it was done all the same is not known.`);
      await failure.waitFor();
      assert.ok(await unsaved(page));
      await stage.host.startAgain();
      await connected(page);
      assert.ok(await failure.isVisible(), "it stays when the host is back");
      assert.ok(await unsaved(page));
      assert.equal(await page.locator("#level-count").textContent(), "5");
      // A list that takes long is told of there too, until it has come.
      assert.match((await page.locator("#doing").textContent()) ?? "none", /^(Reading the list of casts…)?$/);
    });
  }

  test("an edit made while a save is under way stays unsaved", async () => {
    const page = await stage.page();
    await begin(page, "save");
    await edit(page, "Reverse");
    stage.host.goOn();
    await told(page, "Saved as").waitFor();
    assert.ok(await unsaved(page));
    const lines = (await readFile(join(stage.host.folder, "kept.asvp"), "latin1")).trimEnd().split("\r\n").slice(1);
    assert.equal(lines.length, 5);
    assert.match(lines[0] ?? "", /^0\.00 /);
    await page.keyboard.press("Control+z");
    assert.ok(!(await unsaved(page)), "a step back leads to what was saved");
  });

  test("a host that hangs is told of after a while, and the list comes once it goes on", async () => {
    const page = await stage.page();
    await openCast(page, "nowhere.asvp");
    await stage.host.hang();
    await page.keyboard.press("r");
    await doing(page, "Reading the list of casts…").waitFor();
    await page.keyboard.press("Control+s");
    await page.keyboard.press("Control+s");
    await told(page, "The command before is still waiting for the list of casts, so this one was not done.").waitFor();
    const failure = failed(page, "The casts could not be listed: the host has not answered within 10 seconds. Look whether it is still running");
    await failure.waitFor({ timeout: 15_000 });
    await page.getByRole("dialog", { name: "Replace nowhere.asvp?" }).getByRole("button", { name: "Cancel" }).click();
    stage.host.goOn();
    await failure.waitFor({ state: "detached" });
    await doing(page, "Reading the list of casts…").waitFor({ state: "detached" });
    assert.ok(!(await unsaved(page)));
  });
});
