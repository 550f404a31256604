/// Another cast under the open one.
import assert from "node:assert/strict";
import { writeFile } from "node:fs/promises";
import { join } from "node:path";
import { describe, test } from "node:test";
import type { Page } from "playwright-core";
import { extendByDefault, probeCast } from "./reshape-parts";
import { Stage, failed, openCast, seaLevels, shown } from "./stage";

const dialog = (page: Page) => page.getByRole("dialog", { name: "Compare with…" });
const legend = (page: Page) => page.getByRole("group", { name: "Lines of the plot" });
const under = (page: Page) => page.locator(".trace-under path");

async function compareWith(page: Page, name: string): Promise<void> {
  await page.getByRole("button", { name: "Compare with…" }).click();
  await dialog(page).getByRole("listbox").selectOption({ label: name });
  await dialog(page).getByRole("button", { name: "Compare", exact: true }).click();
  await dialog(page).waitFor({ state: "hidden" });
}

describe("comparing", () => {
  const stage = new Stage(async (host) => {
    await writeFile(join(host.folder, "probe.vp2"), probeCast(30, 5));
    await writeFile(join(host.folder, "yesterday.vp2"), probeCast(25, 7, 1));
    await host.writeCast("speeds.asvp", seaLevels([0, 10, 20, 50, 100]));
    await host.writeCast("last-week.asvp", seaLevels([0, 5, 90]));
  });

  test("a cast of the list is drawn under the open one, which stays as it is", async () => {
    const page = await stage.page();
    await openCast(page, "probe.vp2");
    await page.locator('.tabulator-row[data-level="3"]').click();
    await compareWith(page, "yesterday.vp2");
    await legend(page).getByText("yesterday.vp2").waitFor();
    assert.equal(await under(page).count(), 3, "in each panel");
    assert.equal(await page.locator("#cast-title").textContent(), "probe.vp2");
    assert.equal(await page.locator(".tabulator-row.selected").getAttribute("data-level"), "3");
    assert.equal(await page.locator("#messages").isHidden(), true, "nobody opened it");
    // Pointed at, a level tells what the other has at its depth: 10 m between its levels at 8 and 15 m.
    const at = await page.locator("[data-quantity=svp_Speed] .level-point").nth(2).boundingBox();
    assert.ok(at);
    await page.mouse.move(at.x + at.width / 2, at.y + at.height / 2);
    await page.locator("#plot .tip-under", { hasText: "yesterday.vp2" }).waitFor();
    const lines = await page.locator("#plot .tip-under ~ .tip-line b").allTextContents();
    assert.match(lines[0] ?? "", /^\d{4}\.\d\d m\/s \(\+\d\.\d\d\)$/);
    assert.equal(lines.length, 3);
    await page.mouse.move(0, 0);
    // It lies under the line of the open cast: it comes first in the drawing.
    const order = await page.locator("[data-quantity=svp_Speed] :is(.trace, .trace-under)").evaluateAll((all) =>
      all.map((each) => each.getAttribute("class")));
    assert.deepEqual(order, ["trace-under", "trace"]);
    assert.match((await page.locator("#plot-summary").textContent()) ?? "", /Compared with yesterday\.vp2\./);
    await page.getByRole("button", { name: "Remove yesterday.vp2 from the plot" }).click();
    assert.equal(await under(page).count(), 0);
    assert.ok(await legend(page).isHidden());
  });

  test("casts of this session come first and are not read again; keys are enough", async () => {
    const page = await stage.page();
    await openCast(page, "last-week.asvp");
    await openCast(page, "speeds.asvp");
    await stage.host.removeCast("last-week.asvp");
    await page.keyboard.press("k");
    const groups = await dialog(page).locator("optgroup").evaluateAll((all) =>
      all.map((group) => [group.getAttribute("label"), group.firstElementChild?.textContent]));
    assert.deepEqual(groups[0], ["Opened in this session", "last-week.asvp"]);
    assert.equal(groups[1]?.[0], "In the profile folder");
    await page.keyboard.press("Enter");
    await dialog(page).waitFor({ state: "hidden" });
    await under(page).first().waitFor({ state: "attached" });
    // The next cast has it under itself too; where it is that cast itself, it goes.
    await openCast(page, "probe.vp2");
    assert.equal(await under(page).count(), 1, "it has sound speeds alone");
    await legend(page).getByText("last-week.asvp").waitFor();
    await page.keyboard.press("k");
    await page.keyboard.press("Escape");
    assert.equal(await under(page).count(), 1);
    await stage.host.writeCast("last-week.asvp", seaLevels([0, 5, 90]));
  });

  test("a changed cast is compared with what was opened", async () => {
    const page = await stage.page();
    await openCast(page, "speeds.asvp");
    await extendByDefault(page);
    await compareWith(page, "speeds.asvp, as it was opened");
    await legend(page).getByText("speeds.asvp").waitFor();
    assert.equal(await legend(page).innerText().then((text) => text.split("\n")[0]), "Measured");
    assert.equal(await under(page).count(), 1);
    await page.getByRole("button", { name: "Undo extend" }).click();
    assert.equal(await under(page).count(), 0, "a cast is not compared with itself");
  });

  test("a cast that cannot be read is told of in the dialog, and the plot stays", async () => {
    const page = await stage.page();
    await openCast(page, "speeds.asvp");
    await stage.host.writeCast("gone.asvp", seaLevels([0, 10]));
    await page.getByRole("button", { name: "Refresh" }).click();
    await page.locator('[data-name="gone.asvp"]').waitFor();
    await stage.host.removeCast("gone.asvp");
    await page.keyboard.press("k");
    await dialog(page).getByRole("listbox").selectOption({ label: "gone.asvp" });
    await dialog(page).getByRole("button", { name: "Compare", exact: true }).click();
    await dialog(page).getByRole("status").filter({ hasText: "gone.asvp could not be read. File does not exist" }).waitFor();
    assert.equal(await failed(page, "gone.asvp").count(), 0, "told once");
    await dialog(page).getByRole("listbox").selectOption({ label: "probe.vp2" });
    await page.keyboard.press("Enter");
    await dialog(page).waitFor({ state: "hidden" });
    await legend(page).getByText("probe.vp2").waitFor();
    await shown(page, "speeds.asvp");
    await page.getByRole("button", { name: "Refresh" }).click();
  });
});
