/// Whether the files that the open cast was read from and written to are still as they were.
import { isBuiltIn } from "./file-kinds";
import { baseName } from "./profile";

/// What the host's list says of the state of a file.
export interface Stamp {
  /// ISO 8601 in UTC, whole seconds.
  modified: string;
  /// Bytes.
  size: number;
}

/// That of no file: what is listed differs from it.
export const UNKNOWN: Stamp = { modified: "", size: -1 };

export type Listed = Stamp & { name: string };

/// A file that is another than it was; "gone" when there is none of its name any more.
export interface FileChange {
  name: string;
  what: "changed" | "gone";
}

interface Watched {
  /// Null until a list has told it that was asked for after `since`.
  stamp: Stamp | null;
  /// Number of the last list that was asked for before.
  since: number;
  isChanged: boolean;
}

export class FileWatch {
  private files = new Map<string, Watched>();
  private lists = 0;

  /// A cast was opened from a file, which alone is watched now. `stamp` is what the file was like when it
  /// was read, where that is known; without it the next list tells.
  opened(name: string, stamp: Stamp | null = null): void {
    this.files = new Map([[name, { stamp, since: this.lists, isChanged: false }]]);
  }

  /// This page has written the file.
  saved(name: string): void {
    this.files.delete(this.find(name) ?? name);
    this.files.set(name, { stamp: null, since: this.lists, isChanged: false });
  }

  /// Another page has written a file. Whether it is one of these; it is changed then.
  savedElsewhere(name: string): string {
    const found = this.find(name);
    if (found !== undefined) this.files.set(found, { stamp: null, since: this.lists, isChanged: true });
    return found ?? "";
  }

  /// A list is about to be asked for. Gives its number.
  ask(): number {
    return ++this.lists;
  }

  /// Takes a list. Gives the files that have changed, each once for each change.
  take(files: readonly Listed[], list: number): FileChange[] {
    const changes: FileChange[] = [];
    for (const [name, watched] of this.files) {
      // It may have been read from the disk before.
      if (list <= watched.since) continue;
      const now = files.find((file) => file.name === name);
      const { stamp } = watched;
      watched.stamp = now ? { modified: now.modified, size: now.size } : null;
      watched.since = list;
      if (!stamp || (now && now.modified === stamp.modified && now.size === stamp.size)) continue;
      // Other kinds are listed by the import filters, which come and go; other folders are not listed.
      if (!now && (!isBuiltIn(name) || name !== baseName(name))) continue;
      watched.isChanged = true;
      changes.push({ name, what: now ? "changed" : "gone" });
    }
    return changes;
  }

  /// The file holds what it did after all.
  confirm(name: string): void {
    const watched = this.files.get(name);
    if (watched) watched.isChanged = false;
  }

  /// Whether the file of this name is one of these and has changed.
  isChanged(name: string): boolean {
    return this.files.get(this.find(name) ?? "")?.isChanged ?? false;
  }

  /// What the file was like when it was read or written, if that is known and it is so still.
  stamp(name: string): Stamp {
    const watched = this.files.get(this.find(name) ?? "");
    return (!watched?.isChanged && watched?.stamp) || UNKNOWN;
  }

  /// The name under which a file is watched. Those in other folders have a path before it.
  private find(name: string): string | undefined {
    return [name, baseName(name)].find((each) => this.files.has(each));
  }
}
