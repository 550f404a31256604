/// Questions to the user: a text, perhaps some fields, and two buttons.
import { button, make } from "./dom";

export interface Field {
  key: string;
  label: string;
  value: string;
  /// Said under the field.
  hint?: string;
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
  /// Label of the button that says yes.
  confirm: string;
}

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
  const confirm = make("button", "primary", question.confirm);
  confirm.type = "submit";
  const cancel = button("", "Cancel", () => dialog.close());
  const form = make("form", "", title, text, ...inputs.flatMap(({ parts }) => parts),
    make("div", "question-buttons", cancel, confirm));
  form.method = "dialog";
  form.noValidate = true;
  dialog.append(form);
  document.body.append(dialog);

  return new Promise((answered) => {
    let answer: Answer | null = null;
    form.addEventListener("submit", (event) => {
      const wrong = inputs.filter((input) => !input.accepts());
      if (wrong[0]) {
        event.preventDefault();
        wrong[0].focus();
      } else {
        answer = Object.fromEntries(inputs.map(({ key, value }) => [key, value]));
      }
    });
    dialog.addEventListener("close", () => {
      dialog.remove();
      answered(answer);
    });
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
    const label = make("label", "", field.label);
    label.htmlFor = input.id;
    const hint = make("p", "field-hint", field.hint ?? "");
    hint.id = `${input.id}-hint`;
    hint.hidden = !field.hint;
    fault.id = `${input.id}-fault`;
    fault.setAttribute("role", "alert");
    fault.hidden = true;
    input.setAttribute("aria-describedby", `${hint.id} ${fault.id}`);
    input.addEventListener("input", () => this.tell(""));
    this.parts = [label, input, hint, fault];
  }

  get key(): string {
    return this.field.key;
  }

  get value(): string {
    return this.input.value.trim();
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
