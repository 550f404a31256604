/// The content security policy: what it says, and that it holds.
import assert from "node:assert/strict";
import { describe, test } from "node:test";
import type { Page } from "playwright-core";
import { Stage, openCast, seaLevels } from "./stage";

const POLICY =
  "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; " +
  "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

/// Does something in the page's own world, as a script that got into it would, and tells by which
/// directives it was refused.
async function refused(page: Page, tried: () => void): Promise<string[]> {
  await page.evaluate(() => {
    const seen: string[] = [];
    Object.assign(window, { seen });
    addEventListener("securitypolicyviolation", (event) => seen.push(event.effectiveDirective));
  });
  await page.evaluate(tried);
  await page.waitForFunction(() => (window as unknown as { seen: string[] }).seen.length > 0);
  const seen = await page.evaluate(() => (window as unknown as { seen: string[] }).seen);
  await page.reload();
  return [...new Set(seen)];
}

describe("content security policy", () => {
  const stage = new Stage((host) => host.writeCast("sea.asvp", seaLevels([0, 10, 20])));

  test("every answer of the host carries it, without an exception", async () => {
    const page = await stage.page();
    const answers = new Map<string, string | undefined>();
    page.on("response", (response) => answers.set(new URL(response.url()).pathname, response.headers()["content-security-policy"]));
    await page.reload();
    await openCast(page, "sea.asvp");
    for (const path of ["/", "/page.js", "/style.css", "/api/casts"]) assert.equal(answers.get(path), POLICY, path);
    const missing = await page.request.get(`${stage.host.url}no-such-file`);
    assert.equal(missing.status(), 404);
    assert.equal(missing.headers()["content-security-policy"], POLICY);
    assert.doesNotMatch(POLICY, /unsafe|data:|blob:|https?:|\*/);
  });

  test("the page works without any exception to it", async () => {
    const page = await stage.page();
    assert.equal(await page.locator("[style*=javascript], script:not([src]), style").count(), 0);
    assert.equal(await page.locator("[onclick], [onload], [onerror], a[href^='javascript:']").count(), 0);
    await openCast(page, "sea.asvp");
    assert.equal(await page.locator("script:not([src]), style").count(), 0, "drawings bring no styles of their own");
  });

  test("what came into the page from elsewhere would be refused", async () => {
    const page = await stage.page();
    stage.expectTrouble(/refused by|Content Security Policy|violates the following/);
    stage.expectTrouble(/Refused to|Fetch API cannot load|Connecting to|Loading the|Framing|Executing inline|Applying inline/);
    assert.deepEqual(await refused(page, () => {
      const script = document.createElement("script");
      script.textContent = "window.ran = true";
      document.body.append(script);
    }), ["script-src-elem"]);
    stage.expectTrouble(/^threw .*eval/);
    assert.deepEqual(await refused(page, () => void setTimeout(() => new Function("return 1")())), ["script-src"]);
    assert.deepEqual(await refused(page, () => document.body.insertAdjacentHTML("beforeend", "<button onclick='window.ran = true'>x</button>")), ["script-src-attr"]);
    assert.deepEqual(await refused(page, () => document.body.insertAdjacentHTML("beforeend", "<p style='color: red'>x</p>")), ["style-src-attr"]);
    assert.deepEqual(await refused(page, () => document.body.insertAdjacentHTML("beforeend", "<style>p { color: red }</style>")), ["style-src-elem"]);
    assert.deepEqual(await refused(page, () => document.body.insertAdjacentHTML("beforeend", "<img alt='' src='data:image/gif;base64,R0lGODlhAQABAAAAACw='>")), ["img-src"]);
    assert.deepEqual(await refused(page, () => document.body.insertAdjacentHTML("beforeend", "<iframe src='/'></iframe>")), ["frame-src"]);
    assert.deepEqual(await refused(page, () => void fetch("http://localhost:9/").catch(() => undefined)), ["connect-src"]);
    assert.deepEqual(await refused(page, () => {
      const form = document.createElement("form");
      form.action = "/";
      document.body.append(form);
      form.submit();
    }), ["form-action"]);
  });
});
