/// The casts of the profile folder: fetched from the host, shown as a list of buttons.
import { button, make } from "./dom";
import { isOwnFile } from "./own-files";
import { formatCount, formatMoment, formatSize } from "./format";

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

/// Reads the folder's list from the host, with files that end in one of `endings` besides the casts
/// that it knows and without those that the page has written for itself. Rejects with a sentence for the user.
export async function fetchCasts(endings: readonly string[]): Promise<CastFolder> {
  const query = new URLSearchParams(endings.map((ending) => ["also", ending])).toString();
  let response: Response;
  try {
    response = await fetch(query ? `api/casts?${query}` : "api/casts", { cache: "no-store" });
  } catch {
    throw new Error("the host cannot be reached");
  }
  if (!response.ok) throw new Error(`the host answered ${response.status}`);
  try {
    const answer = (await response.json()) as Partial<CastFolder>;
    const casts = answer.casts ?? [];
    return { folder: answer.folder ?? "", casts: casts.filter(({ name }) => !isOwnFile(name)) };
  } catch {
    throw new Error("the host's answer cannot be read");
  }
}

export class CastList {
  private current = "";
  private names: readonly string[] = [];

  constructor(
    private readonly list: HTMLElement,
    private readonly summary: HTMLElement,
    private readonly open: (name: string) => void,
  ) {
    list.addEventListener("keydown", (event) => this.move(event));
  }

  show({ folder, casts }: CastFolder): void {
    const focused = document.activeElement?.closest<HTMLElement>("[data-name]")?.dataset["name"];
    this.names = casts.map(({ name }) => name);
    this.list.replaceChildren(...casts.map((cast) => this.item(cast)));
    const count = casts.length === 0 ? "No" : formatCount(casts.length);
    this.summary.textContent = `${count} ${casts.length === 1 ? "cast" : "casts"} in`;
    const path = make("bdi", "", folder || "the profile folder");
    path.dir = "ltr";
    const place = make("span", "folder", path);
    place.title = folder;
    this.summary.append(" ", place);
    this.mark(this.current);
    if (focused !== undefined) (this.button(focused) ?? this.buttons().find(({ tabIndex }) => tabIndex === 0))?.focus();
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

  private item(cast: Cast): HTMLLIElement {
    const entry = button("cast", "", () => this.open(cast.name));
    entry.dataset["name"] = cast.name;
    entry.title = cast.name;
    const changed = new Date(cast.modified);
    const when = Number.isNaN(changed.getTime()) ? "" : formatMoment(changed).slice(0, 16);
    entry.append(
      make("span", "cast-name", cast.name),
      make("span", "cast-detail", `${formatSize(cast.size)} · ${when}`),
    );
    return make("li", "", entry);
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
