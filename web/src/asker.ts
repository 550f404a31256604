/// Requests whose answer a part of the page waits for, one step after the other.
import { isComparison } from "./comparison";
import type { Connection, ConnectionState } from "./connection";
import { Action, SUCCESS, requestFrame, type Packet } from "./protocol";

/// The slowest of these works through some hundred thousand levels.
const ANSWER_LIMIT_MS = 30_000;

/// The engine calls a body that it cannot read a success, and says so in the reason alone.
const UNREADABLE = "Invalid input parameters.";

export const NO_CONNECTION = "There is no connection to the host.";

/// What came of a request: the packet of a success, or why there is none.
export type Answer = { packet: Packet } | { reason: string };

interface Waiting {
  action: Action;
  since: number;
  fits: (packet: Packet) => boolean;
  /// Null once a failure was taken for the answer.
  resolve: ((answer: Answer) => void) | null;
  late: (packet: Packet) => void;
}

export class Asker {
  private waiting: Waiting[] = [];
  private connected = false;

  constructor(
    private readonly connection: Connection,
    actions: readonly Action[],
    private readonly now: () => number = Date.now,
  ) {
    for (const action of actions) connection.on(action, (packet) => this.onPacket(action, packet));
    connection.onState((state) => this.onState(state));
  }

  /// Asks, and waits. Every page gets every packet: `fits` says whether a success can be the answer
  /// to this request. A failure does not say whose it is and is taken for one's own; if it was not,
  /// the success still to come goes to `late`.
  ask(
    action: Action,
    body: string,
    fits: (packet: Packet) => boolean,
    late: (packet: Packet) => void = () => undefined,
  ): Promise<Answer> {
    // What waited for a connection could come long after it was wanted.
    if (!this.connected) return Promise.resolve({ reason: NO_CONNECTION });
    return new Promise((resolve) => {
      this.waiting.push({ action, since: this.now(), fits, resolve, late });
      this.connection.send(requestFrame(action, body));
    });
  }

  /// Whether an answer to such a request is waited for.
  isWaiting(action: Action): boolean {
    return this.waiting.some((each) => each.action === action && each.resolve);
  }

  /// Gives up on requests that stayed without an answer; to be called now and then.
  expire(): void {
    const isLate = ({ since }: Waiting) => this.now() - since > ANSWER_LIMIT_MS;
    this.giveUp(isLate, `No answer within ${ANSWER_LIMIT_MS / 1000} seconds.`);
  }

  private onPacket(action: Action, packet: Packet): void {
    // It answers nothing, whatever it says.
    if (isComparison(packet)) return;
    const ofAction = this.waiting.filter((each) => each.action === action);
    if (packet.result !== SUCCESS || packet.reason === UNREADABLE) {
      const request = ofAction.find(({ resolve }) => resolve !== null);
      request?.resolve?.({ reason: packet.reason || "The engine gives no reason." });
      if (request) request.resolve = null;
      return;
    }
    const request =
      ofAction.find((each) => each.resolve && each.fits(packet)) ?? ofAction.find((each) => each.fits(packet));
    if (!request) return;
    this.waiting = this.waiting.filter((each) => each !== request);
    if (request.resolve) request.resolve({ packet });
    else request.late(packet);
  }

  private onState({ kind }: ConnectionState): void {
    this.connected = kind === "open";
    if (kind === "lost") this.giveUp(() => true, "The connection was lost before the answer came.");
  }

  private giveUp(which: (request: Waiting) => boolean, reason: string): void {
    const given = this.waiting.filter(which);
    this.waiting = this.waiting.filter((each) => !given.includes(each));
    for (const { resolve } of given) resolve?.({ reason });
  }
}
