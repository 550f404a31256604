/// The form in which the user wants to see positions, remembered by the browser. Typed they are taken
/// in either.
import type { PositionForm } from "./format";

const STORED_AS = "svp-editor-positions";

let chosen: PositionForm | null = null;

export function positionForm(): PositionForm {
  return (chosen ??= stored() === "decimal" ? "decimal" : "minutes");
}

export function setPositionForm(form: PositionForm): void {
  chosen = form;
  try {
    localStorage.setItem(STORED_AS, form);
  } catch {
    // It holds until the page is left, then.
  }
}

/// Joins the choice in the page: it shows what holds, and `changed` is called when that is another.
export function offerPositionForm(choice: HTMLSelectElement, changed: () => void): void {
  choice.value = positionForm();
  choice.addEventListener("change", () => {
    setPositionForm(choice.value === "decimal" ? "decimal" : "minutes");
    changed();
  });
}

function stored(): string | null {
  try {
    return localStorage.getItem(STORED_AS);
  } catch {
    return null;
  }
}
