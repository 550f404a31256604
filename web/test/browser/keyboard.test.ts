/// The page worked with the keyboard alone: no pointer is touched in this file.
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { join } from "node:path";
import { describe, test } from "node:test";
import type { Page } from "playwright-core";
import { stored, typing } from "./editing-parts";
import { FAULTY } from "./repair-parts";
import { Stage, closed, connected, openCast, picture, seaLevels, shown, told } from "./stage";

const press = async (page: Page, ...keys: string[]): Promise<void> => {
  for (const key of keys) await page.keyboard.press(key);
};

/// Where the keyboard is, in a word.
const place = (page: Page): Promise<string> =>
  page.evaluate(() => {
    const at = document.activeElement;
    return at?.id || at?.getAttribute("data-name") || at?.className || at?.tagName || "";
  });

/// Goes on with Tab until the keyboard is at an element.
async function tabTo(page: Page, selector: string): Promise<void> {
  for (let i = 0; i < 60; ++i) {
    if (await page.evaluate((wanted) => document.activeElement?.matches(wanted) ?? false, selector)) return;
    await page.keyboard.press("Tab");
  }
  assert.fail(`Tab does not come to ${selector}`);
}

const opened = (page: Page) => page.locator("dialog[open]").last().waitFor();

/// Keys that open each dialog, and what it is called.
const DIALOGS: readonly (readonly [name: string, ...keys: string[]])[] = [
  ["Keys and hints", "?"],
  [`Header of faulty.asvp`, "d"],
  ["Insert a level", "m", "ArrowDown", "ArrowDown", "Enter"],
  ["Extend to full ocean depth", "e"],
  ["Thin the cast", "h"],
  ["Fix the cast", "x"],
  ["Ray paths", "y"],
  ["Compare with…", "k"],
  ["Import filters", "i"],
  ["World Ocean Atlas", "a"],
  ["Save as", "w", "ArrowDown", "Enter"],
  ["Replace faulty.asvp?", "w", "Enter"],
];

describe("keyboard", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("faulty.asvp", FAULTY);
    await host.writeCast("other.asvp", seaLevels([0, 10, 20, 40]));
  });

  async function openFaulty(page: Page): Promise<void> {
    await press(page, "l", "Home");
    while ((await place(page)) !== "faulty.asvp") await press(page, "ArrowDown");
    await press(page, "Enter");
    await shown(page, "faulty.asvp");
  }

  test("keys of one character can be had off, and stay so", async () => {
    const page = await stage.page();
    await openFaulty(page);
    await press(page, "?");
    await opened(page);
    const letters = page.getByLabel("Single letters, digits and signs are keys of the page");
    assert.ok(await letters.isChecked());
    await tabTo(page, "#letter-keys");
    await press(page, " ", "Escape");
    await closed(page);
    const isQuiet = async () => {
      await press(page, "t", "d", "0", "?", "w");
      await closed(page);
      assert.equal(await page.locator("html").getAttribute("data-theme"), "dark");
      assert.equal(await page.getByRole("menu").filter({ visible: true }).count(), 0);
    };
    await isQuiet();
    await page.reload();
    await connected(page);
    await openCast(page, "faulty.asvp");
    await isQuiet();
    await tabTo(page, "[role=grid]");
    await press(page, "Home", "Delete", "Control+z");
    await page.locator("#redo").waitFor();

    await page.getByRole("button", { name: "Help" }).click();
    await letters.check();
    await press(page, "Escape");
    await press(page, "t");
    await page.locator("html[data-theme=light]").waitFor();
  });

  test("a whole job: open, check, step through, mend, undo, save", async () => {
    const page = await stage.page();
    await openFaulty(page);
    assert.equal(await place(page), "faulty.asvp", "the keyboard stays in the list");

    await tabTo(page, "#check");
    await press(page, "Enter");
    await page.getByRole("heading", { name: /^Check of/ }).waitFor();
    await page.waitForFunction(() => document.activeElement?.id === "check");
    for (const level of ["3", "5", "3"]) {
      await press(page, "n");
      await page.locator(`.tabulator-row.selected[data-level="${level}"]`).waitFor();
    }

    await tabTo(page, "[role=grid]");
    const active = () => page.evaluate(() =>
      document.getElementById(document.activeElement?.getAttribute("aria-activedescendant") ?? "")?.textContent);
    await press(page, "ArrowLeft");
    assert.equal(await active(), "40.00");
    await press(page, "ArrowRight");
    assert.equal(await active(), "1730.00");
    await press(page, "F2");
    await typing(page).waitFor();
    await page.keyboard.type("x");
    await press(page, "Enter");
    await page.locator("#edit-fault").getByText("is no number").waitFor();
    assert.ok(await typing(page).isVisible(), "what is refused stays to be mended");
    await press(page, "Control+a");
    await page.keyboard.type("1499.5");
    await press(page, "Enter");
    await page.locator("#level-cell").getByText("1499.50").waitFor();
    await press(page, "ArrowDown", "ArrowDown", "ArrowLeft", "Enter");
    await page.keyboard.type("70");
    await press(page, "Enter");
    await page.locator("#level-cell").getByText("70.00").waitFor();
    await stored(page, 1);

    await press(page, "u");
    await page.locator("#level-cell").getByText("50.00").waitFor();
    assert.match(await place(page), /tabulator-tableholder/);
    await tabTo(page, "#redo");
    await press(page, "Enter");
    await page.locator("#level-cell").getByText("70.00").waitFor();
    assert.match(await place(page), /tabulator-tableholder/, "the button is gone, the keyboard is not");

    await press(page, "Delete");
    await page.locator("#level-count").getByText("7").waitFor();
    await press(page, "Control+z");
    await page.locator("#level-count").getByText("8").waitFor();

    await press(page, "g", "Home", "+", "+");
    await page.locator("#reset-zoom:enabled").waitFor();
    assert.equal(await page.locator(".selected-ring").first().getAttribute("visibility"), "visible");
    await tabTo(page, "#reset-zoom");
    await press(page, "Enter");
    await page.locator("#reset-zoom:disabled").waitFor();
    assert.equal(await place(page), "plot");

    await press(page, "c");
    await page.locator("#verdict").waitFor();
    await press(page, "w", "Enter");
    await page.getByRole("dialog", { name: "Replace faulty.asvp?" }).waitFor();
    await press(page, "Tab", "Enter");
    await told(page, "faulty.asvp").waitFor();
    await stored(page, 0);
    assert.equal(await place(page), "plot");
    const lines = (await readFile(join(stage.host.folder, "faulty.asvp"), "utf8")).split("\r\n");
    assert.deepEqual(lines.slice(3, 6), ["40.00 1499.50", "60.00 1496.00", "70.00 1495.00"]);

    await press(page, "j");
    assert.match(await place(page), /message-dismiss/);
    await press(page, "Enter");
    await page.locator("#messages").waitFor({ state: "hidden" });
    assert.equal(await place(page), "plot");
  });

  test("each dialog holds the keyboard, and gives it back where it was", async () => {
    const page = await stage.page();
    await openFaulty(page);
    for (const [from, origin] of [["g", "#plot"], ["v", "[role=grid]"]] as const) {
      await press(page, from);
      for (const [name, ...keys] of DIALOGS) {
        await press(page, ...keys);
        const dialog = page.getByRole("dialog", { name, exact: true });
        await dialog.waitFor();
        await page.locator("dialog[open]:not([aria-busy=true])").waitFor();
        if (from === "g") {
          // The browser's own parts come after the last and before the first stop.
          const strays = await strayed(page);
          assert.deepEqual(strays, [], `Tab leaves “${name}”`);
        }
        await press(page, "Escape");
        await closed(page);
        assert.ok(await page.evaluate((wanted) => document.activeElement?.matches(wanted), origin), `${name}: now at ${await place(page)}`);
      }
    }
    await page.keyboard.press("t");
    assert.ok(await page.evaluate(() => document.activeElement?.matches("[role=grid]")));
  });

  test("a menu is gone through with the arrow keys, and left to where it was opened from", async () => {
    const page = await stage.page();
    await openFaulty(page);
    for (const [key, items] of [["s", 3], ["w", 3], ["m", 10]] as const) {
      await press(page, "v", key);
      const gone = new Set<string>();
      for (let i = 0; i < items; ++i) {
        gone.add((await page.evaluate(() => document.activeElement?.textContent)) ?? "");
        await press(page, "ArrowDown");
      }
      assert.equal(gone.size, items);
      await press(page, "Escape");
      assert.match(await place(page), /tabulator-tableholder/);
    }
    await tabTo(page, "#theme");
    await press(page, "ArrowDown", "ArrowDown", "Enter");
    assert.equal(await page.locator("html").getAttribute("data-theme"), "light");
    assert.equal(await place(page), "theme");
  });

  test("what a dialog refuses, and what it has done, leaves the keyboard in it", async () => {
    const page = await stage.page();
    await openFaulty(page);
    // What is missing is offered first.
    await press(page, "h", "Enter");
    const extend = page.getByRole("dialog", { name: "Extend to full ocean depth" });
    await extend.waitFor();
    await press(page, "ArrowDown");
    await tabTo(page, "dialog.extend button.primary");
    await press(page, "Enter");
    await extend.getByText("The temperature").waitFor();
    assert.equal(await place(page), "number-temperature");
    await press(page, "Escape");
    await closed(page);
    await press(page, "x", "Enter");
    await page.getByRole("dialog", { name: "faulty.asvp is fixed" }).waitFor();
    await tabTo(page, ".comparison-table");
    const readout = page.locator(".comparison-readout");
    await press(page, "ArrowDown");
    await readout.getByText("90°, 10 m:").waitFor();
    await press(page, "ArrowDown", "ArrowRight");
    await readout.getByText("80°, 20 m:").waitFor();
    await picture(page, "comparison-by-keyboard");
    await press(page, "Escape");
    await closed(page);

    await press(page, "a");
    await page.locator("dialog.atlas[aria-busy=false]").waitFor();
    await press(page, "Space");
    await tabTo(page, "dialog.atlas button.primary");
    await press(page, "Enter");
    await page.getByText("the atlas needs both").waitFor();
    assert.equal(await place(page), "atlas-salinity");
    await press(page, "Escape");
  });

  test("where the keyboard is can be seen in all themes", async () => {
    const page = await stage.page({ width: 1024, height: 600 });
    await openFaulty(page);
    await press(page, "c");
    await page.locator("#verdict").waitFor();
    const faults = new Set<string>();
    const stops = new Set<string>();
    const look = async () => {
      const { name, wrong } = await focusShown(page);
      stops.add(name);
      for (const fault of wrong) faults.add(fault);
    };
    await press(page, "l");
    for (let i = 0; i < 34; ++i) {
      await look();
      await press(page, "Tab");
    }
    assert.ok(stops.size > 20, [...stops].join(", "));
    for (const keys of [["w"], ["d"], ["i"], ["e"], ["y"], ["k"]]) {
      await press(page, ...keys);
      if (keys[0] !== "w") await opened(page);
      for (let i = 0; i < 8; ++i) {
        await look();
        await press(page, keys[0] === "w" ? "ArrowDown" : "Tab");
      }
      await press(page, "Escape");
    }
    assert.deepEqual([...faults], []);
  });
});

/// Elements outside the dialog on top that Tab comes to, forth and back.
async function strayed(page: Page): Promise<string[]> {
  const strays: string[] = [];
  for (const key of [...Array<string>(12).fill("Tab"), ...Array<string>(16).fill("Shift+Tab")]) {
    await page.keyboard.press(key);
    const stray = await page.evaluate(() => {
      const dialogs = document.querySelectorAll("dialog[open]");
      const at = document.activeElement;
      return !at || at === document.body || dialogs[dialogs.length - 1]?.contains(at) ? "" : at.outerHTML.slice(0, 80);
    });
    if (stray) strays.push(stray);
  }
  return strays;
}

/// In which themes the outline of the focused element is missing, thin, or hardly told from what is
/// around it: below a contrast of 3 to 1.
function focusShown(page: Page): Promise<{ name: string; wrong: string[] }> {
  return page.evaluate(() => {
    const at = document.activeElement;
    if (!(at instanceof HTMLElement) || at === document.body) return { name: "", wrong: [] };
    const name = at.id || at.getAttribute("data-name") || at.className || at.textContent || at.tagName;
    const numbers = (colour: string) => (colour.match(/[\d.]+/g) ?? []).map(Number);
    const luminance = (colour: string) => {
      const [r = 0, g = 0, b = 0] = numbers(colour).map((part) => {
        const share = part / 255;
        return share <= 0.04045 ? share / 12.92 : ((share + 0.055) / 1.055) ** 2.4;
      });
      return 0.2126 * r + 0.7152 * g + 0.0722 * b;
    };
    const groundOf = (element: HTMLElement | null): string => {
      if (!element) return "rgb(0, 0, 0)";
      const { backgroundColor } = getComputedStyle(element);
      return numbers(backgroundColor)[3] === 0 ? groundOf(element.parentElement) : backgroundColor;
    };
    const root = document.documentElement;
    const before = root.dataset["theme"] ?? "";
    const wrong: string[] = [];
    for (const theme of ["dark", "light", "contrast", "red"]) {
      root.dataset["theme"] = theme;
      const { outlineStyle, outlineWidth, outlineColor, outlineOffset } = getComputedStyle(at);
      const ground = groundOf(parseFloat(outlineOffset) < 0 ? at : at.parentElement);
      const [high = 0, low = 0] = [luminance(outlineColor), luminance(ground)].sort((a, b) => b - a);
      const contrast = (high + 0.05) / (low + 0.05);
      if (outlineStyle === "none" || parseFloat(outlineWidth) < 2) wrong.push(`${name}, ${theme}: no outline`);
      else if (contrast < 3) wrong.push(`${name}, ${theme}: ${contrast.toFixed(1)} to 1`);
    }
    root.dataset["theme"] = before;
    return { name, wrong };
  });
}
