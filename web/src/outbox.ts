/// What the page hands to the engine to be sent, saved or distributed, and what comes of it.
import type { Connection, ConnectionState } from "./connection";
import { sameFile, type Profile } from "./profile";
import { Action, SUCCESS, requestFrame, type Packet } from "./protocol";
import { nameSent } from "./protocol-output";
import { NOT_KNOWN } from "./outcome";
import { PendingRequests, type PendingRequest } from "./requests";

/// A large profile and a slow disk take their time; an engine that is silent for longer has
/// stopped.
const ANSWER_LIMIT_MS = 30_000;

export type Way = "send" | "save" | "receiver" | "distribute";

/// One profile on its way out.
export interface Job {
  way: Way;
  /// Name of the cast, or for a save the name of the file to be written.
  name: string;
  levels: number;
  /// What goes out, where it matters whose levels a file holds afterwards.
  profile?: Profile;
  /// What the user has changed in it and the file does not keep, in words.
  lost?: readonly string[];
  /// Said behind the success message.
  remark?: string;
}

export interface OutboxEvents {
  /// The engine has handed the datagram to the network, "S" with its content identifier.
  sent(job: Job, svptype: string): void;
  saved(job: Job, path: string): void;
  /// The engine has taken note of the profile for the receiver or the distribution; its own words say
  /// more than that.
  handedOn(job: Job, words: string): void;
  failed(job: Job, reason: string): void;
  /// Another page has saved a file.
  savedElsewhere(path: string): void;
  /// `current` has changed.
  waiting(): void;
}

const ANSWERED_AS: Record<Way, Action> = {
  send: Action.send,
  save: Action.save,
  receiver: Action.receiver,
  distribute: Action.distribute,
};

export class Outbox {
  private readonly pending = new PendingRequests<Job>();
  private connected = false;

  constructor(
    private readonly connection: Connection,
    private readonly events: OutboxEvents,
    private readonly now: () => number = Date.now,
  ) {
    connection.on(Action.send, (packet) => this.onSent(packet));
    connection.on(Action.save, (packet) => this.onSaved(packet));
    connection.on(Action.receiver, (packet) => this.onHandedOn("receiver", packet));
    connection.on(Action.distribute, (packet) => this.onHandedOn("distribute", packet));
    connection.onState((state) => this.onState(state));
  }

  /// A job whose answer is still to come, or null.
  get current(): Job | null {
    for (const action of Object.values(ANSWERED_AS)) {
      const request = this.pending.waiting(action);
      if (request) return request.subject;
    }
    return null;
  }

  /// Asks the engine to do a job by `action`. Nothing is kept for later: what leaves the editor
  /// leaves it when the user says so, or not at all.
  begin(job: Job, action: Action, body: string): void {
    if (!this.connected) {
      this.events.failed(job, "There is no connection to the host.");
      return;
    }
    this.connection.send(requestFrame(action, body));
    this.pending.queue(ANSWERED_AS[job.way], nameSent(job.name), job, true, this.now());
    this.events.waiting();
  }

  /// Gives up on requests that stayed without an answer; to be called now and then.
  expire(): void {
    const late = this.pending.dropOlder(this.now(), ANSWER_LIMIT_MS);
    this.fail(late, `No answer within ${ANSWER_LIMIT_MS / 1000} seconds.`);
  }

  private onState({ kind }: ConnectionState): void {
    this.connected = kind === "open";
    if (kind === "lost") {
      this.fail(this.pending.dropSent(), "The connection was lost before the answer came.");
    }
  }

  private onSent(packet: Packet): void {
    if (this.refused("send", packet)) return;
    const job = this.done(Action.send, ({ key }) => key === packet.file);
    if (job) this.events.sent(job, packet.svptype ?? "");
    this.events.waiting();
  }

  private onSaved(packet: Packet): void {
    if (this.refused("save", packet)) return;
    const path = packet.fullname ?? "";
    const job = this.done(Action.save, ({ key }) => sameFile(key, path));
    if (job) this.events.saved(job, path);
    else this.events.savedElsewhere(path);
    this.events.waiting();
  }

  private onHandedOn(way: Way, packet: Packet): void {
    if (this.refused(way, packet)) return;
    const job = this.done(ANSWERED_AS[way], () => true);
    if (job) this.events.handedOn(job, packet.reason ?? "");
    this.events.waiting();
  }

  private done(action: Action, fits: (request: PendingRequest<Job>) => boolean): Job | null {
    let found: Job | null = null;
    this.pending.succeeded(action, (request) => {
      if (!fits(request)) return false;
      found = request.subject;
      return true;
    });
    return found;
  }

  /// Whether a packet tells of a failure, which is then dealt with.
  private refused(way: Way, packet: Packet): boolean {
    if (packet.result === SUCCESS) return false;
    const action = ANSWERED_AS[way];
    const job = this.pending.waiting(action)?.subject;
    this.pending.failed(action);
    if (job) this.events.failed(job, packet.reason ?? "");
    this.events.waiting();
    return true;
  }

  private fail(requests: PendingRequest<Job>[], reason: string): void {
    for (const { subject } of requests) {
      this.events.failed(subject, `${reason} ${NOT_KNOWN}`);
    }
    if (requests.length > 0) this.events.waiting();
  }
}
