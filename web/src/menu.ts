/// A button that opens a short menu under itself.
import { isShown, make } from "./dom";

export interface MenuItem {
  label: string;
  /// What it does, said in small under the label.
  detail: string;
  run: () => void;
  /// For an item that is one of several to choose from: whether it is the chosen one.
  isChosen?: () => boolean;
}

export class Menu {
  private readonly list = make("div", "menu");
  private readonly entries: HTMLButtonElement[] = [];
  /// Where the keyboard was when the menu was opened by a key of the page.
  private from: HTMLElement | null = null;

  /// `opener` stands in the page already; the menu is put behind it.
  constructor(
    private readonly opener: HTMLButtonElement,
    private readonly items: readonly MenuItem[],
  ) {
    const { list } = this;
    list.id = `${opener.id}-menu`;
    list.hidden = true;
    list.setAttribute("role", "menu");
    list.setAttribute("aria-labelledby", opener.id);
    opener.setAttribute("aria-haspopup", "menu");
    opener.setAttribute("aria-controls", list.id);
    opener.setAttribute("aria-expanded", "false");
    list.append(...items.map((item) => this.entry(item)));
    opener.after(list);

    opener.addEventListener("click", () => (this.isOpen ? this.close() : this.open()));
    opener.addEventListener("keydown", (event) => {
      if (event.key !== "ArrowDown" || this.isOpen) return;
      event.preventDefault();
      this.open();
    });
    list.addEventListener("keydown", (event) => this.key(event));
    document.addEventListener("pointerdown", ({ target }) => {
      if (target instanceof Node && !list.contains(target) && !opener.contains(target)) this.shut();
    });
    list.addEventListener("focusout", ({ relatedTarget }) => {
      if (relatedTarget instanceof Node && relatedTarget !== opener && !list.contains(relatedTarget)) {
        this.shut();
      }
    });
  }

  /// Opens the menu with its first entry in focus, unless its button is disabled.
  open(): void {
    if (this.opener.disabled) return;
    const { activeElement } = document;
    this.from = activeElement instanceof HTMLElement && activeElement !== document.body ? activeElement : null;
    this.list.hidden = false;
    this.items.forEach(({ isChosen }, i) => {
      if (isChosen) this.entries[i]?.setAttribute("aria-checked", String(isChosen()));
    });
    this.opener.setAttribute("aria-expanded", "true");
    this.entries[0]?.focus();
  }

  private get isOpen(): boolean {
    return !this.list.hidden;
  }

  private close(): void {
    this.shut();
    if (isShown(this.from)) this.from.focus();
    else this.opener.focus();
  }

  private shut(): void {
    this.list.hidden = true;
    this.opener.setAttribute("aria-expanded", "false");
  }

  private entry({ label, detail, run, isChosen }: MenuItem): HTMLElement {
    const more = make("span", "menu-detail", detail);
    const entry = make("button", "menu-label", label);
    entry.type = "button";
    entry.tabIndex = -1;
    entry.setAttribute("role", isChosen ? "menuitemradio" : "menuitem");
    // The detail is a description, not a part of the name: the button lies under it.
    more.id = `${this.list.id}-${label.replace(/\W+/g, "-").toLowerCase()}`;
    entry.setAttribute("aria-describedby", more.id);
    entry.addEventListener("click", () => {
      this.close();
      run();
    });
    this.entries.push(entry);
    const place = make("div", isChosen ? "menu-entry menu-choice" : "menu-entry", entry, more);
    place.setAttribute("role", "none");
    return place;
  }

  private key(event: KeyboardEvent): void {
    const { entries } = this;
    const at = entries.indexOf(document.activeElement as HTMLButtonElement);
    const last = entries.length - 1;
    const to = {
      ArrowDown: at === last ? 0 : at + 1,
      ArrowUp: at <= 0 ? last : at - 1,
      Home: 0,
      End: last,
    }[event.key];
    // Keys of the page rest while the menu is open.
    event.stopPropagation();
    if (event.key === "Escape") this.close();
    else if (event.key === "Tab") return this.close();
    else if (to !== undefined) entries[to]?.focus();
    else return;
    event.preventDefault();
  }
}
