/// Casts that are fixed in one step.
import assert from "node:assert/strict";
import { readFile, readdir, writeFile } from "node:fs/promises";
import { join } from "node:path";
import { describe, test } from "node:test";
import type { Route } from "playwright-core";
import { fix, fixDialog, fixed, FAULTY } from "./repair-parts";
import type { FileLevel } from "./host";
import { PROBE, STRAIGHT, fileLevels, levels, undo } from "./reshape-parts";
import { Stage, aFrame, assertInside, openCast, picture, shown, told } from "./stage";

/// Around a straight line by up to 3 m/s, which thinning at its coarsest does not follow throughout.
const WAVY: FileLevel[] = Array.from({ length: 241 }, (_, i) => [String(i * 50), (1500 + i / 2 + 3 * Math.sin(i / 7)).toFixed(2)]);

/// So uneven that thinning at 0.1 leaves more levels than a datagram is read with: up and down by
/// 0.3 m/s, each two metres.
function rough(): string {
  const rows = Array.from({ length: 20_000 }, (_, i) => {
    const depth = 1 + i * 0.05;
    return [depth.toFixed(2), (1490 + 0.0165 * depth + 0.3 * Math.sin(Math.PI * depth)).toFixed(2), "9.000", "35.000"].join("\t");
  });
  return `${PROBE.slice(0, PROBE.indexOf("2\t1504.1"))}${rows.join("\r\n")}\r\n`;
}

describe("fixing", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("faulty.asvp", FAULTY);
    await host.writeCast("straight.asvp", STRAIGHT);
    await host.writeCast("hopeless.asvp", FAULTY.map(([depth], i) => [depth, i === 0 ? "1500.00" : "300.00"]));
    await host.writeCast("wavy.asvp", WAVY);
    await writeFile(join(host.folder, "rough.vp2"), rough());
    await host.writeCast("few.asvp", FAULTY.slice(0, 4));
    await host.writeCast("nowhere.asvp", FAULTY, "( SoundVelocity 1.0 0 0 0 0 0 0 0 source NA 8 )");
  });
  const onDisk = (name: string) => readFile(join(stage.host.folder, name), "latin1");

  test("a cast is cleaned, continued and thinned, shown, compared, and taken back", async () => {
    const page = await stage.page();
    await openCast(page, "faulty.asvp");
    const before = await levels(page);
    await page.keyboard.press("x");
    await fixDialog(page).getByText("the World Ocean Atlas is switched off").waitFor();
    await fixDialog(page).getByRole("button", { name: "Fix", exact: true }).click();
    const dialog = await fixed(page, "faulty.asvp");
    const path = join(stage.host.folder, "faulty_fixed.asvp");
    for (const line of ["2 of 8 levels were invalid and left out.", "Continued from 400.00 m to 12000.00 m.", `Written as ${path}.`]) {
      await dialog.getByText(line).waitFor();
    }
    await shown(page, "faulty_fixed.asvp");
    const after = await levels(page);
    const file = fileLevels(await onDisk("faulty_fixed.asvp"));
    assert.deepEqual(after.depths.map((depth, i) => [depth, after.speeds[i]]), file);
    assert.deepEqual(file[0], [2, 1504.1]);
    assert.equal(file.at(-1)?.[0], 12000);
    assert.ok(!file.some(([depth]) => depth === 40 || depth === 50), "the invalid ones are gone");
    assert.deepEqual(after.joined, after.depths.flatMap((depth, i) => (depth > 400 ? [i + 1] : [])));
    assert.equal(await page.locator("#unsaved").textContent(), "", "a file holds it");

    // Nine angles, eleven ranges; the largest of them is the one that is told.
    const cells = await dialog.locator(".comparison-table tbody tr").evaluateAll((rows) =>
      rows.map((row) => [...row.querySelectorAll("td")].map((cell) => ({ text: cell.textContent ?? "", title: cell.title }))));
    assert.deepEqual(cells.map((row) => row.length), Array(9).fill(11));
    assert.ok(cells[0]?.every(({ text }) => text === "–"), "straight down no range is reached");
    const numbers = cells.flat().filter(({ text }) => text !== "–");
    for (const { text, title } of numbers) {
      const [first = NaN, second = NaN] = [...title.matchAll(/([\d.]+) m/g)].map(([, depth]) => Number(depth));
      assert.equal(Number(text.replace("−", "-")).toFixed(2), (second - first + 0).toFixed(2).replace("-0.00", "0.00"), title);
    }
    const most = Math.max(...numbers.map(({ text }) => Math.abs(Number(text.replace("−", "-")))));
    const sentence = (await dialog.locator(".fix-largest").textContent()) ?? "";
    assert.match(sentence, most === 0 ? /agree to 0\.01 m/ : new RegExp(`The largest difference is ${most.toFixed(2)} m, at `));
    assert.ok((await dialog.locator(".comparison-plot .chart-line path").count()) > 3);
    await dialog.getByRole("button", { name: "Close" }).click();

    const notice = told(page, `faulty.asvp fixed, ${after.depths.length} levels, written as ${path}.`);
    await notice.waitFor();
    // It can be looked at again, as often as wanted.
    for (let i = 0; i < 2; ++i) {
      await notice.getByRole("button", { name: "Show the comparison" }).click();
      await fixed(page, "faulty.asvp");
      assert.equal(await dialog.locator(".fix-largest").textContent(), sentence);
      assert.equal(await dialog.locator(".comparison-table tbody td").count(), 9 * 11);
      assert.ok(await dialog.getByRole("button", { name: "Add a level at 0 m" }).isHidden());
      await page.keyboard.press("Escape");
      await dialog.waitFor({ state: "hidden" });
    }
    await page.getByRole("button", { name: "Undo fix" }).click();
    await shown(page, "faulty.asvp");
    assert.deepEqual(await levels(page), before);
    assert.ok(await undo(page).isHidden());
  });

  test("a file that is there already is replaced only with consent", async () => {
    const page = await stage.page();
    await openCast(page, "faulty.asvp");
    const whole = await onDisk("faulty_fixed.asvp");
    const older = "what was there before";
    await writeFile(join(stage.host.folder, "faulty_fixed.asvp"), older);
    await fix(page);
    const question = page.getByRole("dialog", { name: "Replace faulty_fixed.asvp?" });
    await question.getByText("no copy of it is kept").waitFor();
    await page.keyboard.press("Escape");
    await question.waitFor({ state: "detached" });
    assert.equal(await onDisk("faulty_fixed.asvp"), older);
    await fixDialog(page).getByRole("button", { name: "Fix", exact: true }).click();
    await question.getByRole("button", { name: "Replace" }).click();
    await fixed(page, "faulty.asvp");
    assert.equal(await onDisk("faulty_fixed.asvp"), whole);
  });

  test("a fix that is asked for twice, or left, while the list is read asks and fixes no more than once", async () => {
    const page = await stage.page();
    await openCast(page, "faulty.asvp");
    const question = page.getByRole("dialog", { name: "Replace faulty_fixed.asvp?" });
    const held: Route[] = [];
    await page.route(/api\/casts/, (route) => void held.push(route));
    const goOn = async (count: number) => {
      while (held.length < count) await page.waitForTimeout(10);
      const listed = page.waitForResponse(/api\/casts/);
      for (const route of held.splice(0)) await route.continue();
      await (await listed).finished();
      await aFrame(page);
    };
    await fix(page);
    await page.keyboard.press("Escape");
    await goOn(1);
    assert.equal(await question.count(), 0, "nothing is asked for what was left");
    await page.keyboard.press("x");
    await page.keyboard.press("Enter");
    await page.keyboard.press("Enter");
    await goOn(2);
    await question.waitFor();
    await aFrame(page);
    assert.equal(await question.count(), 1);
    await page.unroute(/api\/casts/);
    await question.getByRole("button", { name: "Replace" }).click();
    await fixed(page, "faulty.asvp");
  });

  test("a level at the surface is added at a press, where there is none", async () => {
    const page = await stage.page();
    await openCast(page, "nowhere.asvp");
    await fix(page);
    // Neither time nor position is made up.
    const question = page.getByRole("dialog", { name: "When and where was this cast taken?" });
    await question.getByLabel("Latitude").fill("59 30 N");
    await question.getByLabel("Longitude").fill("10 15 E");
    await question.getByLabel("Time of the cast, UTC").fill("2026-11-15 12:34:56");
    await question.getByRole("button", { name: "Go on" }).click();
    const dialog = await fixed(page, "nowhere.asvp");
    assert.match(await onDisk("nowhere_fixed.asvp"), /^\( SoundVelocity 1\.0 0 20261115123456 59\.5 10\.25 /);
    await dialog.getByRole("button", { name: "Add a level at 0 m" }).click();
    await dialog.getByText("It is not saved yet.").waitFor();
    assert.ok(await dialog.getByRole("button", { name: "Add a level at 0 m" }).isHidden());
    await page.keyboard.press("Escape");
    const { depths, speeds, joined } = await levels(page);
    assert.deepEqual([depths.slice(0, 2), speeds.slice(0, 2)], [[0, 2], [1504.1, 1504.1]]);
    assert.equal(joined[0], 1);
    assert.equal(await page.locator("#unsaved").textContent(), "Not saved");
    await page.getByRole("button", { name: "Undo surface level" }).click();
    assert.equal((await levels(page)).depths[0], 2);
    assert.equal(await page.locator("#unsaved").textContent(), "");
  });

  test("a whole cast stays as it is, and offers no surface level", async () => {
    const page = await stage.page();
    await openCast(page, "straight.asvp");
    await fix(page, "0.01");
    const dialog = await fixed(page, "straight.asvp");
    for (const line of ["No level was invalid.", "It was deep enough, and not continued.", "Thinned, 3 levels remain."]) {
      await dialog.getByText(line).waitFor();
    }
    await dialog.getByText("their depths agree to 0.01 m.").waitFor();
    assert.ok(await dialog.getByRole("button", { name: "Add a level at 0 m" }).isHidden());
    await page.keyboard.press("Escape");
    // What a fix has made stays as it is when it is fixed once more.
    await openCast(page, "faulty_fixed.asvp");
    await fix(page);
    await fixed(page, "faulty_fixed.asvp");
    const rows = async (name: string) => fileLevels(await onDisk(name));
    assert.deepEqual(await rows("faulty_fixed_fixed.asvp"), await rows("faulty_fixed.asvp"));
  });

  test("failures say what is to be done, and lead there", async () => {
    const page = await stage.page();
    await openCast(page, "few.asvp");
    await fix(page);
    await fixDialog(page).getByText("few.asvp was not fixed. At least 6 levels are needed, each with a depth and a sound speed; this cast has 4 levels.").waitFor();
    await page.keyboard.press("Escape");
    await openCast(page, "hopeless.asvp");
    await fix(page);
    await fixDialog(page).getByText("hopeless.asvp was not fixed. Fewer than 2 of its 8 levels are valid").waitFor();
    await fixDialog(page).getByRole("button", { name: "Check the cast" }).click();
    await page.getByRole("heading", { name: /^Check of/ }).waitFor();
    assert.ok(!(await readdir(stage.host.folder)).some((name) => /^(few|hopeless)_fixed/.test(name)));
    for (const [text, fault] of [["0.009", "The tolerance must lie from 0.01 to 1."], ["1.01", "The tolerance must lie from 0.01 to 1."], ["x", "is no number."]] as const) {
      if (await fixDialog(page).isHidden()) await page.keyboard.press("x");
      await fixDialog(page).getByRole("textbox").fill(text);
      await fixDialog(page).getByRole("textbox").press("Enter");
      await fixDialog(page).getByText(fault).waitFor();
    }
  });

  test("a file that cannot be opened again is no success, and what was typed stays for another try", async () => {
    const page = await stage.page();
    await openCast(page, "rough.vp2");
    await fix(page, "0.1");
    const dialog = fixDialog(page);
    await dialog.getByRole("alert").filter({ hasText: "rough.vp2 was not replaced: the fix was written as" }).waitFor();
    assert.match(
      (await dialog.getByRole("alert").allTextContents()).join(),
      /rough_fixed\.ssp, but that file cannot be opened again\. A datagram is read with at most 1\u202f000 levels.* Take a larger tolerance and fix again/,
    );
    await picture(page, "fix-unreadable");
    assert.equal(await dialog.getByRole("textbox", { name: "Tolerance of thinning" }).inputValue(), "0.1");
    assert.equal(await told(page, "rough.vp2 was fixed").count(), 0);
    assert.equal(await told(page, "rough.vp2 fixed").count(), 0);
    assert.equal(await page.locator("#cast-title").textContent(), "rough.vp2");
    await dialog.getByRole("textbox", { name: "Tolerance of thinning" }).fill("1");
    await dialog.getByRole("button", { name: "Fix", exact: true }).click();
    await page.getByRole("dialog", { name: "Replace rough_fixed.ssp?" }).getByRole("button", { name: "Replace" }).click();
    await fixed(page, "rough.vp2");
    await shown(page, "rough_fixed.ssp");
  });

  test("a page beside it thins on, and is offered what was written", async () => {
    const page = await stage.page();
    const other = await stage.newPage();
    await openCast(other, "straight.asvp");
    await openCast(page, "faulty.asvp");
    await fix(page);
    await page.getByRole("button", { name: "Replace" }).click();
    await fixed(page, "faulty.asvp");
    await told(other, "faulty_fixed.asvp was opened elsewhere.").waitFor();
    assert.equal(await other.locator("#messages [role=alert]").count(), 0);
    assert.equal(await page.locator("#messages").getByText("faulty_fixed.asvp was opened elsewhere").count(), 0);
    await other.close();
  });

  for (const theme of ["dark", "light"]) {
    test(`the result lies inside a small screen, ${theme}`, async () => {
      const page = await stage.page({ width: 1024, height: 600 });
      if (theme === "light") await page.keyboard.press("t");
      await openCast(page, "wavy.asvp");
      await page.keyboard.press("x");
      await fixDialog(page).waitFor();
      await assertInside(page, fixDialog(page));
      await picture(page, `fix-asking-${theme}`);
      await fixDialog(page).getByRole("textbox").fill("1");
      await fixDialog(page).getByRole("button", { name: "Fix", exact: true }).click();
      if (theme === "light") await page.getByRole("button", { name: "Replace" }).click();
      const dialog = await fixed(page, "wavy.asvp");
      for (const part of [dialog, dialog.getByRole("button", { name: "Close" }), dialog.locator(".comparison-table")]) {
        await assertInside(page, part);
      }
      await dialog.getByText(/^The largest difference is \d+\.\d\d m, at /).waitFor();
      await dialog.locator(".comparison-table td").nth(70).hover();
      assert.match((await dialog.locator(".comparison-readout").textContent()) ?? "", /°, .* m: .* as it came in, .* fixed/);
      await picture(page, `fix-result-${theme}`);
      await page.keyboard.press("Escape");
      await dialog.waitFor({ state: "hidden" });
      await picture(page, `fix-header-${theme}`);
    });
  }
});
