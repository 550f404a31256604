/// Unsaved edits, kept in the browser until they are saved or discarded: a reload, or a browser that
/// ends, does not lose them.
import { UNKNOWN, type Stamp } from "./file-watch";
import type { Profile } from "./profile";
import { LIST_KEYS, type ListKey } from "./protocol";

const DATABASE = "svp-editor";
const STORE = "unsaved";
const STORED_AS = "svp-editor-page";
const LOCK = "svp-editor-page:";
const LOCK_PATIENCE_MS = 2000;

/// Lists take an eighth of the time to store as plain doubles.
interface Packed extends Omit<Profile, "lists"> {
  lists: Record<ListKey, Float64Array>;
}

interface Entry {
  /// The page that the edits are of.
  page: string;
  /// When they were stored, in milliseconds since 1970.
  at: number;
  inFile: Packed;
  edited: Packed;
  /// The file and what it was like then; older pages have not kept these.
  file?: string;
  stamp?: Stamp;
}

/// Edits as they were when the page was left.
export interface Unsaved {
  page: string;
  /// The page is this one.
  isOwn: boolean;
  at: Date;
  /// What a file holds of the cast.
  inFile: Profile;
  edited: Profile;
  /// Name of that file, and what it was like then.
  file: string;
  stamp: Stamp;
}

export class UnsavedStore {
  private database: Promise<IDBDatabase> | null = null;
  private name: Promise<string> | null = null;
  private wanted: Omit<Entry, "page"> | null = null;
  private isStored = false;
  private busy: Promise<void> | null = null;
  private hasFailed = false;

  /// `failed` is told, once, that edits cannot be kept.
  constructor(private readonly failed: (reason: string) => void) {}

  /// What this page had before it was loaded, and what pages have left that are no longer open; the
  /// latest first.
  async left(): Promise<Unsaved[]> {
    try {
      const own = await this.ownName();
      const entries = (await this.run("readonly", (store) => store.getAll())) as Entry[];
      const open = await openPages();
      this.isStored ||= entries.some(({ page }) => page === own);
      const left = entries.filter(({ page }) => page === own || !open.has(page));
      left.sort((a, b) => b.at - a.at);
      return left.map(({ page, at, inFile, edited, file = inFile.filename, stamp = UNKNOWN }) => ({
        page, isOwn: page === own, at: new Date(at), inFile: unpacked(inFile), edited: unpacked(edited), file, stamp,
      }));
    } catch {
      // Nothing that was kept can be read; whether anything can be kept is told when it is tried.
      return [];
    }
  }

  /// Keeps edits in place of those kept before, with what the file of this name holds.
  keep(inFile: Profile, edited: Profile, file: string, stamp: Stamp): void {
    this.wanted = { at: Date.now(), inFile: packed(inFile), edited: packed(edited), file, stamp };
    this.work();
  }

  /// There is nothing to be kept any more.
  clear(): void {
    this.wanted = null;
    this.work();
  }

  /// Puts edits of this page aside, as those of a page that is no longer open: what is kept from now on
  /// takes their place otherwise. Gives the name of that page.
  async putAside({ at, inFile, edited, file, stamp }: Unsaved): Promise<string> {
    const page = newName();
    const entry: Entry = { page, at: at.getTime(), inFile: packed(inFile), edited: packed(edited), file, stamp };
    await this.run("readwrite", (store) => store.put(entry));
    this.work();
    return page;
  }

  /// Forgets what another page has left.
  async forget(page: string): Promise<void> {
    // What is restored of them is kept as this page's own first.
    await this.busy;
    await this.run("readwrite", (store) => store.delete(page)).catch(() => undefined);
  }

  /// Writes what is wanted last: of what comes in one go all but the last is never written, and what
  /// comes while another is written waits for that.
  private work(): void {
    if (this.busy || (!this.wanted && !this.isStored)) return;
    let { wanted } = this;
    const writing = this.ownName().then((page) => {
      ({ wanted } = this);
      this.isStored = wanted !== null;
      const entry = wanted && { ...wanted, page };
      return this.run("readwrite", (store) => (entry ? store.put(entry) : store.delete(page)));
    });
    this.busy = writing
      .then(() => undefined, (error: unknown) => this.tell(error))
      .then(() => {
        this.busy = null;
        if (this.wanted !== wanted) this.work();
      });
  }

  private ownName(): Promise<string> {
    return (this.name ??= ownName());
  }

  private tell(error: unknown): void {
    if (this.hasFailed) return;
    this.hasFailed = true;
    this.failed(error instanceof Error ? error.message : String(error));
  }

  private async run(mode: IDBTransactionMode, act: (store: IDBObjectStore) => IDBRequest): Promise<unknown> {
    this.database ??= opened();
    const database = await this.database;
    return new Promise((resolve, reject) => {
      const transaction = database.transaction(STORE, mode);
      const request = act(transaction.objectStore(STORE));
      transaction.oncomplete = () => resolve(request.result);
      transaction.onerror = transaction.onabort = () => reject(transaction.error ?? new Error("It was refused."));
    });
  }
}

function opened(): Promise<IDBDatabase> {
  return new Promise((resolve, reject) => {
    const request = indexedDB.open(DATABASE, 1);
    request.onupgradeneeded = () => request.result.createObjectStore(STORE, { keyPath: "page" });
    request.onsuccess = () => {
      // Somebody clears the browser's data, which waits for this page otherwise.
      request.result.onversionchange = () => request.result.close();
      resolve(request.result);
    };
    request.onerror = () => reject(request.error ?? new Error("It was refused."));
    request.onblocked = () => reject(new Error("Another page holds it."));
  });
}

/// A name that stays with this page over reloads. A copy of a page brings that page's name along and
/// gets one of its own.
async function ownName(): Promise<string> {
  let name = sessionStorage.getItem(STORED_AS);
  if (!name || !(await isHeld(name))) {
    name = newName();
    sessionStorage.setItem(STORED_AS, name);
    await isHeld(name);
  }
  return name;
}

function newName(): string {
  return Array.from(crypto.getRandomValues(new Uint32Array(3)), (each) => each.toString(36)).join("");
}

/// Holds a name as long as this page is open. False when another page has it, and keeps it for longer
/// than a page that is just being loaded again.
async function isHeld(name: string): Promise<boolean> {
  // Only there where the page comes from this machine, or by way of TLS.
  if (!("locks" in navigator)) return true;
  const patience = new AbortController();
  setTimeout(() => patience.abort(), LOCK_PATIENCE_MS);
  return new Promise((resolve) => {
    const hold = () => {
      resolve(true);
      return new Promise<void>(() => undefined);
    };
    navigator.locks.request(LOCK + name, { signal: patience.signal }, hold).catch(() => resolve(false));
  });
}

/// Names of the pages that are open now.
async function openPages(): Promise<Set<string>> {
  if (!("locks" in navigator)) return new Set();
  const { held = [] } = await navigator.locks.query();
  return new Set(held.flatMap(({ name }) => (name?.startsWith(LOCK) ? [name.slice(LOCK.length)] : [])));
}

function packed(profile: Profile): Packed {
  const lists = {} as Packed["lists"];
  for (const key of LIST_KEYS) lists[key] = Float64Array.from(profile.lists[key]);
  return { ...profile, lists };
}

function unpacked(profile: Packed): Profile {
  const lists = {} as Record<ListKey, readonly number[]>;
  for (const key of LIST_KEYS) lists[key] = Array.from(profile.lists[key]);
  return { ...profile, lists };
}
