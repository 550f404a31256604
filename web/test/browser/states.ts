/// A walk through every state of the page that a user can reach, for tests that look at all of them.
import { writeFile } from "node:fs/promises";
import { join } from "node:path";
import type { Locator, Page } from "playwright-core";
import { goTo, stored, typing } from "./editing-parts";
import { LOGGER, preview } from "./filter-parts";
import { held, pick } from "./handing";
import type { Host } from "./host";
import { FAULTY } from "./repair-parts";
import { PROBE } from "./reshape-parts";
import { check, closed, connected, failed, openCast, seaLevels, told, type Stage } from "./stage";

export interface State {
  name: string;
  /// The dialog that lies over the page.
  dialog: Locator | null;
}

export type See = (state: State) => Promise<void>;

/// Puts the casts of the walk into the profile folder.
export async function prepareWalk(host: Host): Promise<void> {
  await host.writeCast("faulty.asvp", FAULTY);
  await host.writeCast("other.asvp", seaLevels([0, 10, 20, 40, 80, 160, 320]));
  await host.writeCast("nowhere.asvp", seaLevels([0, 10, 20]), "( Speed 1.0 0 20261115123456 0 0 0 0 0 source NA 3 )");
  await writeFile(join(host.folder, "probe.vp2"), PROBE);
}

/// Goes from state to state of a page that was just opened, and lets each be seen. Ends with the
/// connection lost.
export async function walk(stage: Stage, page: Page, see: See): Promise<void> {
  const steps = new Walk(page, see);
  await steps.withoutCast();
  await steps.withFaultyCast();
  await steps.leaving();
  await steps.repairing();
  await steps.withProbeCast();
  await steps.messages();
  // Of the file that cannot be taken, and of the host that ends.
  stage.expectTrouble(/status of 500/);
  stage.expectTrouble(/WebSocket connection to .* failed|ERR_CONNECTION/);
  await stage.host.stop();
  await page.locator("#connection[data-state=lost]").waitFor();
  await see({ name: "connection lost", dialog: null });
}

class Walk {
  constructor(
    private readonly page: Page,
    private readonly see: See,
  ) {}

  async withoutCast(): Promise<void> {
    const { page } = this;
    await this.main("empty");
    await this.press("?");
    await this.dialog("help");
    await this.shut();
    await this.press("t", "t", "t", "t");
    await page.getByRole("button", { name: "Theme" }).click();
    await this.main("menu of themes");
    await this.press("Escape");

    await this.press("i");
    await page.locator("dialog.filters[aria-busy=false]").waitFor();
    await this.dialog("filters, none");
    await preview(page, "harbour.log7", LOGGER);
    await page.locator(".preview-facts").getByText("read").waitFor();
    await this.dialog("filters with a preview");
    await this.top.getByLabel("Name", { exact: true }).fill("two words");
    await this.top.getByLabel("Sound speed", { exact: true }).fill("");
    await this.top.getByRole("button", { name: "Save filter" }).click();
    await this.top.locator(".field-fault:visible").first().waitFor();
    await this.dialog("filters with faults");
    await this.press("Escape");
    await page.getByRole("dialog", { name: "Leave without saving?" }).waitFor();
    await this.dialog("filters, leaving");
    await this.press("Escape");
    await this.top.getByLabel("Name", { exact: true }).fill("Harbour");
    await this.top.getByLabel("Sound speed", { exact: true }).fill("1");
    await this.top.getByRole("button", { name: "Save filter" }).click();
    await this.top.getByText("Filter Harbour saved.").waitFor();
    await this.dialog("filters, one saved");
    await this.shut();

    await this.press("a");
    await this.top.getByRole("checkbox").waitFor();
    await page.locator("dialog.atlas[aria-busy=false]").waitFor();
    await this.dialog("atlas");
    await this.top.getByRole("checkbox").check();
    await this.top.getByRole("button", { name: "Save" }).click();
    await this.top.getByText("the atlas needs both").waitFor();
    await this.dialog("atlas with a fault");
    await this.shut();
    await page.getByRole("button", { name: /^Dismiss/ }).first().click();
  }

  async withFaultyCast(): Promise<void> {
    const { page } = this;
    await openCast(page, "other.asvp");
    await openCast(page, "faulty.asvp");
    await this.main("a cast");
    await check(page);
    await this.press("n");
    await page.locator(".tabulator-row.selected").waitFor();
    await this.main("checked, an invalid level selected");
    for (const name of ["Send", "Save", "Edit"]) {
      await page.getByRole("button", { name, exact: true }).click();
      await this.main(`menu of ${name}`);
      await this.press("Escape");
    }
    await goTo(page, 2, "svp_Speed");
    await this.press("Enter");
    await typing(page).fill("fast");
    await this.press("Enter");
    await page.locator("#edit-fault:visible").waitFor();
    await this.main("a cell with a fault");
    await this.press("Escape", "p");
    await this.main("editing in the plot");
    await this.press("p", "k");
    await this.dialog("compare");
    await this.press("Enter");
    await page.locator(".swatch-under").waitFor();
    await this.main("another cast under it");

    await this.press("w", "Enter");
    await this.dialog("save, replacing");
    await this.shut();
    await this.press("w", "ArrowDown", "Enter");
    await this.dialog("save as");
    await page.locator("#field-name").fill("no/name");
    await this.press("Enter");
    await this.dialog("save as with a fault");
    await this.shut();
    await this.press("w", "End", "Enter");
    await this.dialog("save as datagram");
    await this.shut();
  }

  async leaving(): Promise<void> {
    const { page } = this;
    await goTo(page, 7);
    await this.press("Delete");
    await stored(page, 1);
    await this.main("not saved");
    await page.locator('[data-name="other.asvp"]').click();
    await this.dialog("leaving");
    await this.shut();
    await page.reload();
    await connected(page);
    await told(page, "are back").waitFor();
    await this.main("edits brought back");
    await page.getByRole("button", { name: "Discard" }).click();
    await stored(page, 0);
  }

  async repairing(): Promise<void> {
    const { page } = this;
    await this.press("x");
    await this.dialog("fix");
    await this.press("Enter");
    await page.getByRole("dialog", { name: "faulty.asvp is fixed" }).waitFor();
    await this.dialog("fix, compared");
    await this.shut();
    await this.press("y");
    await this.top.locator(".thin-facts p").first().waitFor();
    await this.dialog("rays");
    await this.top.getByLabel("Second profile").selectOption("reference");
    await this.top.getByLabel("Angle below the horizontal, °").fill("100");
    await this.top.locator(".field-fault:visible").waitFor();
    await this.dialog("rays with a fault");
    await this.shut();
    await openCast(page, "nowhere.asvp");
    await this.press("s", "Enter");
    await this.dialog("send");
    await this.shut();
    await this.press("w", "ArrowDown", "Enter");
    await this.top.getByLabel("File name").fill("somewhere");
    await this.press("Enter");
    await page.getByRole("dialog", { name: "When and where was this cast taken?" }).waitFor();
    await this.press("Enter");
    await this.dialog("when and where");
    await this.shut();
  }

  async withProbeCast(): Promise<void> {
    const { page } = this;
    await openCast(page, "probe.vp2");
    await this.main("a cast with temperature and salinity");
    await this.press("d");
    await this.dialog("header");
    await page.locator("#header-hsvp_filetime").fill("yesterday");
    await page.locator("#header-hsvp_filelat").fill("north");
    await this.press("Enter");
    await this.top.locator(".field-fault:visible").first().waitFor();
    await this.dialog("header with faults");
    await this.press("Escape");
    await this.top.getByRole("heading", { name: "Close without applying?" }).waitFor();
    await this.dialog("header, about to be left");
    await this.top.getByRole("button", { name: "Close", exact: true }).click();
    await closed(page);
    await this.press("m");
    await page.getByRole("menuitem", { name: "Insert by depth…" }).click();
    await this.dialog("insert");
    await this.press("Enter");
    await this.top.locator(".field-fault:visible").first().waitFor();
    await this.dialog("insert with faults");
    await this.shut();
    await this.press("h");
    await this.dialog("thin, not extended");
    await this.shut();
    await this.press("e");
    await this.dialog("extend");
    await this.press("ArrowDown");
    await this.top.getByLabel("Temperature, °C").fill("warm");
    await this.top.getByRole("button", { name: "Extend", exact: true }).click();
    await this.top.locator(".field-fault:visible").first().waitFor();
    await this.dialog("extend by a water mass with faults");
    await this.top.getByRole("radio", { name: "A file of one’s own" }).check();
    await this.dialog("extend by a file");
    await this.top.getByRole("radio", { name: "Default rows" }).check();
    await this.press("Enter");
    await page.locator(".tabulator-row.joined").first().waitFor();
    await this.main("extended");
    await this.press("h", "Enter");
    await this.top.locator(".thin-facts p").first().waitFor();
    await this.dialog("thin with a preview");
    await this.shut();
    await check(page);
    await this.press("k", "Enter");
    await page.locator(".swatch-under").waitFor();
    await this.main("extended, checked, with another cast under it");
  }

  async messages(): Promise<void> {
    const { page } = this;
    await pick(page, held("notes.docx", "no cast"));
    await page.getByRole("button", { name: "Leave", exact: true }).click();
    await failed(page, "notes.docx").waitFor();
    await page.evaluate(() => {
      const data = "page,ACTION=SVP_WebInterface/SVPAlert,[Probe battery low]";
      const socket = new WebSocket(new URL("ws", location.href).href.replace(/^http/, "ws"));
      socket.onopen = () => socket.send(JSON.stringify({ name: "SVP_WebInterface", data }));
      socket.onmessage = () => socket.close();
    });
    await failed(page, "Probe battery low").waitFor();
    await this.main("messages");
  }

  private get top(): Locator {
    return this.page.locator("dialog[open]").last();
  }

  private async press(...keys: string[]): Promise<void> {
    for (const key of keys) await this.page.keyboard.press(key);
  }

  private main(name: string): Promise<void> {
    return this.see({ name, dialog: null });
  }

  private async dialog(name: string): Promise<void> {
    await this.top.waitFor();
    await this.see({ name, dialog: this.top });
  }

  private async shut(): Promise<void> {
    await this.press("Escape");
    await closed(this.page);
  }
}
