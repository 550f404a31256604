/// Plots of profiles as SVG. The only module that knows the plotting library.
import * as Plot from "@observablehq/plot";
import { thinLine, thinMarks } from "./decimate";

/// An interval of an axis, lower end first.
export type Span = readonly [number, number];

/// What part of a profile is in view: the quantity that is drawn across, in its own unit, and depth
/// (m, positive down).
export interface View {
  across: Span;
  depth: Span;
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
  view: View;
  /// Size of the drawing in CSS pixels.
  width: number;
  height: number;
}

/// A drawn profile and the way between its values and the pixels of the drawing.
export interface ProfilePlot {
  svg: SVGSVGElement;
  /// The frame of the data area, in pixels from the drawing's top left corner.
  area: { left: number; top: number; right: number; bottom: number };
  toX(value: number): number;
  toY(depth: number): number;
  fromX(pixel: number): number;
  fromY(pixel: number): number;
}

/// Up to this many levels in view, each gets its own mark; beyond, marks would only make a band.
export const MOST_LEVEL_MARKS = 2000;

const MARGIN = { top: 46, right: 18, bottom: 12, left: 56 };

/// The view that shows all given levels with a little room around them.
export function viewOf(
  values: readonly number[],
  depths: readonly number[],
  wanted: (index: number) => boolean = () => true,
): View {
  const across = padded(extent(values, wanted), 0.06, 1);
  const depth = padded(extent(depths, wanted), 0.03, 1);
  return { across, depth };
}

/// A quantity against depth, depth downward. Levels are circles of class "level-point", invalid
/// ones crosses of class "level-invalid" besides, or arrows of class "invalid-beyond" at the edge
/// beyond which their value lies. Joined levels are diamonds of class "level-joined" besides, with
/// a line of their own; a line laid over has squares. Lines are thinned to what the pixels can show.
export function profilePlot(options: ProfilePlotOptions): ProfilePlot {
  const { values, label, depths, invalid, joined, over, view, width, height } = options;
  const area = {
    left: MARGIN.left,
    top: MARGIN.top,
    right: Math.max(width - MARGIN.right, MARGIN.left + 20),
    bottom: Math.max(height - MARGIN.bottom, MARGIN.top + 20),
  };
  const [shallow, deep] = view.depth;
  const [low, high] = view.across;
  const toX = linear(low, high, area.left, area.right);
  const toY = linear(shallow, deep, area.top, area.bottom);

  const lowestRow = Math.floor(area.top) - 1;
  const highestRow = Math.ceil(area.bottom) + 1;
  const rowOf = (i: number) => {
    const row = Math.round(toY(depths[i] ?? NaN));
    return Math.min(Math.max(row, lowestRow), highestRow);
  };
  const line = split(thinLine(values, rowOf), joined);
  const overLine = thinLine(over.map((i) => values[i] ?? NaN), (i) => rowOf(over[i] ?? -1)).map((i) => over[i] ?? -1);

  const inView = (i: number) => {
    const value = values[i] ?? NaN;
    const depth = depths[i] ?? NaN;
    return value >= low && value <= high && depth >= shallow && depth <= deep;
  };
  const points = levelsInView(depths.length, (i) => inView(i) && !joined.has(i));
  const joinedPoints = joined.size === 0 ? [] : levelsInView(depths.length, (i) => inView(i) && joined.has(i));
  const overInView = over.filter(inView);
  const overPoints = overInView.length > MOST_LEVEL_MARKS ? [] : overInView;
  const pixelOf = (i: number) => [toX(values[i] ?? NaN), toY(depths[i] ?? NaN)] as const;
  const thinned = (levels: number[]) =>
    levels.length > MOST_LEVEL_MARKS ? thinMarks(levels, pixelOf) : levels;
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
  const svg = Plot.plot({
    className: "profile-plot",
    width: Math.max(width, MARGIN.left + MARGIN.right + 20),
    height: Math.max(height, MARGIN.top + MARGIN.bottom + 20),
    marginTop: MARGIN.top,
    marginRight: MARGIN.right,
    marginBottom: MARGIN.bottom,
    marginLeft: MARGIN.left,
    x: { domain: [low, high], axis: null },
    y: { domain: [deep, shallow], axis: null },
    marks: [
      Plot.gridX({ className: "grid", strokeOpacity: 1, ticks: tickCount(area.right - area.left, 80) }),
      Plot.gridY({ className: "grid", strokeOpacity: 1, ticks: tickCount(area.bottom - area.top, 48) }),
      Plot.frame({ className: "frame" }),
      Plot.axisX({
        className: "axis",
        anchor: "top",
        label,
        labelAnchor: "center",
        labelArrow: "none",
        ticks: tickCount(area.right - area.left, 80),
        tickFormat: plainNumber,
      }),
      Plot.axisY({
        className: "axis",
        anchor: "left",
        label: "Depth (m)",
        labelAnchor: "center",
        labelArrow: "none",
        ticks: tickCount(area.bottom - area.top, 48),
        tickFormat: plainNumber,
      }),
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

  return {
    svg,
    area,
    toX,
    toY,
    fromX: linear(area.left, area.right, low, high),
    fromY: linear(area.top, area.bottom, shallow, deep),
  };
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
function levelsInView(count: number, inView: (index: number) => boolean): number[] {
  const levels: number[] = [];
  for (let i = 0; i < count; ++i) {
    if (!inView(i)) continue;
    if (levels.length === MOST_LEVEL_MARKS) return [];
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

function extent(values: readonly number[], wanted: (index: number) => boolean): Span {
  let low = Infinity;
  let high = -Infinity;
  values.forEach((value, index) => {
    if (Number.isNaN(value) || !wanted(index)) return;
    if (value < low) low = value;
    if (value > high) high = value;
  });
  return low <= high ? [low, high] : [0, 1];
}

/// The span widened by a share of its length on both sides, and to at least `least`.
function padded([low, high]: Span, share: number, least: number): Span {
  const length = high - low;
  const room = Math.max(length * share, (least - length) / 2);
  return [low - room, high + room];
}
