/// What every browser test stands on: a host, a browser, and pages that are watched for trouble.
import assert from "node:assert/strict";
import { join } from "node:path";
import { after, afterEach, before } from "node:test";
import { chromium, type Browser, type BrowserContext, type Locator, type Page } from "playwright-core";
import { Host, type FileLevel } from "./host";

const CHROMIUM = process.env["SVP_CHROMIUM"] ?? "/usr/bin/chromium";

/// How long a page may take to show what it was asked for.
const PATIENCE_MS = 10_000;

const FLAGS = [
  "--disable-gpu",
  "--disable-quic",
  "--no-first-run",
  "--disable-background-networking",
  "--disable-component-update",
  "--disable-sync",
];

const USUAL_SIZE = { width: 1280, height: 800 };

export interface PageOptions {
  width?: number;
  height?: number;
  /// Share storage with an earlier page by giving its context.
  context?: BrowserContext;
  /// Runs in the page before its own code.
  before?: () => void;
}

/// One browser serves all test files of a process: starting one takes longer than most tests.
let browser: Promise<Browser> | null = null;

function theBrowser(): Promise<Browser> {
  const root = process.getuid?.() === 0;
  browser ??= chromium.launch({
    executablePath: CHROMIUM,
    args: root ? [...FLAGS, "--no-sandbox"] : FLAGS,
  });
  return browser;
}

after(async () => (await browser)?.close());

/// One host and one page for all tests of a file.
export class Stage {
  private theHost: Host | null = null;
  private kept: Page | null = null;
  private troubles: string[] = [];
  private expected: RegExp[] = [];

  /// To be made inside the suite that uses it. `prepare` puts casts into the profile folder, which
  /// lies below a data folder whose name begins with `name`; `start` starts a host of another kind
  /// than usual.
  constructor(
    prepare: (host: Host) => Promise<void>,
    { name, start = () => Host.start(name) }: { name?: string; start?: () => Promise<Host> } = {},
  ) {
    before(async () => {
      this.theHost = await start();
      await prepare(this.theHost);
    });
    afterEach(() => this.assertNoTrouble());
    after(async () => {
      await this.kept?.context().close();
      await this.theHost?.remove();
    });
  }

  get host(): Host {
    assert.ok(this.theHost);
    return this.theHost;
  }

  /// A page as if new, though earlier tests were on it: that takes a third of the time of a new
  /// one. It is left open.
  async page(size: Pick<PageOptions, "width" | "height"> = {}): Promise<Page> {
    if (!this.kept || this.kept.isClosed()) return (this.kept = await this.newPage(size));
    const page = this.kept;
    const { width, height } = { ...USUAL_SIZE, ...size };
    await page.setViewportSize({ width, height });
    await page.evaluate(async () => {
      localStorage.clear();
      sessionStorage.clear();
      await new Promise((done) => {
        const gone = indexedDB.deleteDatabase("svp-editor");
        gone.onsuccess = gone.onerror = done;
      });
    });
    await page.reload();
    await ready(page);
    return page;
  }

  /// A page of its own, opened and connected; whoever asks for it closes it, or its context.
  async newPage({ context, before: first, ...size }: PageOptions = {}): Promise<Page> {
    const viewport = { ...USUAL_SIZE, ...size };
    const page = await (context ?? (await (await theBrowser()).newContext({ viewport }))).newPage();
    await page.setViewportSize(viewport);
    page.setDefaultTimeout(PATIENCE_MS);
    this.watch(page);
    // File choosers are caught while someone listens; one listener that stays spares the switching.
    page.on("filechooser", () => undefined);
    // The browser reports to the console what the policy refuses, but not all of it in all cases.
    await page.addInitScript(() =>
      addEventListener("securitypolicyviolation", ({ effectiveDirective, blockedURI, sample }) =>
        console.error(`refused by ${effectiveDirective}: ${blockedURI} ${sample}`)),
    );
    if (first) await page.addInitScript(first);
    await page.goto(this.host.url);
    await ready(page);
    return page;
  }

  /// Trouble of this kind is what the test is about, and no fault.
  expectTrouble(kind: RegExp): void {
    this.expected.push(kind);
  }

  /// Fails when a page warned, threw, or turned to anything but its own host.
  private assertNoTrouble(): void {
    const faults = this.troubles.filter((text) => !this.expected.some((kind) => kind.test(text)));
    this.troubles = [];
    this.expected = [];
    assert.deepEqual(faults, []);
  }

  private watch(page: Page): void {
    const origin = new URL(this.host.url).host;
    const fetched = (url: string) => {
      if (new URL(url).host !== origin) this.troubles.push(`fetched ${url}`);
    };
    page.on("request", (request) => fetched(request.url()));
    page.on("websocket", (socket) => fetched(socket.url()));
    page.on("pageerror", (error) => this.troubles.push(`threw ${error.message}`));
    page.on("console", (message) => {
      if (["error", "warning"].includes(message.type())) {
        this.troubles.push(`said ${message.text()} ${message.location().url}`);
      }
    });
  }
}

/// Waits until a page that was just loaded can be used.
async function ready(page: Page): Promise<void> {
  await connected(page);
  await page.locator(".cast").first().waitFor();
}

export async function connected(page: Page): Promise<void> {
  await page.locator("#connection[data-state=open]").waitFor();
}

/// Opens a cast by a click on its name and waits until it is shown.
export async function openCast(page: Page, name: string): Promise<void> {
  await page.getByRole("list", { name: "Casts" }).getByRole("button", { name }).click();
  await shown(page, name);
  // One that was shown already is on its way once more.
  await page.locator('#plot[aria-busy="false"]').waitFor();
}

/// Opens a cast and waits until the page has the list that it reads after that, which says what the file
/// was like then.
export async function openListed(page: Page, name: string): Promise<void> {
  const before = await page.evaluate(() => performance.now());
  await openCast(page, name);
  await page.waitForFunction((time) => {
    const drawn = performance.getEntriesByName("cast drawn").find(({ startTime }) => startTime > time);
    const lists = performance.getEntriesByType("resource").filter((entry) => entry.name.includes("api/casts"));
    return drawn && lists.some(({ startTime }) => startTime > drawn.startTime);
  }, before);
  // What was asked for later has come later.
  await page.evaluate(() => fetch("api/casts", { cache: "no-store" }).then((answer) => answer.text()));
}

/// Waits until a cast is the open one, drawn and listed.
export async function shown(page: Page, name: string): Promise<void> {
  await page.locator(`body[data-cast="${name}"]`).waitFor();
  await page.locator(".profile-plot .trace path").first().waitFor({ state: "attached" });
  await page.locator(".tabulator-row").first().waitFor();
}

/// Presses "Check" and waits for the verdict.
export async function check(page: Page): Promise<void> {
  await page.getByRole("button", { name: "Check", exact: true }).click();
  await page.getByRole("heading", { name: /^Check of/ }).waitFor();
}

/// Waits until no dialog is open, and what was waiting for its answer has it.
export async function closed(page: Page): Promise<void> {
  await page.waitForFunction(() => !document.querySelector("dialog[open]"));
  await aFrame(page);
}

/// Waits until what the page does with its next frame is done.
export async function aFrame(page: Page): Promise<void> {
  await page.evaluate(() => new Promise((done) => requestAnimationFrame(() => setTimeout(done))));
}

/// Numbers of the levels that the table shows as invalid.
export async function invalidRows(page: Page): Promise<number[]> {
  const rows = await page.locator(".tabulator-row.invalid").all();
  return Promise.all(rows.map(async (row) => Number(await row.getAttribute("data-level"))));
}

/// A notice to the user, and a failure or an alert.
export const told = (page: Page, text: string | RegExp): Locator =>
  page.locator("#messages [role=status]").filter({ hasText: text });
export const failed = (page: Page, text: string | RegExp): Locator =>
  page.locator("#messages [role=alert]").filter({ hasText: text });

/// Fails when a part of the page reaches beyond the window.
export async function assertInside(page: Page, part: Locator): Promise<void> {
  const box = await part.boundingBox();
  const { width, height } = page.viewportSize() ?? { width: 0, height: 0 };
  const isInside = box && box.x >= 0 && box.y >= 0 && box.x + box.width <= width && box.y + box.height <= height;
  assert.ok(isInside, JSON.stringify(box));
}

/// Keeps a picture for looking at, where a folder for it is named.
export async function picture(page: Page, name: string): Promise<void> {
  const folder = process.env["SVP_PICTURES"];
  if (folder) await page.screenshot({ path: join(folder, `${name}.png`) });
}

/// Levels of a quiet sea: warm above a thermocline, then slowly faster with pressure.
export function seaLevels(depths: readonly number[]): FileLevel[] {
  return depths.map((depth) => {
    const speed = 1482 + 34 * Math.exp(-depth / 70) + 0.0165 * depth;
    return [depth.toFixed(2), speed.toFixed(2)];
  });
}
