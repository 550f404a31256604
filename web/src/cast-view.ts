/// The open cast: plot, table, header, facts and verdict, and the level selected in all of them.
import { columnsOf, plotQuantities, valueText, type Column, type PlotQuantity } from "./columns";
import { button, byId, make, painted } from "./dom";
import type { Verdict } from "./engine";
import { formatClock, formatCount, shownName } from "./format";
import { headerRows } from "./header-fields";
import { legend, type LegendEntry } from "./legend";
import { LevelTable, type TableEvents } from "./level-table";
import { PlotView, type PlotEdits } from "./plot-view";
import { offerPositionForm } from "./position-form";
import { baseName, isJoined, type Profile } from "./profile";
import type { ListKey } from "./protocol";
import { rehearse } from "./rehearsal";

/// Name of the performance entry that tells how long a cast took to be drawn.
const DRAWING = "cast drawn";

/// A verdict and when it was given.
interface ToldVerdict extends Verdict {
  at: Date;
}

/// What the page shows of a cast, to be shown again later.
export interface CastState {
  profile: Profile;
  verdict: ToldVerdict | null;
}

export class CastView {
  private profile: Profile | null = null;
  private columns: readonly Column[] = [];
  private invalid: readonly number[] = [];
  private verdict: ToldVerdict | null = null;
  private selected = -1;
  private quantities: readonly PlotQuantity[] = [];
  /// Quantities whose panels the user has put away, in this cast and the next ones.
  private readonly away = new Set<ListKey>();
  private compared: Profile | null = null;

  private readonly title = byId("cast-title");
  private readonly facts = byId("cast-facts");
  private readonly readout = byId("readout");
  private readonly fitValid = byId<HTMLButtonElement>("fit-valid");
  private readonly nextInvalid = byId<HTMLButtonElement>("next-invalid");
  private readonly resetZoom = byId<HTMLButtonElement>("reset-zoom");
  private readonly panelChoice = byId("plot-panels");
  private readonly legend = byId("plot-legend");
  private readonly plot = new PlotView(byId("plot"), {
    select: (level) => void this.select(level),
    zoomed: (zoomed) => {
      // A button that rests must not take the keyboard with it.
      if (!zoomed && document.activeElement === this.resetZoom) this.plot.focus();
      this.resetZoom.disabled = !zoomed;
    },
    summarised: (text) => (byId("plot-summary").textContent = text),
  });
  readonly table: LevelTable;

  /// `inTable` and `inPlot` are told of what the user does to levels there.
  constructor(inTable: Omit<TableEvents, "select">, inPlot: PlotEdits) {
    this.table = new LevelTable(byId("level-table"), "edit-fault", {
      ...inTable,
      select: (level) => void this.select(level),
    });
    this.plot.onEdit(inPlot);
    this.resetZoom.addEventListener("click", () => this.plot.reset());
    this.fitValid.addEventListener("click", () => this.plot.fitValid());
    this.nextInvalid.addEventListener("click", () => this.selectNextInvalid());
    rehearse();
    offerPositionForm(byId<HTMLSelectElement>("position-form"), () => this.profile && this.showHeader(this.profile));
  }

  /// What is on the page, or null while there is no cast.
  get state(): CastState | null {
    return this.profile && { profile: this.profile, verdict: this.verdict };
  }

  /// Shows again what was on the page.
  restore({ profile, verdict }: CastState): void {
    this.show(profile);
    if (verdict) this.tellVerdict(verdict);
  }

  get open(): Profile | null {
    return this.profile;
  }

  /// Shows a profile in place of the one before; nothing of that one's check stays. What it is
  /// compared with stays, unless it is the same.
  show(profile: Profile): void {
    const begun = performance.now();
    this.take(profile);
    this.table.show(profile, this.columns);
    this.plot.show(profile, this.columns, ...this.panels);
    this.plot.showUnder(this.compared && underOf(this.compared));
    this.showFacts();
    void this.select(-1);
    void this.table.drawn.then(() => noteDrawn(begun));
  }

  /// Shows the open cast as it is after an edit at a level (or in the header, "here"): what is in view
  /// stays so, and what lies under it. `isOnly` when no other level was changed.
  update({ profile, verdict }: CastState, place: number | "here", isOnly: boolean): void {
    const level = place === "here" ? this.selected : place;
    const { compared } = this;
    this.take(profile);
    this.table.update(profile, this.columns, isOnly ? level : undefined);
    this.plot.update(profile, this.columns, ...this.panels);
    if (compared !== this.compared) this.plot.showUnder(null);
    this.showFacts();
    void this.select(Math.min(level, profile.count - 1));
    if (verdict) this.tellVerdict(verdict);
  }

  /// Whether levels are edited in the plot by dragging and double click.
  setPlotEditing(on: boolean): void {
    this.plot.setEditing(on);
  }

  /// The columns in which the open cast has something to say.
  get shownColumns(): readonly Column[] {
    return this.columns;
  }

  /// Lays another profile under the open one; null takes it away.
  compare(other: Profile | null): void {
    this.compared = other;
    this.plot.showUnder(other && underOf(other));
    this.showLegend();
  }

  /// Takes a profile for the open one, without what was told of the one before.
  private take(profile: Profile): void {
    this.profile = profile;
    if (this.compared === profile) this.compared = null;
    this.columns = columnsOf(profile);
    this.quantities = plotQuantities(this.columns);
    this.invalid = [];
    this.verdict = null;
    document.body.dataset["cast"] = profile.filename;
    document.title = `${profile.filename} – SVP Editor`;
    this.title.textContent = this.title.title = shownName(profile.filename);
    byId("level-count").textContent = formatCount(profile.count);
    byId("verdict").hidden = true;
    this.showHeader(profile);
    this.showPanelChoice();
  }

  /// What is plotted: sound speed always, and what else the cast has and the user wants.
  private get panels(): readonly PlotQuantity[] {
    return this.quantities.filter(({ key }) => key === "svp_Speed" || !this.away.has(key));
  }

  private showPanelChoice(): void {
    const { panelChoice, away, quantities } = this;
    const others = quantities.filter(({ key }) => key !== "svp_Speed");
    panelChoice.replaceChildren(...others.map(({ key, name }) => {
      const toggle = button("panel-toggle", name, () => {
        if (!away.delete(key)) away.add(key);
        toggle.setAttribute("aria-pressed", String(!away.has(key)));
        if (this.profile) this.plot.update(this.profile, this.columns, ...this.panels);
      });
      toggle.setAttribute("aria-pressed", String(!away.has(key)));
      toggle.title = `${name} beside sound speed`;
      return toggle;
    }));
    panelChoice.hidden = others.length === 0;
  }

  private showLegend(): void {
    const joined = this.profile?.joined?.size ?? 0;
    const entries: LegendEntry[] = [{ key: "measured", label: "Measured" }];
    if (joined > 0) entries.push({ key: "joined", label: "Joined" });
    if (this.compared) {
      const label = baseName(this.compared.filename);
      const remove = () => {
        this.compare(null);
        byId("compare").focus();
      };
      entries.push({ key: "under", label, remove });
    }
    this.legend.replaceChildren(legend(entries));
    this.legend.hidden = entries.length < 2;
  }

  showVerdict(verdict: Verdict): void {
    this.tellVerdict({ ...verdict, at: new Date() });
  }

  private tellVerdict(told: ToldVerdict): void {
    const { lines, invalid, at } = told;
    this.verdict = told;
    this.invalid = invalid;
    const verdict = byId("verdict");
    verdict.hidden = false;
    // Lines after the first say what is still missing from a profile whose levels are all valid.
    verdict.dataset["state"] =
      invalid.length > 0 ? "invalid" : lines.length > 1 ? "unfinished" : "valid";
    byId("verdict-title").textContent = `Check of ${formatClock(at)}`;
    byId("verdict-lines").replaceChildren(...lines.map((line) => make("li", "", line)));
    this.plot.markInvalid(invalid);
    void this.table.markInvalid(invalid);
    this.showFacts();
    this.showReadout();
  }

  /// Goes to the invalid level after the selected one, and from the last to the first.
  selectNextInvalid(): void {
    const next = this.invalid.find((level) => level > this.selected) ?? this.invalid[0];
    if (next !== undefined) void this.select(next);
  }

  reset(): void {
    this.plot.reset();
  }

  fit(): void {
    if (!this.fitValid.hidden) this.plot.fitValid();
  }

  focusPlot(): void {
    this.plot.focus();
  }

  focusTable(): void {
    this.table.focus();
  }

  /// Resolves when plot and table show it.
  private async select(level: number): Promise<void> {
    this.selected = level;
    this.plot.markSelected(level);
    this.showReadout();
    await this.table.markSelected(level);
  }

  private showFacts(): void {
    if (!this.profile) return;
    const { count } = this.profile;
    const bad = this.invalid.length;
    this.facts.textContent = `${formatCount(count)} ${count === 1 ? "level" : "levels"}`;
    const joined = this.profile.joined?.size ?? 0;
    if (joined > 0) this.facts.append(` · ${formatCount(joined)} joined`);
    this.showLegend();
    if (bad > 0) this.facts.append(" · ", make("span", "bad", `${formatCount(bad)} invalid`));
    const rest = count - new Set([...this.invalid, ...(this.profile.joined ?? [])]).size;
    this.fitValid.hidden = rest === 0 || rest === count;
    this.fitValid.replaceChildren("Fit", make("span", "when-wide", joined > 0 ? " measured" : " valid"));
    this.fitValid.title = joined > 0 ? "Zoom to the levels that were measured (F)" : "Zoom to the levels that are valid (F)";
    this.nextInvalid.hidden = bad === 0;
  }

  private showReadout(): void {
    const { profile, selected } = this;
    if (!profile || selected < 0) {
      this.readout.textContent = profile ? "No level selected" : "";
      return;
    }
    const values = this.columns.map((column) => valueText(profile, column, selected));
    const bad = this.invalid.includes(selected);
    this.readout.textContent = [`Level ${selected + 1}`, ...values].join("  ·  ");
    if (bad) this.readout.append("  ·  ", make("span", "bad", "invalid"));
    else if (isJoined(profile, selected)) this.readout.append("  ·  joined, not measured");
  }

  private showHeader(profile: Profile): void {
    byId("header").replaceChildren(
      ...headerRows(profile.header, profile).flatMap(({ key, label, value, raw }) => {
        const field = make("dd", value ? "" : "not-given", value || "not given");
        field.dataset["key"] = key;
        if (raw) field.title = `In the file: ${raw}`;
        return [make("dt", "", label), field];
      }),
    );
  }
}

function underOf(profile: Profile) {
  const columns = columnsOf(profile);
  return { profile, columns, quantities: plotQuantities(columns) };
}

/// Notes among the browser's performance entries how long it took until a cast was on the screen.
async function noteDrawn(begun: number): Promise<void> {
  await painted();
  performance.measure(DRAWING, { start: begun });
}
