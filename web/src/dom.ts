/// Small helpers around the browser's document.

/// The element with this id, which the page's own markup must have.
export function byId<T extends HTMLElement = HTMLElement>(id: string): T {
  const element = document.getElementById(id);
  if (!element) throw new Error(`the page has no element "${id}"`);
  return element as T;
}

/// A new element with a class and its content. Text is set as text, never as markup: names and
/// header fields come from files.
export function make<K extends keyof HTMLElementTagNameMap>(
  tag: K,
  className = "",
  ...content: (Node | string)[]
): HTMLElementTagNameMap[K] {
  const element = document.createElement(tag);
  if (className) element.className = className;
  element.append(...content);
  return element;
}

/// A button that does something when it is pressed.
export function button(className: string, label: string, press: () => void): HTMLButtonElement {
  const element = make("button", className, label);
  element.type = "button";
  element.addEventListener("click", press);
  return element;
}

/// Puts elements into a parent in this order, and takes all others out. Those that are there already stay
/// where they are, if their order is the same: what is being pressed, or has the keyboard, keeps that.
export function arrange(parent: Element, elements: readonly Element[]): void {
  const wanted = new Set(elements);
  for (const each of [...parent.children]) if (!wanted.has(each)) each.remove();
  let at = parent.firstElementChild;
  for (const each of elements) {
    if (each === at) at = at.nextElementSibling;
    else parent.insertBefore(each, at);
  }
}

/// A new element of an SVG drawing.
export function makeSvg<K extends keyof SVGElementTagNameMap>(
  tag: K,
  className: string,
): SVGElementTagNameMap[K] {
  const element = document.createElementNS("http://www.w3.org/2000/svg", tag);
  element.setAttribute("class", className);
  return element;
}

/// Buttons that had the keyboard when they were disabled.
const resting = new WeakSet<HTMLButtonElement>();

/// Disables a button while something is under way, or enables it again. The browser takes the keyboard
/// from a button that is disabled; it gets it back, unless the user has gone elsewhere.
export function setDisabled(button: HTMLButtonElement, disabled: boolean): void {
  if (disabled && document.activeElement === button) resting.add(button);
  button.disabled = disabled;
  if (disabled || !resting.delete(button)) return;
  if (isNowhere()) button.focus();
}

/// Whether the keyboard is at no part of the page, or at one that is not shown any more.
export function isNowhere(): boolean {
  const { activeElement: at } = document;
  return !isShown(at) || at === document.body || at instanceof HTMLDialogElement;
}

/// Whether an element is on the page, and not hidden.
export function isShown(element: Element | null): element is HTMLElement {
  return element instanceof HTMLElement && element.isConnected && element.getClientRects().length > 0;
}

/// Resolves once what was just changed has been on the screen; soon, where the page is not seen.
export function painted(): Promise<void> {
  return new Promise((done) => {
    setTimeout(done, 250);
    requestAnimationFrame(() => {
      // What is posted in a frame is heard after it.
      const { port1, port2 } = new MessageChannel();
      port1.onmessage = () => done();
      port2.postMessage(null);
    });
  });
}

/// The form of a dialog that stays open until it is told to close: Enter and the button that submits do
/// `taken`.
export function dialogForm(className: string, taken: () => void, ...parts: (Node | string)[]): HTMLFormElement {
  const form = make("form", className, ...parts);
  form.method = "dialog";
  form.noValidate = true;
  form.addEventListener("submit", (event) => {
    event.preventDefault();
    taken();
  });
  return form;
}
