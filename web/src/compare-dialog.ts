/// The dialog in which the user chooses a cast to be laid under the open one.
import type { Candidate, ComparedCasts } from "./compared-casts";
import { onClosed } from "./dialog";
import { button, dialogForm, make } from "./dom";
import { baseName, type Profile } from "./profile";

/// Rows of the list before it scrolls.
const ROWS = 10;

export class CompareDialog {
  private readonly dialog = make("dialog", "question compare");
  private readonly choice = make("select", "compare-choice");
  private readonly status = make("p", "dialog-status");
  private readonly confirm = make("button", "primary", "Compare");
  private candidates: readonly Candidate[] = [];
  private open: Profile | null = null;
  private turn = 0;

  constructor(
    private readonly comparison: ComparedCasts,
    /// Names of the casts in the profile folder.
    private readonly listed: () => readonly string[],
    private readonly chosen: (open: Profile, other: Profile) => void,
  ) {
    const { dialog, choice, status, confirm } = this;
    const title = make("h2", "", "Compare with…");
    title.id = "compare-title";
    dialog.setAttribute("aria-labelledby", title.id);
    choice.size = ROWS;
    choice.setAttribute("aria-label", "Cast to compare with");
    status.setAttribute("role", "status");
    confirm.type = "submit";
    const form = dialogForm("", () => void this.take(), title,
      make("p", "question-text", "The other cast is drawn under the open one; nothing else is done with it."),
      choice, status,
      make("div", "question-buttons", button("", "Cancel", () => dialog.close()), confirm));
    dialog.append(form);
    document.body.append(dialog);
    choice.addEventListener("dblclick", () => void this.take());
    choice.addEventListener("keydown", (event) => {
      if (event.key !== "Enter") return;
      event.preventDefault();
      void this.take();
    });
    onClosed(dialog, () => this.left());
  }

  show(open: Profile): void {
    const { dialog, choice, confirm } = this;
    if (dialog.open) return;
    this.left();
    this.open = open;
    this.candidates = this.comparison.candidates(open, this.listed());
    const option = (candidate: Candidate) => new Option(candidate.label, String(this.candidates.indexOf(candidate)));
    const group = (label: string, isRemembered: boolean) => {
      const part = make("optgroup", "");
      part.label = label;
      part.append(...this.candidates.filter((each) => each.isRemembered === isRemembered).map(option));
      return part;
    };
    const groups = [group("Opened in this session", true), group("In the profile folder", false)];
    choice.replaceChildren(...groups.filter((part) => part.childElementCount > 0));
    choice.selectedIndex = 0;
    this.rest(false);
    const isEmpty = this.candidates.length === 0;
    confirm.disabled = isEmpty;
    choice.hidden = isEmpty;
    this.status.textContent = isEmpty ? "There is no other cast." : "";
    dialog.showModal();
    if (!isEmpty) choice.focus();
  }

  private left(): void {
    this.turn += 1;
  }

  private async take(): Promise<void> {
    const { open } = this;
    const candidate = this.candidates[Number(this.choice.value || NaN)];
    if (!open || !candidate || this.confirm.disabled) return;
    const turn = ++this.turn;
    this.rest(true);
    this.status.textContent = `Reading ${baseName(candidate.name)}…`;
    const look = await this.comparison.profileOf(candidate);
    if (turn !== this.turn) return;
    this.rest(false);
    if ("reason" in look) {
      this.status.textContent = `${baseName(candidate.name)} could not be read. ${look.reason}`;
      this.choice.focus();
      return;
    }
    this.dialog.close();
    this.chosen(open, look.profile);
  }

  private rest(isBusy: boolean): void {
    this.confirm.disabled = isBusy;
    this.choice.disabled = isBusy;
  }
}
