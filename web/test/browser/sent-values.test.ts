/// What goes out of casts that were extended or edited, held against what the page shows.
import assert from "node:assert/strict";
import { readFile, readdir } from "node:fs/promises";
import { join } from "node:path";
import { after, before, describe, test } from "node:test";
import type { Locator, Page } from "playwright-core";
import { edit, goTo, unsaved } from "./editing-parts";
import { held, pick } from "./handing";
import { PROBE, extendByDefault, levels, thinDialog } from "./reshape-parts";
import { Stage, openCast, picture, shown, told } from "./stage";
import { SurveySystem } from "./survey-system";

const HARBOUR = "harbour-pressure.aml";
const question = (page: Page, name: string): Locator => page.getByRole("dialog", { name });

async function choose(page: Page, menu: "Send" | "Save", item: string): Promise<void> {
  await page.getByRole("button", { name: menu, exact: true }).click();
  await page.getByRole("menu", { name: menu }).getByRole("menuitem", { name: item, exact: true }).click();
}

async function setKind(page: Page, kind: string): Promise<void> {
  await page.keyboard.press("d");
  await page.getByRole("dialog", { name: /^Header of/ }).getByLabel("Type", { exact: true }).selectOption(kind);
  await page.getByRole("dialog", { name: /^Header of/ }).getByRole("button", { name: "Apply" }).click();
}

describe("what goes out of extended and edited casts", () => {
  const stage = new Stage(async () => undefined);
  let survey: SurveySystem;
  before(async () => (survey = await SurveySystem.listen()));
  after(() => survey.close());

  /// A cast by pressure that was continued: the joined levels have none.
  async function extendedByPressure(page: Page, kind: string): Promise<void> {
    await openCast(page, HARBOUR);
    await edit(page, "Drop levels in air");
    await edit(page, "Keep downcast");
    await setKind(page, kind);
    await extendByDefault(page);
    await told(page, /harbour-pressure\.aml extended with the default rows/).waitFor();
  }

  for (const kind of ["04", "40"]) {
    test(`no row goes out with a pressure that is not there, kind ${kind}`, async () => {
      const page = await stage.page();
      await extendedByPressure(page, kind);
      await choose(page, "Send", "Survey system");
      const refusal = question(page, `${HARBOUR} cannot be sent as ${kind}`);
      await refusal.getByText(/^Levels 1 and \d+ to \d+ have no pressure\. The rows of kind \d\d need it, and would carry 0 instead\.$/).waitFor();
      await picture(page, "refused-pressure");
      await refusal.getByRole("button", { name: "Cancel" }).click();
      await survey.assertQuiet();

      await choose(page, "Save", "Save as datagram file…");
      await question(page, `${HARBOUR} cannot be saved as ${kind}`).getByRole("button", { name: "Cancel" }).click();
      assert.ok(!(await readdir(stage.host.folder)).includes("harbour-pressure.ssp"));

      await choose(page, "Send", "Survey system");
      await refusal.getByRole("button", { name: "Send as 00" }).click();
      await told(page, "levels as S00").waitFor();
      const { identifier, rows } = await survey.next();
      assert.equal(identifier, "00");
      assert.deepEqual(rows.at(-1)?.map(Number), [12000, 1602.8]);
      assert.ok(rows.every(([depth], i) => i === 0 || Number(depth) > Number(rows[i - 1]?.[0])), "each level is deeper");
    });
  }

  test("as 01 such a cast is saved, and opens again as it was", async () => {
    const page = await stage.page();
    await extendedByPressure(page, "04");
    const before = await levels(page);
    await choose(page, "Save", "Save as datagram file…");
    await question(page, `${HARBOUR} cannot be saved as 04`).getByRole("button", { name: "Save as 01" }).click();
    await question(page, "Save as datagram file").getByLabel("File name").fill("joined");
    await page.keyboard.press("Enter");
    await told(page, "joined.ssp").waitFor();
    await openCast(page, "joined.ssp");
    const after = await levels(page);
    assert.equal(after.depths.length, before.depths.length);
  });

  test("a cast is not thinned into rows with pressures that are not there", async () => {
    const page = await stage.page();
    await extendedByPressure(page, "04");
    await page.getByRole("button", { name: "Thin…", exact: true }).click();
    await thinDialog(page).getByRole("button", { name: "Preview" }).click();
    await thinDialog(page).getByRole("button", { name: "Keep" }).click();
    await question(page, `${HARBOUR} cannot be saved as 04`).getByRole("button", { name: "Save as 01" }).click();
    await told(page, "harbour-pressure_thinned.ssp").waitFor();
    assert.match(await readFile(join(stage.host.folder, "harbour-pressure_thinned.ssp"), "latin1"), /^\$QZS01,/);
  });

  test("joined sound speeds that a kind does not carry are asked about", async () => {
    const page = await stage.page();
    await pick(page, held("probe.vp2", PROBE));
    await shown(page, "probe.vp2");
    await setKind(page, "02");
    await extendByDefault(page);
    await choose(page, "Send", "Survey system");
    const dialog = question(page, "Send anyway?");
    await dialog.getByText(/^Levels 1 and 6 to 13 were joined and have a sound speed of their own\. The rows of kind 02 do not carry it: .* one anew from temperature 9\.40 to 13\.20 and salinity 34\.90 to 35\.20, which nobody measured there, and may come to another\.$/).waitFor();
    await picture(page, "asked-joined");
    await dialog.getByRole("button", { name: "Cancel" }).click();
    await survey.assertQuiet();
    await choose(page, "Send", "Survey system");
    await dialog.getByRole("button", { name: "Send as 01" }).click();
    // The page shows no temperature there; the rows carry one, and that is said.
    await told(page, /levels as S01\. .*Levels 1 and 6 to 13 were joined, not measured: the rows carry temperature 9\.40 to 13\.20 and salinity 34\.90 to 35\.20 there, where the page shows “–”\./).waitFor();
    const { identifier, text } = await survey.next();
    assert.equal(identifier, "01");
    const rows = text.split("\r\n").slice(0, -2).map((row) => row.split(",").slice(-5).map(Number));
    const { depths, speeds } = await levels(page);
    assert.deepEqual(rows.slice(1).map(([depth]) => depth), depths.slice(1, rows.length));
    assert.deepEqual(rows.slice(1).map(([, speed]) => speed), speeds.slice(1, rows.length));
    assert.deepEqual(rows.at(-1)?.slice(0, 4), [12000, 1602.8, 9.4, 35.2]);
  });

  test("a cast with edits that no file keeps does not count as saved", async () => {
    const page = await stage.page();
    await openCast(page, "probe.vp2");
    await goTo(page, 2, "svp_Temp");
    await page.keyboard.press("Enter");
    await page.keyboard.type("12.5");
    await page.keyboard.press("Enter");
    assert.ok(await unsaved(page));
    await choose(page, "Save", "Save as…");
    await question(page, "Save as").getByLabel("File name").fill("plain");
    await page.keyboard.press("Enter");
    await told(page, /Written as .*plain\.asvp – .*Not kept of what you have changed: temperature\. .*The cast still counts as not saved\./).waitFor();
    assert.ok(await unsaved(page));
    await choose(page, "Save", "Save as datagram file…");
    await question(page, "Save as datagram file").getByLabel("File name").fill("whole");
    await page.keyboard.press("Enter");
    await told(page, /Saved as .*whole\.ssp/).waitFor();
    assert.ok(!(await unsaved(page)));
    assert.match(await readFile(join(stage.host.folder, "whole.ssp"), "latin1"), /\r\n20\.0+,1503\.0+,12\.50*,35\.0+,/);
  });
});
