/// The history of the open cast: what was done to it, the steps back and forth, and what no file
/// holds.
import { deltaOf, redone, undone, type Delta } from "./delta";
import { baseName, type Profile } from "./profile";

/// What a step brings to the page again; the verdict is of that profile, or null.
export interface Snapshot<Verdict> {
  profile: Profile;
  verdict: Verdict | null;
}

/// Where a step leads: to a level, to no other place than where the user is, or to another cast
/// altogether.
export type Place = number | "here" | "whole";

/// A step taken.
export interface Step<Verdict> extends Snapshot<Verdict> {
  place: Place;
  /// No level but the one at the place is another than before.
  isOnly: boolean;
}

interface Entry<Verdict> {
  label: string;
  delta: Delta;
  isLocal: boolean;
  /// Revisions and verdicts at both ends.
  from: number;
  to: number;
  before: Verdict | null;
  after: Verdict | null;
}

export class Edits<Verdict> {
  private done: Entry<Verdict>[] = [];
  private taken: Entry<Verdict>[] = [];
  /// Each state of a cast has a number of its own: a profile that a step makes anew is the same
  /// state as before, though another object.
  private revisions = new WeakMap<Profile, number>();
  private lastRevision = 0;
  /// Which states the files that this cast was read from and written to hold, by their names.
  private files = new Map<string, number>();
  private held: Profile | null = null;
  private heldIn = "";
  private origin: Profile | null = null;
  /// What was opened is no longer in its file, and in no other.
  private isOutdated = false;

  /// A cast was opened from the file of this name; nothing was done to it.
  opened(profile: Profile, name = profile.filename): void {
    this.done = [];
    this.taken = [];
    this.files = new Map([[baseName(name), this.revisionOf(profile)]]);
    this.held = this.origin = profile;
    this.heldIn = name;
    this.isOutdated = false;
  }

  /// Something was done. `label` says what a step back undoes, as in "Undo extend". `isLocal` when
  /// it is an edit of some levels, so that a step leads back to their place.
  changed(label: string, before: Snapshot<Verdict>, after: Profile, isLocal = false): void {
    this.done.push({
      label,
      delta: deltaOf(before.profile, after),
      isLocal,
      from: this.revisionOf(before.profile),
      to: this.revisionOf(after),
      before: before.verdict,
      after: null,
    });
    this.taken = [];
  }

  /// A file of this name holds the profile now, in place of what it held.
  saved(name: string, profile: Profile): void {
    this.files.set(baseName(name), this.revisionOf(profile));
    this.held = profile;
    this.heldIn = name;
  }

  /// A file of this name holds something else now, or is gone, by somebody else's doing.
  lost(name: string, what: "changed" | "gone"): void {
    const revision = this.files.get(baseName(name));
    this.files.delete(baseName(name));
    const isOrigin = this.origin !== null && revision === this.revisionOf(this.origin);
    if (isOrigin) this.isOutdated = what === "changed";
  }

  /// Whether something that the user has done is lost when this profile is. What was opened and whose
  /// file has changed since is in no file, but nobody's work.
  isWork(profile: Profile): boolean {
    const isAsOpened = this.origin !== null && this.revisionOf(profile) === this.revisionOf(this.origin);
    return this.isUnsaved(profile) && !(isAsOpened && this.isOutdated);
  }

  /// What the file of this name holds if it is still what was opened; else null.
  openedFrom(name: string): Profile | null {
    const { origin } = this;
    return origin && this.files.get(baseName(name)) === this.revisionOf(origin) ? origin : null;
  }

  /// A file of this name was written, and holds what was no state of this cast.
  overwritten(name: string): void {
    this.files.delete(baseName(name));
  }

  /// Whether no file holds this profile.
  isUnsaved(profile: Profile): boolean {
    return ![...this.files.values()].includes(this.revisionOf(profile));
  }

  /// What a file has been known last to hold of the open cast; null before one was opened.
  get inFile(): Profile | null {
    return this.held;
  }

  /// Name of the file that holds it.
  get inFileName(): string {
    return this.heldIn;
  }

  /// Label of the step back, "" where there is none.
  get undoLabel(): string {
    return this.done[this.done.length - 1]?.label ?? "";
  }

  /// Label of the step forth again, "" where there is none.
  get redoLabel(): string {
    return (this.taken[this.taken.length - 1]?.label ?? "").replace(/^Undo/, "Redo");
  }

  /// Takes a step back from what is on the page now; null where there is none.
  undo(now: Snapshot<Verdict>): Step<Verdict> | null {
    const entry = this.done.pop();
    if (!entry) return null;
    this.taken.push({ ...entry, after: now.verdict });
    const profile = this.backFrom(now.profile, entry);
    return { profile, verdict: entry.before, ...placeOf(entry, profile) };
  }

  /// Takes the step again that was taken back last; null where there is none.
  redo(now: Snapshot<Verdict>): Step<Verdict> | null {
    const entry = this.taken.pop();
    if (!entry) return null;
    this.done.push({ ...entry, before: now.verdict });
    const profile = this.known(entry.to, () => redone(now.profile, entry.delta));
    return { profile, verdict: entry.after, ...placeOf(entry, profile) };
  }

  /// What the open cast was before the step that was taken last; null where there was none.
  earlier(now: Profile): Profile | null {
    const entry = this.done[this.done.length - 1];
    return entry ? this.backFrom(now, entry) : null;
  }

  private backFrom(now: Profile, { from, delta }: Entry<Verdict>): Profile {
    return this.known(from, () => undone(now, delta));
  }

  /// The profile of a state. What was opened, and what a file holds, are at hand: others know them as
  /// the objects that they are.
  private known(revision: number, make: () => Profile): Profile {
    const same = [this.origin, this.held].find((each) => each && this.revisions.get(each) === revision);
    if (same) return same;
    const profile = make();
    this.revisions.set(profile, revision);
    return profile;
  }

  private revisionOf(profile: Profile): number {
    const known = this.revisions.get(profile);
    if (known !== undefined) return known;
    this.revisions.set(profile, ++this.lastRevision);
    return this.lastRevision;
  }
}

function placeOf(
  { isLocal, delta: { at, before, after } }: Pick<Entry<unknown>, "isLocal" | "delta">,
  { count }: Profile,
): Pick<Step<unknown>, "place" | "isOnly"> {
  if (!isLocal) return { place: "whole", isOnly: false };
  if (before.count === 0 && after.count === 0) return { place: "here", isOnly: false };
  return { place: Math.min(at, count - 1), isOnly: before.count === 1 && after.count === 1 };
}
