/// The plot of two rays, in which the launch angle can be dragged.
import { chart, type Chart } from "./chart";
import { make, makeSvg } from "./dom";
import type { Span } from "./plot";
import { commonReach, depthAt, drawnPoints, type Path, type Rays } from "./rays";

export interface RayPlotEvents {
  /// The user drags; degrees below the horizontal.
  turned(angle: number): void;
}

/// The room beside a vertical ray, as a share of the depths in view: where a drag can go.
const LEAST_BREADTH = 0.25;
/// A pointer that moves less than this many pixels drags nothing.
const STILL_PX = 4;

export class RayPlot {
  private rays: Rays | null = null;
  private names = { first: "", second: "" };
  private drawn: Chart | null = null;
  private view: { x: Span; y: Span } | null = null;
  private pressed: { x: number; y: number } | null = null;
  private dragging = false;
  private angle = 0;

  readonly element = make("div", "plot ray-plot");
  private readonly drawing = make("div", "drawing");
  private readonly overlay = makeSvg("svg", "overlay");
  private readonly launch = makeSvg("path", "ray-launch");
  private readonly cross = makeSvg("path", "crosshair");
  private readonly firstRing = makeSvg("circle", "hover-ring");
  private readonly secondRing = makeSvg("circle", "hover-ring");
  private readonly tip = make("div", "tip");

  constructor(private readonly events: RayPlotEvents) {
    const { element, overlay, tip } = this;
    element.setAttribute("role", "img");
    overlay.setAttribute("aria-hidden", "true");
    overlay.append(this.cross, this.launch, this.firstRing, this.secondRing);
    for (const ring of [this.firstRing, this.secondRing]) ring.setAttribute("r", "5");
    tip.setAttribute("aria-hidden", "true");
    element.append(this.drawing, overlay);
    element.addEventListener("pointerdown", (event) => this.press(event));
    element.addEventListener("pointermove", (event) => this.move(event));
    element.addEventListener("pointerup", () => this.release());
    element.addEventListener("pointercancel", () => this.release());
    element.addEventListener("pointerleave", () => this.hover(null));
    new ResizeObserver(() => this.draw()).observe(element);
  }

  /// Shows rays of an angle; none takes them away. While the user drags, the view stays as it is.
  show(rays: Rays | null, angle: number, names: { first: string; second: string }): void {
    this.rays = rays;
    this.angle = angle;
    this.names = names;
    if (!this.dragging) this.view = null;
    this.element.setAttribute(
      "aria-label",
      rays ? `Rays of ${angle}° in ${names.first} and in ${names.second}` : "No rays",
    );
    this.draw();
  }

  private draw(): void {
    const { rays, element } = this;
    const { clientWidth: width, clientHeight: height } = element;
    this.hover(null);
    this.launch.removeAttribute("d");
    if (!rays || width === 0 || height === 0) {
      this.drawn = null;
      return this.drawing.replaceChildren();
    }
    this.view ??= viewOf(rays);
    const { x, y } = this.view;
    const line = (path: Path, className: string) => ({
      className,
      points: drawnPoints(path, (x[1] - x[0]) / width, (y[0] - y[1]) / height),
    });
    this.drawn = chart({
      lines: [line(rays.second, "ray-second"), line(rays.first, "ray-first")],
      x: { label: "Horizontal distance (m)", span: x },
      y: { label: "Depth (m)", span: y },
      width,
      height,
    });
    this.drawing.replaceChildren(this.drawn.svg);
    this.overlay.setAttribute("viewBox", `0 0 ${width} ${height}`);
    this.drawLaunch(rays);
  }

  /// The direction in which the rays set out, as it looks in this view.
  private drawLaunch({ first }: Rays): void {
    const { drawn, angle } = this;
    if (!drawn) return;
    const slope = (angle * Math.PI) / 180;
    const from = { x: drawn.toX(0), y: drawn.toY(first.y[0] ?? 0) };
    const right = drawn.toX(Math.cos(slope)) - drawn.toX(0);
    const down = drawn.toY(Math.sin(slope)) - drawn.toY(0);
    const scale = 46 / Math.hypot(right, down);
    const tip = { x: from.x + right * scale, y: from.y + down * scale };
    this.launch.setAttribute("d", `M${from.x},${from.y}L${tip.x},${tip.y}m-5,0a5,5 0 1 0 10,0a5,5 0 1 0 -10,0`);
  }

  private press(event: PointerEvent): void {
    if (!this.drawn || event.button !== 0) return;
    this.pressed = this.pointer(event);
    this.element.setPointerCapture(event.pointerId);
  }

  private move(event: PointerEvent): void {
    const at = this.pointer(event);
    const { pressed, drawn, rays } = this;
    if (!pressed || !drawn || !rays) return this.hover(at);
    if (!this.dragging && Math.hypot(at.x - pressed.x, at.y - pressed.y) < STILL_PX) return;
    this.dragging = true;
    this.hover(null);
    const right = Math.max(0, drawn.fromX(at.x));
    const down = Math.max(0, drawn.fromY(at.y) - (rays.first.y[0] ?? 0));
    if (right === 0 && down === 0) return;
    this.events.turned(Math.round((Math.atan2(down, right) * 1800) / Math.PI) / 10);
  }

  private release(): void {
    const { dragging } = this;
    this.pressed = null;
    this.dragging = false;
    if (!dragging) return;
    this.view = null;
    this.draw();
  }

  private pointer(event: PointerEvent): { x: number; y: number } {
    const box = this.element.getBoundingClientRect();
    return { x: event.clientX - box.left, y: event.clientY - box.top };
  }

  /// Shows how deep both rays are at the pointer's distance.
  private hover(at: { x: number; y: number } | null): void {
    const { drawn, rays, tip } = this;
    const isInside =
      drawn && at && at.x >= drawn.area.left && at.x <= drawn.area.right && at.y >= drawn.area.top && at.y <= drawn.area.bottom;
    const distance = isInside ? drawn.fromX(at.x) : NaN;
    const depths = rays ? [depthAt(rays.first, distance), depthAt(rays.second, distance)] : [];
    [this.firstRing, this.secondRing].forEach((ring, i) => {
      const depth = depths[i] ?? NaN;
      ring.setAttribute("visibility", drawn && !Number.isNaN(depth) ? "visible" : "hidden");
      if (!drawn || Number.isNaN(depth)) return;
      ring.setAttribute("cx", String(drawn.toX(distance)));
      ring.setAttribute("cy", String(drawn.toY(depth)));
    });
    const isTold = isInside && !depths.every(Number.isNaN);
    this.cross.setAttribute("d", isTold ? `M${at.x},${drawn.area.top}V${drawn.area.bottom}` : "");
    if (!isTold) return tip.remove();
    this.element.append(tip);
    this.drawTip(at, distance, depths as [number, number]);
  }

  private drawTip(at: { x: number; y: number }, distance: number, [first, second]: [number, number]): void {
    const { tip, names, drawn } = this;
    const line = (name: string, value: string) => make("div", "tip-line", make("span", "", name), make("b", "", value));
    const lines = [line(names.first, metres(first)), line(names.second, metres(second))];
    const difference = second - first;
    if (!Number.isNaN(difference)) lines.push(line("Difference", metres(difference)));
    tip.replaceChildren(make("div", "tip-title", `At ${metres(distance)}`), ...lines);
    const isRight = at.x + 16 + tip.offsetWidth < (drawn?.area.right ?? 0);
    tip.style.left = `${isRight ? at.x + 16 : Math.max(4, at.x - 16 - tip.offsetWidth)}px`;
    const lowest = this.element.clientHeight - tip.offsetHeight - 4;
    tip.style.top = `${Math.max(4, Math.min(at.y - tip.offsetHeight / 2, lowest))}px`;
  }
}

/// A length in m with one decimal, as a path is drawn to 0.05 m; "–" for a ray that does not come.
export function metres(value: number): string {
  return Number.isNaN(value) ? "–" : `${value.toFixed(1).replace("-", "\u2212")} m`;
}

/// In a sentence, where both rays end together and how far they are apart there; "" for rays of
/// which that cannot be told.
export function apartText(rays: Rays): string {
  const reach = commonReach(rays);
  const difference = depthAt(rays.second, reach) - depthAt(rays.first, reach);
  if (!(reach > 0) || Number.isNaN(difference)) return "";
  return Math.abs(difference) < 0.1
    ? `Both rays reach ${metres(reach)}, and are less than 0.1 m apart there.`
    : `Both rays reach ${metres(reach)}; there the second one is ${metres(Math.abs(difference))} ${difference > 0 ? "deeper" : "shallower"}.`;
}

function viewOf({ first, second }: Rays): { x: Span; y: Span } {
  let right = 0;
  let top = Infinity;
  let bottom = -Infinity;
  for (const { x, y } of [first, second]) {
    for (const value of x) right = Math.max(right, value);
    for (const value of y) {
      top = Math.min(top, value);
      bottom = Math.max(bottom, value);
    }
  }
  const depths = Math.max(bottom - top, 1);
  const breadth = Math.max(right * 1.04, depths * LEAST_BREADTH);
  return { x: [0, breadth], y: [bottom + depths * 0.04, top - depths * 0.02] };
}
