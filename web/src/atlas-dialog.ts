/// The dialog in which the user switches the World Ocean Atlas on and chooses its two files.
import {
  LARGEST_ATLAS_FILE,
  QUANTITIES,
  handInAtlasFile,
  readAtlas,
  writeAtlas,
  type AtlasState,
  type Quantity,
} from "./atlas";
import { ask, onClosed } from "./dialog";
import { button, dialogForm, make, setDisabled } from "./dom";
import { formatSize } from "./format";
import { baseName } from "./profile";
import type { PickedFile } from "./uploads";

const LABELS: Record<Quantity, string> = { salinity: "Salinity file", temperature: "Temperature file" };

/// What belongs to one of the two files.
interface FilePart {
  element: HTMLElement;
  path: HTMLInputElement;
  pick: HTMLButtonElement;
  facts: HTMLElement;
  progress: HTMLProgressElement;
}

export class AtlasDialog {
  private readonly dialog = make("dialog", "question extend atlas");
  private readonly status = make("p", "dialog-status");
  private readonly use = make("input");
  private readonly save = make("button", "primary", "Save");
  private readonly choices = make("datalist");
  private readonly parts: Record<Quantity, FilePart>;
  private state: AtlasState | null = null;
  private hand: AbortController | null = null;
  private turn = 0;

  /// `saved` is told what was stored, in a sentence.
  constructor(private readonly saved: (text: string) => void) {
    this.parts = { salinity: this.part("salinity"), temperature: this.part("temperature") };
    this.build();
  }

  async show(): Promise<void> {
    if (this.dialog.open) return;
    this.left();
    const { turn } = this;
    this.state = null;
    this.use.checked = false;
    for (const quantity of QUANTITIES) this.setFile(quantity, "", []);
    this.rest(true);
    this.lock(true);
    this.tell("Reading the settings…");
    this.dialog.showModal();
    const result = await readAtlas();
    if (turn !== this.turn) return;
    if ("reason" in result) return this.tell(result.reason, true);
    this.rest(false);
    this.lock(false);
    this.tell("");
    this.take(result.state);
    this.use.focus();
  }

  private left(): void {
    this.turn += 1;
    this.hand?.abort();
    this.hand = null;
  }

  private build(): void {
    const { dialog, status, use, save, choices } = this;
    const title = make("h2", "", "World Ocean Atlas");
    title.id = "atlas-title";
    dialog.setAttribute("aria-labelledby", title.id);
    const text = make(
      "p",
      "",
      "Fix continues a cast with the atlas’s salinity and temperature at the cast’s position, when it " +
        "is switched on. The settings are those of the survey system, for all pages.",
    );
    text.id = "atlas-text";
    dialog.setAttribute("aria-describedby", text.id);
    status.setAttribute("role", "status");
    use.type = "checkbox";
    use.id = "atlas-use";
    const name = make("label", "", "Continue casts with the atlas");
    name.htmlFor = use.id;
    choices.id = "atlas-choices";
    save.type = "submit";
    const form = dialogForm("", () => void this.store(), title, text, make("div", "way", use, name),
      this.parts.salinity.element, this.parts.temperature.element, choices, status,
      make("div", "question-buttons", button("", "Cancel", () => dialog.close()), save));
    onClosed(dialog, () => this.left());
    dialog.append(form);
    document.body.append(dialog);
  }

  private part(quantity: Quantity): FilePart {
    const path = make("input");
    path.id = `atlas-${quantity}`;
    path.autocomplete = "off";
    path.spellcheck = false;
    path.setAttribute("list", "atlas-choices");
    const label = make("label", "", LABELS[quantity]);
    label.htmlFor = path.id;
    const facts = make("div", "file-facts");
    facts.id = `${path.id}-facts`;
    facts.setAttribute("role", "status");
    path.setAttribute("aria-describedby", facts.id);
    path.addEventListener("input", () => facts.replaceChildren());
    const progress = make("progress", "atlas-progress");
    progress.max = 1;
    progress.hidden = true;
    progress.setAttribute("aria-label", `Handing in the ${quantity} file`);
    const picker = make("input");
    picker.type = "file";
    picker.hidden = true;
    picker.setAttribute("aria-label", `${LABELS[quantity]} of this computer`);
    picker.addEventListener("change", () => {
      const file = picker.files?.[0];
      picker.value = "";
      if (file) void this.handIn(quantity, file);
    });
    const pick = button("", "Hand in…", () => picker.click());
    pick.setAttribute("aria-label", `Hand in a ${quantity} file of this computer`);
    const element = make("div", "atlas-file", label, make("div", "atlas-path", path, pick), picker, progress, facts);
    return { element, path, pick, facts, progress };
  }

  private take(state: AtlasState): void {
    this.state = state;
    this.use.checked = state.use;
    this.choices.replaceChildren(...state.stored.map(({ name }) => new Option("", `${state.folder}/${name}`)));
    for (const quantity of QUANTITIES) {
      const { path, there, size, fault } = state[quantity];
      this.setFile(quantity, path, [
        ...(there ? [make("p", "field-hint", `There, ${formatSize(size)}.`)] : []),
        ...(fault ? [make("p", "field-fault", fault)] : []),
        ...(path === "" ? [make("p", "field-hint", "The file’s whole path on the host’s machine; or hand one in.")] : []),
      ]);
    }
  }

  private setFile(quantity: Quantity, path: string, facts: readonly HTMLElement[]): void {
    const part = this.parts[quantity];
    part.path.value = path;
    part.facts.replaceChildren(...facts);
  }

  private async handIn(quantity: Quantity, file: PickedFile): Promise<void> {
    const { facts, progress } = this.parts[quantity];
    if (this.hand || !this.state) return;
    const fail = (text: string) => facts.replaceChildren(make("p", "field-fault", text));
    if (file.size > LARGEST_ATLAS_FILE) return fail(`${file.name} is too large; at most 512 MiB are taken.`);
    const older = this.state.stored.find(({ name }) => name === file.name);
    if (older && !(await mayReplace(older.name))) return;
    const turn = this.turn;
    const hand = new AbortController();
    this.hand = hand;
    this.rest(true);
    progress.hidden = false;
    progress.value = 0;
    facts.replaceChildren(make("p", "field-hint", `Handing in ${file.name}, ${formatSize(file.size)}…`));
    const result = await handInAtlasFile(quantity, file, (part) => (progress.value = part), hand.signal);
    progress.hidden = true;
    if (turn !== this.turn) return;
    this.hand = null;
    this.rest(false);
    if ("reason" in result) return fail(result.reason);
    this.setFile(quantity, result.path, [make("p", "field-hint", `Stored, ${formatSize(result.size)}. Save to have it used.`)]);
    const others = this.state.stored.filter(({ name }) => name !== file.name);
    this.state = { ...this.state, stored: [...others, { name: baseName(result.path), size: result.size }] };
  }

  private async store(): Promise<void> {
    if (this.save.disabled) return;
    const paths = { salinity: this.parts.salinity.path.value.trim(), temperature: this.parts.temperature.path.value.trim() };
    const use = this.use.checked;
    const missing = QUANTITIES.find((quantity) => paths[quantity] === "");
    if (use && missing) {
      this.tell(`Choose the ${missing} file; the atlas needs both.`, true);
      return this.parts[missing].path.focus();
    }
    if (paths.salinity !== "" && paths.salinity === paths.temperature) {
      return this.tell("Both are the same file. Choose one with salinities and one with temperatures.", true);
    }
    const turn = ++this.turn;
    this.rest(true);
    this.tell("Saving…");
    const result = await writeAtlas(use, paths);
    if (turn !== this.turn) return;
    this.rest(false);
    if ("reason" in result) return this.tell(result.reason, true);
    this.take(result.state);
    if (use && QUANTITIES.some((quantity) => result.state[quantity].fault)) {
      return this.tell("Saved, but the atlas cannot be used like this: see its files.", true);
    }
    this.dialog.close();
    this.saved(use ? "The World Ocean Atlas is switched on: Fix continues casts with it." : "The World Ocean Atlas is switched off.");
  }

  /// Before the settings are read, what is entered would be overwritten by them.
  private lock(locked: boolean): void {
    const files = QUANTITIES.flatMap((quantity) => [this.parts[quantity].path, this.parts[quantity].pick]);
    for (const control of [this.use, ...files]) control.disabled = locked;
  }

  private rest(busy: boolean): void {
    this.dialog.setAttribute("aria-busy", String(busy));
    setDisabled(this.save, busy);
  }

  private tell(text: string, isFailure = false): void {
    const { status } = this;
    status.textContent = text;
    status.hidden = text === "";
    status.setAttribute("role", isFailure ? "alert" : "status");
    status.classList.toggle("field-fault", isFailure);
  }
}

async function mayReplace(name: string): Promise<boolean> {
  const answer = await ask({
    title: `Replace ${name}?`,
    text: [`${name} was handed in before. It will be replaced, and no copy of it is kept.`],
    confirm: "Replace",
  });
  return answer !== null;
}
