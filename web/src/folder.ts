/// The profile folder: its list, read anew when something asks for it, and what that says of the files
/// of the open cast.
import { fetchCasts, type CastList } from "./casts";
import type { Edits } from "./edits";
import type { Look } from "./engine";
import { FileWatch, type FileChange } from "./file-watch";
import { sameContent, sameProfile, type Profile } from "./profile";

/// A list that takes longer is worth a word.
const SLOW_MS = 1000;
/// How long to wait after a host that is there has not given its list.
const AGAIN_MS = 5000;

export interface FolderEvents {
  look(name: string): Promise<Look>;
  isConnected(): boolean;
  /// Files of the open cast hold something else than what is known of them.
  changed(change: FileChange): void;
  /// The list cannot be had; in words for the user.
  failed(text: string): void;
  listed(): void;
  /// `isSlow` has changed.
  waiting(): void;
}

export class Folder {
  readonly watch = new FileWatch();
  /// Ends of the names of files that the user's import filters read.
  endings: readonly string[] = [];
  private shown = 0;
  private slow = 0;
  private again: ReturnType<typeof setTimeout> | undefined;

  constructor(
    private readonly list: CastList,
    private readonly edits: Pick<Edits<unknown>, "openedFrom">,
    private readonly events: FolderEvents,
  ) {}

  /// Whether a list is waited for that should have come.
  get isSlow(): boolean {
    return this.slow > 0;
  }

  /// Reads the list. Resolves when the page has taken it, or has told why not.
  refresh(): Promise<void> {
    return this.read((reason) => this.events.failed(reason));
  }

  private async read(failed: (reason: string) => void): Promise<void> {
    const number = this.watch.ask();
    const endSlow = this.beginSlow();
    try {
      const folder = await fetchCasts(this.endings);
      // Of two answers that overtake each other the one that was asked for last stays.
      if (number > this.shown) this.list.show(folder);
      this.shown = Math.max(number, this.shown);
      clearTimeout(this.again);
      this.events.listed();
      endSlow();
      await Promise.all(this.watch.take(folder.casts, number).map((change) => this.judge(change)));
    } catch (error) {
      failed(error instanceof Error ? error.message : String(error));
      this.tryAgain();
    } finally {
      endSlow();
    }
  }

  /// The listed name, read anew, of a file that `name` would replace, or "".
  async listed(name: string): Promise<string> {
    await this.refresh();
    return this.list.listed(name);
  }

  /// Another page has written a file.
  savedElsewhere(path: string): void {
    const name = this.watch.savedElsewhere(path);
    if (name) this.events.changed({ name, what: "changed" });
    void this.refresh();
  }

  /// Somebody has had a file of the open cast read, and this is what it holds.
  readElsewhere(profile: Profile): void {
    const known = this.edits.openedFrom(profile.filename);
    // What this page has written is not read back number for number: there the list decides.
    if (known && !sameProfile(known, profile)) this.savedElsewhere(profile.filename);
    else if (!known || !sameContent(known, profile)) void this.refresh();
  }

  /// A file of another time may hold the same, and one that is not listed may be there.
  private async judge(change: FileChange): Promise<void> {
    const known = this.edits.openedFrom(change.name);
    if (known) {
      const look = await this.events.look(change.name);
      if (this.edits.openedFrom(change.name) !== known) return;
      if ("profile" in look && sameContent(look.profile, known)) return this.watch.confirm(change.name);
    }
    this.events.changed(change);
  }

  /// Reads the list in a while, and says nothing more where that fails again. Without a connection it
  /// is read as soon as there is one.
  private tryAgain(): void {
    clearTimeout(this.again);
    if (this.events.isConnected()) this.again = setTimeout(() => void this.read(() => undefined), AGAIN_MS);
  }

  private beginSlow(): () => void {
    let counted = 0;
    const count = (now: number) => {
      if (now === counted) return;
      this.slow += now - counted;
      counted = now;
      this.events.waiting();
    };
    const timer = setTimeout(() => count(1), SLOW_MS);
    return () => {
      clearTimeout(timer);
      count(0);
    };
  }
}
