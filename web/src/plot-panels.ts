/// The panels of a plot: one quantity each, side by side over one depth axis.
import { shownValues, type Column, type PlotQuantity } from "./columns";
import { MARGIN, depthAxis, labelFits, profilePlot, type ProfilePlot, type Span, type Underlay } from "./plot";
import type { Profile } from "./profile";
import type { ListKey } from "./protocol";
import { spanOf } from "./spans";

/// Up to this many levels in view get a mark each, in all panels together.
export const MOST_LEVEL_MARKS = 2000;

/// Shares of the width: sound speed is what a sounding bends by, and its numbers are the longest.
const SPEED_SHARE = 1.5;

/// What of the depths and of each quantity is in view.
export interface LinkedView {
  depth: Span;
  across: ReadonlyMap<ListKey, Span>;
}

/// A profile as it is plotted.
export interface Plotted {
  profile: Profile;
  columns: readonly Column[];
  quantities: readonly PlotQuantity[];
  /// Values of each quantity, NaN where none was measured.
  values: ReadonlyMap<ListKey, readonly number[]>;
  /// All that can be seen of it.
  full: LinkedView;
}

/// A panel on the page.
export interface Panel extends ProfilePlot {
  quantity: PlotQuantity;
  values: readonly number[];
}

export interface PanelOptions {
  plotted: Plotted;
  view: LinkedView;
  invalid: readonly number[];
  over: readonly number[];
  /// A profile to be laid under, where it has the quantity of a panel.
  under: Plotted | null;
  width: number;
  height: number;
}

const NONE: ReadonlySet<number> = new Set();

export function plottedOf(
  profile: Profile,
  columns: readonly Column[],
  quantities: readonly PlotQuantity[],
): Plotted {
  const values = new Map(quantities.map(({ key }) => [key, shownValues(profile, key)]));
  return { profile, columns, quantities, values, full: viewOf(profile, values) };
}

/// The view that shows all wanted levels with a little room around them.
export function viewOf(
  profile: Profile,
  values: ReadonlyMap<ListKey, readonly number[]>,
  wanted?: (level: number) => boolean,
): LinkedView {
  return {
    depth: spanOf([profile.lists.svp_Depth], 0.03, 1, wanted),
    across: new Map([...values].map(([key, list]) => [key, spanOf([list], 0.06, leastSpan(key), wanted)])),
  };
}

/// The view that shows all of a profile and, across, what is laid under it at the same depths. A
/// profile that goes much deeper does not make the one above it small.
export function viewWith(plotted: Plotted, under: Plotted | null): LinkedView {
  const { full, values } = plotted;
  if (!under) return full;
  const depths = under.profile.lists.svp_Depth;
  const isBeside = (level: number) => {
    const depth = depths[level] ?? NaN;
    return depth >= full.depth[0] && depth <= full.depth[1];
  };
  const across = plotted.quantities.map((quantity): [ListKey, Span] => {
    const beside = (underlay(under, quantity)?.values ?? []).filter((_, level) => isBeside(level));
    return [quantity.key, spanOf([values.get(quantity.key) ?? [], beside], 0.06, leastSpan(quantity.key))];
  });
  return { depth: full.depth, across: new Map(across) };
}

/// Draws all panels. They share the depths in view.
export function drawPanels({ plotted, view, invalid, over, under, width, height }: PanelOptions): Panel[] {
  const { profile, columns, quantities, values } = plotted;
  const shares = quantities.map(({ key }) => (key === "svp_Speed" ? SPEED_SHARE : 1));
  const whole = shares.reduce((sum, share) => sum + share, 0);
  const { ticks, room: depthRoom } = depthAxis(view.depth, height);
  const axis = depthRoom - MARGIN.left;
  let right = axis;
  return quantities.map((quantity, place) => {
    const left = place === 0 ? 0 : right;
    right += Math.floor(((width - axis) * (shares[place] ?? 1)) / whole);
    const list = values.get(quantity.key) ?? [];
    const room = right - left - MARGIN.left - (place === 0 ? axis : 0);
    const drawn = profilePlot({
      values: list,
      label: labelFits(quantity.label, room) ? quantity.label : shortLabel(quantity, columns),
      depths: profile.lists.svp_Depth,
      invalid,
      joined: profile.joined ?? NONE,
      over,
      under: under && underlay(under, quantity),
      view: { depth: view.depth, across: view.across.get(quantity.key) ?? [0, 1] },
      left,
      width: right - left,
      height,
      depthTicks: ticks,
      depthRoom: place === 0 ? depthRoom : 0,
      mostMarks: Math.floor(MOST_LEVEL_MARKS / quantities.length),
    });
    drawn.svg.dataset["quantity"] = quantity.key;
    // The levels are read from the table; the drawing itself says nothing to a screen reader.
    drawn.svg.setAttribute("aria-hidden", "true");
    return { ...drawn, quantity, values: list };
  });
}

/// Closest zoom across: below this nothing shows that an instrument could have measured.
export function closestSpan(key: ListKey): number {
  return key === "svp_AbsCoef" ? 1e-6 : key === "svp_Speed" ? 0.02 : 0.002;
}

/// A quantity that hardly changes is not blown up to fill the panel.
function leastSpan(key: ListKey): number {
  return key === "svp_AbsCoef" ? 1e-3 : key === "svp_Speed" ? 1 : 0.2;
}

/// What of a profile can be laid under a panel: salinities are none under conductivities.
export function underlay({ quantities, values, profile }: Plotted, { key, label }: PlotQuantity): Underlay | null {
  const list = values.get(key);
  if (!list || !quantities.some((each) => each.key === key && each.label === label)) return null;
  return { values: list, depths: profile.lists.svp_Depth };
}

/// The label of a narrow panel, as the table has it.
function shortLabel({ key, label }: PlotQuantity, columns: readonly Column[]): string {
  const column = columns.find((each) => each.key === key);
  if (!column) return label;
  return column.unit ? `${column.label} (${column.unit})` : column.label;
}
