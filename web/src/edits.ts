/// What was done to the open cast since it was opened: what is not saved, and the steps back.
import { baseName, type Profile } from "./profile";

interface Step<State> {
  label: string;
  before: State;
}

/// `State` is what a step back brings to the page again.
export class Edits<State> {
  private steps: Step<State>[] = [];
  /// What the files that this cast was read from and written to hold, by their names.
  private files = new Map<string, Profile>();

  /// A cast was opened; nothing was done to it.
  opened(profile: Profile): void {
    this.steps = [];
    this.files = new Map([[baseName(profile.filename), profile]]);
  }

  /// Something was done. `label` says what a step back undoes, as in "Undo extend".
  changed(label: string, before: State): void {
    this.steps.push({ label, before });
  }

  /// A file of this name holds the profile now, in place of what it held.
  saved(name: string, profile: Profile): void {
    this.files.set(baseName(name), profile);
  }

  /// Whether no file holds this profile.
  isUnsaved(profile: Profile): boolean {
    return ![...this.files.values()].includes(profile);
  }

  /// Label of the step back, "" where there is none.
  get undoLabel(): string {
    return this.steps[this.steps.length - 1]?.label ?? "";
  }

  /// Takes a step back, to what was there before; null where there is none.
  undo(): State | null {
    return this.steps.pop()?.before ?? null;
  }
}
