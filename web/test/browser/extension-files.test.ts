/// Casts continued with a file of the user's.
import assert from "node:assert/strict";
import { mkdir, readFile, readdir, rm, writeFile } from "node:fs/promises";
import { join } from "node:path";
import { describe, test } from "node:test";
import type { Page } from "playwright-core";
import { drag, held, pick, type HeldFile } from "./handing";
import { casts, extendDialog, levels, openExtend } from "./reshape-parts";
import { Stage, connected, failed, openCast, picture, seaLevels, shown, told } from "./stage";

const FILE = "// deep sea\r\n30 1499.5\r\n500 1498.25\r\n3000 1510\r\n12000 1600\r\n";
const REFUSED = /Failed to load resource: the server responded with a status of 500/;
const OWN = "A file of one’s own";

/// Picks a file in the extend dialog.
async function choose(page: Page, file: HeldFile): Promise<void> {
  const chooser = page.waitForEvent("filechooser");
  await extendDialog(page).getByRole("button", { name: "Choose a file…" }).click();
  await (await chooser).setFiles([file]);
  await extendDialog(page).locator(".file-name").filter({ hasText: file.name }).waitFor();
}

const confirm = (page: Page) => extendDialog(page).getByRole("button", { name: "Extend", exact: true }).click();

describe("extension files", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("bay.asvp", seaLevels([0, 10, 40]));
    await host.writeCast("whole.asvp", seaLevels([0, 10, 12000]));
  });

  test("a picked file continues the cast, and neither it nor its copies are casts", async () => {
    stage.expectTrouble(REFUSED);
    const page = await stage.page();
    const other = await stage.newPage();
    await openCast(page, "bay.asvp");
    await told(other, "bay.asvp was opened elsewhere and is shown here.").waitFor();
    const listed = await casts(page);
    for (const time of [1, 2]) {
      const dialog = await openExtend(page, OWN);
      await confirm(page);
      await dialog.getByText("Choose a file that can be used.").waitFor();
      await choose(page, held("my deep sea.txt", FILE));
      await dialog.getByText("my deep sea.txt, 60 B: 4 rows, 30.00 to 12000.00 m").waitFor();
      assert.equal(await dialog.locator(".file-remark").count(), 0);
      await confirm(page);
      await dialog.waitFor({ state: "hidden" });
      await told(page, "bay.asvp extended with my deep sea.txt: 3 levels joined, from 500.00 m to 12000.00 m. No surface level").waitFor();
      const { depths, speeds, joined } = await levels(page);
      assert.deepEqual(depths, [0, 10, 40, 500, 3000, 12000]);
      assert.deepEqual(speeds.slice(3), [1498.25, 1510, 1600]);
      assert.deepEqual(joined, [4, 5, 6]);
      if (time === 1) await page.keyboard.press("u");
    }
    // The file was handed in as it is, twice.
    const own = (await readdir(stage.host.folder)).filter((name) => name.startsWith("extentionfile")).sort();
    assert.match(own.join(" "), /^extentionfile\.asvp extentionfile_bck_\d{8}_\d{6}\.asvp$/);
    for (const name of own) assert.equal(await readFile(join(stage.host.folder, name), "latin1"), FILE);
    for (const each of [page, other]) {
      await each.getByRole("button", { name: "Refresh" }).click();
      await each.locator("#cast-summary").filter({ hasText: `${listed.length} casts` }).waitFor();
      assert.deepEqual(await casts(each), listed);
    }
    assert.equal(await page.locator("#messages [role=alert]").count(), 0);
    assert.deepEqual(await other.locator(".message-text").allTextContents(), ["bay.asvp was opened elsewhere and is shown here."]);
    assert.deepEqual((await levels(other)).depths, [0, 10, 40], "as it was opened");
    await other.close();
  });

  test("a file whose first line is a cast's header does not become the cast on any page", async () => {
    const page = await stage.page();
    const other = await stage.newPage();
    await openCast(page, "bay.asvp");
    await openCast(other, "whole.asvp");
    await page.locator(".message").first().waitFor();
    await openExtend(page, OWN);
    await choose(page, held("cast.asvp", `( SoundVelocity 1.0 0 20261115123456 1 2 0 0 0 a NA 2 )\r\n500 1498\r\n12000 1600\r\n`));
    await confirm(page);
    await told(page, "2 levels joined").waitFor();
    await other.getByRole("button", { name: "Refresh" }).click();
    assert.equal(await other.locator("#cast-title").textContent(), "whole.asvp");
    assert.equal(await page.locator("#cast-title").textContent(), "bay.asvp");
    for (const each of [page, other]) assert.equal(await each.locator(".message").filter({ hasText: "extentionfile" }).count(), 0);
    await other.close();
  });

  test("a dropped file is looked at; what stands against it is said before it is handed in", async () => {
    const page = await stage.page();
    await rm(join(stage.host.folder, "extentionfile.asvp"), { force: true });
    await openCast(page, "bay.asvp");
    await page.keyboard.press("e");
    const dialog = extendDialog(page);
    await dialog.waitFor();
    assert.ok(await drag(page, "drop", held("one.txt", "comment\n500 1498\n")));
    await dialog.getByText("Behind its first line it has one row of a depth and a sound speed; at least 2 are needed.").waitFor();
    assert.ok(await dialog.getByRole("radio", { name: OWN }).isChecked());
    await confirm(page);
    await dialog.getByText("Choose a file that can be used.").waitFor();
    await drag(page, "drop", held("up.txt", "comment\n500 1498\n12000 1600\n400 1490\n"));
    await dialog.getByText("A row lies no deeper than the first one, at 500.00 m. Sort the rows by depth.").waitFor();
    await drag(page, "drop", held("empty.txt", ""));
    await dialog.getByText("it has no row of a depth").waitFor();
    assert.ok(!(await readdir(stage.host.folder)).includes("extentionfile.asvp"), "nothing was handed in");
    assert.equal(await page.locator("#cast-title").textContent(), "bay.asvp", "and nothing opened");
  });

  test("a file that ends early or steps back may be used after a warning", async () => {
    stage.expectTrouble(REFUSED);
    const page = await stage.page({ width: 1024, height: 600 });
    await openCast(page, "bay.asvp");
    const dialog = await openExtend(page, OWN);
    await drag(page, "drop", held("back.txt", "comment\n500 1498\n3000 1510\n2000 1505\n11990 1600\n"));
    await dialog.getByText("Its depths step back, from 3000.00 m to 2000.00 m").waitFor();
    await dialog.getByText("It does not go below 11990 m, its deepest row lies at 11990.00 m: the profile will not reach full ocean depth.").waitFor();
    await picture(page, "extend-file");
    await confirm(page);
    await told(page, "4 levels joined, from 500.00 m to 11990.00 m.").waitFor();
    assert.deepEqual((await levels(page)).depths.slice(3), [500, 3000, 2000, 11990]);
    await page.keyboard.press("u");

    await openCast(page, "whole.asvp");
    await openExtend(page, OWN);
    await drag(page, "drop", held("deep.txt", FILE));
    await dialog.getByText("None of its rows lies below the cast’s deepest level, 12000.00 m: nothing will be joined.").waitFor();
    await confirm(page);
    await told(page, "whole.asvp: no level was joined").waitFor();
    assert.ok(await page.locator("#edits").isHidden());
  });

  test("a file that cannot be stored is told, and the dialog stays", async () => {
    stage.expectTrouble(REFUSED);
    const page = await stage.page();
    const path = join(stage.host.folder, "extentionfile.asvp");
    await rm(path, { force: true });
    await mkdir(path);
    await writeFile(join(path, "in the way"), "");
    try {
      await openCast(page, "bay.asvp");
      const dialog = await openExtend(page, OWN);
      await choose(page, held("deep.txt", FILE));
      await confirm(page);
      await dialog.getByText("bay.asvp was not extended. The file could not be stored. Look whether the profile folder may be written to").waitFor();
      await page.keyboard.press("Escape");
      assert.deepEqual((await levels(page)).depths, [0, 10, 40]);
    } finally {
      await rm(path, { recursive: true });
    }
  });

  test("an opening that failed for another page's file is not told, since it succeeds", async () => {
    const page = await stage.page();
    // The refusal of an extension file that another page hands in comes before this page's answer.
    await page.routeWebSocket(/\/ws$/, (socket) => {
      const host = socket.connectToServer();
      host.onMessage((frame) => {
        if (String(frame).includes('"SVP_OpenSVP"')) {
          const packet = { whoami: "SVP_OpenSVP", result: "FAILURE", reason: "Header not correct in file." };
          socket.send(JSON.stringify({ target: "SVP_WebInterface", packet }));
        }
        socket.send(frame);
      });
    });
    await page.reload();
    await connected(page);
    await page.locator('[data-name="bay.asvp"]').click();
    await shown(page, "bay.asvp");
    assert.equal(await page.locator(".message").count(), 0);
    await page.unrouteAll();
  });

  test("a file is not handed in or saved under the page's own names", async () => {
    const page = await stage.page();
    await pick(page, held("extentionfile.asvp", FILE));
    await failed(page, "extentionfile.asvp was not handed in: the page uses this name itself. Give the file another one, or choose it in Extend…").waitFor();
    await openCast(page, "bay.asvp");
    await page.keyboard.press("w");
    await page.getByRole("menuitem", { name: "Save as…" }).click();
    const dialog = page.getByRole("dialog", { name: "Save as" });
    await dialog.getByLabel("File name").fill("extentionfile");
    await page.keyboard.press("Enter");
    await dialog.getByText("The page uses this name itself.").waitFor();
  });
});
