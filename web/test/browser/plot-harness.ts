/// A plot of its own on the page, whose edits are written down: what a test of editing drives.
import { columnsOf, plotQuantities } from "../../src/columns";
import { PlotView } from "../../src/plot-view";
import { profileOf, type Profile } from "../../src/profile";

const packet = {
  whoami: "SVP_OpenSVP",
  filename: "harness.vp2",
  svp_Depth: [0, 10, 20, 30, 40],
  svp_Depth_CTD: [0, 10, 20, 30, 40],
  svp_Speed: [1500, 1502.5, 1505, 1507.5, 1510],
  svp_Speed_CTD: [1500, 1502.5, 1505, 1507.5, 1510],
  svp_Temp: [10, 11, 12, 13, 14.125],
  svp_Sal: [0, 0, 0, 0, 0],
  svp_AbsCoef: [0, 0, 0, 0, 0],
};

export interface Harness {
  edits: [string, ...(number | string)[]][];
  /// What the plot has told last.
  zoomed: boolean;
  selected: number;
  select(level: number): void;
  editing(on: boolean): void;
  /// Shows the profile with another sound speed at a level, as after an edit.
  change(level: number, speed: number): void;
  /// Shows the profile with its first levels alone.
  cut(count: number): void;
}

const host = document.createElement("div");
host.id = "harness";
host.className = "plot";
host.tabIndex = 0;
Object.assign(host.style, { position: "fixed", inset: "0", margin: "0", zIndex: "100", background: "var(--panel)" });
// Without a cast the page hides its plots.
document.body.classList.add("has-cast");
document.body.append(host);

let profile: Profile = profileOf(packet);
const plot = new PlotView(host, {
  select: (level) => harness.select(level),
  zoomed: (zoomed) => (harness.zoomed = zoomed),
});
const shownAs = (next: Profile) => {
  profile = next;
  const columns = columnsOf(profile);
  return [profile, columns, ...plotQuantities(columns)] as const;
};
const harness: Harness = {
  edits: [],
  zoomed: false,
  selected: -1,
  select: (level) => {
    harness.selected = level;
    plot.markSelected(level);
  },
  editing: (on) => plot.setEditing(on),
  change: (level, speed) => {
    const svp_Speed = profile.lists.svp_Speed.map((each, i) => (i === level ? speed : each));
    plot.update(...shownAs({ ...profile, lists: { ...profile.lists, svp_Speed } }));
  },
  cut: (count) => {
    const part = (list: readonly number[]) => list.slice(0, count);
    plot.update(...shownAs(profileOf({
      ...packet, svp_Depth: part(packet.svp_Depth), svp_Speed: part(packet.svp_Speed), svp_Temp: part(packet.svp_Temp),
    })));
  },
};
plot.onEdit({
  moved: (level, value, quantity) => harness.edits.push(["moved", level, value, quantity]),
  insertAt: (depth, value, quantity) => harness.edits.push(["insert", depth, value, quantity]),
  remove: (level) => harness.edits.push(["remove", level]),
});
plot.show(...shownAs(profile));
Object.assign(window, { harness });
