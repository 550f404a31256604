/// Files of the user's: picked, dropped, refused.
import assert from "node:assert/strict";
import { readFile, readdir } from "node:fs/promises";
import { join } from "node:path";
import { describe, test } from "node:test";
import type { Locator, Page } from "playwright-core";
import { drag, held, pick, type HeldFile } from "./handing";
import { Stage, openCast, seaLevels, shown } from "./stage";

const told = (page: Page, text: string | RegExp): Locator =>
  page.locator("#messages [role=status]").filter({ hasText: text });
const failed = (page: Page, text: string | RegExp): Locator =>
  page.locator("#messages [role=alert]").filter({ hasText: text });

/// An .asvp file of so many levels.
function asvp(name: string, levels: number): HeldFile {
  const rows = seaLevels(Array.from({ length: levels }, (_, i) => i * 5)).map((level) => level.join(" "));
  const head = `( SoundVelocity 1.0 0 20261115123456 59.5 10.25 0 0 0 source NA ${levels} )`;
  return held(name, [head, ...rows, ""].join("\r\n"));
}

describe("files of the user's", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("there.asvp", seaLevels([0, 10, 20]));
  });
  const onDisk = (name: string) => readFile(join(stage.host.folder, name));
  // The browser notes each answer that is no success.
  const expectRefusal = () => stage.expectTrouble(/Failed to load resource: the server responded with a status of/);

  test("a picked file is stored, opened, listed and told of", async () => {
    const page = await stage.page();
    const file = asvp("picked.asvp", 7);
    await pick(page, file);
    await shown(page, "picked.asvp");
    await told(page, "picked.asvp opened: 7 levels, sound velocity file (.asvp). It is stored in the profile folder.").waitFor();
    await page.locator('[data-name="picked.asvp"][aria-current=true]').waitFor();
    assert.deepEqual(await onDisk("picked.asvp"), file.buffer);
    assert.ok(await page.locator("#upload-progress").isHidden());
    // A list that takes long is told of there too, until it has come.
    assert.match((await page.locator("#doing").textContent()) ?? "none", /^(Reading the list of casts…)?$/);
    assert.equal(await page.locator(".message").count(), 1, "nothing is offered that is open already");
  });

  test("several files are opened one after the other, the last one stays", async () => {
    const page = await stage.page();
    const chooser = page.waitForEvent("filechooser");
    await page.keyboard.press("o");
    await (await chooser).setFiles([asvp("first.asvp", 3), held("second.xyz", "1 1500\n2 1500\n"), asvp("third.asvp", 5)]);
    expectRefusal();
    await told(page, "first.asvp opened: 3 levels").waitFor();
    await failed(page, "second.xyz could not be opened").waitFor();
    await told(page, "third.asvp opened: 5 levels").waitFor();
    await shown(page, "third.asvp");
  });

  test("a file dropped anywhere is opened, with a hint while it is held", async () => {
    const page = await stage.page();
    const hint = page.locator("#drop-hint");
    assert.ok(await drag(page, "dragenter", asvp("dropped.asvp", 4)));
    await hint.waitFor();
    await drag(page, "dragleave", asvp("dropped.asvp", 4));
    assert.ok(await hint.isHidden());
    await drag(page, "dragover", asvp("dropped.asvp", 4));
    assert.ok(await hint.isVisible());
    assert.ok(await drag(page, "drop", asvp("dropped.asvp", 4)), "the browser does not leave for the file");
    await shown(page, "dropped.asvp");
    assert.ok(await hint.isHidden());
  });

  test("names with letters of any script are kept, marks that cannot be are replaced and told", async () => {
    const page = await stage.page();
    await pick(page, asvp("Ærø Ωδ 深度, 100%.asvp", 3));
    await shown(page, "Ærø Ωδ 深度, 100%.asvp");
    await pick(page, asvp('say "hi" [2].asvp', 3));
    await told(page, "It is called say _hi_ _2_.asvp there.").waitFor();
    await shown(page, "say _hi_ _2_.asvp");
    // What is listed can be opened again.
    await openCast(page, "Ærø Ωδ 深度, 100%.asvp");
    await openCast(page, "say _hi_ _2_.asvp");
  });

  test("a file of a name that is there is kept beside the new one", async () => {
    const page = await stage.page();
    const older = await onDisk("there.asvp");
    await pick(page, asvp("there.asvp", 6));
    await told(page, "The older there.asvp is kept beside it, with “_bck_” and the time in its name.").waitFor();
    const backup = (await readdir(stage.host.folder)).find((name) => name.startsWith("there_bck_"));
    assert.ok(backup);
    assert.deepEqual(await onDisk(backup), older);
  });

  test("an empty file is refused, and does not open an older one of its name", async () => {
    const page = await stage.page();
    await pick(page, held("there.asvp", ""));
    await failed(page, "there.asvp is empty (0 bytes). Look whether it was copied whole; nothing was stored.").waitFor();
    assert.equal(await page.locator("#cast-title").textContent(), "No cast open");
  });

  const broken: [HeldFile, RegExp][] = [
    [held("noheader.asvp", "1 1500\n2 1500\n3 1500\n"), /first line is no \.asvp header.*is stored in the profile folder/],
    [held("short.asvp", asvp("", 1).buffer), /Fewer than two levels/],
    [held("words.ssp", "no datagram\n"), /does not begin with a sound speed profile datagram/],
    [held("words.vp2", "no sections\n"), /not laid out as a Valeport \.vp2 file/],
    [held("words.aml", "no sections\n"), /not laid out as an AML file/],
    [held("nosuffix", "1 1500\n2 1500\n"), /has no suffix/],
  ];
  test("what cannot be opened is told with what to do next, and the open cast stays", async () => {
    expectRefusal();
    const page = await stage.page();
    await openCast(page, "shelf-summer.asvp");
    await pick(page, ...broken.map(([file]) => file));
    for (const [{ name }, words] of broken) {
      const message = failed(page, `${name} could not be opened`);
      await message.waitFor();
      assert.match((await message.textContent()) ?? "", words);
    }
    assert.equal(await page.locator("#cast-title").textContent(), "shelf-summer.asvp");
    assert.equal(await failed(page, "noheader.asvp").getByRole("button", { name: "Import filters…", exact: true }).count(), 0);
    assert.equal(await failed(page, "nosuffix").getByRole("button", { name: "Import filters…", exact: true }).count(), 1);
  });

  test("a file over the host's limit is refused with both sizes", async () => {
    expectRefusal();
    stage.expectTrouble(/ERR_CONNECTION_(RESET|ABORTED)|ERR_EMPTY_RESPONSE/);
    const page = await stage.page();
    // Made in the page: such a file takes long on its way from a test to the browser.
    await page.evaluate(() => {
      const data = new DataTransfer();
      data.items.add(new File([new Uint8Array(40_000_000)], "large.vp2"));
      document.body.dispatchEvent(new DragEvent("drop", { dataTransfer: data, bubbles: true, cancelable: true }));
    });
    await failed(page, "large.vp2 is too large: it has 40.0 MB, and the host takes at most 32 MiB at once.").waitFor();
    assert.ok(!(await readdir(stage.host.folder)).includes("large.vp2"));
  });

  test("another page lists what was handed in here, and is offered it", async () => {
    const one = await stage.page();
    const two = await stage.newPage();
    await openCast(two, "deep-cast.ssp");
    await pick(one, asvp("shared.asvp", 3));
    await told(two, "shared.asvp was opened elsewhere.").waitFor();
    await two.locator('[data-name="shared.asvp"]').waitFor();
    assert.equal(await two.locator("#cast-title").textContent(), "deep-cast.ssp");
    await two.close();
  });

  test("a host that is gone is told, and nothing is lost", async () => {
    stage.expectTrouble(/ERR_CONNECTION_REFUSED|WebSocket connection|ERR_CONNECTION_RESET/);
    const page = await stage.page();
    await stage.host.stop();
    await pick(page, asvp("late.asvp", 3));
    await failed(page, "late.asvp (2").or(failed(page, "late.asvp (1")).first().waitFor();
    await page.locator("#connection[data-state=lost]").waitFor();
    await stage.host.startAgain();
    await page.locator("#connection[data-state=open]").waitFor();
    await pick(page, asvp("late.asvp", 3));
    await shown(page, "late.asvp");
  });

  // Samples of the other kinds, with the columns that each has something to say in.
  const kinds: [string, string[], Record<string, string>][] = [
    [
      "deep-cast.ssp",
      ["Depth", "Speed", "Temp.", "Salinity"],
      { filetime: "2026-11-15 12:34:56 UTC", filelat: "45° 12.500′ N", filelon: "012° 30.250′ W", filetype: "01 – depth, sound speed, temperature and salinity" },
    ],
    [
      "fjord-winch.valeport",
      ["Depth", "Speed"],
      { filetime: "2026-06-20 13:20:45 UTC", filelat: "61° 05.700′ N", filevalidto: "2026-06-21 13:20:45 UTC", filetype: "Sound velocity" },
    ],
    [
      "harbour-pressure.aml",
      ["Depth", "Speed", "Temp.", "Salinity", "Pressure"],
      { filetime: "2026-06-19 11:05:30 UTC", filelon: "005° 15.708′ E", filecomment: "AML Example-3 E10002 aml format." },
    ],
    [
      "shelf-slope.vp2",
      ["Depth", "Speed", "Temp.", "Salinity"],
      { filetime: "2026-06-18 07:42:10 UTC", filelat: "60° 24.750′ N", filetype: "01 – depth, sound speed, temperature and salinity" },
    ],
  ];
  test("a cast of each kind is shown with its columns, time, position and comment", async () => {
    const page = await stage.page({ width: 1024, height: 600 });
    for (const [name, columns, header] of kinds) {
      await openCast(page, name);
      const titles = await page.locator(".tabulator-col-title").evaluateAll((all) =>
        all.map((title) => title.firstChild?.textContent ?? ""));
      assert.deepEqual(titles, ["No.", ...columns], name);
      for (const [key, value] of Object.entries(header)) {
        assert.equal(await page.locator(`#header [data-key=hsvp_${key}]`).textContent(), value, `${name} ${key}`);
      }
      assert.equal(await page.locator("[data-quantity=svp_Speed] .level-point").count(), Number((await page.locator("#level-count").textContent())));
    }
  });

  test("a cast of another kind is saved under its own name with the suffix of what is written", async () => {
    const page = await stage.page();
    const save = async (item: string) => {
      await page.getByRole("button", { name: "Save", exact: true }).click();
      await page.getByRole("menuitem", { name: item, exact: true }).click();
    };
    await openCast(page, "shelf-slope.vp2");
    await save("Save");
    await told(page, "shelf-slope.asvp – depth and sound speed only; a datagram file keeps the other columns too.").waitFor();
    await save("Save as datagram file…");
    const dialog = page.getByRole("dialog", { name: "Save as datagram file" });
    assert.equal(await dialog.getByLabel("File name").inputValue(), "shelf-slope.ssp");
    await page.keyboard.press("Enter");
    await told(page, "This file will not open again as it stands: it ends above 11\u202f900 m; extend the cast first.").waitFor();
    // Of a datagram file the engine takes whole profiles only, and tells in an alert what is missing.
    await page.locator('[data-name="shelf-slope.ssp"]').click();
    await failed(page, "shelf-slope.ssp could not be opened. Its profile is not accepted as it stands; the alert").waitFor();
    await failed(page, "12000m").waitFor();
    await openCast(page, "deep-cast.ssp");
    await save("Save as datagram file…");
    await dialog.getByLabel("File name").fill("again");
    await page.keyboard.press("Enter");
    await told(page, "again.ssp").waitFor();
    await openCast(page, "again.ssp");
    assert.equal(await page.locator("#header [data-key=hsvp_filetype]").textContent(), "01 – depth, sound speed, temperature and salinity");
  });
});
