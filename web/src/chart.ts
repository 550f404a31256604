/// Lines in a frame with two axes, as SVG: what comparisons and rays are drawn with.
import * as Plot from "@observablehq/plot";
import type { Span } from "./plot";

export interface ChartLine {
  /// Class of the drawn line, besides "chart-line".
  className: string;
  points: readonly { x: number; y: number }[];
  /// Share, 0 to 1, of the way from the first to the last of a family of lines; none for a line that
  /// has its colour by its class.
  shade?: number;
  /// Written behind the last point.
  label?: string;
  /// Whether each point is marked.
  marks?: boolean;
}

export interface ChartOptions {
  lines: readonly ChartLine[];
  x: { label: string; span: Span; isLog?: boolean; ticks?: readonly number[] };
  /// Of a span whose first number is the larger one, values grow downward. Numbers of the axis are not
  /// closer than `finest`.
  y: { label: string; span: Span; finest?: number };
  /// Size of the drawing in CSS pixels.
  width: number;
  height: number;
  /// Pixels kept free at the right, for labels.
  room?: number;
}

/// A drawn chart and the way between its values and the pixels of the drawing.
export interface Chart {
  svg: SVGSVGElement;
  /// The frame of the data area, in pixels from the drawing's top left corner.
  area: { left: number; top: number; right: number; bottom: number };
  toX(value: number): number;
  toY(value: number): number;
  fromX(pixel: number): number;
  fromY(pixel: number): number;
}

const MARGIN = { top: 46, right: 22, bottom: 12, left: 72 };
const LEAST = 20;

export function chart({ lines, x, y, width, height, room = 0 }: ChartOptions): Chart {
  const marginRight = MARGIN.right + room;
  const area = {
    left: MARGIN.left,
    top: MARGIN.top,
    right: Math.max(width - marginRight, MARGIN.left + LEAST),
    bottom: Math.max(height - MARGIN.bottom, MARGIN.top + LEAST),
  };
  // The library labels only some ticks of a logarithmic axis; so it is given the logarithms.
  const inX = x.isLog ? Math.log10 : (value: number) => value;
  const outX = x.isLog ? (value: number) => 10 ** value : (value: number) => value;
  const [low, high] = x.span.map(inX) as [number, number];
  const ticks = (pixels: number, apart: number) => Math.max(2, Math.round(pixels / apart));
  const across = x.ticks ? { ticks: x.ticks.map(inX) } : { ticks: ticks(area.right - area.left, 90) };
  const finest = y.finest === undefined ? Infinity : Math.floor(Math.abs(y.span[1] - y.span[0]) / y.finest);
  const down = { ticks: Math.max(1, Math.min(ticks(area.bottom - area.top, 44), finest)) };
  const svg = Plot.plot({
    className: "profile-plot",
    width: area.right + marginRight,
    height: area.bottom + MARGIN.bottom,
    marginTop: MARGIN.top,
    marginRight,
    marginBottom: MARGIN.bottom,
    marginLeft: MARGIN.left,
    x: { domain: [low, high], axis: null },
    y: { domain: [...y.span], axis: null },
    marks: [
      Plot.gridX({ className: "grid", strokeOpacity: 1, ...across }),
      Plot.gridY({ className: "grid", strokeOpacity: 1, ...down }),
      Plot.frame({ className: "frame" }),
      Plot.axisX({ className: "axis", anchor: "top", label: x.label, labelAnchor: "center", labelArrow: "none", tickFormat: (value: number) => plainNumber(outX(value)), ...across }),
      Plot.axisY({ className: "axis", anchor: "left", label: y.label, labelAnchor: "center", labelArrow: "none", tickFormat: plainNumber, ...down }),
      ...lines.flatMap((line) => marksOf(line, inX)),
      ...lines.flatMap((line) => labelOf(line, inX)),
    ],
  }) as SVGSVGElement;
  // The host's content security policy refuses a drawing's own style element.
  for (const style of svg.querySelectorAll("style")) style.remove();
  svg.setAttribute("aria-hidden", "true");

  const toY = linear(y.span[0], y.span[1], area.bottom, area.top);
  const fromY = linear(area.bottom, area.top, y.span[0], y.span[1]);
  const toX = linear(low, high, area.left, area.right);
  const fromX = linear(area.left, area.right, low, high);
  return { svg, area, toX: (value) => toX(inX(value)), toY, fromX: (pixel) => outX(fromX(pixel)), fromY };
}

function marksOf({ className, points, shade, marks }: ChartLine, inX: (value: number) => number): Plot.Markish[] {
  // In the order in which they come: a path may turn.
  const drawn = points.map(({ x, y }) => ({ x: inX(x), y }));
  const stroke = shade === undefined ? {} : { stroke: shaded(shade) };
  const fill = shade === undefined ? {} : { fill: shaded(shade) };
  return [
    Plot.line(drawn, { className: `chart-line ${className}`, x: "x", y: "y", clip: true, strokeWidth: 1.8, ...stroke }),
    ...(marks ? [Plot.dot(drawn, { className: `chart-marks ${className}`, x: "x", y: "y", r: 2.6, ...fill })] : []),
  ];
}

/// Over all lines, and above the end of its own: others may go on from there.
function labelOf({ className, points, shade, label }: ChartLine, inX: (value: number) => number): Plot.Markish[] {
  const last = points[points.length - 1];
  if (!label || !last) return [];
  const fill = shade === undefined ? {} : { fill: shaded(shade) };
  return [
    Plot.text([{ x: inX(last.x), y: last.y }], {
      className: `chart-label ${className}`, x: "x", y: "y", text: () => label, dx: 5, dy: -9, textAnchor: "start", ...fill,
    }),
  ];
}

/// A colour between two of the theme's.
export function shaded(shade: number): string {
  return `color-mix(in oklab, var(--chart-first), var(--chart-last) ${Math.round(shade * 100)}%)`;
}

function plainNumber(value: number): string {
  return String(Number(value.toPrecision(12))).replace("-", "\u2212");
}

function linear(from: number, to: number, low: number, high: number): (value: number) => number {
  return (value) => low + ((value - from) / (to - from)) * (high - low);
}
