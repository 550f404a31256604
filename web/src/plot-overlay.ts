/// What is drawn over the panels and follows the pointer: crosshair, rings, drag box, tip.
import { valueText } from "./columns";
import { comparedValues } from "./compared-values";
import { make, makeSvg } from "./dom";
import type { Area } from "./plot";
import type { Panel, Plotted } from "./plot-panels";
import { baseName, isJoined } from "./profile";
import type { Span } from "./spans";

/// A point of the plot, in CSS pixels from its top left corner.
export interface Point {
  x: number;
  y: number;
}

/// What a drag covers: a part of one panel, and its depths in all of them.
export interface DragBox {
  x: Span;
  y: Span;
}

/// A level that is pointed at.
export interface Pointed {
  level: number;
  /// The panel that the pointer is in.
  panel: Panel;
}

export class PlotOverlay {
  readonly element = makeSvg("svg", "overlay");
  readonly tip = make("div", "tip");
  private readonly crosshair = makeSvg("path", "crosshair");
  private readonly rings = makeSvg("g", "rings");
  private readonly band = makeSvg("rect", "drag-band");
  private readonly box = makeSvg("rect", "drag-box");

  constructor(private readonly host: HTMLElement) {
    this.element.setAttribute("aria-hidden", "true");
    this.element.append(this.crosshair, this.rings, this.band, this.box);
    this.tip.hidden = true;
    this.tip.setAttribute("aria-hidden", "true");
  }

  resize(width: number, height: number): void {
    this.element.setAttribute("viewBox", `0 0 ${width} ${height}`);
  }

  /// Draws a ring at a level in every panel that shows it. An invalid level whose value is out of
  /// view has its ring around the arrow at the edge.
  rest(panels: readonly Panel[], plotted: Plotted, selected: number, invalid: ReadonlySet<number>): void {
    const rings = panels.map((panel) =>
      ring("selected-ring", 8, selected < 0 ? null : placeOf(panel, plotted, selected, invalid.has(selected))));
    this.rings.replaceChildren(...rings);
  }

  /// Draws the crosshair through all panels at a level's depth, its rings, its values and those of a
  /// profile that lies under it; nothing for null.
  point(
    panels: readonly Panel[],
    plotted: Plotted,
    under: Plotted | null,
    at: Pointed | null,
    invalid: ReadonlySet<number>,
  ): void {
    for (const each of this.rings.querySelectorAll(".hover-ring")) each.remove();
    const [first] = panels;
    const last = panels[panels.length - 1];
    this.tip.hidden = !at;
    if (!at || !first || !last) {
      this.crosshair.setAttribute("d", "");
      return;
    }
    const y = first.toY(plotted.profile.lists.svp_Depth[at.level] ?? NaN);
    let path = `M${first.area.left},${y}H${last.area.right}`;
    for (const panel of panels) {
      const place = placeOf(panel, plotted, at.level, false);
      this.rings.append(ring("hover-ring", 6, place));
      if (place) path += `M${place.x},${y}V${panel.area.top}`;
    }
    this.crosshair.setAttribute("d", path);
    const place = placeOf(at.panel, plotted, at.level, false);
    const { left, right } = at.panel.area;
    this.drawTip(plotted, under, at.level, invalid.has(at.level), { x: place?.x ?? (left + right) / 2, y });
  }

  /// Draws what a drag covers.
  drag(panels: readonly Panel[], box: DragBox | null): void {
    const first = panels[0]?.area.left ?? 0;
    const last = panels[panels.length - 1]?.area.right ?? 0;
    stretch(this.box, box);
    stretch(this.band, box && { x: [first, last], y: box.y });
  }

  /// Shows a level on its way to another value.
  move({ x, y }: Point, area: Area, text: string): void {
    for (const each of this.rings.querySelectorAll(".move-ring")) each.remove();
    this.rings.append(ring("move-ring", 8, { x, y }));
    this.crosshair.setAttribute("d", `M${area.left},${y}H${area.right}`);
    this.tip.replaceChildren(make("div", "tip-title", text));
    this.tip.hidden = false;
    this.placeTip({ x, y });
  }

  private drawTip(plotted: Plotted, under: Plotted | null, level: number, isInvalid: boolean, at: Point): void {
    const { profile, columns } = plotted;
    const lines = columns.map((column) => tipLine(column.label, valueText(profile, column, level)));
    const compared = under ? comparedValues(plotted, under, level) : [];
    if (under && compared.length > 0) {
      lines.push(make("div", "tip-title tip-under", baseName(under.profile.filename)));
      lines.push(...compared.map(({ column, text }) => tipLine(column.label, text)));
    }
    const title = make("div", "tip-title", `Level ${level + 1}`);
    if (isInvalid) title.append(make("span", "tip-invalid", "invalid"));
    else if (isJoined(profile, level)) title.append(make("span", "tip-joined", "joined"));
    this.tip.replaceChildren(title, ...lines);
    this.placeTip(at);
  }

  /// Beside a point, on the side that has room.
  private placeTip(at: Point): void {
    const { tip, host } = this;
    const { offsetWidth: width, offsetHeight: height } = tip;
    const right = at.x + 16 + width < host.clientWidth - 8;
    const x = right ? at.x + 16 : Math.max(4, at.x - 16 - width);
    const lowest = host.clientHeight - height - 4;
    tip.style.left = `${x}px`;
    tip.style.top = `${Math.max(4, Math.min(at.y - height / 2, lowest))}px`;
  }
}

/// Where a level is drawn in a panel, or null when it is out of view there. With `orEdge`, a value
/// out of view is at the edge that it lies beyond.
export function placeOf(panel: Panel, plotted: Plotted, level: number, orEdge: boolean): Point | null {
  const value = panel.values[level] ?? NaN;
  const x = panel.toX(value);
  const y = panel.toY(plotted.profile.lists.svp_Depth[level] ?? NaN);
  const { left, top, right, bottom } = panel.area;
  if (!(y >= top - 1 && y <= bottom + 1)) return null;
  if (x >= left - 1 && x <= right + 1) return { x, y };
  return orEdge && !Number.isNaN(value) ? { x: x < left ? left + 8 : right - 8, y } : null;
}

function tipLine(label: string, text: string): HTMLElement {
  return make("div", "tip-line", make("span", "", label), make("b", "", text));
}

function ring(className: string, radius: number, at: Point | null): SVGCircleElement {
  const element = makeSvg("circle", className);
  element.setAttribute("r", String(radius));
  element.setAttribute("visibility", at ? "visible" : "hidden");
  if (at) {
    element.setAttribute("cx", String(at.x));
    element.setAttribute("cy", String(at.y));
  }
  return element;
}

function stretch(rect: SVGRectElement, box: DragBox | null): void {
  rect.setAttribute("x", String(box?.x[0] ?? 0));
  rect.setAttribute("y", String(box?.y[0] ?? 0));
  rect.setAttribute("width", String(box ? box.x[1] - box.x[0] : 0));
  rect.setAttribute("height", String(box ? box.y[1] - box.y[0] : 0));
}
