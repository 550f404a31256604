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

/// A new element of an SVG drawing.
export function makeSvg<K extends keyof SVGElementTagNameMap>(
  tag: K,
  className: string,
): SVGElementTagNameMap[K] {
  const element = document.createElementNS("http://www.w3.org/2000/svg", tag);
  element.setAttribute("class", className);
  return element;
}
