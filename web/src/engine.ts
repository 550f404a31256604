/// What the page asks of the engine and what comes back, with every reply sorted by whether this
/// page asked for it.
import { invalidLevels } from "./invalid";
import type { Connection, ConnectionState } from "./connection";
import { isOwnFile } from "./own-files";
import { profileOf, sameFile, type Profile } from "./profile";
import {
  Action,
  HOST,
  SUCCESS,
  openBody,
  profileBody,
  requestFrame,
  type Packet,
} from "./protocol";
import { PendingRequests, type PendingRequest } from "./requests";

/// An engine that has not answered for this long has not understood, or has stopped.
const ANSWER_LIMIT_MS = 30_000;

/// An extension file is handed in as soon as its name is known.
const EXTENSION_LIMIT_MS = 10_000;

const BRACKETED = "The name holds a bracket, which cannot be sent. Rename the file.";

export interface Verdict {
  lines: string[];
  /// Indices of the invalid levels, ascending.
  invalid: number[];
}

/// What the page is told. Only answers to its own requests arrive as `opened`, `openFailed`,
/// `checked` and `checkFailed`.
export interface EngineEvents {
  opened(profile: Profile): void;
  openFailed(name: string, reason: string): void;
  /// A failure that was told of this file was that of another one, which somebody else had asked for:
  /// the answer has come now.
  openFailedFalsely(name: string): void;
  checked(profile: Profile, verdict: Verdict): void;
  checkFailed(name: string, reason: string): void;
  /// Somebody else had a profile opened.
  openedElsewhere(profile: Profile): void;
  /// Somebody else had a file opened that could not be: another page, or the survey system. Its name
  /// is not known. Also told of what other parts of this page ask for.
  openFailedElsewhere(reason: string): void;
  alerted(text: string): void;
  /// The engine did not answer at all when the page reported to it.
  silent(): void;
  /// The host refused a frame of this page.
  refused(reason: string): void;
  /// What the page waits for has changed.
  waiting(): void;
}

/// A file on its way to the engine by another road than the socket, while its opening is awaited
/// on the socket.
export interface Upload {
  /// The file was not stored or cannot be opened: no profile will come.
  failed(): void;
  /// The file is stored and was opened. Resolves with its profile once that is here (it may have
  /// been for some time), or with null when the page shows something else instead.
  done(): Promise<Profile | null>;
}

/// What the engine's side remembers of an upload.
class UploadRecord {
  profile: Profile | null = null;
  /// The connection broke meanwhile: the answer may have been lost with it.
  missed = false;
  /// Called when the answer has come, or none is awaited any more.
  over: () => void = () => undefined;

  constructor(public request: PendingRequest<Subject> | null = null) {}
}

/// What came of looking at a file: its profile, or why there is none.
export type Look = { profile: Profile } | { reason: string };

/// A file that is read beside the cast on the page.
class LookRecord {
  constructor(
    readonly request: PendingRequest<Subject>,
    readonly tell: (look: Look) => void,
  ) {}
}

/// What a request is about: the profile to be checked, or the upload or look that an opening belongs to.
type Subject = Profile | UploadRecord | LookRecord | null;

function uploadIn(subject: Subject): UploadRecord | null {
  return subject instanceof UploadRecord ? subject : null;
}

function lookIn(subject: Subject): LookRecord | null {
  return subject instanceof LookRecord ? subject : null;
}

export class Engine {
  private readonly pending = new PendingRequests<Subject>();
  private readonly uploads = new Set<UploadRecord>();
  private readonly looks = new Set<LookRecord>();
  /// When a page asked for the name of an extension file last.
  private extensionAt = -Infinity;

  constructor(
    private readonly connection: Connection,
    private readonly events: EngineEvents,
    private readonly now: () => number = Date.now,
  ) {
    connection.on(Action.open, (packet) => this.onOpen(packet));
    connection.on(Action.extensionName, () => (this.extensionAt = this.now()));
    connection.on(Action.check, (packet) => this.onCheck(packet));
    connection.on(Action.ready, () => this.pending.succeeded(Action.ready, () => true));
    connection.on(Action.alert, ({ alert, reason }) => events.alerted(alert ?? reason ?? ""));
    connection.on(HOST, ({ reason }) => events.refused(reason ?? ""));
    connection.onState((state) => this.onState(state));
  }

  /// Asks for a file of the profile folder. Its answer replaces that of any earlier request.
  open(name: string): void {
    const body = openBody(name);
    if (body === null) {
      this.pending.giveUp(Action.open);
      this.events.openFailed(name, BRACKETED);
    } else {
      this.ask(Action.open, name, null, body);
    }
    this.events.waiting();
  }

  /// Expects the engine to open a file that is being uploaded. The profile arrives as `opened`,
  /// like that of a file of the list; of a failure only the upload itself knows.
  beginUpload(name: string): Upload {
    const record = new UploadRecord();
    record.request = this.pending.beginElsewhere(Action.open, name, record);
    this.uploads.add(record);
    this.events.waiting();
    return {
      failed: () => {
        if (record.request) this.pending.drop(record.request);
        this.endUploads();
      },
      done: () => this.uploadDone(name, record),
    };
  }

  /// Reads a file of the profile folder without putting it on the page, whatever is opened meanwhile.
  look(name: string): Promise<Look> {
    const body = openBody(name);
    if (body === null) return Promise.resolve({ reason: BRACKETED });
    return new Promise((tell) => {
      const sent = this.connection.send(requestFrame(Action.open, body));
      const request: PendingRequest<Subject> = this.pending.queue(Action.open, name, null, sent, this.now());
      // Nobody waits for it to be shown: it is no opening to the rest of the page.
      request.wanted = false;
      const look = new LookRecord(request, tell);
      request.subject = look;
      this.looks.add(look);
    });
  }

  /// Has the engine check a profile.
  check(profile: Profile): void {
    this.ask(Action.check, profile.filename, profile, profileBody(profile));
    this.events.waiting();
  }

  /// The profile on the page is another one now: a verdict on the earlier one is of no use.
  forgetCheck(): void {
    this.pending.giveUp(Action.check);
    this.events.waiting();
  }

  /// Name of the file that the page waits for, or "".
  get opening(): string {
    return this.pending.waiting(Action.open)?.key ?? "";
  }

  get checking(): boolean {
    return this.pending.waiting(Action.check) !== undefined;
  }

  /// Gives up on requests that stayed without an answer; to be called now and then.
  expire(): void {
    const late = this.pending.dropOlder(this.now(), ANSWER_LIMIT_MS);
    this.fail(late, `No answer within ${ANSWER_LIMIT_MS / 1000} seconds.`);
    this.endUploads();
  }

  private ask(
    action: Action, key: string, subject: Subject, body: string,
  ): PendingRequest<Subject> {
    const sent = this.connection.send(requestFrame(action, body));
    return this.pending.begin(action, key, subject, sent, this.now());
  }

  private uploadDone(name: string, record: UploadRecord): Promise<Profile | null> {
    return new Promise((resolve) => {
      record.over = () => resolve(record.profile);
      const { request } = record;
      if (!request || !this.uploads.has(record)) return record.over();
      this.pending.carriedOut(request, this.now());
      if (record.missed && request.wanted) {
        this.pending.drop(request);
        record.request = this.ask(Action.open, name, record, openBody(name) ?? "");
      }
      this.events.waiting();
    });
  }

  /// Lets go of uploads whose answer has come or is not awaited any more.
  private endUploads(): void {
    for (const upload of this.uploads) {
      if (upload.request && this.pending.holds(upload.request)) continue;
      this.uploads.delete(upload);
      upload.over();
    }
    for (const look of this.looks) {
      if (this.pending.holds(look.request)) continue;
      this.endLook(look, { reason: "No answer has come." });
    }
    this.events.waiting();
  }

  private endLook(look: LookRecord, result: Look): void {
    this.looks.delete(look);
    look.tell(result);
  }

  private onState(state: ConnectionState): void {
    if (state.kind === "open") {
      this.pending.markSent(this.now());
      this.ask(Action.ready, "", null, "");
    } else if (state.kind === "lost") {
      for (const upload of this.uploads) upload.missed = true;
      this.fail(this.pending.dropSent(), "The connection was lost before the answer came.");
      this.endUploads();
    }
  }

  private onOpen(packet: Packet): void {
    const { events, pending } = this;
    if (packet.result !== SUCCESS) {
      this.onOpenFailed(packet.reason ?? "");
    } else {
      // A page has read back what it had written for itself.
      if (isOwnFile(packet.filename ?? "")) return;
      const profile = profileOf(packet);
      let subject: Subject = null;
      let wasFailed = false;
      const standing = pending.succeeded(Action.open, (request) => {
        ({ subject, failed: wasFailed } = request);
        return sameFile(request.key, profile.filename);
      });
      const upload = uploadIn(standing === "foreign" ? null : subject);
      if (upload && standing === "mine") upload.profile = profile;
      const look = lookIn(standing === "foreign" ? null : subject);
      if (look) this.endLook(look, { profile });
      if (standing === "mine" && wasFailed) events.openFailedFalsely(profile.filename);
      if (standing === "mine") events.opened(profile);
      else if (standing === "foreign") events.openedElsewhere(profile);
      this.endUploads();
    }
    events.waiting();
  }

  private onOpenFailed(reason: string): void {
    const { standing, key, subject } = this.pending.failed(Action.open);
    const look = lookIn(subject);
    if (look) this.endLook(look, { reason: reason || "The engine gives no reason." });
    // An upload is told its own failure by the answer to its POST.
    if (standing === "mine" && !uploadIn(subject)) this.events.openFailed(key, reason);
    if (standing === "foreign" && !this.isExtension()) this.events.openFailedElsewhere(reason);
  }

  /// Whether what is opened now is most likely an extension file that a page has handed in. It is no
  /// cast, and that the engine cannot open it is no news to anybody.
  private isExtension(): boolean {
    const isAwaited = this.now() - this.extensionAt < EXTENSION_LIMIT_MS;
    this.extensionAt = -Infinity;
    return isAwaited;
  }

  private onCheck(packet: Packet): void {
    const { events, pending } = this;
    if (packet.result !== SUCCESS) {
      const { standing, key } = pending.failed(Action.check);
      if (standing === "mine") events.checkFailed(key, packet.reason ?? "");
    } else {
      let checked: { profile: Profile; invalid: number[] } | null = null;
      // A verdict does not name its profile: it is for the oldest request whose levels it fits,
      // or for another page.
      const standing = pending.succeeded(Action.check, ({ subject }) => {
        const profile = uploadIn(subject) || lookIn(subject) ? null : (subject as Profile | null);
        const lists = profile?.lists;
        const invalid =
          lists && invalidLevels(lists.svp_Speed, lists.svp_Depth, packet.svpX, packet.svpY);
        checked = profile && invalid ? { profile, invalid } : null;
        return checked !== null;
      });
      if (standing === "mine" && checked) this.tellVerdict(checked, packet.tofix ?? "");
    }
    events.waiting();
  }

  private tellVerdict(of: { profile: Profile; invalid: number[] }, text: string): void {
    const lines = text.split("\n").map((line) => line.trim()).filter(Boolean);
    this.events.checked(of.profile, { lines, invalid: of.invalid });
  }

  private fail(requests: PendingRequest<Subject>[], reason: string): void {
    for (const { action, key } of requests) {
      if (action === Action.open) this.events.openFailed(key, reason);
      else if (action === Action.check) this.events.checkFailed(key, reason);
      else if (action === Action.ready && reason.startsWith("No answer")) this.events.silent();
    }
    if (requests.length > 0) this.events.waiting();
  }
}
