/// Questions to the user: a text, perhaps some fields, and two buttons.
import { button, make } from "./dom";
import { forgetTyped, heedTyped } from "./typed-input";

export interface Field {
  key: string;
  label: string;
  value: string;
  /// Said under the field.
  hint?: string;
  /// The form of a value, shown while there is none.
  placeholder?: string;
  /// A value that a button fills in, and what that says.
  offer?: { label: string; value: string };
  /// What is wrong with a value, as a sentence; "" when nothing is.
  fault(value: string): string;
  /// Number of characters from the start that are selected at first; all of them without it.
  selected?: number;
}

export interface Question {
  title: string;
  /// One paragraph each.
  text: readonly string[];
  fields?: readonly Field[];
  /// Label of the button that says yes; absent where there is nothing to agree to.
  confirm?: string;
  /// Other things to agree to, each with a button of its own.
  others?: readonly Choice[];
}

export interface Choice {
  key: string;
  label: string;
}

/// Key under which an answer holds that of the other choice that was taken.
export const CHOSEN = "chosen";

export type Answer = Readonly<Record<string, string>>;

/// Asks, and waits. Null when the user has declined.
export function ask(question: Question): Promise<Answer | null> {
  const dialog = make("dialog", "question");
  const title = make("h2", "", question.title);
  title.id = "question-title";
  const text = make("div", "question-text", ...question.text.map((line) => make("p", "", line)));
  text.id = "question-text";
  dialog.setAttribute("aria-labelledby", title.id);
  dialog.setAttribute("aria-describedby", text.id);

  const inputs = (question.fields ?? []).map((field) => new Input(field));
  let chosen = "";
  const others = (question.others ?? []).map(({ key, label }) =>
    // No submit buttons: Enter in a field means the one that confirms.
    button("", label, () => {
      chosen = key;
      form.requestSubmit();
    }),
  );
  const confirms = question.confirm === undefined ? [] : [make("button", "primary", question.confirm)];
  for (const confirm of confirms) confirm.type = "submit";
  const cancel = button("", others.length + confirms.length > 0 ? "Cancel" : "Close", () => end(null));
  const form = make("form", "", title, text, ...inputs.flatMap(({ parts }) => parts),
    make("div", "question-buttons", cancel, ...others, ...confirms));
  form.noValidate = true;
  dialog.append(form);
  document.body.append(dialog);

  heedTyped(dialog, () => inputs.some((input) => input.isTyped));
  let answered: (answer: Answer | null) => void = () => undefined;
  // At once: the browser tells that a dialog was closed with the next frame only, and a key that is
  // pressed before that should meet what comes of the answer.
  const end = (answer: Answer | null): void => {
    dialog.close();
    dialog.remove();
    forgetTyped(dialog);
    answered(answer);
  };
  form.addEventListener("submit", (event) => {
    event.preventDefault();
    const wrong = inputs.filter((input) => !input.accepts());
    if (wrong[0]) {
      chosen = "";
      return wrong[0].focus();
    }
    const answer = Object.fromEntries(inputs.map(({ key, value }) => [key, value]));
    end(chosen ? { ...answer, [CHOSEN]: chosen } : answer);
  });
  for (const left of ["cancel", "close"]) {
    dialog.addEventListener(left, (event) => {
      event.preventDefault();
      end(null);
    });
  }
  return new Promise((resolve) => {
    answered = resolve;
    dialog.showModal();
    // Where there is nothing to fill in, a stray Enter must not say yes.
    if (inputs[0]) inputs[0].focus();
    else cancel.focus();
  });
}

/// Whether a dialog is open, this one or another: keys of the page rest meanwhile.
export function isAsking(): boolean {
  return document.querySelector("dialog[open]") !== null;
}

/// Has `left` put away what a dialog held, once it is closed. The browser tells of that with the next
/// frame only. Where the dialog is open again by then that is another use of it, before which `left` has
/// to be called.
export function onClosed(dialog: HTMLDialogElement, left: () => void): void {
  dialog.addEventListener("close", () => {
    if (!dialog.open) left();
  });
}

/// The open dialog that the keyboard is in, or null where none is open.
export function topDialog(): HTMLDialogElement | null {
  const open = [...document.querySelectorAll<HTMLDialogElement>("dialog[open]")];
  return open.find((dialog) => dialog.contains(document.activeElement)) ?? open[open.length - 1] ?? null;
}

class Input {
  private readonly input = make("input");
  private readonly fault = make("p", "field-fault");
  readonly parts: HTMLElement[];

  constructor(private readonly field: Field) {
    const { input, fault } = this;
    input.id = `field-${field.key}`;
    input.value = field.value;
    input.autocomplete = "off";
    input.spellcheck = false;
    if (field.placeholder) input.placeholder = field.placeholder;
    const label = make("label", "", field.label);
    label.htmlFor = input.id;
    const { offer } = field;
    const offers = offer
      ? [button("offer", offer.label, () => {
          input.value = offer.value;
          this.tell("");
          this.focus();
        })]
      : [];
    const hint = make("p", "field-hint", field.hint ?? "");
    hint.id = `${input.id}-hint`;
    hint.hidden = !field.hint;
    fault.id = `${input.id}-fault`;
    fault.setAttribute("role", "alert");
    fault.hidden = true;
    input.setAttribute("aria-describedby", `${hint.id} ${fault.id}`);
    input.addEventListener("input", () => this.tell(""));
    this.parts = [label, input, ...offers, hint, fault];
  }

  get key(): string {
    return this.field.key;
  }

  get value(): string {
    return this.input.value.trim();
  }

  get isTyped(): boolean {
    return this.input.value !== this.field.value;
  }

  accepts(): boolean {
    const fault = this.field.fault(this.value);
    this.tell(fault);
    return fault === "";
  }

  focus(): void {
    this.input.focus();
    this.input.setSelectionRange(0, this.field.selected ?? this.input.value.length);
  }

  private tell(fault: string): void {
    this.fault.textContent = fault;
    this.fault.hidden = fault === "";
    this.input.setAttribute("aria-invalid", String(fault !== ""));
  }
}
