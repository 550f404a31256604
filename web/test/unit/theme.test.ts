import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import { THEMES, firstTheme, themeAfter } from "../../src/theme";

test("night comes first; high contrast where the system asks for it; a choice before both", () => {
  assert.equal(firstTheme(null, false), "dark");
  assert.equal(firstTheme(null, true), "contrast");
  assert.equal(firstTheme("light", true), "light");
  assert.equal(firstTheme("mauve", false), "dark");
});

test("the themes follow each other in a ring", () => {
  assert.deepEqual(THEMES.map(themeAfter), ["light", "contrast", "red", "dark"]);
});

/// Colours of a theme by their names, those of night where it has none of its own.
function colours(theme: string): Map<string, string> {
  const css = readFileSync("styles/theme.css", "utf8");
  const block = (selector: string) => css.slice(css.indexOf(`${selector} {`)).split("}")[0] ?? "";
  const read = (text: string) => [...text.matchAll(/--([\w-]+): (#\w+);/g)].map(([, name = "", value = ""]) => [name, value] as const);
  return new Map([...read(block(":root")), ...read(block(`:root[data-theme="${theme}"]`))]);
}

/// Contrast of two colours as WCAG 2 defines it, 1 to 21.
function contrast(one: string, other: string): number {
  const luminance = (colour: string) => {
    const long = colour.length === 4 ? colour.replace(/\w/g, "$&$&") : colour;
    const [r = 0, g = 0, b = 0] = [1, 3, 5]
      .map((at) => parseInt(long.slice(at, at + 2), 16) / 255)
      .map((part) => (part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4));
    return 0.2126 * r + 0.7152 * g + 0.0722 * b;
  };
  const [light = 0, dark = 0] = [luminance(one), luminance(other)].sort((a, b) => b - a);
  return (light + 0.05) / (dark + 0.05);
}

// Text needs 4.5 to 1, 7 to 1 where contrast is what the theme is for; lines need 3 to 1.
const TEXTS = ["text", "text-strong", "text-dim", "invalid", "alert", "joined"];
const GROUNDS = ["ground", "panel", "raised", "sunken"];
const OTHERS = [["text-strong", "accent-ground"], ["text-strong", "invalid-ground"], ["invalid", "invalid-ground"],
  ["accent", "accent-ground"], ["alert", "alert-ground"], ["text-strong", "select-ground"], ["text-dim", "accent-ground"],
  ["text-dim", "invalid-ground"], ["text-dim", "alert-ground"], ["text-dim", "select-ground"], ["text", "select-ground"],
  ["joined", "select-ground"], ["invalid", "select-ground"], ["text-dim", "good-ground"]] as const;
const LINES = ["accent", "joined", "thinned", "select", "focus", "invalid"];

for (const theme of THEMES) {
  test(`texts and lines of ${theme} stand out from their grounds`, () => {
    const colour = colours(theme);
    const of = (name: string) => colour.get(name) ?? "";
    const least = theme === "contrast" ? 7 : 4.5;
    const pairs = [...TEXTS.flatMap((text) => GROUNDS.map((ground) => [text, ground] as const)), ...OTHERS];
    const weak = pairs.filter(([text, ground]) => contrast(of(text), of(ground)) < least);
    const lines = [...LINES.map((line) => [line, "panel"] as const)].filter(([line, ground]) => contrast(of(line), of(ground)) < 3);
    const told = [...weak, ...lines].map(([text, ground]) => `${text} on ${ground} ${contrast(of(text), of(ground)).toFixed(2)}`);
    assert.deepEqual(told, []);
    const under = contrast(of("under"), of("panel"));
    assert.ok(under >= 2.5 && under < contrast(of("accent"), of("panel")), `what lies under is muted: ${under}`);
  });
}

test("nothing is bright at night", () => {
  for (const theme of ["dark", "red"]) {
    for (const [name, value] of colours(theme)) assert.ok(contrast(value, "#000") < 16, `${name} of ${theme}`);
  }
});
