/// The dialog in which the user tries how far the open cast can be thinned, and keeps what is good.
import { columnsOf, plotQuantities } from "./columns";
import { onClosed } from "./dialog";
import { button, dialogForm, make, setDisabled } from "./dom";
import { isAboutOrder, notWholeText, previewLines, thinFailedText } from "./extend-words";
import { legend } from "./legend";
import { NumberField } from "./number-field";
import { PlotView } from "./plot-view";
import { occasionIn } from "./occasion";
import type { Profile } from "./profile";
import type { ThinnedFile, Thinner } from "./thinner";
import {
  FULL_DEPTH,
  PROPOSED_TOLERANCE,
  TOLERANCES,
  largestDifference,
  thinKind,
  thinned,
  thinnedName,
  underKindOf,
} from "./thinning";
import { rangeFault, typedNumber } from "./typed-number";
import { mayReplace } from "./replacing";

export interface ThinDialogEvents {
  /// A thinned profile was written and is wanted on the page.
  kept(before: Profile, after: Profile, file: ThinnedFile): void;
  /// A file was written although a failure had been told.
  written(before: Profile, file: ThinnedFile): void;
  /// The profile with time and place, asked for where it does not state them; null when the user does
  /// not state them either.
  stated(profile: Profile): Promise<Profile | null>;
  /// The profile under a kind whose rows it has the values for; null when the user wants none.
  writable(profile: Profile): Promise<Profile | null>;
  /// The name in the profile folder of a file that `name` would replace, or "".
  listed(name: string): Promise<string>;
  extend(): void;
  check(): void;
}

export class ThinDialog {
  private readonly dialog = make("dialog", "thin");
  private readonly tolerance = new NumberField(
    "tolerance",
    "Tolerance",
    "0.01 to 1.0: how far a level may lie from the line through its neighbours, in metres and m/s.",
    (text) => rangeFault(text, "The tolerance", ...TOLERANCES, ""),
    () => this.typed(),
  );
  private readonly slider = make("input");
  private readonly facts = make("div", "thin-facts");
  private readonly status = make("p", "dialog-status");
  private readonly tryButton = make("button", "", "Preview");
  private readonly keepButton = button("primary", "Keep", () => void this.keep());
  private readonly extendButton = button("", "Extend…", () => {
    this.dialog.close();
    this.events.extend();
  });
  private readonly checkButton = button("", "Check the cast", () => {
    this.dialog.close();
    this.events.check();
  });
  private readonly legend = legend([
    { key: "measured", label: "As it is" },
    { key: "thinned", label: "Thinned" },
  ]);
  private readonly plotPlace = make("div", "thin-plot-place");
  /// Lives as long as the dialog is open.
  private plot: PlotView | null = null;
  private profile: Profile | null = null;
  /// What the preview on show would keep, and at which tolerance.
  private previewed: { kept: number[]; tolerance: number } | null = null;
  /// Why the cast cannot be thinned as it is; "" when it can.
  private missing = "";
  private turn = 0;

  constructor(
    private readonly thinner: Thinner,
    private readonly events: ThinDialogEvents,
  ) {
    this.build();
  }

  show(profile: Profile): void {
    if (this.dialog.open) return;
    this.left();
    this.profile = profile;
    this.tolerance.value = String(PROPOSED_TOLERANCE);
    this.slider.value = String(PROPOSED_TOLERANCE);
    this.missing = notWholeText(profile, FULL_DEPTH);
    this.discard();
    this.dialog.showModal();
    this.draw(profile);
    if (this.missing) this.extendButton.focus();
    else this.tolerance.focus();
  }

  private draw(profile: Profile): void {
    const host = make("div", "plot thin-plot");
    host.tabIndex = 0;
    host.setAttribute("role", "group");
    host.setAttribute("aria-label", "Plot of the cast with the thinned line over it");
    host.setAttribute("aria-describedby", "plot-keys");
    this.plotPlace.replaceChildren(host);
    const plot = new PlotView(host, { select: (level) => plot.markSelected(level), zoomed: () => undefined });
    const columns = columnsOf(profile);
    const [speed] = plotQuantities(columns);
    if (speed) plot.show(profile, columns, speed);
    this.plot = plot;
  }

  private build(): void {
    const { dialog, slider, status, facts, tryButton } = this;
    const title = make("h2", "", "Thin the cast");
    title.id = "thin-title";
    dialog.setAttribute("aria-labelledby", title.id);
    status.setAttribute("role", "status");
    facts.setAttribute("role", "status");
    slider.type = "range";
    slider.className = "thin-slider";
    [slider.min, slider.max] = TOLERANCES.map(String) as [string, string];
    slider.step = "0.01";
    slider.setAttribute("aria-label", "Tolerance");
    slider.addEventListener("input", () => {
      this.tolerance.value = slider.value;
      this.discard();
    });
    tryButton.type = "submit";
    const form = dialogForm("thin-side", () => void this.preview(),
      make(
        "p",
        "",
        "Levels that lie on the line between others are left out. What remains is written as a file of its own.",
      ),
      this.tolerance.element, slider, tryButton, facts, status,
      make("div", "thin-actions", this.extendButton, this.checkButton, this.keepButton,
        button("", "Discard", () => dialog.close())));
    dialog.append(
      make("div", "panel-head", title),
      make("div", "thin-parts", form, make("div", "thin-main", this.legend, this.plotPlace)),
    );
    onClosed(dialog, () => this.left());
    document.body.append(dialog);
  }

  private left(): void {
    this.turn += 1;
    this.profile = null;
    this.plot = null;
    this.plotPlace.replaceChildren();
  }

  private typed(): void {
    const value = typedNumber(this.tolerance.input.value);
    if (value !== null) this.slider.value = String(value);
    this.discard();
  }

  /// Takes back a preview: what it shows is not what would be kept now.
  private discard(): void {
    this.turn += 1;
    this.rest(false);
    this.previewed = null;
    this.facts.replaceChildren();
    this.keepButton.disabled = true;
    this.legend.hidden = true;
    this.plot?.showOver([]);
    this.tell(this.missing, this.missing !== "");
    this.extendButton.hidden = this.missing === "";
  }

  private async preview(): Promise<void> {
    const { profile } = this;
    if (!profile || this.tryButton.disabled) return;
    this.discard();
    const tolerance = this.tolerance.take();
    if (tolerance === null) return this.tolerance.focus();
    const turn = ++this.turn;
    this.rest(true);
    this.tell("Thinning…");
    const result = await this.thinner.preview(profile, tolerance);
    if (turn !== this.turn) return;
    this.rest(false);
    if ("reason" in result) return this.fail(profile, result.reason);
    const { kept } = result;
    this.tell("");
    this.previewed = { kept, tolerance };
    this.plot?.showOver(kept);
    this.legend.hidden = false;
    const lines = previewLines(profile, kept.length, largestDifference(profile, kept));
    const file = `Keep writes ${thinnedName(profile.filename, thinKind(profile))}.`;
    this.facts.replaceChildren(...[...lines, file].map((line) => make("p", "", line)));
    this.keepButton.disabled = false;
    this.keepButton.focus();
  }

  private async keep(): Promise<void> {
    const { profile: open, previewed } = this;
    if (!open || !previewed || this.keepButton.disabled) return;
    // Asked for once more, or left, meanwhile: this one ends.
    const turn = ++this.turn;
    const isOver = () => turn !== this.turn || previewed !== this.previewed;
    const kinded = await this.events.writable(open);
    if (!kinded || isOver()) return;
    const older = await this.events.listed(thinnedName(open.filename, thinKind(kinded)));
    if (isOver() || (older && !(await mayReplace(older))) || isOver()) return;
    const profile = await this.events.stated(open);
    if (!profile || isOver()) return;
    // What was stated is part of the cast now, whatever comes of the thinning.
    this.profile = profile;
    const sent = underKindOf(profile, kinded);
    const occasion = occasionIn(sent);
    this.rest(true);
    this.tell("Writing…");
    const result = await this.thinner.keep(sent, previewed.tolerance, occasion, (file) =>
      this.events.written(profile, file),
    );
    // The file is written whatever became of the dialog meanwhile.
    const isLeft = profile !== this.profile || previewed !== this.previewed;
    if (!isLeft) this.rest(false);
    if ("reason" in result) {
      if (!isLeft) this.fail(profile, result.reason);
    } else if (isLeft) {
      this.events.written(profile, result);
    } else {
      this.dialog.close();
      this.events.kept(profile, thinned(sent, previewed.kept, result.name, occasion), result);
    }
  }

  private fail(profile: Profile, reason: string): void {
    this.tell(thinFailedText(profile, reason), true);
    this.checkButton.hidden = !isAboutOrder(reason);
    this.extendButton.hidden = reason !== "Profile not extended.";
  }

  private rest(busy: boolean): void {
    this.dialog.setAttribute("aria-busy", String(busy));
    setDisabled(this.tryButton, busy || this.missing !== "");
    setDisabled(this.keepButton, busy || this.previewed === null);
  }

  private tell(text: string, isFailure = false): void {
    this.checkButton.hidden = true;
    this.extendButton.hidden = true;
    this.status.textContent = text;
    this.status.hidden = text === "";
    this.status.setAttribute("role", isFailure ? "alert" : "status");
    this.status.classList.toggle("field-fault", isFailure);
  }
}
