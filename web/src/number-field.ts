/// A labelled number in a dialog, with what is wrong with it said under it.
import { make } from "./dom";
import { typedNumber } from "./typed-number";

export class NumberField {
  readonly input = make("input");
  private readonly fault = make("p", "field-fault");
  readonly element: HTMLElement;

  /// `check` gives what is wrong with a text, as a sentence, or "". `changed` is called when the user
  /// has typed.
  constructor(
    key: string,
    label: string,
    hint: string,
    private readonly check: (text: string) => string,
    changed: () => void = () => undefined,
  ) {
    const { input, fault } = this;
    input.id = `number-${key}`;
    input.autocomplete = "off";
    input.spellcheck = false;
    input.inputMode = "decimal";
    const name = make("label", "", label);
    name.htmlFor = input.id;
    const more = make("p", "field-hint", hint);
    more.id = `${input.id}-hint`;
    more.hidden = hint === "";
    fault.id = `${input.id}-fault`;
    fault.setAttribute("role", "alert");
    input.setAttribute("aria-describedby", `${more.id} ${fault.id}`);
    this.tell("");
    input.addEventListener("input", () => {
      this.tell("");
      changed();
    });
    this.element = make("div", "number-field", name, input, more, fault);
  }

  set value(text: string) {
    this.input.value = text;
    this.tell("");
  }

  /// The number, or null after what is wrong with it was said.
  take(): number | null {
    const fault = this.check(this.input.value);
    this.tell(fault);
    return fault ? null : typedNumber(this.input.value);
  }

  focus(): void {
    this.input.focus();
    this.input.select();
  }

  private tell(fault: string): void {
    this.fault.textContent = fault;
    this.fault.hidden = fault === "";
    this.input.setAttribute("aria-invalid", String(fault !== ""));
  }
}
