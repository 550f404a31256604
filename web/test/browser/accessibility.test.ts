/// What a screen reader, a keyboard and weak eyes get of the page, judged by axe in all its states.
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { createRequire } from "node:module";
import { describe, test } from "node:test";
import type { Page } from "playwright-core";
import type { AxeResults } from "axe-core";
import { misplaced } from "./layout";
import { prepareWalk, walk } from "./states";
import { Stage, picture } from "./stage";

const AXE = createRequire(import.meta.url).resolve("axe-core/axe.min.js");

const THEMES = ["dark", "light", "contrast", "red"] as const;
/// A dialog has the same colours as the page; two themes show whether it has them rightly.
const DIALOG_THEMES: readonly string[] = ["dark", "contrast"];

/// Height of the plot that is enough to read a profile from, with legend and verdict beside it.
const LEAST_PLOT_PX = 260;

interface Finding {
  rule: string;
  impact: string;
  theme: string;
  nodes: string[];
}

interface Seen {
  states: number;
  found: (Finding & { state: string })[];
  /// What is out of place.
  faults: string[];
  /// Of the plot, while no messages are shown.
  heights: Map<string, number>;
  /// Addresses that were asked for.
  asked: string[];
}

describe("every state of the page", () => {
  const stage = new Stage(prepareWalk);
  let walked: Promise<Seen> | null = null;
  /// The walk is made once; each test looks at one side of what was seen.
  const seen = () => (walked ??= lookAround(stage));

  test("axe finds nothing serious in any state and theme", async () => {
    const { states, found } = await seen();
    const isGrave = ({ impact }: Finding) => impact === "serious" || impact === "critical";
    console.log(`axe has looked at ${states} states`);
    for (const line of linesOf(found.filter((each) => !isGrave(each)))) console.log(line);
    assert.deepEqual(linesOf(found.filter(isGrave)), []);
  });

  test("everything is seen and reached at 1024 by 600", async () => {
    const { faults, heights } = await seen();
    console.log(`the plot is ${[...heights].map(([state, height]) => `${height} px (${state})`).join(", ")} high`);
    assert.deepEqual(faults, []);
    assert.deepEqual([...heights].filter(([, height]) => height < LEAST_PLOT_PX), []);
  });

  // What the content security policy refuses anywhere on this way fails the test that goes it.
  test("nothing outside this machine is asked for", async () => {
    const { asked } = await seen();
    assert.ok(asked.length > 10, asked.join(", "));
    const hosts = new Set(asked.map((url) => new URL(url).hostname));
    assert.deepEqual([...hosts], ["127.0.0.1"]);
  });
});

/// Goes through all states at 1024 by 600 and keeps what is to be said of them.
async function lookAround(stage: Stage): Promise<Seen> {
  const page = await stage.page({ width: 1024, height: 600 });
  const source = await readFile(AXE, "utf8");
  const seen: Seen = { states: 0, found: [], faults: [], heights: new Map(), asked: [] };
  page.on("request", (request) => seen.asked.push(request.url()));
  page.on("websocket", (socket) => seen.asked.push(socket.url()));
  await walk(stage, page, async ({ name, dialog }) => {
    seen.states += 1;
    await picture(page, `state-${name}`);
    seen.faults.push(...(await misplaced(page)).map((fault) => `${name}: ${fault}`));
    const plot = dialog ? null : await page.locator("#plot").boundingBox();
    if (plot) seen.heights.set(name, plot.height);
    for (const theme of THEMES) {
      if (dialog && !DIALOG_THEMES.includes(theme)) continue;
      const findings = await judge(page, source, theme, dialog !== null, theme !== "dark");
      seen.found.push(...findings.map((each) => ({ ...each, state: name })));
    }
  });
  // It goes on trying to connect, which the browser notes each time, also while other tests run.
  await page.close();
  return seen;
}

/// One line for what was found alike in several states.
function linesOf(found: readonly (Finding & { state: string })[]): string[] {
  const states = new Map<string, string[]>();
  for (const { impact, rule, theme, nodes, state } of found) {
    const what = `${impact}: ${rule}, ${theme}, ${nodes.length} nodes: ${nodes.slice(0, 4).join(" | ")}`;
    states.set(what, [...(states.get(what) ?? []), state]);
  }
  return [...states].map(([what, where]) => `${what} — in ${where.slice(0, 3).join("; ")}${where.length > 3 ? "; …" : ""}`);
}

/// What axe finds of the page, or of the dialog that lies over it. Between themes only colours
/// differ, so that the other rules need not be asked again.
async function judge(page: Page, source: string, theme: string, isDialog: boolean, coloursAlone: boolean): Promise<Finding[]> {
  // The page's content security policy keeps scripts out; the debugger's are not the page's.
  if (!(await page.evaluate(() => "axe" in window))) await page.evaluate(source);
  return page.evaluate(
    async ([name, inDialog, colours]) => {
      const root = document.documentElement;
      const before = root.dataset["theme"];
      root.dataset["theme"] = name;
      const { axe } = window as unknown as { axe: { run(context: unknown, options: unknown): Promise<AxeResults> } };
      const dialogs = document.querySelectorAll("dialog[open]");
      const { violations } = await axe.run(inDialog ? dialogs[dialogs.length - 1] : document, {
        resultTypes: ["violations"],
        ...(colours ? { runOnly: { type: "rule", values: ["color-contrast"] } } : {}),
      });
      root.dataset["theme"] = before ?? "";
      return violations.map(({ id, impact, nodes }) => ({
        rule: id,
        impact: String(impact),
        theme: name,
        nodes: nodes.map(({ target, any }) => `${target.join(" ")} ${any[0]?.message ?? ""}`),
      }));
    },
    [theme, isDialog, coloursAlone] as const,
  );
}
