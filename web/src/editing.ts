/// Editing of the open cast: what the table, the plot, the menu and the keys do to its levels and
/// header.
import type { CastView } from "./cast-view";
import { typedValue, untouchable } from "./cell-values";
import type { Column } from "./columns";
import { byId } from "./dom";
import { notOpenText } from "./engine-words";
import { formatCount, formatValue } from "./format";
import { HeaderDialog } from "./header-dialog";
import { InsertDialog, type TypedLevel } from "./insert-dialog";
import {
  byDepth, downcast, levelsInAir, offerAt, offerFor, picked, reversed, surfaceFault, upcast, withLevel,
  withSurface, withValue, withoutLevels,
} from "./level-edits";
import { downcastText, droppedText, surfaceFaultText, upcastText } from "./level-words";
import type { TableEvents } from "./level-table";
import { Menu } from "./menu";
import { levelCount } from "./outbox-words";
import type { PlotEdits } from "./plot-view";
import { withEdited, type Profile } from "./profile";
import type { HeaderKey, ListKey } from "./protocol";
import { aheadText } from "./stated";

export interface EditingEvents {
  /// The cast is another one now, at a level or in its header ("here"). `isOnly` when no other level
  /// was changed.
  changed(label: string, profile: Profile, place: number | "here", isOnly: boolean): void;
  told(text: string): void;
}

export class Editing {
  private readonly insertDialog = new InsertDialog((before, level) => this.insertTyped(before, level));
  private readonly headerDialog = new HeaderDialog((before, after) => {
    if (after === before || !this.isOpen(before)) return;
    this.events.changed("Undo header", after, "here", false);
    const ahead = before.header.hsvp_filetime === after.header.hsvp_filetime ? "" : aheadText(after);
    if (ahead) this.events.told(ahead);
  });
  private readonly menuButton = byId<HTMLButtonElement>("edit");
  private readonly surfaceButton = byId<HTMLButtonElement>("add-surface");
  private readonly plotButton = byId<HTMLButtonElement>("plot-editing");
  private readonly fault = byId("edit-fault");
  private readonly menu: Menu;

  constructor(
    private readonly view: () => CastView,
    private readonly events: EditingEvents,
  ) {
    this.menu = new Menu(this.menuButton, [
      { label: "Insert above", detail: "A level halfway to the one above (Insert)", run: () => this.insertBeside("from") },
      { label: "Insert below", detail: "A level halfway to the one below (Shift+Insert)", run: () => this.insertBeside("to") },
      { label: "Insert by depth…", detail: "At its place, with values offered", run: () => this.insertByDepth() },
      { label: "Delete", detail: "The selected levels; Shift selects several", run: () => this.deleteSelected() },
      { label: "Drop levels in air", detail: "At the start, and at the end of an upcast", run: () => this.dropAir() },
      { label: "Add level at 0 m", detail: "With the values of the first level", run: () => this.addSurface() },
      { label: "Keep downcast", detail: "All levels to the deepest one", run: () => this.keepDowncast() },
      { label: "Keep upcast", detail: "All from the deepest one, turned round", run: () => this.keepUpcast() },
      { label: "Reverse", detail: "The last level first", run: () => this.reverse() },
      { label: "Sort by depth", detail: "Shallow first; equal depths keep their order", run: () => this.sort() },
    ]);
    this.surfaceButton.addEventListener("click", () => this.addSurface());
    this.plotButton.addEventListener("click", () => this.switchPlot());
    byId("header-edit").addEventListener("click", () => this.editHeader());
  }

  /// What the table reports.
  get inTable(): Omit<TableEvents, "select"> {
    return {
      untouchable: (column, level) => this.untouchable(column, level),
      typed: (level, key, text) => this.type(level, key, text),
      mended: () => this.tellFault(""),
      remove: (from, to) => this.delete(from, to ?? from),
      insert: (index) => this.insert(index),
    };
  }

  /// What the plot reports.
  get inPlot(): PlotEdits {
    return {
      moved: (level, value, key) => this.move(level, value, key),
      insertAt: (depth, value, key) => this.insertInPlot(depth, value, key),
      remove: (level) => this.delete(level, level),
    };
  }

  /// Shows what can be done with the open cast.
  refresh(): void {
    const { open } = this;
    const isOpen = open !== null && open.count > 0;
    this.menuButton.disabled = !isOpen;
    byId<HTMLButtonElement>("header-edit").disabled = open === null;
    const lacksSurface = isOpen && surfaceFault(open) === "";
    if (!lacksSurface && document.activeElement === this.surfaceButton) this.view().focusTable();
    this.surfaceButton.hidden = !lacksSurface;
    this.plotButton.hidden = !isOpen;
    this.tellFault("");
  }

  openMenu(): void {
    this.menu.open();
  }

  editHeader(at?: HeaderKey): void {
    if (this.open) this.headerDialog.show(this.open, at);
  }

  switchPlot(): void {
    if (this.plotButton.hidden) return;
    this.plotButton.setAttribute("aria-pressed", String(!this.isInPlot));
    this.view().setPlotEditing(this.isInPlot);
  }

  private get isInPlot(): boolean {
    return this.plotButton.getAttribute("aria-pressed") === "true";
  }

  private get open(): Profile | null {
    return this.view().open;
  }

  /// Whether a dialog's result is for what is on the page; what it was made for is said where not.
  private isOpen(before: Profile): boolean {
    if (before === this.open) return true;
    this.events.told(notOpenText(before));
    return false;
  }

  private untouchable(column: Column, level: number): string {
    const reason = this.open ? untouchable(this.open, column, level) : "";
    this.tellFault(reason);
    return reason;
  }

  private type(level: number, key: ListKey, text: string): boolean {
    const { open } = this;
    if (!open) return false;
    const typed = typedValue(open, key, text);
    if ("fault" in typed) {
      const column = this.view().shownColumns.find((each) => each.key === key);
      const old = formatValue(open.lists[key][level], column?.decimals);
      this.tellFault(`${typed.fault} Level ${formatCount(level + 1)} keeps ${old}.`);
      return false;
    }
    this.tellFault("");
    this.change(level, key, typed.value);
    return true;
  }

  private move(level: number, value: number, key: ListKey): void {
    const column = this.view().shownColumns.find((each) => each.key === key);
    if (column && !this.untouchable(column, level)) this.change(level, key, value);
  }

  private change(level: number, key: ListKey, value: number): void {
    const { open } = this;
    if (!open || level < 0 || level >= open.count || !Number.isFinite(value)) return;
    if (open.lists[key][level] === Math.fround(value)) return;
    this.events.changed("Undo change", withValue(open, level, key, value), level, true);
  }

  private insertBeside(side: "from" | "to"): void {
    const { range } = this.view().table;
    if (range) this.insert(side === "from" ? range.from : range.to + 1);
    else this.events.told("Select a level first: the new one goes beside it.");
  }

  /// Puts a level in and lets its depth be typed.
  private insert(index: number): void {
    const { open } = this;
    if (!open) return;
    this.events.changed("Undo insert", withLevel(open, index, offerAt(open, index).values), index, false);
    void this.view().table.edit("svp_Depth");
  }

  private insertByDepth(): void {
    if (this.open) this.insertDialog.show(this.open, this.view().shownColumns);
  }

  private insertTyped(before: Profile, { index, values, typed }: TypedLevel): void {
    if (!this.isOpen(before)) return;
    this.events.changed("Undo insert", withEdited(withLevel(before, index, values), typed), index, false);
  }

  private insertInPlot(depth: number, value: number, key: ListKey): void {
    const { open } = this;
    if (!open) return;
    const offer = offerFor(open, depth);
    if ("level" in offer) {
      this.tellFault(`Level ${formatCount(offer.level + 1)} is at this depth already: change that one.`);
      return;
    }
    const values = { ...offer.values, [key]: value };
    if (key === "svp_Speed") values.svp_Speed_CTD = value;
    const profile = withEdited(withLevel(open, offer.index, values), [key]);
    const reason = untouchable(profile, { key }, offer.index);
    if (reason) return this.tellFault(reason);
    this.events.changed("Undo insert", profile, offer.index, false);
  }

  private deleteSelected(): void {
    const { range } = this.view().table;
    if (range) this.delete(range.from, range.to);
    else this.events.told("Select the levels first: Shift with the arrow keys or a click selects several.");
  }

  private delete(from: number, to: number): void {
    const { open } = this;
    if (!open || from < 0) return;
    if (to - from + 1 >= open.count) {
      this.events.told("At least one level has to stay; none was deleted.");
      return;
    }
    const profile = withoutLevels(open, from, to);
    this.events.changed("Undo delete", profile, Math.min(from, profile.count - 1), false);
  }

  private dropAir(): void {
    const { open } = this;
    if (!open) return;
    const air = levelsInAir(open);
    const isSome = air.levels.length > 0 && air.levels.length < open.count;
    const dropped = new Set(air.levels);
    const kept = Array.from({ length: open.count }, (_, i) => i).filter((level) => !dropped.has(level));
    this.keep("Undo drop", open, isSome ? kept : null, droppedText(open, air));
  }

  private addSurface(): void {
    const { open } = this;
    if (!open) return;
    const fault = surfaceFault(open);
    if (fault) this.events.told(surfaceFaultText(open, fault));
    else this.events.changed("Undo 0 m", withSurface(open), 0, false);
  }

  private keepDowncast(): void {
    const { open } = this;
    if (!open) return;
    const kept = downcast(open);
    const isSome = kept.length > 1 && kept.length < open.count;
    this.keep("Undo downcast", open, isSome ? kept : null, downcastText(open, kept.length));
  }

  private keepUpcast(): void {
    const { open } = this;
    if (!open) return;
    const kept = upcast(open);
    this.keep("Undo upcast", open, kept.length > 1 ? kept : null, upcastText(open, kept.length));
  }

  private reverse(): void {
    const { open } = this;
    if (open) this.keep("Undo reverse", open, reversed(open), `${open.filename} reversed: ${levelCount(open.count)}.`);
  }

  private sort(): void {
    const { open } = this;
    if (!open) return;
    const order = byDepth(open);
    const moved = order.filter((level, i) => level !== i).length;
    const text = moved > 0
      ? `${open.filename} sorted by depth: ${levelCount(moved)} moved.`
      : `The levels of ${open.filename} are in the order of depth already.`;
    this.keep("Undo sort", open, moved > 0 ? order : null, text);
  }

  private keep(label: string, open: Profile, levels: readonly number[] | null, text: string): void {
    if (levels) this.events.changed(label, picked(open, levels), 0, false);
    this.events.told(text);
  }

  private tellFault(text: string): void {
    this.fault.textContent = text;
    this.fault.hidden = text === "";
  }
}
