/// Plots of profiles as SVG. The only module that knows the plotting library.
import * as Plot from "@observablehq/plot";
import { thinLine, thinMarks } from "./decimate";
import { roundValues, type Span } from "./spans";

export type { Span } from "./spans";

/// What part of a profile is in view: the quantity that is drawn across, in its own unit, and depth
/// (m, positive down).
export interface View {
  across: Span;
  depth: Span;
}

/// A line for comparison: values of the same quantity, with depths of their own.
export interface Underlay {
  values: readonly number[];
  depths: readonly number[];
}

export interface ProfilePlotOptions {
  /// Values of the quantity that is drawn across, one a level.
  values: readonly number[];
  /// What the axis of these values says, with their unit.
  label: string;
  depths: readonly number[];
  /// Indices of invalid levels, ascending.
  invalid: readonly number[];
  /// Levels that were not measured but joined.
  joined: ReadonlySet<number>;
  /// Indices of the levels that a line laid over the profile runs through, ascending; none for none.
  over: readonly number[];
  /// A line laid under the profile.
  under: Underlay | null;
  view: View;
  /// Where the drawing stands among others, in CSS pixels from the left.
  left: number;
  /// Size of the drawing in CSS pixels.
  width: number;
  height: number;
  /// Numbers of the depth axis, and the room that they and its name take where they are written:
  /// panels beside the first one share them, and have 0.
  depthTicks: readonly number[];
  depthRoom: number;
  /// Up to this many levels in view, each gets its own mark; beyond, marks would only make a band.
  mostMarks: number;
}

/// A drawn profile and the way between its values and pixels, counted from where `left` is.
export interface ProfilePlot {
  svg: SVGSVGElement;
  /// The frame of the data area.
  area: Area;
  toX(value: number): number;
  toY(depth: number): number;
  fromX(pixel: number): number;
  fromY(pixel: number): number;
}

export interface Area {
  left: number;
  top: number;
  right: number;
  bottom: number;
}

/// Room around the data area for the axes, in CSS pixels.
export const MARGIN = { top: 46, right: 10, bottom: 12, left: 10 };

/// Pixels that a digit takes in an axis, and from one number to the next.
const DIGIT_PX = 7;
const TICKS_APART_PX = 60;
const ROWS_APART_PX = 48;

/// Pixels beside the longest depth for the axis's name and its tick; what short depths take is not
/// left, so that panels do not jump with every zoom.
const DEPTH_NAME_PX = 26;
const LEAST_DEPTH_ROOM = 56;

/// The numbers of a depth axis that is drawn in so many pixels, and the room that it takes.
export function depthAxis(depths: Span, height: number): { ticks: number[]; room: number } {
  const count = tickCount(height - MARGIN.top - MARGIN.bottom, ROWS_APART_PX);
  const ticks = roundValues(depths, count);
  const longest = Math.max(0, ...ticks.map((tick) => plainNumber(tick).length));
  return { ticks, room: Math.max(LEAST_DEPTH_ROOM, longest * DIGIT_PX + DEPTH_NAME_PX) };
}

/// A quantity against depth, depth downward. Levels are circles of class "level-point", invalid
/// ones crosses of class "level-invalid" besides, or arrows of class "invalid-beyond" at the edge
/// beyond which their value lies. Joined levels are diamonds of class "level-joined" besides, with
/// a line of their own and a tint of the depths that they cover; a line laid over has squares. Lines
/// are thinned to what the pixels can show.
export function profilePlot(options: ProfilePlotOptions): ProfilePlot {
  const { values, label, depths, invalid, joined, over, under, view, left, width, height, depthTicks, depthRoom } = options;
  const marginLeft = Math.max(depthRoom, MARGIN.left);
  const area = {
    left: left + marginLeft,
    top: MARGIN.top,
    right: left + Math.max(width - MARGIN.right, marginLeft + 20),
    bottom: Math.max(height - MARGIN.bottom, MARGIN.top + 20),
  };
  const [shallow, deep] = view.depth;
  const [low, high] = view.across;
  const toX = linear(low, high, area.left, area.right);
  const toY = linear(shallow, deep, area.top, area.bottom);

  const lowestRow = Math.floor(area.top) - 1;
  const highestRow = Math.ceil(area.bottom) + 1;
  const rowAt = (depth: number) => Math.min(Math.max(Math.round(toY(depth)), lowestRow), highestRow);
  const rowOf = (i: number) => rowAt(depths[i] ?? NaN);
  const line = split(thinLine(values, rowOf), joined);
  const overLine = thinLine(over.map((i) => values[i] ?? NaN), (i) => rowOf(over[i] ?? -1)).map((i) => over[i] ?? -1);
  const underLine = under ? thinLine(under.values, (i) => rowAt(under.depths[i] ?? NaN)) : [];

  const inView = (i: number) => {
    const value = values[i] ?? NaN;
    const depth = depths[i] ?? NaN;
    return value >= low && value <= high && depth >= shallow && depth <= deep;
  };
  const most = options.mostMarks;
  const points = levelsInView(depths.length, most, (i) => inView(i) && !joined.has(i));
  const joinedPoints = joined.size === 0 ? [] : levelsInView(depths.length, most, (i) => inView(i) && joined.has(i));
  const overInView = over.filter(inView);
  const overPoints = overInView.length > most ? [] : overInView;
  const pixelOf = (i: number) => [toX(values[i] ?? NaN), toY(depths[i] ?? NaN)] as const;
  const thinned = (levels: number[]) => (levels.length > most ? thinMarks(levels, pixelOf) : levels);
  const crosses = thinned(invalid.filter(inView));
  // Invalid values often lie far out; when they are zoomed away, their depths still show.
  const atDepth = invalid.filter((i) => {
    const depth = depths[i] ?? NaN;
    return depth >= shallow && depth <= deep;
  });
  const lower = thinned(atDepth.filter((i) => (values[i] ?? NaN) < low));
  const higher = thinned(atDepth.filter((i) => (values[i] ?? NaN) > high));

  const x = (i: number) => values[i] ?? NaN;
  const y = (i: number) => depths[i] ?? NaN;
  const ticks = ticksAcross(view.across, toX, area);
  const svg = Plot.plot({
    className: "profile-plot",
    width: Math.max(width, marginLeft + MARGIN.right + 20),
    height: Math.max(height, MARGIN.top + MARGIN.bottom + 20),
    marginTop: MARGIN.top,
    marginRight: MARGIN.right,
    marginBottom: MARGIN.bottom,
    marginLeft,
    x: { domain: [low, high], axis: null },
    y: { domain: [deep, shallow], axis: null },
    marks: [
      Plot.rect(joinedZones(depths, joined), {
        className: "joined-zone", x1: low, x2: high, y1: "from", y2: "to", clip: true,
      }),
      Plot.gridX(ticks, { className: "grid", strokeOpacity: 1 }),
      Plot.gridY(depthTicks, { className: "grid", strokeOpacity: 1 }),
      Plot.frame({ className: "frame" }),
      Plot.axisX(ticks, {
        className: "axis", anchor: "top", label, labelAnchor: "center", labelArrow: "none", tickFormat: plainNumber,
      }),
      depthRoom > 0
        ? Plot.axisY(depthTicks, {
            className: "axis", anchor: "left", label: "Depth (m)", labelAnchor: "center", labelArrow: "none",
            tickFormat: plainNumber,
          })
        : null,
      under
        ? Plot.line(underLine, {
            className: "trace-under", clip: true, strokeWidth: 2,
            x: (i: number) => under.values[i] ?? NaN, y: (i: number) => under.depths[i] ?? NaN,
          })
        : null,
      Plot.line(line.measured, { className: "trace", x, y, clip: true, strokeWidth: 1.5 }),
      Plot.line(line.joined, { className: "trace-joined", x, y, clip: true, strokeWidth: 1.7 }),
      Plot.dot(points, { className: "level-points", x, y, r: pointRadius(points.length), clip: true }),
      Plot.dot(joinedPoints, { className: "joined-levels", x, y, r: 3.6, symbol: "diamond2", clip: true }),
      Plot.line(overLine, { className: "trace-over", x, y, clip: true, strokeWidth: 1.7 }),
      Plot.dot(overPoints, { className: "over-levels", x, y, r: 3.4, symbol: "square2", clip: true }),
      Plot.dot(crosses, { className: "invalid-levels", x, y, r: 5, symbol: "times", clip: true }),
      Plot.text(lower, { className: "invalid-beyond", x: low, y, text: () => "◂", dx: 8 }),
      Plot.text(higher, { className: "invalid-beyond", x: high, y, text: () => "▸", dx: -8 }),
    ],
  }) as SVGSVGElement;

  // The library's own style element would be refused by the host's content security policy; the
  // page's style sheet has what is needed of it.
  for (const style of svg.querySelectorAll("style")) style.remove();
  for (const mark of svg.querySelectorAll(".level-points circle")) mark.classList.add("level-point");
  for (const mark of svg.querySelectorAll(".joined-levels path")) mark.classList.add("level-point", "level-joined");
  for (const mark of svg.querySelectorAll(".invalid-levels path")) mark.classList.add("level-invalid");
  svg.style.left = `${left}px`;

  return {
    svg,
    area,
    toX,
    toY,
    fromX: linear(area.left, area.right, low, high),
    fromY: linear(area.top, area.bottom, shallow, deep),
  };
}

/// Values for the numbers of the axis across: as many as have room, but two at least wherever two
/// can stand side by side, as one alone is no scale.
function ticksAcross(across: Span, toX: (value: number) => number, { left, right }: Area): number[] {
  const widthOf = (value: number) => plainNumber(value).length * DIGIT_PX;
  // Numbers at the very end of an axis would run into those of the panel beside it.
  const hasRoom = (value: number) => {
    const half = widthOf(value) / 2;
    return toX(value) - half >= left - MARGIN.left && toX(value) + half <= right + MARGIN.right;
  };
  const isClear = (value: number, before: number | undefined) =>
    before === undefined || toX(value) - toX(before) > (widthOf(value) + widthOf(before)) / 2 + 4;
  const wanted = Math.max(2, (right - left) / TICKS_APART_PX);
  let ticks: number[] = [];
  // More than wanted where most of those fall outside; every second or third where they are too close.
  for (let more = 0; more < 4; ++more) {
    const values = roundValues(across, wanted + more).filter(hasRoom);
    for (const every of [1, 2, 3]) {
      const some = values.filter((_, i) => i % every === 0);
      if (some.length > ticks.length && some.every((value, i) => isClear(value, some[i - 1]))) ticks = some;
      if (ticks.length >= 2) return ticks;
    }
  }
  return ticks;
}

/// Whether a label fits over a data area of this width.
export function labelFits(label: string, width: number): boolean {
  return label.length * 6.4 <= width;
}

/// The depths that joined levels cover, each zone from the measured level beside them on.
export function joinedZones(
  depths: readonly number[],
  joined: ReadonlySet<number>,
): { from: number; to: number }[] {
  if (joined.size === 0) return [];
  const zones: { from: number; to: number }[] = [];
  depths.forEach((depth, level) => {
    const before = depths[level - 1];
    if (before === undefined || !(joined.has(level) || joined.has(level - 1))) return;
    const last = zones[zones.length - 1];
    if (last && last.to === before) last.to = depth;
    else zones.push({ from: before, to: depth });
  });
  return zones;
}

/// The pieces of a line, given by its corners, that run between measured levels, and those that lead
/// to a joined one; -1 stands where a piece ends.
function split(line: number[], joined: ReadonlySet<number>): { measured: number[]; joined: number[] } {
  if (joined.size === 0) return { measured: line, joined: [] };
  const pieces = { measured: [] as number[], joined: [] as number[] };
  line.forEach((level, i) => {
    const before = line[i - 1];
    if (before === undefined) return;
    const piece = joined.has(level) || joined.has(before) ? pieces.joined : pieces.measured;
    if (piece[piece.length - 1] !== before) piece.push(-1, before);
    piece.push(level);
  });
  return pieces;
}

/// The levels in view, or none when there are too many to be marked one by one.
function levelsInView(count: number, most: number, inView: (index: number) => boolean): number[] {
  const levels: number[] = [];
  for (let i = 0; i < count; ++i) {
    if (!inView(i)) continue;
    if (levels.length === most) return [];
    levels.push(i);
  }
  return levels;
}

function pointRadius(count: number): number {
  return count <= 100 ? 3 : count <= 500 ? 2.2 : 1.6;
}

function tickCount(pixels: number, apart: number): number {
  return Math.max(2, Math.round(pixels / apart));
}

/// Axis numbers as plain digits: a thousands comma could be taken for a decimal one.
function plainNumber(value: number): string {
  return String(Number(value.toPrecision(12))).replace("-", "\u2212");
}

function linear(from: number, to: number, low: number, high: number): (value: number) => number {
  return (value) => low + ((value - from) / (to - from)) * (high - low);
}
