/// How wide the columns of the level table have to be.
import type { Column } from "./columns";
import type { Profile } from "./profile";

/// Pixels beside the text of a cell: its padding and border.
const BESIDE_TEXT = 17;

let context: CanvasRenderingContext2D | null | undefined;

/// Pixels that a column needs for its heading and its longest value, in the font of `host`.
export function leastWidth({ key, label, unit, decimals }: Column, profile: Profile, host: HTMLElement): number {
  const measure = measureIn(host);
  const heading = measure(label) + (unit ? measure(unit, 0.88) + 5 : 0);
  let longest = 0;
  for (const value of profile.lists[key]) {
    const digits = Number.isNaN(value) ? 1 : String(Math.trunc(Math.abs(value))).length + (value < 0 ? 1 : 0);
    if (digits > longest) longest = digits;
  }
  // Digits are all as wide as a 0, and no sign or point is wider.
  return Math.ceil(Math.max(heading, measure("0".repeat(longest + 1 + decimals)))) + BESIDE_TEXT;
}

/// Measures text in the font of an element.
function measureIn(element: HTMLElement): (text: string, scale?: number) => number {
  context ??= document.createElement("canvas").getContext("2d");
  const { fontFamily, fontSize } = getComputedStyle(element);
  const size = Number.parseFloat(fontSize);
  return (text, scale = 1) => {
    if (!context) return 0.65 * size * scale * text.length;
    context.font = `${size * scale}px ${fontFamily}`;
    return context.measureText(text).width;
  };
}
