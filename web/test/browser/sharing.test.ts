/// Several pages at once, and a host that goes and comes back. Every page receives every packet.
import assert from "node:assert/strict";
import { describe, test } from "node:test";
import type { Page } from "playwright-core";
import { Stage, check, connected, failed, openCast, openListed, seaLevels, shown } from "./stage";

const title = (page: Page) => page.locator("#cast-title").textContent();

/// Sends a frame to the engine past the page's own connection, as another program would.
function sendPast(page: Page, frame: string): Promise<void> {
  return page.evaluate(
    (text) =>
      new Promise<void>((done, failed) => {
        const socket = new WebSocket(new URL("ws", location.href).href.replace(/^http/, "ws"));
        socket.onopen = () => socket.send(text);
        socket.onmessage = () => {
          socket.close();
          done();
        };
        socket.onerror = () => failed(new Error("no connection"));
      }),
    frame,
  );
}

describe("pages and connection", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("mine.asvp", seaLevels([0, 10, 20]));
    await host.writeCast("theirs.asvp", [...seaLevels([0, 10]), ["20.00", "1800.00"]]);
  });

  test("two pages do not disturb each other's open cast", async () => {
    const one = await stage.page();
    const two = await stage.newPage();
    await openCast(one, "mine.asvp");
    await openCast(two, "theirs.asvp");
    const notice = one.getByRole("status").filter({ hasText: "theirs.asvp was opened elsewhere" });
    await notice.waitFor();
    assert.equal(await title(one), "mine.asvp");
    assert.equal(await one.locator(".tabulator-row").count(), 3);

    await check(two);
    assert.equal(await two.locator(".level-invalid").count(), 1);
    await one.waitForTimeout(300);
    assert.ok(await one.locator("#verdict").isHidden(), "the verdict was the other page's");
    assert.equal(await one.locator(".level-invalid").count(), 0);

    await notice.getByRole("button", { name: "Open it" }).click();
    await shown(one, "theirs.asvp");
    await notice.waitFor({ state: "detached" });
    await two.close();
  });

  test("a file that could not be opened elsewhere is told, and nothing else happens", async () => {
    const one = await stage.page();
    const two = await stage.newPage();
    await openCast(one, "mine.asvp");
    await stage.host.writeCast("gone.asvp", seaLevels([0, 10]));
    await two.getByRole("button", { name: "Refresh" }).click();
    await two.locator('[data-name="gone.asvp"]').waitFor();
    await stage.host.removeCast("gone.asvp");
    await two.locator('[data-name="gone.asvp"]').click();
    await two.getByRole("alert").filter({ hasText: "gone.asvp could not be opened" }).waitFor();
    await failed(one, "A file that another page or program asked for could not be opened. File does not exist").waitFor();
    assert.equal(await one.getByRole("alert").count(), 1);
    assert.equal(await title(one), "mine.asvp");
    await two.waitForTimeout(300);
    assert.equal(await two.getByRole("alert").count(), 1, "there it is the page's own");
    await two.close();
  });

  test("an alert from the engine is shown on every page until dismissed", async () => {
    const one = await stage.page();
    const two = await stage.newPage();
    const data = "page,ACTION=SVP_WebInterface/SVPAlert,[Probe battery low]";
    await sendPast(two, JSON.stringify({ name: "SVP_WebInterface", data }));
    for (const page of [one, two]) {
      const alert = page.getByRole("alert").filter({ hasText: "Probe battery low" });
      await alert.waitFor();
      await alert.getByRole("button", { name: /^Dismiss/ }).click();
      await alert.waitFor({ state: "detached" });
    }
    await two.close();
  });

  test("a lost connection is told and comes back by itself", async () => {
    const page = await stage.page();
    // A list that is cut off would be told of as well.
    await openListed(page, "mine.asvp");
    stage.expectTrouble(/WebSocket connection to .* failed|ERR_CONNECTION/);
    await stage.host.stop();
    await page.locator("#connection[data-state=lost]").waitFor();
    await page.getByRole("alert").filter({ hasText: "The connection to the host was lost" }).waitFor();
    assert.equal(await page.getByText("Connection lost, trying again").count(), 1);
    assert.equal(await title(page), "mine.asvp", "the open cast stays");

    // Asked for while there is nobody to answer: done as soon as there is.
    await page.locator('[data-name="theirs.asvp"]').click();
    await page.getByText("Opening theirs.asvp").waitFor();
    await page.waitForTimeout(1500);
    await stage.host.startAgain();
    await connected(page);
    await shown(page, "theirs.asvp");
    const told = page.getByRole("status").filter({ hasText: "is back" });
    await told.waitFor();
    assert.equal(await page.getByRole("alert").count(), 0, "one message tells of loss and return");
    await told.getByRole("button", { name: /^Dismiss/ }).click();
    await check(page);
  });
});
