/// Messages to the user. Each stays in its list until the user dismisses it.
import { topDialog } from "./dialog";
import { button, isNowhere, isShown, make } from "./dom";
import { formatClock } from "./format";

export type MessageKind = "failure" | "alert" | "notice";

export interface Message {
  kind: MessageKind;
  text: string;
  /// Messages of the same key are one: the later takes the earlier's place and is counted.
  /// Without a key, only messages of the same kind and text are the same.
  key?: string;
  /// A notice that is worth to be said over an open dialog, as everything that went wrong is.
  isUrgent?: boolean;
  /// Offered as a button. A notice goes once that was carried out; what went wrong stays until the
  /// user dismisses it.
  action?: MessageAction;
  /// Another one beside it.
  otherAction?: MessageAction;
}

export interface MessageAction {
  label: string;
  /// False, now or later, when it was not carried out after all.
  run: () => boolean | void | Promise<boolean | void>;
}

interface Entry {
  item: HTMLElement;
  count: number;
}

const KIND_LABEL: Record<MessageKind, string> = {
  failure: "Failure",
  alert: "Alert",
  notice: "Notice",
};

export class Messages {
  private readonly entries = new Map<string, Entry>();
  private readonly list = make("ul", "message-list");
  private readonly dismissAll = button("quiet", "Dismiss all", () => this.clear());

  /// Where the keyboard was before it came to the messages.
  private from: HTMLElement | null = null;

  /// `left` gives the keyboard a place when the message that it was at is gone, and no other is left.
  constructor(
    private readonly region: HTMLElement,
    private readonly left: () => void = () => undefined,
  ) {
    region.addEventListener("focusin", ({ relatedTarget }) => {
      if (!(relatedTarget instanceof HTMLElement)) this.from = null;
      else if (!region.contains(relatedTarget)) this.from = relatedTarget;
    });
    region.append(this.list, this.dismissAll);
    this.update();
  }

  /// Shows a message as the first of the list.
  add(message: Message): void {
    const key = message.key ?? `${message.kind}:${message.text}`;
    const earlier = this.entries.get(key);
    const hadFocus = earlier?.item.contains(document.activeElement) ?? false;
    const count = (earlier?.count ?? 0) + 1;
    earlier?.item.remove();
    // An entry of a list cannot at the same time be what is read out; so it holds that.
    const item = make("li", "", this.draw(key, message, count));
    this.entries.set(key, { item, count });
    this.list.prepend(item);
    this.update();
    if (message.kind !== "notice" || message.isUrgent) tellOver(message);
    if (hadFocus) item.querySelector<HTMLElement>(".message-dismiss")?.focus();
  }

  dismiss(key: string): void {
    const hadFocus = this.region.contains(document.activeElement);
    this.entries.get(key)?.item.remove();
    this.entries.delete(key);
    this.update();
    if (hadFocus) this.keepFocus();
  }

  /// Puts the keyboard on the first message's dismiss button, if there is one.
  focus(): void {
    this.list.querySelector<HTMLButtonElement>(".message-dismiss")?.focus();
  }

  private keepFocus(): void {
    if (!isNowhere()) return;
    const { from } = this;
    if (this.entries.size > 0) this.focus();
    else if (isShown(from)) from.focus();
    else this.left();
  }

  private clear(): void {
    for (const key of [...this.entries.keys()]) this.dismiss(key);
  }

  private draw(key: string, message: Message, count: number): HTMLElement {
    const item = make("div", `message message-${message.kind}`);
    // Read out at once when something went wrong, and in its turn otherwise.
    item.setAttribute("role", message.kind === "notice" ? "status" : "alert");
    item.append(
      make("span", "message-kind", KIND_LABEL[message.kind]),
      make("span", "message-text", message.text),
    );
    if (count > 1) item.append(make("span", "message-count", `${count} times`));
    item.append(make("time", "message-time", formatClock(new Date())));
    for (const action of [message.action, message.otherAction]) {
      if (!action) continue;
      item.append(button("", action.label, () => void this.act(key, item, message.kind, action)));
    }
    const dismiss = button("quiet message-dismiss", "Dismiss", () => this.dismiss(key));
    dismiss.setAttribute("aria-label", `Dismiss: ${message.text}`);
    item.append(dismiss);
    return item;
  }

  private async act(key: string, item: HTMLElement, kind: MessageKind, action: MessageAction): Promise<void> {
    const isDone = (await action.run()) !== false;
    // A later message of the same key is another one.
    if (isDone && kind === "notice" && this.entries.get(key)?.item.contains(item)) this.dismiss(key);
  }

  private update(): void {
    this.region.hidden = this.entries.size === 0;
    this.dismissAll.hidden = this.entries.size < 2;
  }
}

/// Says a message over the open dialog too: the list behind it is neither read nor read out meanwhile.
/// It goes with the dialog, and stays in the list.
function tellOver({ kind, text }: Message): void {
  const dialog = topDialog();
  if (!dialog) return;
  for (const told of dialog.querySelectorAll(":scope > .dialog-told")) told.remove();
  const told = make("div", `dialog-told message message-${kind}`);
  told.setAttribute("role", kind === "notice" ? "status" : "alert");
  const dismiss = button("quiet", "Dismiss", () => told.remove());
  dismiss.setAttribute("aria-label", `Dismiss: ${text}`);
  told.append(make("span", "message-kind", KIND_LABEL[kind]), make("span", "message-text", text), dismiss);
  dialog.append(told);
  dialog.addEventListener("close", () => told.remove(), { once: true });
}
