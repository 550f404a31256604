/// A whole watch, as a surveyor goes through it: a probe's file comes in, is mended, fixed, compared,
/// saved and sent. What arrives at the survey system is held against the water that was made up.
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { join } from "node:path";
import { after, before, describe, test } from "node:test";
import { edit, goTo, unsaved } from "./editing-parts";
import { drag, held } from "./handing";
import { fixed, fixDialog } from "./repair-parts";
import { PROBE, fileLevels, levels } from "./reshape-parts";
import { Stage, check, failed, invalidRows, openCast, picture, seaLevels, shown, told } from "./stage";
import { SurveySystem } from "./survey-system";

/// The water: sound speed (m/s) at a depth (m), with a sharp thermocline at 30 m.
const speedAt = (depth: number): number => 1478 + 30 / (1 + Math.exp((depth - 30) / 4)) + 0.0165 * depth;
const DEEPEST = 180;

/// A reading that a bubble has spoilt, which the check finds; and one that is plausible, but wrong.
const BUBBLE = 75;
const MISREAD = 78;

/// What the probe wrote: from the deck through the surface to the bottom and half of the way back.
function probeFile(): string {
  const head = PROBE.slice(0, PROBE.indexOf("2\t1504.1"));
  const row = (depth: number, speed: number) => [depth.toFixed(2), speed.toFixed(2), "11.500", "35.000"].join("\t");
  const rows = [row(-0.4, 341.2), row(-0.1, 341.6), row(0.3, 352.9)];
  for (let depth = 1; depth <= DEEPEST; depth += 1) {
    rows.push(row(depth, depth === BUBBLE ? 1390 : speedAt(depth) + (depth === MISREAD ? 3 : 0)));
  }
  for (let depth = DEEPEST - 2.5; depth > 90; depth -= 2.5) rows.push(row(depth, speedAt(depth) + 0.4));
  return `${head}${rows.join("\r\n")}\r\n`;
}

/// What a straight line between rows has at a depth.
function between(rows: readonly (readonly [number, number])[], depth: number): number {
  const below = rows.findIndex(([each]) => each >= depth);
  const [[d0, s0], [d1, s1]] = [rows[Math.max(below - 1, 0)] ?? [NaN, NaN], rows[below] ?? [NaN, NaN]];
  return d1 === d0 ? s1 : s0 + ((s1 - s0) * (depth - d0)) / (d1 - d0);
}

describe("a whole watch", () => {
  const stage = new Stage(async (host) => host.writeCast("last-watch.asvp", seaLevels([0, 20, 60, 120, 400, 12000])));
  let survey: SurveySystem;
  before(async () => (survey = await SurveySystem.listen()));
  after(() => survey.close());

  test("a probe's file is dropped, mended, checked, fixed, compared, saved and sent", async () => {
    const page = await stage.page();
    await page.getByText("No cast open").first().waitFor();

    // It comes in by a drop, and is seen.
    await drag(page, "drop", held("0742.vp2", probeFile()));
    await shown(page, "0742.vp2");
    await told(page, "0742.vp2").first().waitFor();
    assert.match((await page.locator("#cast-facts").textContent()) ?? "", /218 levels/);
    await picture(page, "watch-1-dropped");

    // The check finds what is wrong; what was read in air and on the way up goes.
    await check(page);
    assert.ok((await invalidRows(page)).length > 0);
    await edit(page, "Drop levels in air");
    assert.equal((await levels(page)).depths[0], 1);
    assert.ok(await unsaved(page));
    await edit(page, "Keep downcast");
    assert.match((await page.locator("#cast-facts").textContent()) ?? "", /180 levels/);
    await check(page);
    await page.getByRole("button", { name: "Next invalid" }).click();
    await page.locator(".tabulator-row.selected.invalid").waitFor();
    assert.equal(await page.locator(".tabulator-row.selected").getAttribute("data-level"), String(BUBBLE));
    await picture(page, "watch-2-checked");
    // One reading is typed anew, as the log sheet has it.
    await goTo(page, MISREAD, "svp_Speed");
    await page.keyboard.press("Enter");
    await page.keyboard.type(speedAt(MISREAD).toFixed(2));
    await page.keyboard.press("Enter");

    // Not fit to be sent yet, and nothing leaves.
    await page.getByRole("button", { name: "Send", exact: true }).click();
    await page.getByRole("menuitem", { name: "Survey system", exact: true }).click();
    const refusal = failed(page, "0742.vp2 was not sent to the survey system.");
    await refusal.waitFor();
    await survey.assertQuiet();
    await refusal.getByRole("button", { name: /^Dismiss/ }).click();

    // Fixed, and compared with what came in.
    await page.getByRole("button", { name: "Fix…", exact: true }).click();
    await fixDialog(page).getByRole("textbox", { name: "Tolerance of thinning" }).fill("0.1");
    await fixDialog(page).getByRole("button", { name: "Fix", exact: true }).click();
    const dialog = await fixed(page, "0742.vp2");
    await dialog.getByText("1 of 180 levels was invalid and left out.").waitFor();
    await dialog.getByText(`Continued from ${DEEPEST.toFixed(2)} m to 12000.00 m.`).waitFor();
    assert.match((await dialog.locator(".fix-largest").textContent()) ?? "", /\d\.\d\d m/);
    await picture(page, "watch-3-fixed");
    await dialog.getByRole("button", { name: "Add a level at 0 m" }).click();
    await dialog.getByText("It is not saved yet.").waitFor();
    await dialog.getByRole("button", { name: "Close" }).click();

    // Compared with the watch before.
    await page.getByRole("button", { name: "Compare with…" }).click();
    const choice = page.getByRole("dialog", { name: "Compare with…" });
    await choice.getByRole("listbox").selectOption({ label: "last-watch.asvp" });
    await choice.getByRole("button", { name: "Compare", exact: true }).click();
    await page.locator(".trace-under path").first().waitFor({ state: "attached" });
    await picture(page, "watch-4-compared");

    // Saved under a name of its own, beside what the fix wrote.
    await page.getByRole("button", { name: "Save", exact: true }).click();
    await page.getByRole("menuitem", { name: "Save as…" }).click();
    await page.getByRole("dialog").getByLabel("File name").fill("watch-0742");
    await page.keyboard.press("Enter");
    await told(page, `Saved as ${join(stage.host.folder, "watch-0742.asvp")}`).waitFor();
    assert.ok(!(await unsaved(page)));

    // Sent; what arrives is what was saved.
    await page.getByRole("button", { name: "Send", exact: true }).click();
    await page.getByRole("menuitem", { name: "Survey system", exact: true }).click();
    await told(page, "The survey system does not confirm receipt.").waitFor();
    await picture(page, "watch-5-sent");
    const arrival = await survey.next();
    await survey.assertQuiet();
    const rows = arrival.rows.map(([depth, speed]) => [Number(depth), Number(speed)] as const);
    assert.equal(arrival.identifier, "01", "depth and sound speed, with the temperatures and salinities of the probe");
    assert.equal(arrival.stated, rows.length);
    assert.deepEqual(arrival.time, ["2026", "06", "18", "074210"]);
    assert.deepEqual(arrival.tail.slice(0, 4), ["3315.000000", "S", "530.000000", "E"]);
    const saved = fileLevels(await readFile(join(stage.host.folder, "watch-0742.asvp"), "latin1"));
    assert.deepEqual(rows, saved);

    // And it is the water: each reading that was good is met within the tolerance of the thinning,
    // none of those that were not is left, and it goes from the surface to full depth.
    assert.deepEqual(rows[0], [0, Number(speedAt(1).toFixed(2))]);
    assert.equal(rows[rows.length - 1]?.[0], 12000);
    assert.ok(rows.every(([depth], i) => i === 0 || depth > (rows[i - 1]?.[0] ?? NaN)), "each level is deeper");
    assert.ok(rows.every(([, speed]) => speed > 1470 && speed < 1700));
    assert.ok(rows.length < 80, `${rows.length} levels after thinning`);
    for (let depth = 1; depth <= DEEPEST; depth += 1) {
      const off = between(rows, depth) - speedAt(depth);
      // The tolerance is one across the line, from it to either side, and the line drawn in the end is
      // another one of these; where it is steepest, 1.9 m/s in a metre, that is twice as much in speed.
      assert.ok(Math.abs(off) < 0.45, `${off.toFixed(3)} m/s at ${depth} m`);
    }
    await openCast(page, "watch-0742.asvp");
    await check(page);
    assert.deepEqual(await invalidRows(page), []);
  });
});
