/// The dialog in which the user has the open cast fixed, and sees what came of it.
import { readAtlas } from "./atlas";
import type { Comparison } from "./comparison";
import { ComparisonView } from "./comparison-view";
import { onClosed } from "./dialog";
import { button, dialogForm, make, setDisabled } from "./dom";
import { fixFailedText, fixedLines, isAboutAtlas, isAboutLevels, largestText, unreadableText } from "./fix-words";
import type { Fixed, FixedFile, Fixer } from "./fixer";
import { fixedName, fixedProfile, lacksSurface } from "./fixing";
import { withSurface } from "./level-edits";
import { NumberField } from "./number-field";
import { occasionIn } from "./occasion";
import type { Profile } from "./profile";
import { PROPOSED_TOLERANCE, TOLERANCES, underKindOf } from "./thinning";
import { rangeFault } from "./typed-number";
import { mayReplace } from "./replacing";

export interface FixDialogEvents {
  /// A fixed profile was written, and read back.
  /// A cast was fixed; `compare` shows what that has done, again and again.
  fixed(before: Profile, after: Profile, file: FixedFile, compare: () => void): void;
  /// A file was written although a failure had been told.
  written(before: Profile, file: FixedFile): void;
  /// A file was written and cannot be read, which the dialog was left too early to say itself.
  unreadable(text: string): void;
  /// A level at the surface was put in front of what a fix had made.
  surfaced(before: Profile, after: Profile): void;
  /// The profile with time and place, asked for where it does not state them; null when the user does
  /// not state them either.
  stated(profile: Profile): Promise<Profile | null>;
  /// The profile under a kind whose rows it has the values for; null when the user wants none.
  writable(profile: Profile): Promise<Profile | null>;
  /// The name in the profile folder of a file that `name` would replace, or "".
  listed(name: string): Promise<string>;
  atlas(): void;
  check(): void;
}

/// What the two profiles are called where they are compared.
const NAMES = { first: "as it came in", second: "fixed" };

/// What a fix has done, in words and numbers.
interface Result {
  name: string;
  facts: string;
  largest: string;
  comparison: Comparison | null;
}

export class FixDialog {
  private readonly dialog = make("dialog", "question extend fix");
  private readonly title = make("h2");
  private readonly asking = make("div", "fix-asking");
  private readonly tolerance = new NumberField(
    "fix-tolerance",
    "Tolerance of thinning",
    "0.01 to 1.0: how far a level may lie from the line through its neighbours, in metres and m/s.",
    (text) => rangeFault(text, "The tolerance", ...TOLERANCES, ""),
  );
  private readonly source = make("p", "field-hint");
  private readonly status = make("p", "dialog-status");
  private readonly confirm = make("button", "primary", "Fix");
  private readonly checkButton = this.leaving("Check the cast", () => this.events.check());
  private readonly atlasButton = this.leaving("World Ocean Atlas…", () => this.events.atlas());
  private readonly cancel = button("", "Cancel", () => this.dialog.close());

  private readonly result = make("div", "fix-result");
  private readonly facts = make("div", "thin-facts fix-facts");
  private readonly largest = make("p", "fix-largest");
  private readonly comparison = new ComparisonView(NAMES);
  private readonly surfaceButton = button("", "Add a level at 0 m", () => this.addSurface());
  private readonly close = button("primary", "Close", () => this.dialog.close());

  private profile: Profile | null = null;
  private after: Profile | null = null;
  private turn = 0;

  constructor(
    private readonly fixer: Fixer,
    private readonly events: FixDialogEvents,
  ) {
    this.build();
  }

  show(profile: Profile): void {
    if (this.dialog.open) return;
    this.left();
    this.profile = profile;
    this.ask();
    this.tolerance.value = this.tolerance.input.value || String(PROPOSED_TOLERANCE);
    this.rest(false);
    this.tell("");
    this.dialog.showModal();
    this.tolerance.focus();
    void this.tellSource();
  }

  private build(): void {
    const { dialog, title, status, confirm, facts, largest } = this;
    title.id = "fix-title";
    dialog.setAttribute("aria-labelledby", title.id);
    status.setAttribute("role", "status");
    facts.setAttribute("role", "status");
    largest.setAttribute("role", "status");
    this.asking.append(
      make(
        "p",
        "",
        "Invalid levels are left out, the cast is continued to full ocean depth, and levels that lie on " +
          "the line between others are left out. What remains is written as a file of its own.",
      ),
      this.tolerance.element,
      this.source,
    );
    this.result.append(facts, largest, this.comparison.element);
    confirm.type = "submit";
    const form = dialogForm("", () => void this.fix(), title, this.asking, this.result, status,
      make("div", "question-buttons", this.checkButton, this.atlasButton, this.surfaceButton, this.cancel, confirm, this.close));
    onClosed(dialog, () => this.left());
    dialog.append(form);
    document.body.append(dialog);
  }

  private left(): void {
    this.turn += 1;
    this.profile = null;
    this.after = null;
    this.comparison.show(null);
  }

  /// A button that leads from this dialog to something else.
  private leaving(label: string, run: () => void): HTMLButtonElement {
    return button("", label, () => {
      this.dialog.close();
      run();
    });
  }

  /// Says with what the cast will be continued, as far as the host tells.
  private async tellSource(): Promise<void> {
    const { turn } = this;
    this.source.textContent = "";
    const answer = await readAtlas();
    if (turn !== this.turn || !("state" in answer)) return;
    this.source.textContent = answer.state.use
      ? "It is continued with the World Ocean Atlas, which is switched on."
      : "It is continued with the extension rows; the World Ocean Atlas is switched off.";
  }

  private async fix(): Promise<void> {
    const { profile: open } = this;
    if (!open || this.after || this.confirm.disabled) return;
    const tolerance = this.tolerance.take();
    if (tolerance === null) return this.tolerance.focus();
    // Asked for once more, or left, meanwhile: this one ends.
    const turn = ++this.turn;
    const isOver = () => turn !== this.turn;
    const kinded = await this.events.writable(open);
    if (!kinded || isOver()) return;
    const older = await this.events.listed(fixedName(kinded));
    if (isOver() || (older && !(await mayReplace(older))) || isOver()) return;
    const profile = await this.events.stated(open);
    if (!profile || isOver()) return;
    // What was stated is part of the cast now, whatever comes of the fix.
    this.profile = profile;
    const sent = underKindOf(profile, kinded);
    this.rest(true);
    this.tell("Fixing…");
    const outcome = await this.fixer.fix(sent, tolerance, occasionIn(sent), (file) => this.events.written(profile, file));
    const isLeft = isOver();
    if (!isLeft) this.rest(false);
    if ("reason" in outcome) {
      if (!isLeft) this.fail(profile, outcome.reason);
    } else if ("reason" in outcome.read) {
      const text = unreadableText(sent, outcome.file, outcome.read.reason);
      if (isLeft) this.events.unreadable(text);
      else this.failUnreadable(text);
    } else {
      this.done(profile, outcome, outcome.read.profile, isLeft);
    }
  }

  /// What was typed stays, for another try.
  private failUnreadable(text: string): void {
    this.tell(text, true);
    this.tolerance.focus();
  }

  private done(before: Profile, { file, compared }: Fixed, read: Profile, isLeft: boolean): void {
    const { profile: after, facts } = fixedProfile(before, read);
    const comparison = "comparison" in compared ? compared.comparison : null;
    const result: Result = {
      name: before.filename,
      facts: fixedLines(before, after, facts, file).join(" "),
      largest: comparison
        ? largestText(comparison, NAMES.first, NAMES.second)
        : `The two could not be compared. ${"reason" in compared ? compared.reason : ""}`.trim(),
      comparison,
    };
    this.events.fixed(before, after, file, () => this.showAgain(result));
    if (isLeft) return;
    this.after = after;
    this.showResult(result);
  }

  /// Shows what an earlier fix has done. The cast may be another one by now: nothing is done to it here.
  private showAgain(result: Result): void {
    if (this.dialog.open) return;
    this.left();
    this.rest(false);
    this.dialog.showModal();
    this.showResult(result);
  }

  private addSurface(): void {
    const before = this.after;
    if (!before || !lacksSurface(before)) return;
    const after = withSurface(before);
    this.after = after;
    this.surfaceButton.hidden = true;
    this.facts.append(make("p", "", "A level at 0 m was put in front, with the sound speed of the first level. It is not saved yet."));
    this.events.surfaced(before, after);
    this.close.focus();
  }

  private ask(): void {
    this.title.textContent = "Fix the cast";
    this.dialog.classList.remove("with-result");
    this.asking.hidden = false;
    this.result.hidden = true;
    this.comparison.show(null);
    this.confirm.hidden = this.cancel.hidden = false;
    this.surfaceButton.hidden = this.close.hidden = true;
  }

  private showResult({ name, facts, largest, comparison }: Result): void {
    this.facts.replaceChildren(make("p", "", facts));
    this.largest.textContent = largest;
    this.title.textContent = `${name} is fixed`;
    this.dialog.classList.add("with-result");
    this.asking.hidden = true;
    this.result.hidden = false;
    this.tell("");
    this.confirm.hidden = this.cancel.hidden = true;
    this.close.hidden = false;
    this.surfaceButton.hidden = !this.after || !lacksSurface(this.after);
    this.comparison.show(comparison);
    this.close.focus();
  }

  private fail(profile: Profile, reason: string): void {
    this.tell(fixFailedText(profile, reason), true);
    this.checkButton.hidden = !isAboutLevels(reason);
    this.atlasButton.hidden = !isAboutAtlas(reason);
  }

  private rest(busy: boolean): void {
    this.dialog.setAttribute("aria-busy", String(busy));
    setDisabled(this.confirm, busy);
  }

  private tell(text: string, isFailure = false): void {
    this.checkButton.hidden = true;
    this.atlasButton.hidden = true;
    this.status.textContent = text;
    this.status.hidden = text === "";
    this.status.setAttribute("role", isFailure ? "alert" : "status");
    this.status.classList.toggle("field-fault", isFailure);
  }
}
