/// The casts of the profile folder: fetched from the host, shown as a list of buttons.
import { arrange, button, make } from "./dom";
import { isOwnFile } from "./own-files";
import { formatCount, formatMoment, formatSize, shownName } from "./format";

export interface Cast {
  name: string;
  /// Suffix of the file in lower case.
  kind: string;
  /// Bytes.
  size: number;
  /// Last change, ISO 8601 in UTC.
  modified: string;
}

export interface CastFolder {
  folder: string;
  casts: Cast[];
}

/// A list takes a fraction of this, also in a folder of thousands.
const ANSWER_LIMIT_MS = 10_000;

/// Reads the folder's list from the host, with files that end in one of `endings` besides the casts
/// that it knows and without those that the page has written for itself. Rejects with a sentence for the user.
export async function fetchCasts(endings: readonly string[]): Promise<CastFolder> {
  const query = new URLSearchParams(endings.map((ending) => ["also", ending])).toString();
  const stop = new AbortController();
  const limit = setTimeout(() => stop.abort(), ANSWER_LIMIT_MS);
  const failure = (reason: string) => new Error(stop.signal.aborted ? NO_ANSWER : reason);
  try {
    const response = await fetch(query ? `api/casts?${query}` : "api/casts", { cache: "no-store", signal: stop.signal })
      .catch(() => {
        throw failure("the host cannot be reached. The list is read again once it is connected.");
      });
    if (!response.ok) throw new Error(`the host answered ${response.status}. Press Refresh to try again.`);
    const answer = (await response.json().catch(() => {
      throw failure("the host's answer cannot be read. Load the page again, so that it fits the host.");
    })) as Partial<CastFolder>;
    const casts = answer.casts ?? [];
    return { folder: answer.folder ?? "", casts: casts.filter(({ name }) => !isOwnFile(name)) };
  } finally {
    clearTimeout(limit);
  }
}

const NO_ANSWER =
  `the host has not answered within ${ANSWER_LIMIT_MS / 1000} seconds. ` +
  "Look whether it is still running, and start it again if it hangs; the page goes on trying.";

interface CastItem {
  element: HTMLElement;
  /// Size and time of the file.
  detail: HTMLElement;
}

export class CastList {
  private current = "";
  private items = new Map<string, CastItem>();
  private names: readonly string[] = [];
  private shown = "";
  private isPressed = false;
  /// A list that came while an entry was pressed.
  private later: CastFolder | null = null;

  constructor(
    private readonly list: HTMLElement,
    private readonly summary: HTMLElement,
    private readonly open: (name: string) => void,
  ) {
    list.addEventListener("keydown", (event) => this.move(event));
    list.addEventListener("pointerdown", ({ button: which }) => {
      if (which === 0) this.isPressed = true;
    });
    for (const end of ["pointerup", "pointercancel", "blur"]) addEventListener(end, () => this.released());
  }

  show(read: CastFolder): void {
    const { folder, casts } = read;
    this.names = casts.map(({ name }) => name);
    // What is pressed must not move away before the press ends.
    if (this.isPressed) {
      this.later = read;
      return;
    }
    // It is read far more often than it changes.
    const text = JSON.stringify([folder, casts]);
    if (text === this.shown) return;
    this.shown = text;
    const focused = document.activeElement?.closest<HTMLElement>("[data-name]")?.dataset["name"];
    this.items = new Map(casts.map((cast) => [cast.name, this.itemOf(cast)]));
    arrange(this.list, [...this.items.values()].map(({ element }) => element));
    const count = casts.length === 0 ? "No" : formatCount(casts.length);
    this.summary.textContent = `${count} ${casts.length === 1 ? "cast" : "casts"} in`;
    const path = make("bdi", "", folder || "the profile folder");
    path.dir = "ltr";
    const place = make("span", "folder", path);
    place.title = folder;
    this.summary.append(" ", place);
    this.mark(this.current);
    const keeps = document.activeElement?.closest("[data-name]");
    if (focused !== undefined && !keeps) (this.button(focused) ?? this.buttons().find(({ tabIndex }) => tabIndex === 0))?.focus();
  }

  /// Names of all casts in the list.
  get all(): readonly string[] {
    return this.names;
  }

  /// The listed name of the file that `name` means, or "". Case is ignored, as some file systems
  /// do.
  listed(name: string): string {
    return (
      this.names.find((each) => each === name) ??
      this.names.find((each) => each.toLowerCase() === name.toLowerCase()) ??
      ""
    );
  }

  /// Marks the cast that is open; "" for none.
  mark(name: string): void {
    this.current = name;
    for (const entry of this.buttons()) {
      if (entry.dataset["name"] === name) entry.setAttribute("aria-current", "true");
      else entry.removeAttribute("aria-current");
    }
    this.setTabStop(this.button(name) ?? this.buttons()[0]);
  }

  focus(): void {
    (this.button(this.current) ?? this.buttons()[0])?.focus();
  }

  private released(): void {
    if (!this.isPressed) return;
    // The click comes first.
    setTimeout(() => {
      this.isPressed = false;
      const { later } = this;
      this.later = null;
      if (later) this.show(later);
    });
  }

  /// What shows a cast; the same for a file that was listed before, which may be pressed just now.
  private itemOf(cast: Cast): CastItem {
    const item = this.items.get(cast.name) ?? this.item(cast.name);
    const changed = new Date(cast.modified);
    const when = Number.isNaN(changed.getTime()) ? "" : formatMoment(changed).slice(0, 16);
    item.detail.textContent = `${formatSize(cast.size)} · ${when}`;
    return item;
  }

  private item(name: string): CastItem {
    const entry = button("cast", "", () => this.open(name));
    entry.dataset["name"] = name;
    entry.title = shownName(name);
    const detail = make("span", "cast-detail");
    entry.append(make("span", "cast-name", shownName(name)), detail);
    return { element: make("li", "", entry), detail };
  }

  private buttons(): HTMLButtonElement[] {
    return [...this.list.querySelectorAll<HTMLButtonElement>("button")];
  }

  private button(name: string): HTMLButtonElement | undefined {
    return this.buttons().find((entry) => entry.dataset["name"] === name);
  }

  /// The whole list is one stop of the Tab key; the arrow keys move within it.
  private setTabStop(stop: HTMLButtonElement | undefined): void {
    for (const entry of this.buttons()) entry.tabIndex = entry === stop ? 0 : -1;
  }

  private move(event: KeyboardEvent): void {
    const entries = this.buttons();
    const at = entries.indexOf(document.activeElement as HTMLButtonElement);
    if (at < 0) return;
    const to = { ArrowDown: at + 1, ArrowUp: at - 1, Home: 0, End: entries.length - 1 }[event.key];
    const target = to === undefined ? undefined : entries[to];
    if (!target) return;
    event.preventDefault();
    this.setTabStop(target);
    target.focus();
  }
}
