/// Thinned casts that are written and kept on the page.
import assert from "node:assert/strict";
import { mkdir, readFile, rm, writeFile } from "node:fs/promises";
import { join } from "node:path";
import { describe, test } from "node:test";
import { held, pick } from "./handing";
import type { FileLevel } from "./host";
import { PROBE, STRAIGHT, extendByDefault, facts, fileLevels, levels, press, preview, thinDialog, undo } from "./reshape-parts";
import { Stage, failed, openCast, shown, told } from "./stage";

/// No three levels of it lie on a line.
const ZIGZAG: FileLevel[] = Array.from({ length: 1201 }, (_, i) => [String(i * 10), i % 2 === 0 ? "1500.00" : "1505.00"]);

describe("keeping a thinned cast", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("straight.asvp", STRAIGHT);
    await host.writeCast("zigzag.asvp", ZIGZAG);
  });
  const onDisk = (name: string) => readFile(join(stage.host.folder, name), "latin1");

  test("a straight line keeps three levels; they become the cast on the page, and are taken back", async () => {
    const page = await stage.page();
    await openCast(page, "straight.asvp");
    const before = await levels(page);
    await preview(page, "0.01");
    await facts(page, "3 of 121 levels remain.").waitFor();
    await facts(page, "No level is off the thinned line by 0.001 m/s or more.").waitFor();
    await facts(page, "Keep writes straight_thinned.asvp.").waitFor();
    await press(page, "Keep");
    const path = join(stage.host.folder, "straight_thinned.asvp");
    await told(page, `straight.asvp thinned from 121 levels to 3 levels, written as ${path}.`).waitFor();
    assert.ok(await thinDialog(page).isHidden());
    assert.equal(await page.locator("#cast-title").textContent(), "straight_thinned.asvp");
    assert.deepEqual(await levels(page), { depths: [0, 100, 12000], speeds: [1500, 1501, 1620], joined: [] });
    assert.equal(await page.locator("#header [data-key=hsvp_filesamp]").textContent(), "3");
    await page.locator('[data-name="straight_thinned.asvp"][aria-current=true]').waitFor();
    assert.equal(await page.locator("#unsaved").textContent(), "", "a file holds it");
    assert.deepEqual((await onDisk("straight_thinned.asvp")).trimEnd().split("\r\n"), [
      "( SoundVelocity 1.0 0 20261115123456 59.5 10.25 0 0 0 source NA 3 )", "0.00 1500.00", "100.00 1501.00", "12000.00 1620.00",
    ]);
    await page.getByRole("button", { name: "Undo thin" }).click();
    assert.deepEqual(await levels(page), before);
    assert.equal(await page.locator("#cast-title").textContent(), "straight.asvp");
    assert.ok(await undo(page).isHidden());

    // The file that is there now is replaced only when the user agrees.
    await preview(page, "1");
    await press(page, "Keep");
    const question = page.getByRole("dialog", { name: "Replace straight_thinned.asvp?" });
    await question.getByText("no copy of it is kept").waitFor();
    await question.getByRole("button", { name: "Cancel" }).click();
    await question.waitFor({ state: "detached" });
    assert.ok(await thinDialog(page).isVisible());
    await page.keyboard.press("Escape");
    await thinDialog(page).waitFor({ state: "hidden" });
  });

  test("a probe's cast is thinned with all its columns, as a datagram file", async () => {
    const page = await stage.page();
    await pick(page, held("probe.vp2", PROBE));
    await shown(page, "probe.vp2");
    await extendByDefault(page);
    await told(page, "8 levels joined").waitFor();
    await preview(page, "0.02");
    const [remaining = ""] = /^\d+/.exec((await facts(page, "remain.").textContent()) ?? "") ?? [];
    await facts(page, "Keep writes probe_thinned.ssp.").waitFor();
    await press(page, "Keep");
    const message = told(page, `written as ${join(stage.host.folder, "probe_thinned.ssp")}.`);
    await message.waitFor();
    assert.doesNotMatch((await message.textContent()) ?? "", /depth and sound speed only/);
    assert.equal(await page.locator("#level-count").textContent(), remaining);
    assert.match(await onDisk("probe_thinned.ssp"), new RegExp(`^\\$QZS01,00000,${remaining},074210,18,06,2026,`));
    const warmth = await page.locator(".tabulator-row [tabulator-field=svp_Temp]").allTextContents();
    assert.equal(warmth[0], "–");
    assert.equal(warmth[1], "13.20");
    // One step back is the extended cast, one more the measured one.
    await page.keyboard.press("u");
    assert.equal(await page.locator("#level-count").textContent(), "13");
    assert.equal(await page.locator("#unsaved").textContent(), "Not saved");
    await page.keyboard.press("u");
    assert.equal(await page.locator("#level-count").textContent(), "4");
    assert.equal(await page.locator("#unsaved").textContent(), "");
  });

  test("more than a thousand levels, and a file that cannot be written, are told", async () => {
    const page = await stage.page();
    await openCast(page, "zigzag.asvp");
    const limit = "The survey system takes at most 1\u202f000 levels; this profile has 1\u202f201.";
    await preview(page, "0.01");
    await facts(page, limit).waitFor();
    await mkdir(join(stage.host.folder, "zigzag_thinned.asvp"));
    await writeFile(join(stage.host.folder, "zigzag_thinned.asvp", "in the way"), "");
    await press(page, "Keep");
    await thinDialog(page).getByText("zigzag.asvp was not thinned. The file could not be written. Look whether the profile folder").waitFor();
    await rm(join(stage.host.folder, "zigzag_thinned.asvp"), { recursive: true });
    await press(page, "Keep");
    await told(page, limit).waitFor();
    assert.equal(fileLevels(await onDisk("zigzag_thinned.asvp")).length, 1201);
    assert.equal(await failed(page, "").count(), 0);
  });
});
