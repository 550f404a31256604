/// Whether the host is connected: the badge, and what is said when that changes.
import type { ConnectionState } from "./connection";
import { byId } from "./dom";
import { formatClock } from "./format";
import type { Messages } from "./messages";

export class LinkState {
  private lostAt: Date | null = null;
  private wasOpen = false;

  /// `opened` runs each time that the host is connected.
  constructor(
    private readonly messages: Pick<Messages, "add" | "dismiss">,
    private readonly opened: () => void,
  ) {}

  get isOpen(): boolean {
    return this.wasOpen && this.lostAt === null;
  }

  show(state: ConnectionState): void {
    const badge = byId("connection");
    badge.dataset["state"] = state.kind === "connecting" && this.lostAt ? "lost" : state.kind;
    if (state.kind === "open") {
      badge.textContent = "Connected";
      this.tellBack();
      this.opened();
    } else if (state.kind === "lost") {
      badge.textContent = "Connection lost, trying again";
      this.tellLost();
    } else if (!this.lostAt) {
      badge.textContent = "Connecting";
    }
  }

  private tellBack(): void {
    const { lostAt, wasOpen } = this;
    this.lostAt = null;
    this.wasOpen = true;
    if (!lostAt) return;
    if (!wasOpen) return this.messages.dismiss("connection");
    this.messages.add({
      kind: "notice",
      key: "connection",
      text: `The connection was lost at ${formatClock(lostAt)} and is back.`,
    });
  }

  private tellLost(): void {
    if (this.lostAt) return;
    this.lostAt = new Date();
    this.messages.add({
      kind: "failure",
      key: "connection",
      text: this.wasOpen
        ? "The connection to the host was lost. The page keeps trying to get it back."
        : "The host cannot be reached. The page keeps trying.",
    });
  }
}
