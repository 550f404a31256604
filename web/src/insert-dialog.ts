/// The dialog for a level at a depth that the user states: its other values are offered.
import { listName, typedValue } from "./cell-values";
import type { Column } from "./columns";
import { onClosed } from "./dialog";
import { button, dialogForm, make } from "./dom";
import { formatCount, formatValue } from "./format";
import { offerFor, type Offer, type Values } from "./level-edits";
import { NumberField } from "./number-field";
import type { Profile } from "./profile";
import type { ListKey } from "./protocol";
import { heedTyped } from "./typed-input";
import { typedNumber } from "./typed-number";

/// A level to put in, and which of its values the user has typed in place of what was offered.
export interface TypedLevel {
  index: number;
  values: Values;
  typed: ListKey[];
}

export class InsertDialog {
  private readonly dialog = make("dialog", "question insert");
  private fields = new Map<ListKey, NumberField>();
  private typed = new Set<ListKey>();
  private offer: Offer | null = null;
  private profile: Profile | null = null;
  private columns: readonly Column[] = [];

  /// `taken` gets the profile that the level was stated for.
  constructor(private readonly taken: (profile: Profile, level: TypedLevel) => void) {
    this.dialog.setAttribute("aria-labelledby", "insert-title");
    onClosed(this.dialog, () => (this.profile = null));
    heedTyped(this.dialog, () => this.typed.size > 0 || (this.fields.get("svp_Depth")?.input.value ?? "") !== "");
    document.body.append(this.dialog);
  }

  show(profile: Profile, columns: readonly Column[]): void {
    this.profile = profile;
    // What the probe had of its own cannot be stated for a level that it has not measured.
    this.columns = columns.filter(({ key }) => key !== "svp_Depth_CTD" && key !== "svp_Speed_CTD");
    this.typed = new Set();
    this.offer = null;
    this.build(profile);
    this.dialog.showModal();
    this.fields.get("svp_Depth")?.focus();
  }

  private build(profile: Profile): void {
    const title = make("h2", "", "Insert a level");
    title.id = "insert-title";
    const place = make("p", "field-hint insert-place", "The other values are offered when the depth is stated.");
    place.setAttribute("role", "status");
    this.fields = new Map();
    for (const { key, label, unit } of this.columns) {
      const isDepth = key === "svp_Depth";
      const field = new NumberField(
        `insert-${key}`,
        unit ? `${label} (${unit})` : label,
        "",
        (text) => this.faultOf(profile, key, text),
        () => (isDepth ? this.propose(place) : this.typed.add(key)),
      );
      this.fields.set(key, field);
    }
    const confirm = make("button", "primary", "Insert");
    confirm.type = "submit";
    const fields = make("div", "insert-fields", ...[...this.fields.values()].map(({ element }) => element));
    const form = dialogForm("", () => this.take(profile), title, fields, place,
      make("div", "question-buttons", button("", "Cancel", () => this.dialog.close()), confirm));
    this.dialog.replaceChildren(form);
  }

  private faultOf(profile: Profile, key: ListKey, text: string): string {
    // A cast need not have all of these; what it has no value of stays without one.
    if (text.trim() === "" && key !== "svp_Depth" && key !== "svp_Speed") return "";
    const typed = typedValue(profile, key, text);
    if ("fault" in typed) return text.trim() === "" ? `State the ${listName(profile, key)}.` : typed.fault;
    if (key !== "svp_Depth") return "";
    const offer = offerFor(profile, typed.value);
    return "level" in offer ? `Level ${formatCount(offer.level + 1)} is at this depth already: change that one.` : "";
  }

  /// Offers values for the depth that is typed, in the fields that the user has not filled in.
  private propose(place: HTMLElement): void {
    const { profile } = this;
    const depth = typedNumber(this.fields.get("svp_Depth")?.input.value ?? "");
    const found = profile && depth !== null ? offerFor(profile, depth) : null;
    this.offer = found && "index" in found ? found : null;
    for (const { key, decimals } of this.columns) {
      const field = this.fields.get(key);
      if (!field || key === "svp_Depth" || this.typed.has(key)) continue;
      const value = this.offer?.values[key] ?? NaN;
      field.value = Number.isNaN(value) ? "" : formatValue(value, decimals);
    }
    place.textContent = profile && this.offer ? placeText(profile, this.offer) : "";
  }

  private take(profile: Profile): void {
    const all = [...this.fields].map(([key, field]) => ({ key, field, value: field.take() }));
    const wrong = all.find(({ field }) => field.input.getAttribute("aria-invalid") === "true");
    if (wrong) return wrong.field.focus();
    const { offer } = this;
    if (!offer) return;
    const values = { ...offer.values };
    const typed: ListKey[] = [];
    for (const { key, value } of all) {
      // What was offered and left alone goes in with all its digits.
      if (!this.typed.has(key)) continue;
      values[key] = value ?? NaN;
      typed.push(key);
    }
    // Without a column of its own the probe's speed says the same as the speed.
    if (typed.includes("svp_Speed")) values.svp_Speed_CTD = values.svp_Speed;
    this.dialog.close();
    this.taken(profile, { index: offer.index, values, typed });
  }
}

/// Where a level would go, and what its values are.
export function placeText({ count }: Profile, { index, isBetween }: Offer): string {
  if (isBetween) {
    return `Between levels ${formatCount(index)} and ${formatCount(index + 1)}, on the line from one to the other.`;
  }
  return index === 0
    ? "Above the first level, with its values."
    : `Below the last level, ${formatCount(count)}, with its values.`;
}
