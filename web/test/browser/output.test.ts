/// Sending, saving and handing on, with the real engine. No other test may listen on the port of
/// the survey system.
import assert from "node:assert/strict";
import { readFile, readdir } from "node:fs/promises";
import { join } from "node:path";
import { after, before, describe, test } from "node:test";
import type { Locator, Page } from "playwright-core";
import { Stage, openCast, seaLevels } from "./stage";
import { SurveySystem, takenApart } from "./survey-system";

const OCEAN = "ocean-full-depth.asvp";
const WHOLE = [0, 10, 100, 1000, 6000, 12000];
const LONG = Array.from({ length: 1001 }, (_, i) => i * 12);
const HUGE = Array.from({ length: 4000 }, (_, i) => i * 3.005);

async function choose(page: Page, menu: "Send" | "Save", item: string): Promise<void> {
  await page.getByRole("button", { name: menu, exact: true }).click();
  await page.getByRole("menu", { name: menu }).getByRole("menuitem", { name: item, exact: true }).click();
}

const told = (page: Page, text: string | RegExp): Locator =>
  page.locator("#messages [role=status]").filter({ hasText: text });
const failed = (page: Page, text: string | RegExp): Locator =>
  page.locator("#messages [role=alert]").filter({ hasText: text });
const question = (page: Page, name: string | RegExp): Locator => page.getByRole("dialog", { name });

async function levelCells(page: Page): Promise<string[]> {
  return page.locator(".tabulator-row .tabulator-cell").allInnerTexts();
}

describe("sending, saving and handing on", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("whole.asvp", seaLevels(WHOLE));
    await host.writeCast("keep.asvp", seaLevels([0, 10, 20, 40]));
    await host.writeCast("fine.asvp", [["0.000", "1500.125"], ["10.5", "1499.5"], ["20.25", "1499"]]);
    await host.writeCast("long.asvp", seaLevels(LONG));
    await host.writeCast("huge.asvp", seaLevels(HUGE));
    await host.writeCast("two.asvp", seaLevels([0, 10]));
    await host.writeCast("nowhere.asvp", seaLevels(WHOLE), "( SoundVelocity 1.0 0 0 0 0 0 0 0 NA NA 6 )");
    await host.writeCast("odd-type.asvp", seaLevels(WHOLE), "( Speed 1.0 0 20261115123456 -0.5 -70.1 0 0 0 NA NA 6 )");
    await host.writeCast("odd*name.asvp", seaLevels(WHOLE));
  });
  let survey: SurveySystem;
  before(async () => (survey = await SurveySystem.listen()));
  after(() => survey.close());

  const onDisk = (name: string) => readFile(join(stage.host.folder, name), "latin1");

  test("a cast is sent to the survey system, level by level as its file has them", async () => {
    const page = await stage.page();
    assert.ok(await page.getByRole("button", { name: "Send", exact: true }).isDisabled());
    await openCast(page, OCEAN);
    await choose(page, "Send", "Survey system");
    await told(page, `UDP port 14002): ${OCEAN}, 42 levels as S00. The survey system does not confirm receipt.`).waitFor();

    const arrival = await survey.next();
    assert.equal(arrival.identifier, "00");
    assert.equal(arrival.stated, 42);
    const lines = (await onDisk(OCEAN)).trimEnd().split("\r\n").slice(1);
    assert.deepEqual(arrival.rows.map(numbers), lines.map((line) => numbers(line.split(" "))));
    assert.deepEqual(arrival.time, ["2026", "03", "02", "184500"]);
    assert.deepEqual(arrival.tail, ["4115.000000", "N", "2943.998000", "W", "", "", "NA"]);
    await survey.assertQuiet();
  });

  test("a cast that does not pass the check is refused, with what to do next", async () => {
    const page = await stage.page();
    await openCast(page, "needs-repair.asvp");
    await choose(page, "Send", "Survey system");
    const refusal = failed(page, "needs-repair.asvp was not sent to the survey system.");
    await refusal.waitFor();
    assert.match((await refusal.textContent()) ?? "", /Check the profile and mend what is marked; then send again\./);
    await survey.assertQuiet();
    await openCast(page, OCEAN);
    assert.equal(await refusal.count(), 1, "it stays until it is dismissed");
    await openCast(page, "needs-repair.asvp");
    await refusal.getByRole("button", { name: "Check", exact: true }).click();
    await page.getByRole("heading", { name: /^Check of/ }).waitFor();
  });

  test("a cast saved under a new name is listed and reopens with the same values", async () => {
    const page = await stage.page();
    await openCast(page, "whole.asvp");
    const before = await levelCells(page);
    await choose(page, "Save", "Save as…");
    const dialog = question(page, "Save as");
    const name = dialog.getByLabel("File name");
    assert.equal(await name.inputValue(), "whole.asvp");
    await name.fill("up/whole");
    await dialog.getByRole("button", { name: "Save" }).click();
    await dialog.getByText("no slash").waitFor();
    assert.equal(await name.getAttribute("aria-invalid"), "true");
    await name.fill("saved as");
    await dialog.getByRole("button", { name: "Save" }).click();
    await told(page, `Saved as ${join(stage.host.folder, "saved as.asvp")}`).waitFor();

    await openCast(page, "saved as.asvp");
    assert.deepEqual(await levelCells(page), before);
    const field = (key: string) => page.locator(`#header [data-key=hsvp_file${key}]`).textContent();
    assert.equal(await field("time"), "2026-11-15 12:34:56 UTC");
    assert.equal(await field("lat"), "59° 30.000′ N");
    assert.equal(await field("lon"), "010° 15.000′ E");
    assert.equal(await field("source"), "source");
  });

  test("a file that is there already is replaced only when the user agrees", async () => {
    const page = await stage.page();
    await openCast(page, "fine.asvp");
    const older = await onDisk("fine.asvp");
    await choose(page, "Save", "Save");
    const dialog = question(page, "Replace fine.asvp?");
    await dialog.getByText("no copy of it is kept").waitFor();
    assert.equal(await page.evaluate(() => document.activeElement?.textContent), "Cancel");
    await page.keyboard.press("Enter");
    await dialog.waitFor({ state: "detached" });
    assert.equal(await onDisk("fine.asvp"), older);
    assert.equal(await told(page, "Saved as").count(), 0);

    await choose(page, "Save", "Save");
    await dialog.getByRole("button", { name: "Replace" }).click();
    await told(page, `Saved as ${join(stage.host.folder, "fine.asvp")}`).waitFor();
    const lines = (await onDisk("fine.asvp")).trimEnd().split("\r\n");
    assert.equal(lines[0], "( SoundVelocity 1.0 0 20261115123456 59.5 10.25 0 0 0 source NA 3 )");
    assert.deepEqual(lines.slice(2), ["10.50 1499.50", "20.25 1499.00"]);

    // The same file under another spelling, by "save as".
    await choose(page, "Save", "Save as…");
    await question(page, "Save as").getByLabel("File name").fill("KEEP");
    await page.keyboard.press("Enter");
    await question(page, "Replace keep.asvp?").getByRole("button", { name: "Cancel" }).click();
    assert.ok(!(await readdir(stage.host.folder)).includes("KEEP.asvp"));
  });

  test("a datagram file is written whole, and a second one keeps the first", async () => {
    const page = await stage.page();
    await openCast(page, "keep.asvp");
    for (const isSecond of [false, true]) {
      await choose(page, "Save", "Save as datagram file…");
      const dialog = question(page, "Save as datagram file");
      assert.equal(await dialog.getByLabel("File name").inputValue(), "keep.ssp");
      await dialog.getByText("is kept beside it").waitFor();
      await dialog.getByRole("button", { name: "Save" }).click();
      const message = told(page, `Saved as ${join(stage.host.folder, "keep.ssp")}`);
      const kept = message.filter({ hasText: "the older file is kept as keep_bck_" });
      await (isSecond ? kept : message).waitFor();
      if (!isSecond) assert.equal(await kept.count(), 0);
    }
    const written = await onDisk("keep.ssp");
    assert.ok(written.startsWith("$QZS00,00000,4,123456,15,11,2026,"));
    const { rows, tail } = takenApart(written);
    assert.deepEqual(rows.map(numbers), seaLevels([0, 10, 20, 40]).map(numbers));
    assert.deepEqual(tail.slice(0, 4), ["5930.000000", "N", "1015.000000", "E"]);
    const backups = (await readdir(stage.host.folder)).filter((name) => /^keep_bck_\d{8}_\d{6}\.ssp$/.test(name));
    assert.equal(backups.length, 1);
    assert.equal(await onDisk(backups[0] ?? ""), written);
    await page.locator('[data-name="keep.ssp"]').waitFor();
  });

  test("time and position that a cast lacks are asked for, and none is made up", async () => {
    const page = await stage.page();
    await openCast(page, "nowhere.asvp");
    await choose(page, "Send", "Survey system");
    const dialog = question(page, "When and where was this cast taken?");
    // Nothing is proposed: the file's date only at a press, and Enter alone takes no time for granted.
    const time = dialog.getByLabel("Time of the cast, UTC");
    assert.equal(await time.inputValue(), "");
    assert.equal(await time.getAttribute("placeholder"), "2026-11-15 12:34:56");
    await time.press("Enter");
    await dialog.getByText("State the time of the cast.").waitFor();
    await dialog.getByRole("button", { name: "Take the file’s date, 2026-11-15 12:40:00 UTC" }).click();
    assert.equal(await time.inputValue(), "2026-11-15 12:40:00");
    assert.equal(await dialog.getByLabel("Latitude").inputValue(), "");
    await dialog.getByRole("button", { name: "Go on" }).click();
    await dialog.getByText("State the latitude.").waitFor();
    await dialog.getByText("State the longitude.").waitFor();
    await page.keyboard.press("Escape");
    await dialog.waitFor({ state: "detached" });
    await survey.assertQuiet();

    await choose(page, "Send", "Survey system");
    await dialog.getByLabel("Time of the cast, UTC").fill("2026-02-30 10:00");
    await dialog.getByLabel("Latitude").fill("12 30.5 S");
    await dialog.getByLabel("Longitude").fill("-0.25");
    await dialog.getByRole("button", { name: "Go on" }).click();
    await dialog.getByText("That month has no day 30. Write a time as in").waitFor();
    await dialog.getByLabel("Time of the cast, UTC").fill("2026-02-28 10:00");
    await page.keyboard.press("Enter");
    await told(page, "6 levels as S00").waitFor();
    const arrival = await survey.next();
    assert.deepEqual(arrival.time, ["2026", "02", "28", "100000"]);
    assert.deepEqual(arrival.tail.slice(0, 4), ["1230.500000", "S", "15.000000", "W"]);

    // What was stated stands in the header now, as a step of the history, and is not asked for again.
    const field = (key: string) => page.locator(`#header [data-key=hsvp_file${key}]`).textContent();
    assert.equal(await field("time"), "2026-02-28 10:00:00 UTC");
    assert.equal(await field("lat"), "12° 30.500′ S");
    await page.getByRole("button", { name: "Undo time and place" }).click();
    assert.equal(await field("lat"), "not given", "as Send holds it to be missing");
    assert.equal(await field("lon"), "not given");
    assert.equal(await field("time"), "not given");
    await page.keyboard.press("Control+y");
    assert.equal(await field("lon"), "000° 15.000′ W");
    await choose(page, "Save", "Save as…");
    await question(page, "Save as").getByLabel("File name").fill("somewhere");
    await page.keyboard.press("Enter");
    await told(page, "somewhere.asvp").waitFor();
    assert.match(await onDisk("somewhere.asvp"), /^\( SoundVelocity 1\.0 0 20260228100000 -12\.508333333 -0\.25 /);
  });

  test("a time ahead is asked about before it is taken", async () => {
    const page = await stage.page();
    await openCast(page, "nowhere.asvp");
    await choose(page, "Send", "Survey system");
    const dialog = question(page, "When and where was this cast taken?");
    await dialog.getByLabel("Time of the cast, UTC").fill("2126-02-28 10:00");
    await dialog.getByLabel("Latitude").fill("59 30 N");
    await dialog.getByLabel("Longitude").fill("10 E");
    await page.keyboard.press("Enter");
    const ahead = question(page, "A cast from the future?");
    await ahead.getByText("The time of the cast, 2126-02-28 10:00:00 UTC, lies in the future.").waitFor();
    await ahead.getByRole("button", { name: "Cancel" }).click();
    await ahead.waitFor({ state: "detached" });
    await survey.assertQuiet();
    assert.ok(await page.locator("#undo").isHidden());
  });

  test("a type that is no content identifier may go out as 00", async () => {
    const page = await stage.page();
    await openCast(page, "odd-type.asvp");
    await choose(page, "Send", "Survey system");
    const dialog = question(page, "Send as 00?");
    await dialog.getByText("“Speed”").waitFor();
    await dialog.getByRole("button", { name: "Send as 00" }).click();
    await told(page, "odd-type.asvp, 6 levels as S00").waitFor();
    assert.deepEqual((await survey.next()).tail.slice(0, 4), ["30.000000", "S", "7006.000000", "W"]);
  });

  test("more than a thousand levels are sent only when the user insists", async () => {
    const page = await stage.page();
    await openCast(page, "long.asvp");
    await choose(page, "Send", "Survey system");
    const dialog = question(page, "Send anyway?");
    const space = "\u202f";
    await dialog.getByText(`The survey system takes at most 1${space}000 levels; this profile has 1${space}001.`).waitFor();
    assert.equal(await dialog.getByText("UDP datagram").count(), 0);
    await dialog.getByRole("button", { name: "Cancel" }).click();
    await survey.assertQuiet();
    await choose(page, "Send", "Survey system");
    await dialog.getByRole("button", { name: "Send anyway" }).click();
    await told(page, `1${space}001 levels as S00`).waitFor();
    assert.equal((await survey.next()).rows.length, 1001);

    await openCast(page, "huge.asvp");
    await choose(page, "Send", "Survey system");
    await dialog.getByText(`A UDP datagram holds at most 65${space}507 bytes`).waitFor();
    await dialog.getByRole("button", { name: "Cancel" }).click();
    await survey.assertQuiet();
  });

  test("what the engine does for the receiver and the distribution is told, and what it says", async () => {
    const page = await stage.page();
    await openCast(page, "keep.asvp");
    await choose(page, "Send", "Receiver");
    const note = "The engine has taken note of keep.asvp, 4 levels, for";
    await told(page, `${note} the receiver; it sends nothing itself. Its answer: “SVP sent to RVT300.”`).waitFor();
    await choose(page, "Send", "Distribute");
    await told(page, `${note} distribution; it sends nothing itself. Its answer: “SVP distributed.”`).waitFor();
    await openCast(page, "two.asvp");
    await choose(page, "Send", "Receiver");
    await failed(page, /two\.asvp was not handed to the receiver\. Invalid svp\. At least 3 levels/).waitFor();
    await choose(page, "Send", "Distribute");
    await failed(page, /two\.asvp was not distributed\. Invalid svp\./).waitFor();
  });

  test("a cast too short to be saved is refused in words, and nothing is written", async () => {
    const page = await stage.page();
    await openCast(page, "two.asvp");
    await choose(page, "Save", "Save as…");
    await question(page, "Save as").getByLabel("File name").fill("short");
    await page.keyboard.press("Enter");
    await failed(page, "short.asvp was not saved. Wrong svp input. At least 3 levels are needed").waitFor();
    assert.ok(!(await readdir(stage.host.folder)).includes("short.asvp"));
  });

  test("another page's list shows what was saved here, and tells no tale of it", async () => {
    const one = await stage.page();
    const two = await stage.newPage();
    await openCast(one, "odd*name.asvp");
    await choose(one, "Save", "Save");
    await told(one, "odd_name.asvp").waitFor();
    await two.locator('[data-name="odd_name.asvp"]').waitFor();
    assert.equal(await two.locator(".message").filter({ hasText: "Saved" }).count(), 0);
    await two.close();
  });

  test("sending and saving are done with the keyboard alone", async () => {
    const page = await stage.page();
    await openCast(page, "whole.asvp");
    const focused = () => page.evaluate(() => document.activeElement?.getAttribute("data-name") ?? document.activeElement?.textContent);
    await page.keyboard.press("s");
    assert.equal(await focused(), "Survey system");
    await page.keyboard.press("ArrowUp");
    assert.equal(await focused(), "Distribute");
    await page.keyboard.press("c");
    assert.ok(await page.locator("#verdict").isHidden(), "keys of the page rest");
    await page.keyboard.press("Escape");
    assert.equal(await focused(), "whole.asvp", "where it was");
    assert.ok(await page.getByRole("menu").isHidden());
    await page.keyboard.press("s");
    await page.keyboard.press("Enter");
    await told(page, "whole.asvp, 6 levels as S00").waitFor();
    await survey.next();

    await page.keyboard.press("w");
    await page.keyboard.press("ArrowDown");
    await page.keyboard.press("Enter");
    const dialog = question(page, "Save as");
    await dialog.waitFor();
    await page.keyboard.type("typed name? with letters: cls");
    await dialog.getByRole("button", { name: "Save" }).press("Enter");
    await dialog.getByText("no slash, backslash or colon").waitFor();
    await page.keyboard.press("ControlOrMeta+a");
    await page.keyboard.type("typed");
    await page.keyboard.press("Enter");
    await told(page, "typed.asvp").waitFor();
    assert.equal(await focused(), "whole.asvp", "the keyboard is back where it was");
    await page.keyboard.press("?");
    await page.getByText("Send the open cast: arrow keys").waitFor();
  });

  for (const theme of ["dark", "light"]) {
    test(`menus and questions lie inside a small screen, ${theme}`, async () => {
      const page = await stage.page({ width: 1024, height: 600 });
      if (theme === "light") await page.keyboard.press("t");
      await openCast(page, "nowhere.asvp");
      const inside = async (part: Locator) => {
        const box = await part.boundingBox();
        assert.ok(box && box.x >= 0 && box.y >= 0 && box.x + box.width <= 1024 && box.y + box.height <= 600, JSON.stringify(box));
      };
      for (const key of ["s", "w"]) {
        await page.keyboard.press(key);
        await inside(page.locator(".menu:visible"));
        await picture(page, `menu-${key}-${theme}`);
        await page.keyboard.press("Escape");
      }
      await choose(page, "Send", "Survey system");
      const dialog = question(page, /^When and where/);
      await dialog.getByRole("button", { name: "Go on" }).click();
      await dialog.getByText("State the latitude.").waitFor();
      await inside(dialog);
      await inside(dialog.getByRole("button", { name: "Go on" }));
      await picture(page, `question-${theme}`);
      await page.keyboard.press("Escape");

      await openCast(page, "needs-repair.asvp");
      await choose(page, "Send", "Survey system");
      await failed(page, "was not sent").waitFor();
      await openCast(page, OCEAN);
      await choose(page, "Send", "Survey system");
      await told(page, "42 levels as S00").waitFor();
      await survey.next();
      await inside(page.locator("#messages"));
      await inside(page.locator(".levels"));
      await picture(page, `messages-${theme}`);
    });
  }
});

/// The engine writes as many decimals as the casts opened so far have had it show.
function numbers(texts: readonly string[]): number[] {
  return texts.map(Number);
}

/// Keeps a picture for looking at, where a folder for it is named.
async function picture(page: Page, name: string): Promise<void> {
  const folder = process.env["SVP_PICTURES"];
  if (folder) await page.screenshot({ path: join(folder, `${name}.png`) });
}
