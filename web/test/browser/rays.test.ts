/// Rays through the open cast and a second profile.
import assert from "node:assert/strict";
import { describe, test } from "node:test";
import type { Locator, Page } from "playwright-core";
import { FAULTY, fixDialog, rayDialog } from "./repair-parts";
import { STRAIGHT, extendByDefault } from "./reshape-parts";
import { Stage, assertInside, openCast, picture, seaLevels } from "./stage";

const angleField = (page: Page): Locator => rayDialog(page).getByRole("textbox", { name: "Angle below the horizontal, °" });
const second = (page: Page): Locator => rayDialog(page).getByLabel("Second profile");
const fact = (page: Page, text: string | RegExp): Locator => rayDialog(page).locator(".thin-facts p").filter({ hasText: text });

/// Depth of the ray at a distance in water of a constant gradient (1/s): a circle about a point above.
function circleDepth(angle: number, speed: number, gradient: number, distance: number): number {
  const slope = (angle * Math.PI) / 180;
  const radius = speed / (gradient * Math.cos(slope));
  const middle = { x: radius * Math.sin(slope), y: -speed / gradient };
  return middle.y + Math.sqrt(radius ** 2 - (distance - middle.x) ** 2);
}

describe("ray paths", () => {
  const stage = new Stage(async (host) => {
    await host.writeCast("straight.asvp", STRAIGHT);
    await host.writeCast("sea.asvp", seaLevels(Array.from({ length: 60 }, (_, i) => i * 12)));
    await host.writeCast("faulty.asvp", FAULTY);
    await host.writeCast("few.asvp", FAULTY.slice(0, 3));
  });

  /// Frames of rays that this page sends and gets, for as long as it lives.
  function watch(page: Page): { asked: string[]; most: () => number } {
    const asked: string[] = [];
    let open = 0;
    let most = 0;
    page.on("websocket", (socket) => {
      socket.on("framesent", ({ payload }) => {
        if (!String(payload).includes("ShowRaypath")) return;
        asked.push(String(payload).replace(/^.*ShowRaypath,\[([\d.]+)\*.*$/s, "$1"));
        most = Math.max(most, ++open);
      });
      socket.on("framereceived", ({ payload }) => {
        if (String(payload).includes('"ShowRaypath"')) open -= 1;
      });
    });
    return { asked, most: () => most };
  }

  test("a ray through a gradient lies beside that of the reference, as geometry has it", async () => {
    const page = await stage.page();
    await openCast(page, "straight.asvp");
    await page.keyboard.press("y");
    await rayDialog(page).waitFor();
    assert.equal(await second(page).inputValue(), "reference", "no other cast was opened");
    // 0.01 m/s a metre faster: at 12 000 m, where the reference's ray has come to the bottom.
    const apart = 12_000 - circleDepth(45, 1500, 0.01, 12_000);
    await fact(page, `Both rays reach 12000.0 m; there the second one is ${apart.toFixed(1)} m deeper.`).waitFor();
    assert.equal(await rayDialog(page).locator(".ray-plot .chart-line path").count(), 2);

    const plot = rayDialog(page).locator(".ray-plot");
    const box = await plot.boundingBox();
    assert.ok(box);
    await page.mouse.move(box.x + box.width / 2, box.y + box.height / 2);
    const tip = (await plot.locator(".tip").textContent()) ?? "";
    const [, distance = "", , first = "", other = ""] = /At ([\d.]+) m(straight\.asvp)([\d.]+) mReference([\d.]+) m/.exec(tip) ?? [];
    assert.ok(Math.abs(Number(first) - circleDepth(45, 1500, 0.01, Number(distance))) < 0.2, tip);
    assert.ok(Math.abs(Number(other) - Number(distance)) < 0.15, tip);

    await rayDialog(page).getByRole("textbox", { name: "Sound speed at the surface, m/s" }).fill("1399");
    await rayDialog(page).getByText("The sound speed must lie from 1400 to 1700 m/s.").waitFor();
  });

  test("angles come from the field, the slider and the keyboard, within their range", async () => {
    const page = await stage.page();
    await openCast(page, "straight.asvp");
    await page.keyboard.press("y");
    for (const [text, fault] of [["90.1", "The angle must lie from 0 to 90 °."], ["-1", "The angle must lie from 0 to 90 °."], ["x", "The angle is no number."], ["", "State the angle, 0 to 90 °."]] as const) {
      await angleField(page).fill(text);
      await rayDialog(page).getByText(fault).waitFor();
    }
    for (const text of ["90", "0", "10,5"]) {
      await angleField(page).fill(text);
      await fact(page, `Ray of ${text.replace(",", ".")}°.`).waitFor();
    }
    const slider = rayDialog(page).getByRole("slider");
    await slider.focus();
    await page.keyboard.press("ArrowRight");
    await fact(page, "Ray of 11°.").waitFor();
    assert.equal(await angleField(page).inputValue(), "11");
    await page.keyboard.press("Escape");
    await rayDialog(page).waitFor({ state: "hidden" });
  });

  test("the ray follows a drag, with one request at a time and the newest next", async () => {
    const page = await stage.page();
    const { asked, most } = watch(page);
    await page.reload();
    await page.locator(".cast").first().waitFor();
    await openCast(page, "straight.asvp");
    await page.keyboard.press("y");
    await fact(page, "Ray of 45°.").waitFor();
    const box = await rayDialog(page).locator(".ray-plot").boundingBox();
    assert.ok(box);
    await page.mouse.move(box.x + 200, box.y + 200);
    await page.mouse.down();
    for (let i = 1; i <= 60; ++i) await page.mouse.move(box.x + 200 + i * 4, box.y + 200 - i * 2);
    await page.mouse.up();
    const last = await angleField(page).inputValue();
    assert.notEqual(last, "45");
    await fact(page, `Ray of ${last}°.`).waitFor();
    assert.equal(most(), 1);
    assert.ok(asked.length >= 3 && asked.length <= 62, asked.join(" "));
    assert.equal(asked.at(-1), last);
  });

  test("rays that were lost with the connection come again with it", async () => {
    const page = await stage.page();
    await openCast(page, "straight.asvp");
    await page.keyboard.press("y");
    await fact(page, "Ray of 45°.").waitFor();
    stage.expectTrouble(/WebSocket connection to .* failed|ERR_CONNECTION/);
    await stage.host.stop();
    await page.locator("#connection[data-state=lost]").waitFor();
    await angleField(page).fill("30");
    await rayDialog(page).getByText("There is no connection to the host.").waitFor();
    assert.equal(await fact(page, "Ray of").count(), 0);
    await stage.host.startAgain();
    await fact(page, "Ray of 30°.").waitFor();
    assert.ok(await rayDialog(page).locator(".dialog-status").isHidden());
  });

  test("beside it lies the cast before its last change, or another that was opened", async () => {
    const page = await stage.page();
    await openCast(page, "straight.asvp");
    await openCast(page, "sea.asvp");
    await extendByDefault(page);
    await page.keyboard.press("y");
    const options = await second(page).locator("option").allTextContents();
    assert.deepEqual(options, ["sea.asvp before the last change, 60 levels", "straight.asvp, 121 levels", "A reference of 1500 m/s"]);
    // The cast as it was is continued as well to be traced through, though by other rows.
    await fact(page, /Both rays reach 12\d\d\d\.\d m; there the second one is [0-9]\.[0-9] m deeper\./).waitFor();
    await second(page).selectOption("straight.asvp, 121 levels");
    await fact(page, /there the second one is .* m (deeper|shallower)/).waitFor();
    await rayDialog(page).locator(".ray-legend").getByText("straight.asvp").waitFor();
  });

  test("a ray that turns back to the surface is drawn as it runs", async () => {
    const page = await stage.page();
    await openCast(page, "straight.asvp");
    await page.keyboard.press("y");
    await angleField(page).fill("10");
    await fact(page, "Ray of 10°.").waitFor();
    const deepest = await rayDialog(page).locator(".ray-plot .ray-first path").evaluate((path) => {
      const drawn = path as SVGPathElement;
      const length = drawn.getTotalLength();
      const ys = Array.from({ length: 401 }, (_, i) => drawn.getPointAtLength((length * i) / 400).y);
      return { share: ys.indexOf(Math.max(...ys)) / 400, rise: Math.max(...ys) - (ys.at(-1) ?? NaN) };
    });
    assert.ok(deepest.share > 0.3 && deepest.share < 0.7 && deepest.rise > 20, JSON.stringify(deepest));
  });

  test("a profile that is not accepted leads to the fix", async () => {
    const page = await stage.page();
    await openCast(page, "faulty.asvp");
    await page.keyboard.press("y");
    await rayDialog(page).getByText("faulty.asvp or the second profile has levels out of order").waitFor();
    await rayDialog(page).getByRole("button", { name: "Fix…" }).click();
    await fixDialog(page).waitFor();
    await page.keyboard.press("Escape");
    await openCast(page, "few.asvp");
    await page.keyboard.press("y");
    await rayDialog(page).getByText("At least 6 levels are needed; few.asvp has 3 levels.").waitFor();
    assert.ok(await rayDialog(page).getByRole("button", { name: "Fix…" }).isHidden());
  });

  for (const theme of ["dark", "light"]) {
    test(`the dialog lies inside a small screen, ${theme}`, async () => {
      const page = await stage.page({ width: 1024, height: 600 });
      if (theme === "light") await page.keyboard.press("t");
      await openCast(page, "straight.asvp");
      await openCast(page, "sea.asvp");
      await page.keyboard.press("y");
      await angleField(page).fill("12");
      await fact(page, "Ray of 12°.").waitFor();
      for (const part of [rayDialog(page), rayDialog(page).getByRole("button", { name: "Close" }), rayDialog(page).locator(".ray-plot")]) {
        await assertInside(page, part);
      }
      const box = await rayDialog(page).locator(".ray-plot").boundingBox();
      assert.ok(box && box.height > 300 && box.width > 400);
      await page.mouse.move(box.x + box.width / 2, box.y + box.height / 2);
      await rayDialog(page).locator(".tip").waitFor();
      await picture(page, `rays-${theme}`);
      for (const angle of ["90", "60"]) {
        await angleField(page).fill(angle);
        await fact(page, `Ray of ${angle}°.`).waitFor();
        await picture(page, `rays-${angle}-${theme}`);
      }
    });
  }
});
