/// Files that another process of the survey system has opened, by a datagram to the engine.
import assert from "node:assert/strict";
import { createSocket } from "node:dgram";
import { describe, test } from "node:test";
import type { Page } from "playwright-core";
import { edit, unsaved } from "./editing-parts";
import { Host } from "./host";
import { levels } from "./reshape-parts";
import { Stage, failed, openCast, seaLevels, shown, told } from "./stage";

const PORT = 15060;

/// Asks the engine for a file as the survey system does.
function requestFile(name: string): Promise<void> {
  const socket = createSocket("udp4");
  return new Promise((done, refused) => {
    socket.send(`$TXQRV,350,C:\\profiles,${name}\r\n`, PORT, "127.0.0.1", (error) => {
      socket.close();
      if (error) refused(error);
      else done();
    });
  });
}

const title = (page: Page) => page.locator("#cast-title").textContent();

describe("files opened by a datagram", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("mine.asvp", seaLevels([0, 10, 20]));
    await host.writeCast("theirs.asvp", seaLevels([0, 100, 300, 500]));
  }, { start: () => Host.startHearing() });

  test("on a page without a cast the file appears at once, with a notice", async () => {
    const page = await stage.page();
    await requestFile("theirs");
    await shown(page, "theirs.asvp");
    await told(page, "theirs.asvp was opened elsewhere and is shown here.").waitFor();
    assert.deepEqual((await levels(page)).depths, [0, 100, 300, 500]);
    assert.ok(!(await unsaved(page)));
  });

  test("beside another cast it is offered", async () => {
    const page = await stage.page();
    await openCast(page, "mine.asvp");
    await requestFile("theirs.asvp");
    const offer = told(page, "theirs.asvp was opened elsewhere.");
    await offer.waitFor();
    assert.equal(await title(page), "mine.asvp");
    await offer.getByRole("button", { name: "Open it" }).click();
    await shown(page, "theirs.asvp");
    await offer.waitFor({ state: "detached" });
  });

  test("it never takes the place of unsaved edits, nor does a new reading of the edited file", async () => {
    const page = await stage.page();
    await openCast(page, "mine.asvp");
    await edit(page, "Reverse");
    await requestFile("theirs");
    const offer = told(page, "theirs.asvp was opened elsewhere.");
    await offer.waitFor();
    await requestFile("mine");
    await page.waitForTimeout(300);
    assert.equal(await title(page), "mine.asvp");
    assert.deepEqual((await levels(page)).depths, [20, 10, 0]);
    assert.ok(await unsaved(page));
    assert.equal(await told(page, "mine.asvp was opened").count(), 0, "it is what was opened here");
    await offer.getByRole("button", { name: "Open it" }).click();
    const question = page.getByRole("dialog", { name: "Leave without saving?" });
    await question.getByRole("button", { name: "Cancel" }).click();
    assert.ok(await offer.isVisible());
    assert.ok(await unsaved(page));
    await offer.getByRole("button", { name: "Open it" }).click();
    await question.getByRole("button", { name: "Leave" }).click();
    await shown(page, "theirs.asvp");
  });

  test("a file that is not there is told of, with what to do next", async () => {
    const page = await stage.page();
    await requestFile("missing");
    const failure = failed(page, "A file that another page or program asked for could not be opened. File does not exist");
    await failure.waitFor();
    assert.match((await failure.textContent()) ?? "", /Look there which file it was, and whether it is in the profile folder\./);
    assert.equal(await title(page), "No cast open");
    await openCast(page, "mine.asvp");
    await requestFile("missing");
    await failure.getByText("2 times").waitFor();
    assert.equal(await title(page), "mine.asvp");
  });
});
