/// The plot on the page: its panels, what is in view, zoom, hover, the selected level, and what is
/// edited in it.
import type { Column, PlotQuantity } from "./columns";
import { make } from "./dom";
import type { ListKey } from "./protocol";
import { levelAtDepth, levelBeside, levelNear, panelAt } from "./plot-hits";
import { PlotOverlay, placeOf, type DragBox, type Point, type Pointed } from "./plot-overlay";
import {
  closestSpan,
  drawPanels,
  plottedOf,
  viewOf,
  viewWith,
  type LinkedView,
  type Panel,
  type Plotted,
} from "./plot-panels";
import { plotSummary } from "./plot-summary";
import { isJoined, type Profile } from "./profile";
import { atLeast, movedTo, sameSpan, scaled, type Span } from "./spans";

/// A pointer that moves less than this many pixels between press and release has clicked.
const CLICK_PX = 6;
/// A drag thinner than this zooms the other axis alone.
const THIN_DRAG_PX = 14;
/// How far from the selected level's mark the pointer still takes hold of it.
const GRIP_PX = 12;
/// Closest zoom of the depths: below this nothing shows that an instrument could have measured.
const LEAST_DEPTH_SPAN = 0.05;
const KEY_ZOOM = 1.5;

export interface PlotEvents {
  /// The user picked a level; -1 for none.
  select(level: number): void;
  /// The view was zoomed (true) or shows all levels (false).
  zoomed(zoomed: boolean): void;
  /// What a screen reader is told of the plot has changed.
  summarised?(text: string): void;
}

/// What the user does to levels in the plot. A value is one of `quantity`, in its own unit, with no
/// more decimals than its column shows; a depth likewise.
export interface PlotEdits {
  /// The selected level's point was dragged to another value.
  moved(level: number, value: number, quantity: ListKey): void;
  /// A new level is wanted at a depth; its value is known of one quantity alone.
  insertAt(depth: number, value: number, quantity: ListKey): void;
  remove(level: number): void;
}

/// A pointer that is pressed: it zooms, or it moves the selected level's point.
interface Drag {
  panel: Panel;
  from: Point;
  /// Where the point that is moved was; null for a zoom.
  grip: Point | null;
}

export class PlotView {
  private plotted: Plotted | null = null;
  private under: Plotted | null = null;
  private whole: LinkedView | null = null;
  private view: LinkedView | null = null;
  private panels: Panel[] = [];
  private invalid: ReadonlySet<number> = new Set();
  private over: readonly number[] = [];
  private selected = -1;
  private hovered: Pointed | null = null;
  private drag: Drag | null = null;
  private edits: PlotEdits | null = null;
  private isEditing = false;
  private isDue = false;

  private readonly drawing = make("div", "drawing");
  private readonly overlay: PlotOverlay;

  constructor(
    private readonly host: HTMLElement,
    private readonly events: PlotEvents,
  ) {
    this.overlay = new PlotOverlay(host);
    host.append(this.drawing, this.overlay.element, this.overlay.tip);
    host.addEventListener("pointerdown", (event) => this.press(event));
    host.addEventListener("pointermove", (event) => this.pointAt(event));
    host.addEventListener("pointerup", (event) => this.release(event));
    host.addEventListener("pointercancel", () => this.endDrag());
    host.addEventListener("pointerleave", () => this.hover(null));
    host.addEventListener("dblclick", (event) => this.doubleClick(event));
    host.addEventListener("keydown", (event) => this.key(event));
    new ResizeObserver(() => this.resized()).observe(host);
  }

  /// Shows a profile whole, a panel for each quantity, no level invalid or selected, nothing laid
  /// over or under it.
  show(profile: Profile, columns: readonly Column[], ...quantities: PlotQuantity[]): void {
    this.plotted = plottedOf(profile, columns, quantities);
    this.under = null;
    this.invalid = new Set();
    this.over = [];
    this.selected = -1;
    this.hovered = null;
    this.endDrag();
    this.setWhole(viewWith(this.plotted, null), false);
  }

  /// Shows what became of the profile, or other panels of it. The view stays where it was zoomed, and
  /// with it what lies under the profile; marks stay where it is the same profile.
  update(profile: Profile, columns: readonly Column[], ...quantities: PlotQuantity[]): void {
    const before = this.plotted;
    if (!before) return this.show(profile, columns, ...quantities);
    this.plotted = plottedOf(profile, columns, quantities);
    if (profile !== before.profile) {
      this.invalid = new Set();
      this.over = [];
      if (this.selected >= profile.count) this.selected = -1;
    }
    this.hovered = null;
    this.drag = null;
    this.setWhole(viewWith(this.plotted, this.under), true);
  }

  markInvalid(levels: readonly number[]): void {
    this.invalid = new Set(levels);
    this.draw();
  }

  /// Lays a line through these levels over the profile; none takes it away.
  showOver(levels: readonly number[]): void {
    this.over = levels;
    this.draw();
  }

  /// Lays another profile under this one, in the panels whose quantity it has; null takes it away.
  showUnder(other: { profile: Profile; columns: readonly Column[]; quantities: readonly PlotQuantity[] } | null): void {
    this.under = other && plottedOf(other.profile, other.columns, other.quantities);
    if (this.plotted) this.setWhole(viewWith(this.plotted, this.under), true);
  }

  /// Who is told of edits in the plot; without, there are none.
  onEdit(edits: PlotEdits): void {
    this.edits = edits;
  }

  /// With editing on, the selected level's point is dragged and a double click asks for a new level.
  /// With it off, a point is dragged with the Alt key held and a double click shows all levels.
  setEditing(on: boolean): void {
    this.isEditing = on;
    this.host.classList.toggle("editing", on);
  }

  /// Marks one level and moves the view to it if it lies outside; -1 marks none. An invalid value
  /// is not followed, as the others would be lost from view: its arrow at the edge is marked.
  markSelected(level: number): void {
    this.selected = level;
    const { view, plotted } = this;
    if (!view || !plotted) return;
    const depth = movedTo(view.depth, this.depthOf(level));
    const across = new Map(view.across);
    if (!this.invalid.has(level)) {
      for (const [key, span] of view.across) across.set(key, movedTo(span, plotted.values.get(key)?.[level] ?? NaN));
    }
    const panned = { depth, across };
    if (sameView(panned, view)) this.drawOverlay();
    else this.setView(panned);
  }

  /// Shows all levels again.
  reset(): void {
    if (this.whole) this.setView(this.whole);
  }

  /// Zooms so that the levels which were measured, and which the check accepted, fill the plot.
  fitValid(): void {
    if (!this.plotted) return;
    const { profile, values } = this.plotted;
    this.setView(viewOf(profile, values, (level) => !this.invalid.has(level) && !isJoined(profile, level)));
  }

  focus(): void {
    this.host.focus();
  }

  /// Takes what is the whole view now. With `stay`, what was zoomed stays as it is.
  private setWhole(whole: LinkedView, stay: boolean): void {
    const { view, whole: before } = this;
    this.whole = whole;
    if (!stay || !view || !before) return this.setView(whole);
    const across = [...whole.across].map(([key, span]): [ListKey, Span] => {
      const was = before.across.get(key);
      const now = view.across.get(key);
      return [key, was && now && !sameSpan(was, now) ? now : span];
    });
    const depth = sameSpan(view.depth, before.depth) ? whole.depth : view.depth;
    this.setView({ depth, across: new Map(across) });
  }

  private setView(view: LinkedView): void {
    this.view = view;
    this.draw();
    if (this.whole) this.events.zoomed(!sameView(view, this.whole));
  }

  private resized(): void {
    const { clientWidth: width, clientHeight: height } = this.host;
    if (this.drawing.dataset["size"] !== `${width}x${height}`) this.drawNow();
  }

  /// Draws once for all that is asked for in one go.
  private draw(): void {
    if (this.isDue) return;
    this.isDue = true;
    queueMicrotask(() => {
      this.isDue = false;
      this.drawNow();
    });
  }

  private drawNow(): void {
    const { plotted, view, host } = this;
    const { clientWidth: width, clientHeight: height } = host;
    if (!plotted || !view || width === 0 || height === 0) return;
    const invalid = [...this.invalid];
    this.panels = drawPanels({ plotted, view, invalid, over: this.over, under: this.under, width, height });
    this.drawing.replaceChildren(...this.panels.map(({ svg }) => svg));
    this.drawing.dataset["size"] = `${width}x${height}`;
    this.hovered = null;
    this.overlay.resize(width, height);
    this.drawOverlay();
    const isZoomed = this.whole !== null && !sameView(view, this.whole);
    this.events.summarised?.(plotSummary(plotted, this.invalid, this.under?.profile ?? null, isZoomed ? view : null));
  }

  private drawOverlay(): void {
    const { plotted, panels, overlay, invalid } = this;
    if (!plotted || this.isDue) return;
    overlay.rest(panels, plotted, this.selected, invalid);
    overlay.point(panels, plotted, this.under, this.drag ? null : this.hovered, invalid);
  }

  private depthOf(level: number): number {
    return this.plotted?.profile.lists.svp_Depth[level] ?? NaN;
  }

  private pointer(event: MouseEvent): Point {
    const box = this.host.getBoundingClientRect();
    return { x: event.clientX - box.left, y: event.clientY - box.top };
  }

  private press(event: PointerEvent): void {
    const from = this.pointer(event);
    const panel = panelAt(this.panels, from);
    if (!panel || event.button !== 0) return;
    const mayMove = this.edits !== null && (this.isEditing || event.altKey);
    this.drag = { panel, from, grip: mayMove ? this.gripOf(panel, from) : null };
    this.host.setPointerCapture(event.pointerId);
  }

  /// Where the selected level is drawn, if a point of the panel is on it.
  private gripOf(panel: Panel, at: Point): Point | null {
    const place = this.plotted && this.selected >= 0 ? placeOf(panel, this.plotted, this.selected, true) : null;
    return place && Math.hypot(place.x - at.x, place.y - at.y) <= GRIP_PX ? place : null;
  }

  private pointAt(event: PointerEvent): void {
    const at = this.pointer(event);
    const { drag } = this;
    if (!drag) return this.hover(this.plotted && levelBeside(this.panels, this.plotted, at));
    this.drawOverlay();
    if (drag.grip) this.drawMove(drag.panel, movedX(drag, at));
    else this.overlay.drag(this.panels, this.dragArea(drag, at));
  }

  private hover(at: Pointed | null): void {
    if (at?.level === this.hovered?.level && at?.panel === this.hovered?.panel) return;
    this.hovered = at;
    const { plotted } = this;
    if (plotted && !this.drag) this.overlay.point(this.panels, plotted, this.under, at, this.invalid);
  }

  private drawMove({ area, toY, fromX, quantity: { key } }: Panel, x: number): void {
    const column = this.column(key);
    const unit = column?.unit ? ` ${column.unit}` : "";
    const text = `${rounded(fromX(x), column).toFixed(column?.decimals ?? 2)}${unit}`;
    this.overlay.move({ x, y: toY(this.depthOf(this.selected)) }, area, text);
  }

  private column(key: ListKey): Column | undefined {
    return this.plotted?.columns.find((each) => each.key === key);
  }

  /// The part of a panel that a drag covers. A thin drag covers the whole other axis.
  private dragArea({ panel, from }: Drag, to: Point): DragBox {
    const { left, top, right, bottom } = panel.area;
    const span = (a: number, b: number, low: number, high: number): Span => {
      if (Math.abs(a - b) < THIN_DRAG_PX) return [low, high];
      return [Math.max(low, Math.min(a, b)), Math.min(high, Math.max(a, b))];
    };
    return { x: span(from.x, to.x, left, right), y: span(from.y, to.y, top, bottom) };
  }

  private release(event: PointerEvent): void {
    const { drag } = this;
    if (!drag) return;
    const { from } = drag;
    const to = this.pointer(event);
    this.endDrag();
    if (Math.hypot(to.x - from.x, to.y - from.y) < CLICK_PX) {
      // The level that is held stays selected: a press on it was for it.
      if (!drag.grip) this.events.select((this.plotted && levelNear(this.panels, this.plotted, to))?.level ?? -1);
    } else if (drag.grip) {
      this.endMove(drag, to);
    } else {
      this.zoomTo(drag, to);
    }
  }

  private endMove(drag: Drag, to: Point): void {
    const { panel, from } = drag;
    // Points move across alone; a drag down was meant for something else.
    if (Math.abs(to.x - from.x) < CLICK_PX) return;
    const { key } = panel.quantity;
    this.edits?.moved(this.selected, rounded(panel.fromX(movedX(drag, to)), this.column(key)), key);
  }

  private zoomTo(drag: Drag, to: Point): void {
    const { panel, from } = drag;
    if (!this.view || Math.max(Math.abs(to.x - from.x), Math.abs(to.y - from.y)) < THIN_DRAG_PX) return;
    const { x, y } = this.dragArea(drag, to);
    const { key } = panel.quantity;
    const across = new Map(this.view.across);
    if (x[0] > panel.area.left || x[1] < panel.area.right) {
      across.set(key, atLeast([panel.fromX(x[0]), panel.fromX(x[1])], closestSpan(key)));
    }
    this.setView({ depth: atLeast([panel.fromY(y[0]), panel.fromY(y[1])], LEAST_DEPTH_SPAN), across });
  }

  private endDrag(): void {
    this.drag = null;
    this.overlay.drag(this.panels, null);
    this.drawOverlay();
  }

  private doubleClick(event: MouseEvent): void {
    const at = this.pointer(event);
    const panel = panelAt(this.panels, at);
    if (!this.isEditing || !this.edits || !panel) return this.reset();
    const { left, top, right, bottom } = panel.area;
    if (at.x < left || at.x > right || at.y < top || at.y > bottom) return;
    const { key } = panel.quantity;
    const depth = rounded(panel.fromY(at.y), this.column("svp_Depth"));
    this.edits.insertAt(depth, rounded(panel.fromX(at.x), this.column(key)), key);
  }

  private key(event: KeyboardEvent): void {
    const { plotted, selected } = this;
    if (!plotted || event.ctrlKey || event.altKey || event.metaKey) return;
    const last = plotted.profile.count - 1;
    const page = Math.max(1, Math.round(last / 20));
    const to = {
      ArrowDown: selected + 1,
      ArrowUp: selected - 1,
      PageDown: selected + page,
      PageUp: selected - page,
      Home: 0,
      End: last,
    }[event.key];
    if (to !== undefined) this.events.select(Math.min(Math.max(to, 0), last));
    else if (event.key === "+" || event.key === "=") this.zoomBy(1 / KEY_ZOOM);
    else if (event.key === "-") this.zoomBy(KEY_ZOOM);
    // With nothing to be left, the key is that of the dialog which the plot may stand in.
    else if (event.key === "Escape" && (this.drag || selected >= 0)) this.escape();
    else if (event.key === "0") this.reset();
    else if (event.key === "Delete" && this.edits && selected >= 0) this.edits.remove(selected);
    else return;
    event.preventDefault();
    event.stopPropagation();
  }

  private escape(): void {
    if (this.drag) this.endDrag();
    else this.events.select(-1);
  }

  /// Zooms all panels around the selected level, or around what is at the middle depth in view.
  private zoomBy(factor: number): void {
    const { plotted, view, whole, selected } = this;
    if (!plotted || !view || !whole) return;
    const level = selected >= 0 ? selected : levelAtDepth(plotted, (view.depth[0] + view.depth[1]) / 2);
    const across = [...view.across].map(([key, span]): [ListKey, Span] => {
      const value = plotted.values.get(key)?.[level] ?? NaN;
      return [key, atLeast(scaled(span, factor, value, whole.across.get(key) ?? span), closestSpan(key))];
    });
    const depth = scaled(view.depth, factor, this.depthOf(level), whole.depth);
    this.setView({ depth: atLeast(depth, LEAST_DEPTH_SPAN), across: new Map(across) });
  }
}

/// Where a point that is moved is drawn across, while the pointer is at `to`: it stays in its panel.
function movedX({ panel: { area }, from, grip }: Drag, to: Point): number {
  return Math.min(Math.max((grip ?? from).x + to.x - from.x, area.left), area.right);
}

/// A value with the decimals that its column shows.
function rounded(value: number, column: Column | undefined): number {
  return Number(value.toFixed(column?.decimals ?? 2));
}

function sameView(a: LinkedView, b: LinkedView): boolean {
  if (!sameSpan(a.depth, b.depth)) return false;
  return [...b.across].every(([key, span]) => {
    const other = a.across.get(key);
    return other !== undefined && sameSpan(other, span);
  });
}
