/// The engine's table of import filters: listed, added to, and taken from.
import type { Connection, ConnectionState } from "./connection";
import { filtersOf, replacedBy, rowOf, sameFilter, sameWord, saveFilterBody, type Filter } from "./filters";
import { Action, SUCCESS, requestFrame, type Packet } from "./protocol";

const ANSWER_LIMIT_MS = 30_000;

/// No table has been written yet.
const NO_TABLE = "File not opened.";
const NO_CONNECTION = "There is no connection to the host.";

/// What the engine says of a row of the table that it leaves out. Anything else that it says is
/// about the whole table.
const ROW_FAULTS: readonly string[] = [
  "asvp is a reserved filtername.",
  ".asvp is a reserved filter postfix.",
  ".valeport is a reserved filter postfix.",
  "Separator must be space, tab, semicolon, colon or comma.",
  "Sal/Con must be salinity, conductivity, or undef.",
  "Depthcolumn cannot be negative.",
  "Speedcolumn cannot be negative.",
  "Speedcolumn cannot be the same as Depthcolumn.",
  "Depthfactor cannot be negative.",
  "Speedfactor cannot be negative.",
];

export interface Listing {
  filters: Filter[];
  /// What is wrong with rows that the table holds and the engine leaves out, one sentence each.
  faults: string[];
  /// Why there is no list; "" when there is one.
  failure: string;
}

/// Rows that were taken out of the table and are not back in it yet. Kept beyond the page's life.
export interface Safe {
  load(): Filter[];
  keep(rows: readonly Filter[]): void;
}

interface Waiting {
  action: Action;
  since: number;
  /// Takes a packet; false when more have to come.
  take(packet: Packet): boolean;
  fail(reason: string): void;
}

export class FilterTable {
  private waiting: Waiting | null = null;
  private turn: Promise<unknown> = Promise.resolve();
  private connected = false;
  private rows: Filter[];

  constructor(
    private readonly connection: Connection,
    private readonly safe: Safe,
    private readonly now: () => number = Date.now,
  ) {
    this.rows = safe.load();
    for (const action of [Action.filters, Action.saveFilter, Action.deleteFilter]) {
      connection.on(action, (packet) => this.onPacket(action, packet));
    }
    connection.onState((state) => this.onState(state));
  }

  /// Rows that a deletion has taken out and that are still to be put back.
  get unstored(): readonly Filter[] {
    return this.rows;
  }

  list(): Promise<Listing> {
    return this.inTurn(() => this.ask());
  }

  /// Puts a row into the table; the engine takes out those of the same name or postfix. Resolves
  /// with "" or with why not.
  save(filter: Filter): Promise<string> {
    return this.inTurn(() => this.store(filter));
  }

  /// Takes the row of this name out of the table. Resolves with "" or with why not; what could not
  /// be put back is then in `unstored`.
  ///
  /// The engine's own DeleteFilter cannot do it: of a row it keeps only what has eight fields, and
  /// so it drops every row of today, which have twelve. It is used to empty the table, and the
  /// other rows are saved again, one after the other.
  remove(name: string): Promise<string> {
    return this.inTurn(async () => {
      const { filters, failure } = await this.ask();
      if (failure) return failure;
      const all = [...filters, ...this.rows.filter((row) => !filters.some((one) => sameWord(one.name, row.name)))];
      const kept = all.filter((row) => !sameWord(row.name, name));
      // Saving takes out what has the same name or postfix, so that of two such rows, which only
      // another program can have written, one would be lost.
      const twin = kept.find((row) => replacedBy(row, kept).length > 1);
      if (twin) return `${twin.name} stands in the table twice, by its name or its suffix. Save it once first.`;
      // Kept before anything is taken out: a page that is closed in between loses nothing.
      const before = this.rows;
      this.keep(kept);
      const { text, refused } = await this.request(Action.deleteFilter, `[${name}]`);
      if (refused) this.keep(before);
      return text || this.storeAll();
    });
  }

  /// Puts back what a deletion has taken out. Resolves with "" or with why not.
  restore(): Promise<string> {
    return this.inTurn(() => this.storeAll());
  }

  /// Gives up on a request without an answer; to be called now and then.
  expire(): void {
    if (!this.waiting || this.now() - this.waiting.since <= ANSWER_LIMIT_MS) return;
    this.fail(`No answer within ${ANSWER_LIMIT_MS / 1000} seconds.`);
  }

  private async storeAll(): Promise<string> {
    let reason = "";
    for (const row of this.rows) {
      reason ||= (await this.request(Action.saveFilter, saveFilterBody(row))).text;
    }
    // Replies do not say whose they are: what the table really holds decides.
    const { filters, failure } = await this.ask();
    if (!failure) {
      this.keep(this.rows.filter((row) => !filters.some((one) => sameFilter(one, row))));
    }
    if (this.rows.length === 0) return "";
    return reason || failure || "The table does not hold them all.";
  }

  private async store(filter: Filter): Promise<string> {
    const { text } = await this.request(Action.saveFilter, saveFilterBody(filter));
    if (text) return text;
    const { filters, failure } = await this.ask();
    if (failure) return failure;
    return filters.some((one) => sameFilter(one, filter)) ? "" : "The table does not hold it.";
  }

  private ask(): Promise<Listing> {
    return new Promise((resolve) => {
      const listing: Listing = { filters: [], faults: [], failure: "" };
      this.send(Action.filters, "", {
        take: ({ result, reason = "", filters = "" }) => {
          if (result !== SUCCESS && ROW_FAULTS.includes(reason)) {
            listing.faults.push(reason);
            return false;
          }
          if (result === SUCCESS) listing.filters = filtersOf(filters);
          else if (reason !== NO_TABLE) listing.failure = reason || "The engine gives no reason.";
          resolve(listing);
          return true;
        },
        fail: (failure) => resolve({ ...listing, failure }),
      });
    });
  }

  /// `text` is "" on success; `refused` tells a refusal, by which nothing has changed, from an
  /// answer that did not come.
  private request(action: Action, body: string): Promise<{ text: string; refused: boolean }> {
    return new Promise((resolve) => {
      if (!this.connected) return resolve({ text: NO_CONNECTION, refused: true });
      this.send(action, body, {
        take: ({ result, reason }) => {
          const text = result === SUCCESS ? "" : reason || "The engine gives no reason.";
          resolve({ text, refused: text !== "" });
          return true;
        },
        fail: (text) => resolve({ text, refused: false }),
      });
    });
  }

  private send(action: Action, body: string, answer: Pick<Waiting, "take" | "fail">): void {
    // A change of the table that waited for a connection could come long after it was wanted.
    if (!this.connected) return answer.fail(NO_CONNECTION);
    this.waiting = { action, since: this.now(), ...answer };
    this.connection.send(requestFrame(action, body));
  }

  /// One request at a time, so that an answer is that of the request before it.
  private inTurn<T>(run: () => Promise<T>): Promise<T> {
    const mine = this.turn.then(run);
    this.turn = mine.catch(() => undefined);
    return mine;
  }

  private onPacket(action: Action, packet: Packet): void {
    const { waiting } = this;
    if (waiting?.action !== action) return;
    this.waiting = null;
    if (!waiting.take(packet)) this.waiting = waiting;
  }

  private onState({ kind }: ConnectionState): void {
    this.connected = kind === "open";
    if (kind === "lost") this.fail("The connection was lost before the answer came.");
  }

  private fail(reason: string): void {
    const { waiting } = this;
    this.waiting = null;
    waiting?.fail(reason);
  }

  private keep(rows: readonly Filter[]): void {
    this.rows = [...rows];
    this.safe.keep(this.rows);
  }
}

const STORED_AS = "svp-editor-unstored-filters";

/// A safe in the browser's storage; without storage the page's own memory has to do.
export const browserSafe: Safe = {
  load: () => {
    try {
      const rows: unknown = JSON.parse(localStorage.getItem(STORED_AS) ?? "[]");
      return Array.isArray(rows) ? filtersOf(rows.filter((row) => typeof row === "string").join("|")) : [];
    } catch {
      return [];
    }
  },
  keep: (rows) => {
    try {
      if (rows.length === 0) localStorage.removeItem(STORED_AS);
      else localStorage.setItem(STORED_AS, JSON.stringify(rows.map(rowOf)));
    } catch {
      // The rows are still in the page.
    }
  },
};
