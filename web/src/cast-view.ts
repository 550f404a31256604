/// The open cast: plot, table, header, facts and verdict, and the level selected in all of them.
import { legend } from "./legend";
import { columnsOf, plotQuantities, valueText, type Column, type PlotQuantity } from "./columns";
import { byId, make } from "./dom";
import type { Verdict } from "./engine";
import { formatClock, formatCount } from "./format";
import { headerRows } from "./header-fields";
import { LevelTable } from "./level-table";
import { PlotView } from "./plot-view";
import { isJoined, type Profile } from "./profile";

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

  private readonly title = byId("cast-title");
  private readonly facts = byId("cast-facts");
  private readonly readout = byId("readout");
  private readonly fitValid = byId<HTMLButtonElement>("fit-valid");
  private readonly nextInvalid = byId<HTMLButtonElement>("next-invalid");
  private readonly resetZoom = byId<HTMLButtonElement>("reset-zoom");
  private readonly quantityChoice = byId<HTMLSelectElement>("plot-quantity");
  private readonly plot = new PlotView(byId("plot"), {
    select: (level) => this.select(level),
    zoomed: (zoomed) => (this.resetZoom.disabled = !zoomed),
  });
  private readonly table = new LevelTable(byId("level-table"), (level) => this.select(level));

  constructor() {
    byId("plot-legend").append(
      legend([{ key: "measured", label: "Measured" }, { key: "joined", label: "Joined" }]),
    );
    this.resetZoom.addEventListener("click", () => this.plot.reset());
    this.fitValid.addEventListener("click", () => this.plot.fitValid());
    this.quantityChoice.addEventListener("change", () => this.plot.showQuantity(this.quantity));
    this.nextInvalid.addEventListener("click", () => this.selectNextInvalid());
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

  /// Shows a profile in place of the one before; nothing of that one's check stays.
  show(profile: Profile): void {
    this.profile = profile;
    this.columns = columnsOf(profile);
    this.invalid = [];
    this.verdict = null;
    document.body.dataset["cast"] = profile.filename;
    document.title = `${profile.filename} – SVP Editor`;
    this.title.textContent = profile.filename;
    this.title.title = profile.filename;
    byId("level-count").textContent = formatCount(profile.count);
    byId("verdict").hidden = true;
    this.showHeader(profile);
    this.table.show(profile, this.columns);
    this.showQuantities();
    this.plot.show(profile, this.columns, this.quantity);
    this.showFacts();
    this.select(-1);
  }

  /// What is plotted: as for the cast before where this one has it, otherwise sound speed.
  private get quantity(): PlotQuantity {
    const { quantities, quantityChoice } = this;
    const chosen = quantities.find(({ key }) => key === quantityChoice.value) ?? quantities[0];
    if (!chosen) throw new Error("a profile without sound speeds");
    return chosen;
  }

  private showQuantities(): void {
    const { quantityChoice } = this;
    const before = quantityChoice.value;
    this.quantities = plotQuantities(this.columns);
    quantityChoice.replaceChildren(...this.quantities.map(({ key, name }) => new Option(name, key)));
    if (this.quantities.some(({ key }) => key === before)) quantityChoice.value = before;
    quantityChoice.hidden = this.quantities.length < 2;
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
    if (next !== undefined) this.select(next);
  }

  reset(): void {
    this.plot.reset();
  }

  fit(): void {
    if (this.invalid.length > 0) this.plot.fitValid();
  }

  focusPlot(): void {
    this.plot.focus();
  }

  focusTable(): void {
    this.table.focus();
  }

  private select(level: number): void {
    this.selected = level;
    this.plot.markSelected(level);
    void this.table.markSelected(level);
    this.showReadout();
  }

  private showFacts(): void {
    if (!this.profile) return;
    const { count } = this.profile;
    const bad = this.invalid.length;
    this.facts.textContent = `${formatCount(count)} ${count === 1 ? "level" : "levels"}`;
    const joined = this.profile.joined?.size ?? 0;
    if (joined > 0) this.facts.append(` · ${formatCount(joined)} joined`);
    byId("plot-legend").hidden = joined === 0;
    if (bad > 0) this.facts.append(" · ", make("span", "bad", `${formatCount(bad)} invalid`));
    this.fitValid.hidden = bad === 0 || bad === count;
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
      ...headerRows(profile.header).flatMap(({ key, label, value, raw }) => {
        const field = make("dd", value ? "" : "not-given", value || "not given");
        field.dataset["key"] = key;
        if (raw) field.title = `In the file: ${raw}`;
        return [make("dt", "", label), field];
      }),
    );
  }
}
