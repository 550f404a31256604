/// The header edited in its dialog.
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { join } from "node:path";
import { describe, test } from "node:test";
import type { Page } from "playwright-core";
import { goTo, stored, unsaved } from "./editing-parts";
import { held, pick } from "./handing";
import { PROBE, undo } from "./reshape-parts";
import { Stage, assertInside, openCast, picture, seaLevels, shown, told } from "./stage";

const dialogOf = (page: Page) => page.getByRole("dialog", { name: /^Header of/ });
const input = (page: Page, name: string) => dialogOf(page).getByLabel(name, { exact: true });
const shownField = (page: Page, key: string) => page.locator(`#header [data-key=hsvp_file${key}]`).textContent();
const apply = (page: Page) => dialogOf(page).getByRole("button", { name: "Apply" }).click();

describe("editing the header", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("sea.asvp", seaLevels([0, 10, 40, 12000]));
    await host.writeCast("nowhere.asvp", seaLevels([0, 10, 40]), "( SoundVelocity 1.0 0 0 0 0 0 0 0 NA NA 3 )");
  });

  test("all thirteen fields are there with their meaning, also at 1024 by 600", async () => {
    const page = await stage.page({ width: 1024, height: 600 });
    assert.ok(await page.locator("#header-edit").isDisabled());
    await openCast(page, "sea.asvp");
    await page.keyboard.press("d");
    const dialog = dialogOf(page);
    await dialog.waitFor();
    await assertInside(page, dialog);
    await assertInside(page, dialog.getByRole("button", { name: "Apply" }));
    assert.equal(await dialog.locator("input, select").count(), 13);
    for (const field of await dialog.locator("input, select").all()) {
      const [hint = ""] = ((await field.getAttribute("aria-describedby")) ?? "").split(" ");
      assert.ok((await page.locator(`#${hint}`).textContent())?.endsWith("."), hint);
    }
    assert.equal(await input(page, "Time").inputValue(), "2026-11-15 12:34:56 UTC");
    assert.equal(await input(page, "Latitude").inputValue(), "59° 30.000′ N");
    assert.equal(await input(page, "Samples").getAttribute("readonly"), "");
    await picture(page, "header-1024");
    await page.keyboard.press("Escape");
    assert.ok(await undo(page).isHidden());
  });

  test("what is typed is shown, one step of the history, and written into the file", async () => {
    const page = await stage.page();
    await openCast(page, "sea.asvp");
    await page.getByRole("button", { name: "Edit the header" }).click();
    await input(page, "Time").fill("2026-12-01 06:05");
    await input(page, "Latitude").fill("12 30,6 S");
    await input(page, "Longitude").fill("-70.25");
    await input(page, "Radius").fill("2500");
    await input(page, "Source").fill("deck probe");
    await input(page, "Comment").fill("after the storm");
    await apply(page);
    await dialogOf(page).waitFor({ state: "hidden" });
    assert.equal(await shownField(page, "time"), "2026-12-01 06:05:00 UTC");
    assert.equal(await shownField(page, "lat"), "12° 30.600′ S");
    assert.equal(await shownField(page, "lon"), "070° 15.000′ W");
    assert.ok(await unsaved(page));
    await page.getByRole("button", { name: "Undo header" }).click();
    assert.equal(await shownField(page, "lat"), "59° 30.000′ N");
    assert.ok(!(await unsaved(page)));
    await page.keyboard.press("Control+y");
    await page.getByRole("button", { name: "Save", exact: true }).click();
    await page.getByRole("menuitem", { name: "Save as…" }).click();
    await page.getByRole("dialog", { name: "Save as" }).getByLabel("File name").fill("header");
    await page.keyboard.press("Enter");
    await told(page, "Not kept of what you have changed: comment. A datagram file keeps what its kind carries. The cast still counts as not saved.").waitFor();
    assert.ok(await unsaved(page));
    const [first] = (await readFile(join(stage.host.folder, "header.asvp"), "latin1")).split("\r\n");
    assert.equal(first, "( SoundVelocity 1.0 0 20261201060500 -12.51 -70.25 2500 0 0 deck_probe NA 4 )");
  });

  test("a time ahead is taken, with a warning", async () => {
    const page = await stage.page();
    await openCast(page, "sea.asvp");
    await page.keyboard.press("d");
    await input(page, "Time").fill("15.11.2126 9:05");
    await apply(page);
    await told(page, "The time of the cast, 2126-11-15 09:05:00 UTC, lies in the future.").waitFor();
    assert.equal(await shownField(page, "time"), "2126-11-15 09:05:00 UTC");
  });

  test("positions are shown in the form that was chosen, now and later, and typed in both", async () => {
    const page = await stage.page();
    await openCast(page, "sea.asvp");
    const form = page.getByLabel("Form of positions");
    assert.equal(await form.inputValue(), "minutes");
    await form.selectOption("decimal");
    assert.equal(await shownField(page, "lat"), "59.500000° N");
    assert.equal(await shownField(page, "lon"), "10.250000° E");
    await page.reload();
    await openCast(page, "sea.asvp");
    assert.equal(await shownField(page, "lat"), "59.500000° N");
    await page.getByRole("button", { name: "Edit the header" }).click();
    assert.equal(await input(page, "Latitude").inputValue(), "59.500000° N");
    await input(page, "Latitude").fill("59 60 N");
    await apply(page);
    await dialogOf(page).getByText("There are 60 minutes in it; they go up to 59.999.").waitFor();
    await input(page, "Latitude").fill("5930.5N");
    await input(page, "Longitude").fill("-10.5");
    await apply(page);
    assert.equal(await shownField(page, "lat"), "59.508333° N");
    assert.equal(await shownField(page, "lon"), "10.500000° W");
    await picture(page, "header-decimal");
    await form.selectOption("minutes");
    assert.equal(await shownField(page, "lat"), "59° 30.500′ N");
  });

  test("what cannot be carried is refused where it stands", async () => {
    const page = await stage.page();
    await openCast(page, "sea.asvp");
    await page.keyboard.press("d");
    await input(page, "Comment").fill("[draft]");
    await input(page, "Valid to").fill("soon");
    await apply(page);
    await dialogOf(page).getByText("“[” cannot be sent with a profile. Write it in another way.").waitFor();
    await dialogOf(page).getByText("Write a time as in 2026-11-15 12:34:56 UTC.").waitFor();
    assert.equal(await input(page, "Valid to").getAttribute("aria-invalid"), "true");
    assert.equal(await input(page, "Valid to").evaluate((each) => each === document.activeElement), true);
    await picture(page, "header-refused");
    await input(page, "Comment").fill("draft");
    await input(page, "Valid to").fill("");
    await page.keyboard.press("Enter");
    await dialogOf(page).waitFor({ state: "hidden" });
    assert.equal(await shownField(page, "comment"), "draft");
    await stored(page, 1);
  });

  test("what was stated in the header is not asked for", async () => {
    const page = await stage.page();
    await openCast(page, "nowhere.asvp");
    await page.keyboard.press("d");
    await input(page, "Time").fill("2026-12-01 06:05:04");
    await input(page, "Latitude").fill("0 N");
    await input(page, "Longitude").fill("10 E");
    await apply(page);
    await page.keyboard.press("w");
    await page.getByRole("menuitem", { name: "Save as datagram file…" }).click();
    const dialog = page.getByRole("dialog", { name: "Save as datagram file" });
    await dialog.getByLabel("File name").fill("stated");
    await page.keyboard.press("Enter");
    await told(page, "Saved as").waitFor();
    const text = await readFile(join(stage.host.folder, "stated.ssp"), "latin1");
    assert.match(text, /^\$QZS00,00000,3,060504,01,12,2026,/);
    assert.match(text, /\r\n0\.000000,N,1000\.000000,E,,,/);
  });

  test("a kind whose rows leave out what was changed is asked about before it goes out", async () => {
    const page = await stage.page();
    await pick(page, held("probe.vp2", PROBE));
    await shown(page, "probe.vp2");
    await page.keyboard.press("d");
    const kind = input(page, "Type");
    assert.equal(await kind.inputValue(), "01");
    assert.ok(await kind.locator("option[value='03']").isDisabled());
    await kind.selectOption("02");
    await apply(page);
    assert.equal(await shownField(page, "type"), "02 – depth, temperature and salinity; sound speed is computed");
    await goTo(page, 1, "svp_Speed");
    await page.keyboard.press("Enter");
    await page.keyboard.type("1505");
    await page.keyboard.press("Enter");
    await page.keyboard.press("w");
    await page.getByRole("menuitem", { name: "Save as datagram file…" }).click();
    const question = page.getByRole("dialog", { name: "Save anyway?" });
    await question.getByText("You have changed the sound speed of this cast. The rows of kind 02 do not carry that").waitFor();
    await question.getByRole("button", { name: "Cancel" }).click();
    assert.ok(await unsaved(page));
  });
});
