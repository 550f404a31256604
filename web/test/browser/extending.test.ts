/// Casts continued to full ocean depth, by the engine's own means.
import assert from "node:assert/strict";
import { describe, test } from "node:test";
import { held, pick } from "./handing";
import { PROBE, casts, extendByDefault, extendDialog, levels, openExtend, undo } from "./reshape-parts";
import { Stage, assertInside, check, openCast, picture, seaLevels, shown, told } from "./stage";

describe("extending", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("bay.asvp", seaLevels([0, 10, 40, 600]));
    await host.writeCast("below.asvp", [["5.00", "1501.25"], ["10.00", "1499.50"], ["40.00", "1490.00"]]);
    await host.writeCast("two.asvp", seaLevels([0, 10]));
    await host.writeCast("back.asvp", seaLevels([0, 50, 40, 60]));
  });

  test("default rows are joined, shown as such, told, and taken back", async () => {
    const page = await stage.page();
    assert.ok(await page.getByRole("button", { name: "Extend…" }).isDisabled());
    await openCast(page, "bay.asvp");
    const before = await levels(page);
    await check(page);
    const verdict = await page.locator("#verdict").innerText();
    assert.equal(await page.locator("#unsaved").textContent(), "");

    await extendByDefault(page);
    await told(page, "bay.asvp extended with the default rows: 7 levels joined, from 700.00 m to 12000.00 m. No surface level was added. It is not saved yet.").waitFor();
    assert.deepEqual(await levels(page), {
      depths: [...before.depths, 700, 1000, 1500, 4000, 6000, 8500, 12000],
      speeds: [...before.speeds, 1486.2, 1483, 1487.2, 1500, 1524.1, 1558.2, 1602.8],
      joined: [5, 6, 7, 8, 9, 10, 11],
    });
    assert.equal(await page.locator(".level-joined").count(), 7);
    assert.equal(await page.locator(".level-point").count(), 11);
    assert.equal(await page.locator("#cast-facts").textContent(), "11 levels · 7 joined");
    const look = (selector: string) => page.locator(selector).first().evaluate((element) => {
      const { stroke, strokeDasharray } = getComputedStyle(element);
      return { stroke, strokeDasharray };
    });
    const [measured, joined] = [await look(".trace path"), await look(".trace-joined path")];
    assert.notEqual(joined.stroke, measured.stroke);
    assert.equal(measured.strokeDasharray, "none");
    assert.notEqual(joined.strokeDasharray, "none");
    const legend = page.getByRole("group", { name: "Lines of the plot" });
    assert.equal(await legend.innerText(), "Measured\nJoined");
    assert.deepEqual(await look(".swatch-joined .swatch-line"), joined);
    assert.equal(await page.locator("#unsaved").textContent(), "Not saved");
    assert.ok(await page.locator("#verdict").isHidden(), "a verdict on other levels");
    await page.keyboard.press("g");
    await page.keyboard.press("End");
    await page.getByText(/^Level 11 .*joined, not measured$/).waitFor();
    await check(page);
    await page.getByText("Existing profile depths and sound speeds are valid.").waitFor();
    assert.equal(await page.locator("#verdict").getAttribute("data-state"), "valid");

    await page.getByRole("button", { name: "Undo extend" }).click();
    assert.deepEqual(await levels(page), before);
    assert.equal(await page.locator("#verdict").innerText(), verdict, "with the verdict that it had");
    assert.equal(await page.locator("#unsaved").textContent(), "");
    assert.equal(await page.locator(".level-joined").count(), 0);
  });

  test("a level is put at the surface where there is none", async () => {
    const page = await stage.page();
    await openCast(page, "below.asvp");
    await extendByDefault(page);
    await told(page, "8 levels joined, from 500.00 m to 12000.00 m. A level at 0 m was put in front, with the sound speed of the first level.").waitFor();
    const { depths, speeds, joined } = await levels(page);
    assert.deepEqual(depths.slice(0, 5), [0, 5, 10, 40, 500]);
    assert.deepEqual(speeds.slice(0, 4), [1501.25, 1501.25, 1499.5, 1490]);
    assert.deepEqual(joined, [1, 5, 6, 7, 8, 9, 10, 11, 12]);
    // There is nothing left to join.
    await extendByDefault(page);
    await told(page, "below.asvp: no level was joined, since none lies below 12000.00 m. No surface level was added.").waitFor();
    assert.equal((await levels(page)).depths.length, 12);
    await page.keyboard.press("u");
    assert.deepEqual((await levels(page)).depths, [5, 10, 40]);
    assert.ok(await undo(page).isHidden());
  });

  test("a deep sea of the temperature and salinity measured continues a probe's cast", async () => {
    const page = await stage.page();
    await pick(page, held("probe.vp2", PROBE));
    await shown(page, "probe.vp2");
    const dialog = await openExtend(page, "Temperature and salinity");
    const field = (name: RegExp) => dialog.getByRole("textbox", { name });
    assert.equal(await field(/^Temperature/).inputValue(), "9.40");
    assert.equal(await field(/^Salinity/).inputValue(), "35.20");
    assert.equal(Number(await field(/^Latitude/).inputValue()), -33.25);
    await field(/^Temperature/).fill("50.1");
    await field(/^Salinity/).fill("");
    await field(/^Latitude/).fill("-90.5");
    await field(/^Latitude/).press("Enter");
    await dialog.getByText("The temperature must lie from 0 to 50 °C.").waitFor();
    await dialog.getByText("State the salinity, 0 to 500.").waitFor();
    await dialog.getByText("The latitude must lie from −90 to 90 degrees.").waitFor();
    assert.equal(await field(/^Temperature/).getAttribute("aria-invalid"), "true");
    assert.ok(await field(/^Temperature/).evaluate((element) => element === document.activeElement));
    await picture(page, "extend-water");
    await field(/^Temperature/).fill("9,4");
    await field(/^Salinity/).fill("35.2");
    await field(/^Latitude/).fill("-33.25");
    await dialog.getByRole("button", { name: "Extend", exact: true }).click();
    await told(page, /probe\.vp2 extended with 9\.4 °C, salinity 35\.2 and latitude −33\.25°: 200 levels joined, from 120\.\d+ m to 12000\.00 m\. A level at 0 m was put in front/).waitFor();
    assert.equal(await page.locator("#cast-facts").textContent(), "205 levels · 201 joined");
    // What was not measured is not shown as if it were.
    const cells = (name: string) => page.locator(`.tabulator-row [tabulator-field=${name}]`).allTextContents();
    assert.deepEqual((await cells("svp_Temp")).slice(0, 7), ["–", "13.20", "12.70", "10.40", "9.40", "–", "–"]);
    assert.deepEqual((await cells("svp_Sal")).slice(3, 7), ["35.10", "35.20", "–", "–"]);
    assert.equal(await page.locator("[data-quantity=svp_Temp] .level-point").count(), 4);
  });

  test("a water mass that does not fit is refused in words, and the dialog stays", async () => {
    const page = await stage.page();
    const dialog = extendDialog(page);
    // Some 1600 m/s at the surface, more than a hundred above the deepest level.
    const extendWarm = async (name: string) => {
      await openCast(page, name);
      await page.keyboard.press("e");
      await page.keyboard.press("ArrowDown");
      assert.equal(await dialog.getByRole("textbox", { name: /^Temperature/ }).inputValue(), "");
      assert.equal(await dialog.getByRole("textbox", { name: /^Latitude/ }).inputValue(), "59.5");
      await dialog.getByRole("textbox", { name: /^Temperature/ }).fill("40");
      await dialog.getByRole("textbox", { name: /^Salinity/ }).fill("100");
      await page.keyboard.press("Enter");
    };
    await extendWarm("below.asvp");
    await dialog.getByText("below.asvp was not extended. At least 4 levels are needed; this cast has 3.").waitFor();
    await page.keyboard.press("Escape");
    await extendWarm("bay.asvp");
    const status = dialog.getByRole("alert").filter({ hasText: "bay.asvp was not extended. No sea was found near this temperature and salinity" });
    await status.waitFor();
    assert.match((await status.textContent()) ?? "", /comes within 1\.0 m\/s of the deepest level/);
    await page.keyboard.press("Escape");
    await dialog.waitFor({ state: "hidden" });
    assert.equal((await levels(page)).depths.length, 4);
    assert.equal(await page.locator("#unsaved").textContent(), "");
  });

  test("too few levels, and depths out of order, are refused with what to do next", async () => {
    const page = await stage.page();
    await openCast(page, "two.asvp");
    let dialog = await openExtend(page, "Default rows");
    await dialog.getByRole("button", { name: "Extend", exact: true }).click();
    await dialog.getByText("two.asvp was not extended. At least 3 levels are needed; this cast has 2.").waitFor();
    await dialog.getByRole("button", { name: "Cancel" }).click();
    await openCast(page, "back.asvp");
    dialog = await openExtend(page, "Default rows");
    await dialog.getByRole("button", { name: "Extend", exact: true }).click();
    await dialog.getByText(/back\.asvp was not extended\. Depths are not sorted\. .*Check the cast and mend what is marked/).waitFor();
    await dialog.getByRole("button", { name: "Check the cast" }).click();
    await page.getByRole("heading", { name: /^Check of/ }).waitFor();
    assert.ok(await dialog.isHidden());
    await page.locator(".tabulator-row.invalid").first().waitFor();
  });

  test("what is not saved is not left without a question, and saving ends that", async () => {
    const page = await stage.page();
    await openCast(page, "bay.asvp");
    await extendByDefault(page);
    const question = page.getByRole("dialog", { name: "Leave without saving?" });
    await page.locator('[data-name="two.asvp"]').click();
    await question.getByText("bay.asvp was changed and is not saved.").waitFor();
    await page.keyboard.press("Escape");
    await question.waitFor({ state: "detached" });
    await pick(page, held("picked.asvp", "( SoundVelocity 1.0 0 0 1 2 0 0 0 a NA 2 )\n0 1500\n10 1490\n"));
    await question.getByRole("button", { name: "Cancel" }).click();
    assert.ok(!(await casts(page)).includes("picked.asvp"));
    // Another page opens a cast: it is offered, and asked about when it is taken.
    const other = await stage.newPage();
    await openCast(other, "below.asvp");
    await told(page, "below.asvp was opened elsewhere.").getByRole("button", { name: "Open it" }).click();
    await question.getByRole("button", { name: "Cancel" }).click();
    await other.close();
    assert.equal(await page.locator("#cast-title").textContent(), "bay.asvp");
    assert.equal(await page.evaluate(() => dispatchEvent(new Event("beforeunload", { cancelable: true }))), false);

    await page.getByRole("button", { name: "Save", exact: true }).click();
    await page.getByRole("menuitem", { name: "Save as…" }).click();
    await page.getByRole("dialog", { name: "Save as" }).getByLabel("File name").fill("bay-deep");
    await page.keyboard.press("Enter");
    await told(page, "bay-deep.asvp").waitFor();
    assert.equal(await page.locator("#unsaved").textContent(), "");
    assert.equal(await page.evaluate(() => dispatchEvent(new Event("beforeunload", { cancelable: true }))), true);
    await openCast(page, "bay-deep.asvp");
    assert.equal((await levels(page)).depths.length, 11);

    // And the user may leave what is not saved.
    await openCast(page, "bay.asvp");
    await extendByDefault(page);
    await page.locator('[data-name="two.asvp"]').click();
    await question.getByRole("button", { name: "Leave" }).click();
    await shown(page, "two.asvp");
    assert.ok(await undo(page).isHidden());
  });

  for (const theme of ["dark", "light"]) {
    test(`the dialog and the joined part are seen on a small screen, ${theme}`, async () => {
      const page = await stage.page({ width: 1024, height: 600 });
      if (theme === "light") await page.keyboard.press("t");
      await openCast(page, "below.asvp");
      const dialog = await openExtend(page, "Temperature and salinity");
      await assertInside(page, dialog);
      await picture(page, `extend-${theme}`);
      await page.keyboard.press("Escape");
      await extendByDefault(page);
      await told(page, "8 levels joined").waitFor();
      for (const part of ["#undo", "#unsaved", "#plot-legend", "#plot", "#thin", "#help-open"]) await assertInside(page, page.locator(part));
      const plot = await page.locator("#plot").boundingBox();
      assert.ok(plot && plot.height > 200, "the legend leaves room for the plot");
      await picture(page, `extended-${theme}`);
    });
  }
});
