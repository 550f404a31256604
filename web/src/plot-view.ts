/// The plot on the page: what is in view, zoom, hover and the selected level.
import { shownValues, valueText, type Column, type PlotQuantity } from "./columns";
import { make, makeSvg } from "./dom";
import { profilePlot, viewOf, type ProfilePlot, type Span, type View } from "./plot";
import { isJoined, type Profile } from "./profile";

/// A pointer that moves less than this many pixels between press and release has clicked.
const CLICK_PX = 6;
/// A drag thinner than this zooms the other axis alone.
const THIN_DRAG_PX = 14;
/// How far from a level the pointer still finds it.
const REACH_PX = 60;
/// Closest zoom: spans below these show nothing that the instruments could have measured.
const LEAST_ACROSS_SPAN = 0.02;
const LEAST_DEPTH_SPAN = 0.05;
const KEY_ZOOM = 1.5;

interface Shown {
  profile: Profile;
  columns: readonly Column[];
  /// The quantity that is drawn across.
  quantity: PlotQuantity;
  /// Its values, NaN where none was measured.
  values: readonly number[];
  full: View;
}

const NONE: ReadonlySet<number> = new Set();

export interface PlotEvents {
  /// The user picked a level; -1 for none.
  select(level: number): void;
  /// The view was zoomed (true) or shows all levels (false).
  zoomed(zoomed: boolean): void;
}

export class PlotView {
  private shown: Shown | null = null;
  private view: View = { across: [0, 1], depth: [0, 1] };
  private invalid: readonly number[] = [];
  private over: readonly number[] = [];
  private selected = -1;
  private hovered = -1;
  private plot: ProfilePlot | null = null;
  private dragFrom: { x: number; y: number } | null = null;

  private readonly drawing = make("div", "drawing");
  private readonly overlay = makeSvg("svg", "overlay");
  private readonly crosshair = makeSvg("path", "crosshair");
  private readonly hoverRing = makeSvg("circle", "hover-ring");
  private readonly selectedRing = makeSvg("circle", "selected-ring");
  private readonly dragBox = makeSvg("rect", "drag-box");
  private readonly tip = make("div", "tip");

  constructor(
    private readonly host: HTMLElement,
    private readonly events: PlotEvents,
  ) {
    this.overlay.setAttribute("aria-hidden", "true");
    this.overlay.append(this.crosshair, this.selectedRing, this.hoverRing, this.dragBox);
    this.hoverRing.setAttribute("r", "6");
    this.selectedRing.setAttribute("r", "8");
    this.tip.hidden = true;
    this.tip.setAttribute("aria-hidden", "true");
    host.append(this.drawing, this.overlay, this.tip);

    host.addEventListener("pointerdown", (event) => this.press(event));
    host.addEventListener("pointermove", (event) => this.pointAt(event));
    host.addEventListener("pointerup", (event) => this.release(event));
    host.addEventListener("pointercancel", () => this.endDrag());
    host.addEventListener("pointerleave", () => this.hover(-1));
    host.addEventListener("dblclick", () => this.reset());
    host.addEventListener("keydown", (event) => this.key(event));
    new ResizeObserver(() => this.draw()).observe(host);
  }

  /// Shows a profile whole, no level invalid or selected.
  show(profile: Profile, columns: readonly Column[], quantity: PlotQuantity): void {
    const values = shownValues(profile, quantity.key);
    const full = viewOf(values, profile.lists.svp_Depth);
    this.shown = { profile, columns, quantity, values, full };
    this.invalid = [];
    this.over = [];
    this.selected = this.hovered = -1;
    this.setView(full);
  }

  /// Draws another quantity of the same profile across, whole; the depths in view stay.
  showQuantity(quantity: PlotQuantity): void {
    if (!this.shown) return;
    const { profile, full: before } = this.shown;
    const values = shownValues(profile, quantity.key);
    const full = viewOf(values, profile.lists.svp_Depth);
    const isWhole = same(this.view.depth, before.depth);
    this.shown = { ...this.shown, quantity, values, full };
    this.setView(isWhole ? full : { across: full.across, depth: this.view.depth });
  }

  markInvalid(levels: readonly number[]): void {
    this.invalid = levels;
    this.draw();
  }

  /// Lays a line through these levels over the profile; none takes it away.
  showOver(levels: readonly number[]): void {
    this.over = levels;
    this.draw();
  }

  /// Marks one level and moves the view to it if it lies outside; -1 marks none. An invalid value
  /// is not followed, as the others would be lost from view: its arrow at the edge is marked.
  markSelected(level: number): void {
    this.selected = level;
    const { depth, value } = this.valuesOf(level);
    const stay = Number.isNaN(value) || this.invalid.includes(level);
    const panned = {
      across: stay ? this.view.across : movedTo(this.view.across, value),
      depth: Number.isNaN(depth) ? this.view.depth : movedTo(this.view.depth, depth),
    };
    if (panned.across !== this.view.across || panned.depth !== this.view.depth) this.setView(panned);
    else this.drawOverlay();
  }

  /// Shows all levels again.
  reset(): void {
    if (this.shown) this.setView(this.shown.full);
  }

  /// Zooms so that the levels which the check accepted fill the plot.
  fitValid(): void {
    if (!this.shown) return;
    const invalid = new Set(this.invalid);
    const { profile: { lists }, values } = this.shown;
    this.setView(viewOf(values, lists.svp_Depth, (level) => !invalid.has(level)));
  }

  focus(): void {
    this.host.focus();
  }

  private setView(view: View): void {
    this.view = view;
    this.draw();
    if (this.shown) this.events.zoomed(view !== this.shown.full);
  }

  private draw(): void {
    const { shown, host } = this;
    const width = host.clientWidth;
    const height = host.clientHeight;
    if (!shown || width === 0 || height === 0) return;
    this.plot = profilePlot({
      values: shown.values,
      label: shown.quantity.label,
      depths: shown.profile.lists.svp_Depth,
      invalid: this.invalid,
      joined: shown.profile.joined ?? NONE,
      over: this.over,
      view: this.view,
      width,
      height,
    });
    // The levels are read from the table; the drawing itself says nothing to a screen reader.
    this.plot.svg.setAttribute("aria-hidden", "true");
    this.drawing.replaceChildren(this.plot.svg);
    this.overlay.setAttribute("viewBox", `0 0 ${width} ${height}`);
    this.drawOverlay();
  }

  private drawOverlay(): void {
    const { plot } = this;
    if (!plot) return;
    place(this.selectedRing, this.pixelOf(this.selected) ?? this.edgeOf(this.selected));
    const at = this.dragFrom ? null : this.pixelOf(this.hovered);
    place(this.hoverRing, at);
    const { left, top } = plot.area;
    this.crosshair.setAttribute("d", at ? `M${left},${at.y}H${at.x}V${top}` : "");
    this.tip.hidden = at === null;
    if (at) this.drawTip(at);
  }

  private drawTip(at: { x: number; y: number }): void {
    const { shown, plot, tip, hovered } = this;
    if (!shown || !plot) return;
    const lines = shown.columns.map((column) => {
      const line = make("div", "tip-line", make("span", "", column.label));
      line.append(make("b", "", valueText(shown.profile, column, hovered)));
      return line;
    });
    const bad = this.invalid.includes(hovered);
    const title = make("div", "tip-title", `Level ${hovered + 1}`);
    if (bad) title.append(make("span", "tip-invalid", "invalid"));
    else if (isJoined(shown.profile, hovered)) title.append(make("span", "tip-joined", "joined"));
    tip.replaceChildren(title, ...lines);
    // Beside the level, on the side that has room.
    const right = at.x + 16 + tip.offsetWidth < plot.area.right;
    const x = right ? at.x + 16 : Math.max(4, at.x - 16 - tip.offsetWidth);
    const lowest = this.host.clientHeight - tip.offsetHeight - 4;
    tip.style.left = `${x}px`;
    tip.style.top = `${Math.max(4, Math.min(at.y - tip.offsetHeight / 2, lowest))}px`;
  }

  private valuesOf(level: number): { value: number; depth: number } {
    const { shown } = this;
    return { value: shown?.values[level] ?? NaN, depth: shown?.profile.lists.svp_Depth[level] ?? NaN };
  }

  /// Where a level is drawn, or null when it is out of view.
  private pixelOf(level: number): { x: number; y: number } | null {
    const { plot } = this;
    if (!plot || level < 0) return null;
    const { value, depth } = this.valuesOf(level);
    const x = plot.toX(value);
    const y = plot.toY(depth);
    const { left, top, right, bottom } = plot.area;
    return x >= left - 1 && x <= right + 1 && y >= top - 1 && y <= bottom + 1 ? { x, y } : null;
  }

  /// Where the arrow of an invalid level is drawn whose value is out of view, or null.
  private edgeOf(level: number): { x: number; y: number } | null {
    const { plot } = this;
    if (!plot || !this.invalid.includes(level)) return null;
    const { value, depth } = this.valuesOf(level);
    const { left, top, right, bottom } = plot.area;
    const y = plot.toY(depth);
    return y >= top && y <= bottom ? { x: plot.toX(value) < left ? left + 8 : right - 8, y } : null;
  }

  /// The level nearest to a point of the plot, or -1 when none is within reach.
  private levelNear(x: number, y: number): number {
    const { plot, shown } = this;
    if (!plot || !shown) return -1;
    const { values, profile: { lists: { svp_Depth } } } = shown;
    let nearest = -1;
    let least = REACH_PX * REACH_PX;
    svp_Depth.forEach((depth, level) => {
      // Most levels of a long cast are out of reach by their depth alone.
      const down = plot.toY(depth) - y;
      if (!(down * down < least)) return;
      const across = plot.toX(values[level] ?? NaN) - x;
      const distance = across * across + down * down;
      if (distance < least && this.pixelOf(level)) {
        least = distance;
        nearest = level;
      }
    });
    return nearest;
  }

  private pointer(event: PointerEvent): { x: number; y: number } {
    const box = this.host.getBoundingClientRect();
    return { x: event.clientX - box.left, y: event.clientY - box.top };
  }

  private press(event: PointerEvent): void {
    if (!this.plot || event.button !== 0) return;
    this.dragFrom = this.pointer(event);
    this.host.setPointerCapture(event.pointerId);
  }

  private pointAt(event: PointerEvent): void {
    const at = this.pointer(event);
    if (this.dragFrom) this.drawDrag(this.dragFrom, at);
    else this.hover(this.levelNear(at.x, at.y));
  }

  private hover(level: number): void {
    if (level === this.hovered) return;
    this.hovered = level;
    this.drawOverlay();
  }

  private drawDrag(from: { x: number; y: number }, to: { x: number; y: number }): void {
    const box = this.dragArea(from, to);
    if (!box) return;
    this.drawOverlay();
    this.dragBox.setAttribute("x", String(box.x[0]));
    this.dragBox.setAttribute("y", String(box.y[0]));
    this.dragBox.setAttribute("width", String(box.x[1] - box.x[0]));
    this.dragBox.setAttribute("height", String(box.y[1] - box.y[0]));
  }

  /// The part of the data area that a drag covers. A thin drag covers the whole other axis.
  private dragArea(
    from: { x: number; y: number },
    to: { x: number; y: number },
  ): { x: Span; y: Span } | null {
    if (!this.plot) return null;
    const { left, top, right, bottom } = this.plot.area;
    const span = (a: number, b: number, low: number, high: number): Span => {
      if (Math.abs(a - b) < THIN_DRAG_PX) return [low, high];
      return [Math.max(low, Math.min(a, b)), Math.min(high, Math.max(a, b))];
    };
    return { x: span(from.x, to.x, left, right), y: span(from.y, to.y, top, bottom) };
  }

  private release(event: PointerEvent): void {
    const { dragFrom: from, plot } = this;
    if (!from || !plot) return;
    const to = this.pointer(event);
    this.endDrag();
    if (Math.hypot(to.x - from.x, to.y - from.y) < CLICK_PX) {
      this.events.select(this.levelNear(to.x, to.y));
      return;
    }
    if (Math.max(Math.abs(to.x - from.x), Math.abs(to.y - from.y)) < THIN_DRAG_PX) return;
    const box = this.dragArea(from, to);
    if (!box) return;
    this.setView({
      across: atLeast([plot.fromX(box.x[0]), plot.fromX(box.x[1])], LEAST_ACROSS_SPAN),
      depth: atLeast([plot.fromY(box.y[0]), plot.fromY(box.y[1])], LEAST_DEPTH_SPAN),
    });
  }

  private endDrag(): void {
    this.dragFrom = null;
    this.dragBox.removeAttribute("width");
    this.dragBox.removeAttribute("height");
    this.drawOverlay();
  }

  private key(event: KeyboardEvent): void {
    if (!this.shown || event.ctrlKey || event.altKey || event.metaKey) return;
    const last = this.shown.profile.count - 1;
    const page = Math.max(1, Math.round(last / 20));
    const to = {
      ArrowDown: this.selected + 1,
      ArrowUp: this.selected - 1,
      PageDown: this.selected + page,
      PageUp: this.selected - page,
      Home: 0,
      End: last,
    }[event.key];
    if (to !== undefined) this.events.select(Math.min(Math.max(to, 0), last));
    else if (event.key === "+" || event.key === "=") this.zoomBy(1 / KEY_ZOOM);
    else if (event.key === "-") this.zoomBy(KEY_ZOOM);
    // With nothing to be left, the key is that of the dialog which the plot may stand in.
    else if (event.key === "Escape" && (this.dragFrom || this.selected >= 0)) this.escape();
    else if (event.key === "0") this.reset();
    else return;
    event.preventDefault();
    event.stopPropagation();
  }

  private escape(): void {
    if (this.dragFrom) this.endDrag();
    else this.events.select(-1);
  }

  /// Zooms around the selected level, or around the middle of the view.
  private zoomBy(factor: number): void {
    if (!this.shown) return;
    const { value, depth } = this.valuesOf(this.selected);
    const { full } = this.shown;
    const next = {
      across: atLeast(scaled(this.view.across, factor, value, full.across), LEAST_ACROSS_SPAN),
      depth: atLeast(scaled(this.view.depth, factor, depth, full.depth), LEAST_DEPTH_SPAN),
    };
    const everything = same(next.across, full.across) && same(next.depth, full.depth);
    this.setView(everything ? full : next);
  }
}

function place(ring: SVGCircleElement, at: { x: number; y: number } | null): void {
  ring.setAttribute("visibility", at ? "visible" : "hidden");
  if (!at) return;
  ring.setAttribute("cx", String(at.x));
  ring.setAttribute("cy", String(at.y));
}

/// The span moved just so that it holds `value`; the span itself when it already does.
function movedTo(span: Span, value: number): Span {
  if (value >= span[0] && value <= span[1]) return span;
  const half = (span[1] - span[0]) / 2;
  return [value - half, value + half];
}

/// The span scaled around `centre` (its middle when that is NaN), within `limits`.
function scaled(span: Span, factor: number, centre: number, limits: Span): Span {
  const middle = Number.isNaN(centre) ? (span[0] + span[1]) / 2 : centre;
  const low = middle - (middle - span[0]) * factor;
  const high = middle + (span[1] - middle) * factor;
  return [Math.max(low, limits[0]), Math.min(high, limits[1])];
}

function atLeast(span: Span, length: number): Span {
  if (span[1] - span[0] >= length) return span;
  const middle = (span[0] + span[1]) / 2;
  return [middle - length / 2, middle + length / 2];
}

function same(a: Span, b: Span): boolean {
  return a[0] === b[0] && a[1] === b[1];
}
