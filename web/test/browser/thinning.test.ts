/// Casts that could shed the levels they do not need: what a preview tells.
import assert from "node:assert/strict";
import { readFile, readdir, rm } from "node:fs/promises";
import { join } from "node:path";
import { describe, test } from "node:test";
import { STRAIGHT, casts, extendDialog, facts, fileLevels, levels, openThin, press, preview, thinDialog } from "./reshape-parts";
import { Stage, assertInside, openCast, picture, seaLevels, told } from "./stage";

const CURVE = seaLevels([...Array.from({ length: 301 }, (_, i) => i * 2), 800, 1000, 2000, 4000, 8000, 12000]);

/// The largest distance in speed of `levels` from the lines through `corners`, by going along both.
function largest(all: readonly [number, number][], corners: readonly [number, number][]): number {
  let most = 0;
  for (const [depth, speed] of all) {
    const below = corners.findIndex(([each]) => each >= depth);
    const [d2 = 0, c2 = 0] = corners[below] ?? [];
    const [d1 = d2, c1 = c2] = corners[below - 1] ?? [];
    const line = d2 === d1 ? c2 : c1 + ((c2 - c1) * (depth - d1)) / (d2 - d1);
    most = Math.max(most, Math.abs(speed - line));
  }
  return most;
}

describe("thinning", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("curve.asvp", CURVE);
    await host.writeCast("straight.asvp", STRAIGHT);
    await host.writeCast("bay.asvp", seaLevels([5, 10, 40]));
    await host.writeCast("back.asvp", seaLevels([0, 50, 40, 60, 70, 12000]));
    await host.writeCast("nowhere.asvp", STRAIGHT, "( SoundVelocity 1.0 0 0 0 0 0 0 0 NA NA 121 )");
  });
  const onDisk = (name: string) => readFile(join(stage.host.folder, name), "latin1");

  test("a preview tells what remains, and nothing of it is seen outside of the dialog", async () => {
    const page = await stage.page();
    const other = await stage.newPage();
    await openCast(page, "curve.asvp");
    await told(other, "curve.asvp was opened elsewhere and is shown here.").waitFor();
    const before = await casts(page);
    await preview(page, "0.2");
    const kept = fileLevels(await onDisk("svp-preview_thinned.asvp"));
    assert.ok(kept.length > 5 && kept.length < 150, `${kept.length}`);
    await facts(page, `${kept.length} of 307 levels remain.`).waitFor();
    const difference = (await facts(page, "Largest difference").textContent()) ?? "";
    const found = Number(/^Largest difference (\d+\.\d{3}) m\/s, at \d+\.00 m\.$/.exec(difference)?.[1]);
    const expected = largest(CURVE.map(([depth, speed]) => [Number(depth), Number(speed)]), kept);
    assert.ok(Math.abs(found - expected) < 0.001, `${found} for ${expected}`);
    assert.equal(await thinDialog(page).locator(".over-levels path").count(), kept.length);
    assert.equal(await thinDialog(page).locator(".trace-over path").count(), 1);
    assert.equal(await thinDialog(page).locator(".legend").innerText(), "As it is\nThinned");

    // Another tolerance takes it back.
    await thinDialog(page).getByRole("slider", { name: "Tolerance" }).fill("1");
    assert.equal(await thinDialog(page).getByRole("textbox", { name: "Tolerance" }).inputValue(), "1");
    assert.equal(await thinDialog(page).locator(".trace-over path").count(), 0);
    assert.ok(await thinDialog(page).getByRole("button", { name: "Keep" }).isDisabled());
    await press(page, "Preview");
    await facts(page, "of 307 levels remain.").waitFor();
    assert.ok(fileLevels(await onDisk("svp-preview_thinned.asvp")).length < kept.length);
    await press(page, "Discard");

    assert.equal((await levels(page)).depths.length > 0, true);
    assert.equal(await page.locator("#level-count").textContent(), "307");
    assert.ok(await page.locator("#edits").isHidden());
    for (const each of [page, other]) {
      await each.getByRole("button", { name: "Refresh" }).click();
      await each.locator("#cast-summary").filter({ hasText: `${before.length} casts` }).waitFor();
      assert.deepEqual(await casts(each), before);
    }
    assert.equal(await page.locator(".message").count(), 0);
    assert.deepEqual(await other.locator(".message-text").allTextContents(), ["curve.asvp was opened elsewhere and is shown here."]);
    assert.ok(!(await readdir(stage.host.folder)).includes("curve_thinned.asvp"));
    await other.close();
  });

  test("a cast that is not whole leads to Extend before anything is sent", async () => {
    const page = await stage.page();
    await openCast(page, "bay.asvp");
    await rm(join(stage.host.folder, "svp-preview_thinned.asvp"), { force: true });
    await page.keyboard.press("h");
    await thinDialog(page).getByText("A cast must be extended first, to go from exactly 0 m to exactly 12000 m: bay.asvp goes from 5.00 m to 40.00 m.").waitFor();
    assert.ok(await thinDialog(page).getByRole("button", { name: "Preview" }).isDisabled());
    await thinDialog(page).getByRole("textbox", { name: "Tolerance" }).fill("0.5");
    await page.keyboard.press("Enter");
    assert.ok(await thinDialog(page).getByRole("button", { name: "Preview" }).isDisabled(), "typing changes nothing about that");
    assert.ok(!(await readdir(stage.host.folder)).includes("svp-preview_thinned.asvp"));
    await press(page, "Extend…");
    assert.ok(await thinDialog(page).isHidden());
    await extendDialog(page).getByRole("button", { name: "Extend", exact: true }).click();
    await told(page, "8 levels joined").waitFor();
    await preview(page, "0.5");
    await facts(page, /of 12 levels remain\./).waitFor();
  });

  test("a tolerance out of range is told at its field", async () => {
    const page = await stage.page();
    await openCast(page, "straight.asvp");
    for (const [text, fault] of [
      ["0.009", "The tolerance must lie from 0.01 to 1."], ["1.01", "The tolerance must lie from 0.01 to 1."],
      ["x", "The tolerance is no number."], ["", "State the tolerance, 0.01 to 1."],
    ] as const) {
      if (await thinDialog(page).isHidden()) await openThin(page, text);
      else await thinDialog(page).getByRole("textbox", { name: "Tolerance" }).fill(text);
      await press(page, "Preview");
      await thinDialog(page).getByText(fault).waitFor();
    }
    const field = thinDialog(page).getByRole("textbox", { name: "Tolerance" });
    assert.equal(await field.getAttribute("aria-invalid"), "true");
    for (const text of ["0,01", "1.0"]) {
      await field.fill(text);
      await field.press("Enter");
      await facts(page, "3 of 121 levels remain.").waitFor();
    }
  });

  test("depths out of order are refused with the way to the check", async () => {
    const page = await stage.page();
    await openCast(page, "back.asvp");
    await openThin(page, "0.1");
    await press(page, "Preview");
    await thinDialog(page).getByText("back.asvp was not thinned. Its depths are not sorted. Check the cast and mend what is marked; then thin it again.").waitFor();
    await press(page, "Check the cast");
    await page.getByRole("heading", { name: /^Check of/ }).waitFor();
  });

  for (const theme of ["dark", "light"]) {
    test(`the dialog lies inside a small screen, and asks for what a cast does not state, ${theme}`, async () => {
      const page = await stage.page({ width: 1024, height: 600 });
      if (theme === "light") await page.keyboard.press("t");
      await openCast(page, "curve.asvp");
      await preview(page, "0.5");
      for (const part of [thinDialog(page), thinDialog(page).getByRole("button", { name: "Keep" }), thinDialog(page).locator(".thin-plot")]) {
        await assertInside(page, part);
      }
      const plot = await thinDialog(page).locator(".thin-plot").boundingBox();
      assert.ok(plot && plot.height > 300 && plot.width > 400);
      await picture(page, `thin-${theme}`);
      await thinDialog(page).locator(".thin-plot").focus();
      for (let i = 0; i < 6; ++i) await page.keyboard.press("+");
      await page.keyboard.press("ArrowDown");
      assert.equal(await thinDialog(page).locator(".selected-ring").getAttribute("visibility"), "visible");
      await picture(page, `thin-zoomed-${theme}`);
      await page.keyboard.press("Escape");
      assert.ok(await thinDialog(page).isVisible(), "the first Escape leaves the level");
      await page.keyboard.press("Escape");
      await thinDialog(page).waitFor({ state: "hidden" });

      await openCast(page, "nowhere.asvp");
      await preview(page, "1");
      await press(page, "Keep");
      const question = page.getByRole("dialog", { name: "When and where was this cast taken?" });
      await question.waitFor();
      await page.keyboard.press("Escape");
      await question.waitFor({ state: "detached" });
      assert.ok(await thinDialog(page).isVisible());
      assert.ok(!(await readdir(stage.host.folder)).includes("nowhere_thinned.asvp"));
    });
  }
});
