/// The watch that the user guide walks through, with its pictures. The steps follow upon each other
/// on one page; what the guide says is held against what the page has shown on the way.
import assert from "node:assert/strict";
import { existsSync, readdirSync } from "node:fs";
import { readFile, writeFile } from "node:fs/promises";
import { basename, join, resolve } from "node:path";
import { before, describe, test } from "node:test";
import type { Page } from "playwright-core";
import { alone, edit, goTo, stored, unsaved } from "./editing-parts";
import { EARLIER, FAILED_AT, GUIDE, IMAGES, LOGGER_FILE, PROBE_FILE, Seen, UPDATES, WRONG_AT, WRONG_BY, guideOf, keyTable, picture, summer } from "./guide-parts";
import { held, pick } from "./handing";
import { atlasDialog, fixDialog, fixed, rayDialog } from "./repair-parts";
import { extendDialog, levels, openExtend, thinDialog } from "./reshape-parts";
import { Stage, check, connected, failed, invalidRows, openCast, shown, told } from "./stage";

const CAST = "cast-14.vp2";
const README_PICTURE = resolve("../docs/images/page.png");

describe("user guide", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("cast-13.asvp", EARLIER);
  }, { name: "survey-" });
  const seen = new Seen();
  const taken: string[] = [];
  let page: Page;
  before(async () => (page = await stage.page()));

  /// A step of the watch. What comes after one that failed would only wait in vain.
  let isWhole = true;
  function step(name: string, run: () => Promise<void>): void {
    test(name, async () => {
      assert.ok(isWhole, "an earlier step has failed");
      isWhole = false;
      await run();
      isWhole = true;
    });
  }

  async function shoot(name: string, part: string | null = null): Promise<void> {
    await page.mouse.move(0, 0);
    await take(name, part);
  }

  async function take(name: string, part: string | null): Promise<void> {
    await seen.take(page);
    await picture(part ? page.locator(part) : page, join(IMAGES, `${name}.png`));
    taken.push(`${name}.png`);
  }

  /// Opens something, takes in what it shows, and leaves it again.
  async function look(open: () => Promise<void>): Promise<void> {
    await open();
    await seen.take(page);
    await page.keyboard.press("Escape");
  }

  async function choose(menu: "Send" | "Save", item: string): Promise<void> {
    await page.getByRole("button", { name: menu, exact: true }).click();
    await page.getByRole("menu", { name: menu }).getByRole("menuitem", { name: item, exact: true }).click();
  }

  const dismissAll = async () => {
    while ((await page.locator(".message-dismiss").count()) > 0) await page.locator(".message-dismiss").first().click();
  };
  const press = (name: string) => page.getByRole("button", { name, exact: true }).click();

  /// The number of the level at a depth that the table shows.
  async function levelAt(depth: number): Promise<number> {
    const texts = await page.locator(".tabulator-row").evaluateAll((rows) => rows.map((each) => [
      each.getAttribute("data-level") ?? "", each.querySelector("[tabulator-field=svp_Depth]")?.textContent ?? "",
    ]));
    return Number(texts.find(([, text]) => text === depth.toFixed(2))?.[0] ?? assert.fail(`no level at ${depth} m`));
  }

  step("a cast is handed in and looked at", async () => {
    await seen.take(page);
    await pick(page, held(CAST, PROBE_FILE));
    await shown(page, CAST);
    await told(page, "It is stored in the profile folder.").waitFor();
    await page.locator(`[data-name="${CAST}"][aria-current=true]`).waitFor();
    await shoot("opened");
    await dismissAll();
  });

  step("the check marks what is invalid, and not what is merely wrong", async () => {
    await check(page);
    const invalid = await invalidRows(page);
    assert.deepEqual(invalid.slice(0, 2), [1, 2], "in air");
    await press("Fit valid");
    await press("Next invalid");
    await page.locator(".tabulator-row.selected").waitFor();
    await page.evaluate(() => (document.activeElement as HTMLElement | null)?.blur());
    await shoot("checked");
  });

  step("levels are dropped, deleted and mended, and steps taken back", async () => {
    await edit(page, "Drop levels in air");
    await told(page, "2 levels in air dropped").waitFor();
    await press("Edit");
    await shoot("edit");
    await page.keyboard.press("Escape");
    await edit(page, "Keep downcast");
    await told(page, "Downcast kept: 97 of 137 levels, to the deepest one.").waitFor();
    await check(page);
    const failing = await levelAt(FAILED_AT);
    assert.deepEqual(await invalidRows(page), [failing], "the wrong value passes");
    await page.keyboard.press("n");
    await page.locator(`.tabulator-row.selected[data-level="${failing}"]`).waitFor();
    await press("Fit valid");
    await page.evaluate(() => (document.activeElement as HTMLElement | null)?.blur());
    await dismissAll();
    await picture(page, README_PICTURE);
    await page.keyboard.press("v");
    await page.keyboard.press("Delete");
    await page.getByRole("button", { name: "Undo delete" }).waitFor();
    await seen.take(page);

    // The wrong value stands out of the curve.
    await page.keyboard.press("g");
    await page.keyboard.press("0");
    await hoverWrong();
    const wrong = await levelAt(WRONG_AT);
    await page.mouse.move(0, 0);
    await goTo(page, wrong, "svp_Speed");
    await page.keyboard.press("Enter");
    await page.keyboard.type(summer(WRONG_AT).speed.toFixed(2));
    await page.keyboard.press("Enter");
    await page.getByRole("button", { name: "Undo change" }).waitFor();
    await press("Undo change");
    await press("Redo change");
    await press("Edit in plot");
    await press("Edit in plot");
    await look(() => edit(page, "Insert by depth…"));
    await press("Add 0 m level");
    assert.ok(await unsaved(page));
    await check(page);
    assert.deepEqual(await invalidRows(page), []);
    await page.getByText("SVP must be extended to full ocean depth (12000.00m).").waitFor();
    await seen.take(page);
    await dismissAll();
  });

  /// The pointer on the wrong value, with the depths around it in view.
  async function hoverWrong(): Promise<void> {
    const box = (await page.locator("#plot").boundingBox()) ?? assert.fail("no plot");
    const mark = async () => {
      await page.locator(".tabulator-row").first().waitFor();
      const at = await page.locator("#plot .selected-ring").first().boundingBox();
      return at ?? assert.fail("no level is marked");
    };
    await goTo(page, await levelAt(WRONG_AT), "svp_Speed");
    const middle = (await mark()).y;
    const x = box.x + box.width * 0.2;
    await page.mouse.move(x, middle - 90);
    await page.mouse.down();
    await page.mouse.move(x + 2, middle + 90, { steps: 4 });
    await page.mouse.up();
    await page.locator("#reset-zoom:enabled").waitFor();
    const ring = await mark();
    await page.mouse.move(ring.x + ring.width / 2 + 1, ring.y + ring.height / 2);
    await page.locator("#plot .tip").getByText(WRONG_AT.toFixed(2)).waitFor();
    await take("hover", "section.profile");
    await page.keyboard.press("0");
  }

  step("the header gets the position", async () => {
    await press("Edit the header");
    const dialog = page.getByRole("dialog", { name: `Header of ${CAST}` });
    await dialog.getByLabel("Latitude").fill("60 24.75 N");
    await dialog.getByLabel("Longitude").fill("004 18.42 E");
    await shoot("header", "dialog.header-dialog");
    await dialog.getByLabel("Comment").fill("Downcast with one level mended");
    await dialog.getByRole("button", { name: "Apply" }).click();
    assert.equal(await page.locator("#header [data-key=hsvp_filelat]").textContent(), "60° 24.750′ N");
  });

  step("the cast is extended and thinned", async () => {
    const dialog = await openExtend(page, "Default rows");
    await dialog.getByRole("radio", { name: "A file of one’s own" }).check();
    await seen.take(page);
    await dialog.getByRole("radio", { name: "Temperature and salinity" }).check();
    await shoot("extend", "dialog.extend[open]");
    await dialog.getByRole("button", { name: "Extend", exact: true }).click();
    await extendDialog(page).waitFor({ state: "hidden" });
    await told(page, "joined, from").waitFor();
    assert.equal((await page.locator("#verdict").isHidden()), true);
    await check(page);
    assert.deepEqual(await invalidRows(page), []);
    assert.equal(await page.locator("#verdict-lines li").count(), 1, "nothing is missing any more");
    await seen.take(page);

    await press("Thin…");
    await thinDialog(page).getByRole("button", { name: "Preview" }).click();
    await thinDialog(page).getByText("remain.").waitFor();
    await shoot("thin", "dialog.thin[open]");
    await thinDialog(page).getByRole("button", { name: "Keep" }).click();
    await shown(page, "cast-14_thinned.ssp");
    await told(page, "thinned from").waitFor();
    await seen.take(page);
    await dismissAll();
  });

  step("it is compared with the cast before, saved and sent", async () => {
    await press("Compare with…");
    const dialog = page.getByRole("dialog", { name: "Compare with…" });
    await dialog.getByLabel("Cast to compare with").selectOption({ label: "cast-13.asvp" });
    await seen.take(page);
    await dialog.getByRole("button", { name: "Compare", exact: true }).click();
    await page.locator("#plot-legend").getByText("cast-13.asvp").waitFor();
    await page.keyboard.press("f");
    await page.keyboard.press("t");
    await shoot("compare", "section.profile");
    for (let i = 0; i < 3; ++i) await page.keyboard.press("t");
    assert.equal(await page.locator("html").getAttribute("data-theme"), "dark");
    await page.getByRole("button", { name: "Remove cast-13.asvp from the plot" }).click();

    await look(() => press("Theme"));
    await look(() => press("Send"));
    await look(() => press("Save"));
    await look(() => choose("Save", "Save as…"));
    await look(() => choose("Save", "Save as datagram file…"));
    await choose("Save", "Save as…");
    await page.getByLabel("File name").fill("cast-13");
    await page.getByRole("dialog").getByRole("button", { name: "Save", exact: true }).click();
    await look(() => page.getByRole("dialog", { name: "Replace cast-13.asvp?" }).waitFor());
    await choose("Send", "Receiver");
    await told(page, "SVP sent to RVT300.").waitFor();
    await choose("Send", "Distribute");
    await told(page, "SVP distributed.").waitFor();
    await seen.take(page);
    await dismissAll();
  });

  step("the cast as it came in is fixed in one step, and rays are compared", async () => {
    await openCast(page, CAST);
    await look(() => press("Atlas…").then(() => atlasDialog(page).getByText("whole path").first().waitFor()));
    await press("Fix…");
    await seen.take(page);
    await fixDialog(page).getByRole("button", { name: "Fix", exact: true }).click();
    const question = page.getByRole("dialog", { name: "When and where was this cast taken?" });
    await question.getByLabel("Latitude").fill("60.4125");
    await question.getByLabel("Longitude").fill("4.307");
    await seen.take(page);
    await question.getByRole("button", { name: "Go on" }).click();
    const dialog = await fixed(page, CAST);
    await dialog.locator(".comparison-plot .chart-line path").first().waitFor({ state: "attached" });
    await shoot("fix", "dialog.fix");
    const file = await readFile(join(stage.host.folder, "cast-14_fixed.ssp"), "latin1");
    const wrong = (summer(WRONG_AT).speed + WRONG_BY).toFixed(2);
    assert.ok(file.includes(`${WRONG_AT.toFixed(2)},${wrong},`), "a wrong value within the limits stays");
    await dialog.getByRole("button", { name: "Add a level at 0 m" }).click();
    await dialog.getByRole("button", { name: "Close" }).click();
    await seen.take(page);

    await press("Rays…");
    await rayDialog(page).getByText("Both rays reach").waitFor();
    await rayDialog(page).getByLabel("Second profile").selectOption({ label: "A reference of 1500 m/s" });
    await rayDialog(page).getByRole("textbox", { name: "Angle" }).fill("20");
    await rayDialog(page).getByText("Ray of 20°.").waitFor();
    await rayDialog(page).locator(".ray-legend").getByText("Reference").waitFor();
    await shoot("rays", "dialog.rays");
    await rayDialog(page).getByRole("button", { name: "Close" }).click();
  });

  step("what is not saved is asked for, and comes back after a reload", async () => {
    assert.ok(await unsaved(page), "a level was added after the fix");
    await look(() => page.locator('[data-name="cast-13.asvp"]').click().then(() => page.getByRole("dialog").waitFor()));
    await stored(page, 1);
    const announced = page.waitForEvent("dialog");
    const reloaded = page.reload();
    await (await announced).accept();
    await reloaded;
    await connected(page);
    await told(page, "that were not saved are back, as of").waitFor();
    await seen.take(page);
    await told(page, "are back").getByRole("button", { name: "Discard", exact: true }).click();
    assert.ok(!(await unsaved(page)));

    const other = await stage.newPage({ context: page.context() });
    await openCast(other, "needs-repair.asvp");
    await told(page, "needs-repair.asvp was opened elsewhere.").waitFor();
    await seen.take(page);
    await edit(other, "Sort by depth");
    await stored(other, 1);
    await other.close({ runBeforeUnload: false });
    await alone(page);
    await page.reload();
    await connected(page);
    await told(page, "There are edits of needs-repair.asvp that were not saved").waitFor();
    await seen.take(page);
    await told(page, "There are edits").getByRole("button", { name: "Discard", exact: true }).click();
    await stored(page, 0);
  });

  step("a column file gets its import filter", async () => {
    // What the host answers to such a file.
    stage.expectTrouble(/status of 500/);
    await pick(page, held("buoy-7.log", LOGGER_FILE));
    const failure = failed(page, "No import filter fits files ending in .log.");
    await failure.waitFor();
    await seen.take(page);
    await failure.getByRole("button", { name: "Import filters…", exact: true }).click();
    const dialog = page.getByRole("dialog", { name: "Import filters" });
    await dialog.getByText("25 levels read").waitFor();
    await shoot("filters", "dialog.filters");
    await dialog.getByRole("button", { name: "Save filter" }).click();
    await dialog.getByText("Filter log saved.").waitFor();
    await seen.take(page);
    await dialog.getByRole("button", { name: "Open buoy-7.log" }).click();
    await shown(page, "buoy-7.log");
    assert.equal((await levels(page)).depths.length > 0, true);
    await dismissAll();
  });

  step("a datagram file of a cast that is not whole does not open again", async () => {
    await openCast(page, "cast-13.asvp");
    await choose("Save", "Save as datagram file…");
    await page.getByRole("dialog").getByRole("button", { name: "Save", exact: true }).click();
    await told(page, "Saved as").waitFor();
    await page.locator('[data-name="cast-13.ssp"]').click();
    await failed(page, "cast-13.ssp could not be opened. Its profile is not accepted as it stands").waitFor();
    await seen.take(page);
    await dismissAll();
  });

  step("keys are told, and a lost connection", async () => {
    await page.keyboard.press("?");
    await seen.take(page);
    const keys = await keyTable(page);
    await page.getByRole("dialog", { name: "Keys and hints" }).getByRole("button", { name: "Close" }).click();
    if (UPDATES && existsSync(GUIDE)) {
      const text = await readFile(GUIDE, "utf8");
      await writeFile(GUIDE, text.replace(/(<!-- keys -->\n)[^]*?(<!-- end -->)/, (_, head: string, tail: string) => head + keys + tail));
    }
    assert.equal(guideOf(await readFile(GUIDE, "utf8")).keys, keys, "run with SVP_UPDATE_SCREENSHOTS=1 to renew the table");

    stage.expectTrouble(/WebSocket connection to .* failed|ERR_CONNECTION/);
    await stage.host.stop();
    await failed(page, "The connection to the host was lost.").waitFor();
    await choose("Send", "Survey system");
    await failed(page, "There is no connection to the host.").waitFor();
    await seen.take(page);
    await shoot("lost");
    await press("Check");
    await stage.host.startAgain();
    await connected(page);
    await told(page, "and is back").waitFor();
    // Asked for while there was nobody to answer.
    await page.getByRole("heading", { name: /^Check of/ }).waitFor();
    await seen.take(page);
  });

  step("the guide shows these pictures and no others", async () => {
    const { images } = guideOf(await readFile(GUIDE, "utf8"));
    assert.deepEqual(images.map((path) => basename(path)).sort(), [...taken].sort());
    for (const path of images) assert.ok(existsSync(resolve("../docs", path)), path);
    assert.deepEqual(readdirSync(IMAGES).sort(), [...taken].sort(), "a picture that nothing takes");
  });

  step("every name in bold, and every text in quotes, is one of the page’s own", async () => {
    const { names, quotes } = guideOf(await readFile(GUIDE, "utf8"));
    assert.ok(names.length > 50 && quotes.length > 10);
    assert.deepEqual([...new Set(names.filter((name) => !seen.hasName(name)))], []);
    assert.deepEqual([...new Set(quotes.filter((quote) => !seen.hasText(quote)))], []);
  });
});
