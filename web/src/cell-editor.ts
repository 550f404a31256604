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

  /// `begun` is what the user has typed already in place of `text`. `label` names the cell for a screen reader; `faultId` is the element that tells of refusals.
  constructor(
    private readonly cell: HTMLElement,
    private readonly text: string,
    begun: string | undefined,
    label: string,
    faultId: string,
    private readonly events: CellEditorEvents,
  ) {
    const { input } = this;
    input.value = begun ?? text;
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
    if (begun === undefined) input.select();
    else input.setSelectionRange(begun.length, begun.length);
  }

  /// Leaves the cell as it was, unless what is in it is being taken just now.
  cancel(): void {
    if (!this.isTaking) this.close("away");
  }

  private key(event: KeyboardEvent): void {
    // Saving takes what is typed along; what is refused keeps the key.
    if ((event.ctrlKey || event.metaKey) && event.key.toLowerCase() === "s" && this.take()) return this.close("stay");
    // Keys of the table and of the page rest.
    event.stopPropagation();
    if ((event.ctrlKey || event.metaKey) && event.key.toLowerCase() === "s") {
      event.preventDefault();
      return this.refuse();
    }
    if (event.key === "Escape") {
      event.preventDefault();
      this.close("stay");
      return;
    }
    const how = ENDS[event.key]?.(event);
    if (!how) return;
    event.preventDefault();
    if (this.take()) this.close(how);
    else this.refuse();
  }

  private refuse(): void {
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
