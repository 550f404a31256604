/// The dialog in which the header of the open cast is edited.
import { ask } from "./dialog";
import { button, dialogForm, make } from "./dom";
import { fieldOf, fieldText, kindChoices, kindFault, withHeader } from "./header-edit";
import { headerLabel, headerRows } from "./header-fields";
import type { Profile } from "./profile";
import type { HeaderKey } from "./protocol";
import { heedTyped } from "./typed-input";

interface Row {
  input: HTMLInputElement | HTMLSelectElement;
  /// What was in it at first.
  shown: string;
  fault: HTMLElement;
}

export class HeaderDialog {
  private readonly dialog = make("dialog", "question header-dialog");
  private rows = new Map<HeaderKey, Row>();

  /// `taken` gets the profile before and after; they are the same where nothing was changed.
  constructor(private readonly taken: (before: Profile, after: Profile) => void) {
    const { dialog } = this;
    dialog.setAttribute("aria-labelledby", "header-dialog-title");
    // The browser closes a dialog on a second Escape whatever was typed; so the key is taken here.
    dialog.addEventListener("keydown", (event) => {
      if (event.key !== "Escape" || event.defaultPrevented) return;
      event.preventDefault();
      void this.close();
    });
    dialog.addEventListener("cancel", (event) => {
      event.preventDefault();
      void this.close();
    });
    heedTyped(dialog, () => this.typed.length > 0);
    document.body.append(dialog);
  }

  /// Opens the dialog, at one of its fields.
  show(profile: Profile, at: HeaderKey = "hsvp_filetime"): void {
    this.build(profile);
    this.dialog.showModal();
    this.rows.get(at)?.input.focus();
  }

  /// Labels of the fields in which something else stands than at first.
  private get typed(): string[] {
    return [...this.rows].filter(([, { input, shown }]) => input.value !== shown).map(([key]) => headerLabel(key));
  }

  /// Goes once the user agrees to lose what was typed.
  private async close(): Promise<void> {
    const { typed } = this;
    if (typed.length > 0) {
      const answer = await ask({
        title: "Close without applying?",
        text: [`What was typed is in the header of no cast yet: ${typed.join(", ")}.`],
        confirm: "Close",
      });
      if (!answer) return;
    }
    this.dialog.close();
  }

  private build(profile: Profile): void {
    const title = make("h2", "", `Header of ${profile.filename}`);
    title.id = "header-dialog-title";
    this.rows = new Map();
    const fields = make("div", "header-form");
    for (const { key, label } of headerRows(profile.header)) fields.append(this.field(profile, key, label));
    const confirm = make("button", "primary", "Apply");
    confirm.type = "submit";
    const form = dialogForm("", () => this.take(profile), title, fields,
      make("div", "question-buttons", button("", "Cancel", () => void this.close()), confirm));
    this.dialog.replaceChildren(form);
  }

  private field(profile: Profile, key: HeaderKey, label: string): HTMLElement {
    const { meaning, typed } = fieldOf(key);
    const input = key === "hsvp_filetype" ? kindSelect(profile) : make("input");
    input.id = `header-${key}`;
    input.value = fieldText(profile, key);
    if (input instanceof HTMLInputElement) {
      input.autocomplete = "off";
      input.spellcheck = false;
      input.readOnly = typed === undefined;
    }
    const name = make("label", "", label);
    name.htmlFor = input.id;
    const hint = make("p", "field-hint", meaning);
    hint.id = `${input.id}-hint`;
    const fault = make("p", "field-fault");
    fault.id = `${input.id}-fault`;
    fault.setAttribute("role", "alert");
    fault.hidden = true;
    input.setAttribute("aria-describedby", `${hint.id} ${fault.id}`);
    input.addEventListener("input", () => this.tell(key, ""));
    this.rows.set(key, { input, shown: input.value, fault });
    return make("div", `header-field header-field-${key}`, name, input, hint, fault);
  }

  private take(profile: Profile): void {
    const texts = new Map([...this.rows].map(([key, { input }]) => [key, input.value]));
    const result = withHeader(profile, texts);
    if ("profile" in result) {
      this.dialog.close();
      this.taken(profile, result.profile);
      return;
    }
    for (const key of this.rows.keys()) this.tell(key, result.faults.get(key) ?? "");
    const [first] = result.faults.keys();
    if (first) this.rows.get(first)?.input.focus();
  }

  private tell(key: HeaderKey, text: string): void {
    const row = this.rows.get(key);
    if (!row) return;
    row.fault.textContent = text;
    row.fault.hidden = text === "";
    row.input.setAttribute("aria-invalid", String(text !== ""));
  }
}

/// All kinds; those that the cast does not have the values for can be seen and not chosen.
function kindSelect(profile: Profile): HTMLSelectElement {
  const select = make("select");
  const own = fieldText(profile, "hsvp_filetype");
  for (const { value, words } of kindChoices(profile)) {
    const option = new Option(words, value);
    const fault = value === own ? "" : kindFault(profile, value);
    option.disabled = fault !== "";
    option.title = fault;
    select.append(option);
  }
  return select;
}
