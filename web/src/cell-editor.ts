/// A cell of the level table that is being typed into.
import { make } from "./dom";

/// How a cell is left: to the next or the previous one, to the table itself, or to another part of
/// the page.
export type Leaving = "next" | "previous" | "stay" | "away";

export interface CellEditorEvents {
  /// Takes a text; false when it is refused.
  take(text: string): boolean;
  left(how: Leaving): void;
  /// Something else is in the cell than what was refused.
  typed(): void;
}

const ENDS: Readonly<Record<string, (event: KeyboardEvent) => Leaving>> = {
  Enter: () => "stay",
  Tab: ({ shiftKey }) => (shiftKey ? "previous" : "next"),
};

export class CellEditor {
  private isOpen = true;
  private isTaking = false;
  private readonly input = make("input", "cell-input");

  /// `label` names the cell for a screen reader; `faultId` is the element that tells of refusals.
  constructor(
    private readonly cell: HTMLElement,
    private readonly text: string,
    label: string,
    faultId: string,
    private readonly events: CellEditorEvents,
  ) {
    const { input } = this;
    input.value = text;
    input.inputMode = "decimal";
    input.autocomplete = "off";
    input.spellcheck = false;
    input.setAttribute("aria-label", label);
    input.setAttribute("aria-describedby", faultId);
    input.addEventListener("keydown", (event) => this.key(event));
    input.addEventListener("input", () => {
      input.removeAttribute("aria-invalid");
      events.typed();
    });
    // What was typed is taken when the user goes elsewhere; what is refused then leaves the old value.
    input.addEventListener("blur", () => {
      if (!this.isOpen || this.isTaking) return;
      this.take();
      this.close("away");
    });
    for (const kind of ["pointerdown", "click", "dblclick"]) {
      input.addEventListener(kind, (event) => event.stopPropagation());
    }
    cell.replaceChildren(input);
    cell.classList.add("editing");
    input.focus();
    input.select();
  }

  /// Leaves the cell as it was, unless what is in it is being taken just now.
  cancel(): void {
    if (!this.isTaking) this.close("away");
  }

  private key(event: KeyboardEvent): void {
    // Keys of the table and of the page rest.
    event.stopPropagation();
    if (event.key === "Escape") {
      event.preventDefault();
      this.close("stay");
      return;
    }
    const how = ENDS[event.key]?.(event);
    if (!how) return;
    event.preventDefault();
    if (this.take()) return this.close(how);
    this.input.setAttribute("aria-invalid", "true");
    this.input.select();
  }

  private take(): boolean {
    if (this.input.value === this.text) return true;
    // What is taken is drawn anew, and the input is gone from the page with that.
    this.isTaking = true;
    const taken = this.events.take(this.input.value);
    this.isTaking = false;
    return taken;
  }

  private close(how: Leaving): void {
    if (!this.isOpen) return;
    this.isOpen = false;
    this.cell.classList.remove("editing");
    this.events.left(how);
  }
}
