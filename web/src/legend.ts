/// Legends: how the lines of a plot look, each told by colour, dash and mark.
import { make, makeSvg } from "./dom";

export type LineKind = "measured" | "joined" | "thinned";

/// One entry a line.
export function legend(entries: readonly { key: LineKind; label: string }[]): HTMLElement {
  return make("div", "legend", ...entries.map(({ key, label }) => make("span", "legend-entry", swatch(key), label)));
}

function swatch(key: LineKind): Element {
  const svg = makeSvg("svg", `swatch swatch-${key}`);
  svg.setAttribute("viewBox", "0 0 34 12");
  svg.setAttribute("aria-hidden", "true");
  const line = makeSvg("path", "swatch-line");
  line.setAttribute("d", "M0,6H34");
  const mark = makeSvg("path", "swatch-mark");
  const shapes = {
    measured: "M14,6a3,3 0 1 0 6,0a3,3 0 1 0 -6,0Z",
    joined: "M17,1.5L21.5,6L17,10.5L12.5,6Z",
    thinned: "M13.5,2.5h7v7h-7Z",
  };
  mark.setAttribute("d", shapes[key]);
  svg.append(line, mark);
  return svg;
}
