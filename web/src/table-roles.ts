/// What the level table is to a screen reader.

/// Makes the part of a table that scrolls, and that the keyboard is at, the grid. The library calls its
/// whole element one: then neither can the focused element tell which cell is active, nor may a
/// grid hold it. The head, which does not scroll, is made a part of the grid.
export function makeGrid(element: HTMLElement, label: string): void {
  const holder = element.querySelector<HTMLElement>(".tabulator-tableholder");
  const head = element.querySelector<HTMLElement>(".tabulator-header");
  if (!holder || !head) return;
  element.removeAttribute("role");
  element.removeAttribute("aria-owns");
  head.id ||= `${element.parentElement?.id ?? ""}-head`;
  head.querySelector("[role=row]")?.setAttribute("aria-rowindex", "1");
  holder.setAttribute("role", "grid");
  holder.setAttribute("aria-label", label);
  holder.setAttribute("aria-owns", head.id);
  holder.setAttribute("aria-multiselectable", "true");
}

/// States the number of levels, of which only those in view are on the page.
export function countRows(element: HTMLElement, levels: number): void {
  element.querySelector(".tabulator-tableholder")?.setAttribute("aria-rowcount", String(levels + 1));
}
