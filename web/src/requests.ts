/// Requests of this page that wait for an answer.
///
/// Every open page receives every packet, those for other pages too. A page must therefore know
/// what it asked for itself; this is its memory of that.
import type { Action } from "./protocol";

/// What a reply is to this page: the answer it waits for, the answer to a request that it has
/// given up since, or an answer to somebody else.
export type Standing = "mine" | "stale" | "foreign";

/// `Subject` is what a request was about, where its key alone does not say it.
export interface PendingRequest<Subject> {
  action: Action;
  /// What tells this request from others of the same action; for Open, the file's name.
  key: string;
  subject: Subject;
  /// False once the user has asked for something else instead.
  wanted: boolean;
  /// True after a failure was taken for the answer to this request.
  failed: boolean;
  /// True once it left for the host; a request made without a connection waits for the next.
  sent: boolean;
  /// Milliseconds, by the clock of the caller.
  since: number;
  /// Set for a request that does not go through the socket: it neither ages nor ends with it.
  elsewhere?: true;
}

export class PendingRequests<Subject> {
  private readonly requests: PendingRequest<Subject>[] = [];

  /// Notes a new request. Earlier ones of the same action are no longer wanted: the page shows
  /// one cast, and the last one asked for is the one that the user is waiting for.
  begin(
    action: Action, key: string, subject: Subject, sent: boolean, now: number,
  ): PendingRequest<Subject> {
    this.giveUp(action);
    return this.queue(action, key, subject, sent, now);
  }

  /// Notes a new request beside earlier ones of the same action, all of which stay wanted.
  queue(
    action: Action, key: string, subject: Subject, sent: boolean, now: number,
  ): PendingRequest<Subject> {
    const request = { action, key, subject, wanted: true, failed: false, sent, since: now };
    this.requests.push(request);
    return request;
  }

  /// Notes a request that reaches the engine by another way than the socket, with its answer
  /// expected on the socket all the same. Earlier ones of the same action are no longer wanted.
  beginElsewhere(action: Action, key: string, subject: Subject): PendingRequest<Subject> {
    const request = this.begin(action, key, subject, true, 0);
    request.elsewhere = true;
    return request;
  }

  /// A request made elsewhere has been carried out: it is one like the others now, and ages. A
  /// failure that was taken for its answer was another page's.
  carriedOut(request: PendingRequest<Subject>, now: number): void {
    delete request.elsewhere;
    request.failed = false;
    request.since = now;
  }

  /// Whether the answer to `request` is still to come.
  holds(request: PendingRequest<Subject>): boolean {
    return this.requests.includes(request);
  }

  /// Forgets one request: no answer to it will come.
  drop(request: PendingRequest<Subject>): void {
    const at = this.requests.indexOf(request);
    if (at >= 0) this.requests.splice(at, 1);
  }

  /// Answers to earlier requests for `action` will not be shown any more.
  giveUp(action: Action): void {
    for (const request of this.requests) {
      if (request.action === action) request.wanted = false;
    }
  }

  /// Whether an answer that would be shown is still to come.
  waiting(action: Action): PendingRequest<Subject> | undefined {
    return this.requests.find((r) => r.action === action && r.wanted && !r.failed);
  }

  /// Takes the oldest request that a successful answer fits off the list. Answers come in the
  /// order of the requests, so an answer that fits several is the answer to the oldest. One that
  /// has failed comes last: the user has most likely tried again since. `fits` is not called again
  /// once it has said yes.
  succeeded(action: Action, fits: (request: PendingRequest<Subject>) => boolean): Standing {
    const ofAction = this.requests.filter((request) => request.action === action);
    const request = ofAction.find((r) => !r.failed && fits(r)) ?? ofAction.find(fits);
    if (!request) return "foreign";
    this.requests.splice(this.requests.indexOf(request), 1);
    return request.wanted ? "mine" : "stale";
  }

  /// Takes a failure. It does not say what failed, so it goes to the oldest request that has no
  /// answer yet. If it was another page's after all, the success still to come finds the request
  /// here and is shown.
  failed(action: Action): { standing: Standing; key: string; subject: Subject | null } {
    const request = this.requests.find((r) => r.action === action && !r.failed);
    if (!request) return { standing: "foreign", key: "", subject: null };
    request.failed = true;
    const { key, subject, wanted } = request;
    return { standing: wanted ? "mine" : "stale", key, subject };
  }

  /// Everything that was queued has left, and its time begins to run.
  markSent(now: number): void {
    for (const request of this.requests) {
      if (!request.sent) request.since = now;
      request.sent = true;
    }
  }

  /// The connection broke: requests that had left on it get no answer any more. They are removed;
  /// those that the user still waited for are returned.
  dropSent(): PendingRequest<Subject>[] {
    return this.remove((request) => request.sent && !request.elsewhere);
  }

  /// Removes what is older than `limit` milliseconds and returns those that were still wanted.
  /// Requests that wait for a connection do not age.
  dropOlder(now: number, limit: number): PendingRequest<Subject>[] {
    return this.remove(
      (request) => request.sent && !request.elsewhere && now - request.since > limit,
    );
  }

  private remove(which: (request: PendingRequest<Subject>) => boolean): PendingRequest<Subject>[] {
    const removed = this.requests.filter(which);
    const kept = this.requests.filter((request) => !which(request));
    this.requests.splice(0, this.requests.length, ...kept);
    return removed.filter((request) => request.wanted && !request.failed);
  }
}
