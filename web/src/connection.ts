/// The connection to the host: one web socket that is opened again whenever it breaks.
import { packetOf, type Packet } from "./protocol";

export type ConnectionState =
  | { kind: "connecting" }
  | { kind: "open" }
  /// Broken; the next attempt comes in `retryInMs` milliseconds.
  | { kind: "lost"; retryInMs: number };

/// The part of the browser's WebSocket that is used here.
export interface Socket {
  send(text: string): void;
  close(): void;
  onopen: (() => void) | null;
  onclose: (() => void) | null;
  onmessage: ((event: { data: unknown }) => void) | null;
}

export interface Surroundings {
  openSocket(url: string): Socket;
  later(run: () => void, ms: number): void;
}

const browser: Surroundings = {
  openSocket: (url) => new WebSocket(url) as unknown as Socket,
  later: (run, ms) => void setTimeout(run, ms),
};

const FIRST_RETRY_MS = 500;
/// A surveyor who restarts the host should not wait much longer than the restart takes.
const LONGEST_RETRY_MS = 5000;

export class Connection {
  private socket: Socket | null = null;
  private isOpen = false;
  private retryMs = FIRST_RETRY_MS;
  private queue: string[] = [];
  private readonly listeners = new Map<string, ((packet: Packet) => void)[]>();
  private readonly stateListeners: ((state: ConnectionState) => void)[] = [];

  constructor(
    private readonly url: string,
    private readonly around: Surroundings = browser,
  ) {}

  /// Packets whose "whoami" is `whoami` go to `listener`, behind those that were named before it;
  /// packets without a listener are dropped.
  on(whoami: string, listener: (packet: Packet) => void): void {
    this.listeners.set(whoami, [...(this.listeners.get(whoami) ?? []), listener]);
  }

  onState(listener: (state: ConnectionState) => void): void {
    this.stateListeners.push(listener);
  }

  /// Sends a frame, now (true) or as soon as there is a connection (false).
  send(frame: string): boolean {
    if (this.isOpen && this.socket) {
      this.socket.send(frame);
      return true;
    }
    this.queue.push(frame);
    return false;
  }

  /// Begins to connect, and goes on until the page is closed.
  start(): void {
    this.tell({ kind: "connecting" });
    const socket = this.around.openSocket(this.url);
    this.socket = socket;
    socket.onopen = () => {
      this.isOpen = true;
      this.retryMs = FIRST_RETRY_MS;
      const queued = this.queue;
      this.queue = [];
      this.tell({ kind: "open" });
      for (const frame of queued) socket.send(frame);
    };
    socket.onmessage = ({ data }) => {
      const packet = typeof data === "string" ? packetOf(data) : null;
      if (!packet) return;
      for (const listener of this.listeners.get(packet.whoami) ?? []) listener(packet);
    };
    socket.onclose = () => {
      this.isOpen = false;
      const retryInMs = this.retryMs;
      this.retryMs = Math.min(2 * retryInMs, LONGEST_RETRY_MS);
      this.tell({ kind: "lost", retryInMs });
      this.around.later(() => this.start(), retryInMs);
    };
  }

  private tell(state: ConnectionState): void {
    for (const listener of this.stateListeners) listener(state);
  }
}
