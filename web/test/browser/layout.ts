/// Whether all that a user needs is where it can be seen and reached.
import type { Page } from "playwright-core";

/// What is cut off, covered, overlapped or out of reach, of the page or of the dialog on top of it; in
/// one line each. What a part of the page scrolls is reached by scrolling it.
export async function misplaced(page: Page): Promise<string[]> {
  return page.evaluate(() => {
    const faults: string[] = [];
    const root = document.documentElement;
    if (root.scrollWidth > innerWidth) faults.push(`the page is ${root.scrollWidth} px wide`);
    if (root.scrollHeight > innerHeight) faults.push(`the page is ${root.scrollHeight} px high`);
    const dialogs = document.querySelectorAll<HTMLElement>("dialog[open]");
    const scope = dialogs[dialogs.length - 1] ?? document.body;

    const nameOf = (element: Element) => {
      const text = (element.getAttribute("aria-label") || element.textContent || "").trim().slice(0, 40);
      return `${element.tagName.toLowerCase()}${element.id && `#${element.id}`} “${text}”`;
    };
    const isShown = (element: Element) => element.checkVisibility({ visibilityProperty: true });
    /// Said, but not shown.
    const isUnseen = (element: Element) => {
      for (let at: Element | null = element; at; at = at.parentElement) {
        if (at.matches("[aria-hidden=true], svg") || getComputedStyle(at).clipPath === "inset(50%)") return true;
      }
      return false;
    };
    const menus = [...document.querySelectorAll(".menu")].filter(isShown);
    const layerOf = (element: Element) => menus.find((menu) => menu.contains(element)) ?? scope;
    const scrolls = (element: Element) => {
      const { overflowX, overflowY } = getComputedStyle(element);
      const canX = /auto|scroll/.test(overflowX) && element.scrollWidth > element.clientWidth;
      return canX || (/auto|scroll/.test(overflowY) && element.scrollHeight > element.clientHeight);
    };
    /// What is seen of a box within all that may cut it off.
    const seenOf = (element: Element, box: DOMRect) => {
      let [left, top, right, bottom] = [box.left, box.top, box.right, box.bottom];
      for (let at = element.parentElement; at; at = at.parentElement) {
        if (getComputedStyle(at).overflow !== "visible") {
          const edge = at.getBoundingClientRect();
          [left, top] = [Math.max(left, edge.left), Math.max(top, edge.top)];
          [right, bottom] = [Math.min(right, edge.right), Math.min(bottom, edge.bottom)];
        }
        if (at === scope && scope !== document.body) break;
      }
      return { left: Math.max(left, 0), top: Math.max(top, 0), right: Math.min(right, innerWidth), bottom: Math.min(bottom, innerHeight) };
    };

    const controls = [...scope.querySelectorAll<HTMLElement>("button, input:not([type=file]), select, [tabindex='0'], progress")];
    const kept = [...scope.querySelectorAll("*")].filter(scrolls).map((element) => ({ element, top: element.scrollTop, left: element.scrollLeft }));
    if (scrolls(scope)) kept.push({ element: scope, top: scope.scrollTop, left: scope.scrollLeft });
    for (const control of controls) {
      // A menu lies over other controls while it is open.
      if (!isShown(control) || layerOf(control) !== (menus[0] ?? scope)) continue;
      control.scrollIntoView({ block: "nearest", inline: "nearest" });
      const box = control.getBoundingClientRect();
      const seen = seenOf(control, box);
      const isLarge = control.matches("[tabindex='0']:not(button)");
      if (box.width < 8 || box.height < 8) faults.push(`${nameOf(control)} has no room`);
      else if (seen.right - seen.left < box.width - 1.5 || seen.bottom - seen.top < box.height - 1.5) {
        // Of a part that itself scrolls, enough has to be seen to work with.
        if (!isLarge || seen.bottom - seen.top < 40) faults.push(`${nameOf(control)} is cut off`);
      } else {
        const at = document.elementFromPoint((seen.left + seen.right) / 2, (seen.top + seen.bottom) / 2);
        if (at && at !== control && !control.contains(at) && !isLarge) faults.push(`${nameOf(control)} is covered by ${nameOf(at)}`);
      }
      if (control instanceof HTMLButtonElement && !control.classList.contains("cast") && control.scrollWidth > control.clientWidth + 1) {
        faults.push(`${nameOf(control)} is too narrow for its text`);
      }
    }
    for (const { element, top, left } of kept) [element.scrollTop, element.scrollLeft] = [top, left];

    // Texts lie beside each other, never over each other.
    const texts: { element: Element; layer: Element; box: { left: number; top: number; right: number; bottom: number } }[] = [];
    const walker = document.createTreeWalker(scope, NodeFilter.SHOW_TEXT);
    for (let node = walker.nextNode(); node; node = walker.nextNode()) {
      const element = node.parentElement;
      if (!element || !node.textContent?.trim() || !isShown(element) || isUnseen(element)) continue;
      const range = document.createRange();
      range.selectNodeContents(node);
      const boxes = [...range.getClientRects()].map((line) => seenOf(element, line));
      const shown = boxes.filter((box) => box.right - box.left >= 1 && box.bottom - box.top >= 1);
      if (shown.length === 0) continue;
      texts.push(...shown.map((box) => ({ element, layer: layerOf(element), box })));
      // A text that ends in “…” is told in full elsewhere; others are not cut.
      const cutter = element.closest<HTMLElement>("button, td, th, p, h2, h3, dd, dt, label, span, legend");
      const style = cutter && getComputedStyle(cutter);
      if (cutter && style?.textOverflow !== "ellipsis" && style?.overflowX === "hidden" && cutter.scrollWidth > cutter.clientWidth + 1) {
        faults.push(`${nameOf(element)} is cut`);
      }
    }
    texts.forEach((one, i) => {
      for (const other of texts.slice(i + 1)) {
        if (one.layer !== other.layer || one.element.contains(other.element) || other.element.contains(one.element)) continue;
        const across = Math.min(one.box.right, other.box.right) - Math.max(one.box.left, other.box.left);
        const down = Math.min(one.box.bottom, other.box.bottom) - Math.max(one.box.top, other.box.top);
        // A sticky row covers what is scrolled under it.
        const isSticky = (element: Element) => element.closest("thead, .question-buttons") !== null;
        if (across > 2 && down > 3 && !isSticky(one.element) && !isSticky(other.element)) {
          faults.push(`${nameOf(one.element)} and ${nameOf(other.element)} overlap`);
        }
      }
    });
    return faults;
  });
}
