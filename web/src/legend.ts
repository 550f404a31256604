/// Legends: how the lines of a plot look, each told by colour, dash and mark.
import { button, make, makeSvg } from "./dom";

export type LineKind = "measured" | "joined" | "thinned" | "under";

export interface LegendEntry {
  key: LineKind;
  label: string;
  /// Takes the line from the plot; absent for lines that stay.
  remove?: () => void;
}

/// One entry a line.
export function legend(entries: readonly LegendEntry[]): HTMLElement {
  return make("div", "legend", ...entries.map(({ key, label, remove }) => {
    const name = make("span", "legend-name", label);
    name.title = label;
    const entry = make("span", "legend-entry", swatch(key), name);
    if (remove) {
      const away = button("quiet legend-remove", "✕", remove);
      away.title = `Remove ${label} from the plot`;
      away.setAttribute("aria-label", away.title);
      entry.append(away);
    }
    return entry;
  }));
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
    // No marks: it is the background of the others.
    under: "",
  };
  mark.setAttribute("d", shapes[key]);
  svg.append(line, mark);
  return svg;
}
