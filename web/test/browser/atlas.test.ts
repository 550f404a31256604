/// The settings of the World Ocean Atlas.
import assert from "node:assert/strict";
import { readFile, readdir, writeFile } from "node:fs/promises";
import { join } from "node:path";
import { describe, test } from "node:test";
import type { Page } from "playwright-core";
import { FAULTY, atlasDialog, atlasFile, fix, fixDialog, fixed, handIn } from "./repair-parts";
import { fileLevels } from "./reshape-parts";
import { Stage, assertInside, openCast, picture, told } from "./stage";

const DEPTHS = [0, 500, 800, 1234, 3000, 5000];
const SALINITY = atlasFile(DEPTHS, [35, 35, 35, 35, 35, 35]);
const TEMPERATURE = atlasFile(DEPTHS, [12, 9, 3, 7, 2, 2]);

const pathField = (page: Page, name: "Salinity file" | "Temperature file") => atlasDialog(page).getByRole("combobox", { name, exact: true });
const use = (page: Page) => atlasDialog(page).getByRole("checkbox", { name: "Continue casts with the atlas" });
const save = (page: Page) => atlasDialog(page).getByRole("button", { name: "Save", exact: true });

async function openAtlas(page: Page): Promise<void> {
  await page.keyboard.press("a");
  await settingsRead(page);
}

/// Waits until the settings are in the fields.
async function settingsRead(page: Page): Promise<void> {
  await atlasDialog(page).locator("xpath=self::*[@aria-busy='false']").waitFor();
}

describe("the atlas", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("faulty.asvp", FAULTY);
    await host.writeCast("pacific.asvp", FAULTY, "( SoundVelocity 1.0 0 20261115123456 -10 -140 0 0 0 source NA 8 )");
  });
  const folder = () => join(stage.host.folder, "..", "woa");
  const tokens = async () => {
    const text = await readFile(join(stage.host.folder, "..", "..", "tqrv", "QRVTokens.json"), "utf8");
    const mirror = JSON.parse(text) as { tokens: { Name: string; Value: unknown }[] };
    return Object.fromEntries(mirror.tokens.map(({ Name, Value }) => [Name, Value]));
  };

  test("it is off at first; both files are handed in, and it is switched on", async () => {
    const page = await stage.page();
    await openAtlas(page);
    assert.ok(!(await use(page).isChecked()));
    await use(page).check();
    await save(page).click();
    await atlasDialog(page).getByText("Choose the salinity file; the atlas needs both.").waitFor();
    await handIn(page, "salinity", "s made up.csv", SALINITY);
    await atlasDialog(page).getByText(`Stored, ${SALINITY.length} B. Save to have it used.`).first().waitFor();
    await handIn(page, "temperature", "t.csv", TEMPERATURE);
    await atlasDialog(page).getByText("Stored, ").nth(1).waitFor();
    assert.equal(await pathField(page, "Salinity file").inputValue(), join(folder(), "s made up.csv"));
    await save(page).click();
    await told(page, "The World Ocean Atlas is switched on: Fix continues casts with it.").waitFor();
    assert.deepEqual(await tokens(), {
      SVP_WOA_EXTEND: 1, SVP_WOA_FILE_S: join(folder(), "s made up.csv"), SVP_WOA_FILE_T: join(folder(), "t.csv"),
    });
    assert.equal(await readFile(join(folder(), "t.csv"), "utf8"), TEMPERATURE);
    await openAtlas(page);
    assert.ok(await use(page).isChecked());
    await atlasDialog(page).getByText(`There, ${SALINITY.length} B.`).first().waitFor();
  });

  test("a fix continues a cast with it; on land it says what to do", async () => {
    const page = await stage.page();
    await openCast(page, "faulty.asvp");
    await fix(page, "0.01");
    await fixed(page, "faulty.asvp");
    const rows = fileLevels(await readFile(join(stage.host.folder, "faulty_fixed.asvp"), "latin1"));
    for (const depth of [500, 800, 1234]) assert.ok(rows.some(([each]) => each === depth), `${depth} of ${rows.join(" ")}`);
    await page.keyboard.press("Escape");

    await openCast(page, "pacific.asvp");
    await page.keyboard.press("x");
    await fixDialog(page).getByText("It is continued with the World Ocean Atlas, which is switched on.").waitFor();
    await fixDialog(page).getByRole("button", { name: "Fix", exact: true }).click();
    await fixDialog(page).getByText("has no data at the cast’s position, which may be on land.").waitFor();
    await fixDialog(page).getByRole("button", { name: "World Ocean Atlas…" }).click();
    // Until then the box is not ticked, and to untick it would do nothing.
    await settingsRead(page);
    await use(page).uncheck();
    await save(page).click();
    await told(page, "The World Ocean Atlas is switched off.").waitFor();
    await fix(page);
    await fixed(page, "pacific.asvp");
  });

  test("what is no atlas file is told, and leaves nothing", async () => {
    const page = await stage.page();
    await openAtlas(page);
    const before = await readdir(folder());
    await handIn(page, "salinity", "cast.csv", "Depth,Speed\n0,1500\n10,1501\n");
    await atlasDialog(page).getByText("cast.csv does not look like a file of the atlas").waitFor();
    stage.expectTrouble(/422/);
    // What was received of it goes once the host has answered.
    for (let waited = 0; waited < 5000 && (await readdir(folder())).length > before.length; waited += 20) {
      await page.waitForTimeout(20);
    }
    assert.deepEqual(await readdir(folder()), before);
    // One that is there is replaced only with consent.
    await handIn(page, "salinity", "t.csv", SALINITY);
    const question = page.getByRole("dialog", { name: "Replace t.csv?" });
    await question.getByRole("button", { name: "Cancel" }).click();
    await question.waitFor({ state: "detached" });
    assert.equal(await readFile(join(folder(), "t.csv"), "utf8"), TEMPERATURE);
  });

  test("paths can be typed, and what is wrong with them is said", async () => {
    const page = await stage.page();
    const path = join(stage.host.folder, "own.csv");
    await writeFile(path, SALINITY);
    await openAtlas(page);
    await pathField(page, "Salinity file").fill(path);
    await pathField(page, "Temperature file").fill(path);
    await save(page).click();
    await atlasDialog(page).getByText("Both are the same file.").waitFor();
    await pathField(page, "Temperature file").fill("/nowhere/t.csv");
    await use(page).check();
    await save(page).click();
    await atlasDialog(page).getByText("Saved, but the atlas cannot be used like this: see its files.").waitFor();
    await atlasDialog(page).getByText("There is no file /nowhere/t.csv.").waitFor();
    assert.equal((await tokens())["SVP_WOA_FILE_T"], "/nowhere/t.csv");
    await page.keyboard.press("Escape");
    await atlasDialog(page).waitFor({ state: "hidden" });
  });

  test("settings that cannot be read are told, and not written over", async () => {
    const page = await stage.page();
    const mirror = join(stage.host.folder, "..", "..", "tqrv", "QRVTokens.json");
    const whole = await readFile(mirror);
    await writeFile(mirror, "{");
    await page.keyboard.press("a");
    await atlasDialog(page).getByText("The atlas settings cannot be shown: the survey system's settings cannot be read and written.").waitFor();
    stage.expectTrouble(/503/);
    assert.ok(await save(page).isDisabled());
    assert.equal(await readFile(mirror, "utf8"), "{");
    await writeFile(mirror, whole);
  });

  test("nothing can be entered before the settings are read, which would overwrite it", async () => {
    const page = await stage.page();
    let answer = (): void => undefined;
    const held = new Promise<void>((resolve) => (answer = resolve));
    await page.route("**/api/atlas", async (route) => {
      await held;
      await route.continue();
    });
    await page.keyboard.press("a");
    await atlasDialog(page).getByText("Reading the settings…").waitFor();
    const fields = [use(page), pathField(page, "Salinity file"), pathField(page, "Temperature file")];
    for (const each of [...fields, atlasDialog(page).getByRole("button", { name: "Hand in" }).first(), save(page)]) {
      assert.ok(await each.isDisabled());
    }
    answer();
    await atlasDialog(page).getByText("Reading the settings…").waitFor({ state: "hidden" });
    for (const each of fields) assert.ok(await each.isEnabled());
    assert.ok(await use(page).evaluate((box) => box === document.activeElement));
  });

  for (const theme of ["dark", "light"]) {
    test(`the dialog lies inside a small screen, ${theme}`, async () => {
      const page = await stage.page({ width: 1024, height: 600 });
      if (theme === "light") await page.keyboard.press("t");
      await openAtlas(page);
      await assertInside(page, atlasDialog(page));
      await assertInside(page, save(page));
      for (const name of ["Fix…", "Rays…", "Atlas…", "Help"]) {
        await assertInside(page, page.locator(".top").getByRole("button", { name, exact: true, includeHidden: true }));
      }
      await picture(page, `atlas-${theme}`);
    });
  }
});
