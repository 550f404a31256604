/// Unsaved edits that were kept in the browser, brought back to the page.
import { formatMoment } from "./format";
import type { Messages } from "./messages";
import type { Profile } from "./profile";
import type { Unsaved, UnsavedStore } from "./unsaved-store";

export interface BringBackMeans {
  hasCast(): boolean;
  /// Goes on when the user agrees to leave what is on the page. False when not.
  leaving(go: () => void): Promise<boolean>;
  /// Opens what a file held, with these edits made to it in one step.
  restore(left: Unsaved): void;
  /// Takes all edits back, in a step that can itself be taken back.
  discard(inFile: Profile): void;
}

/// What was not saved when this page was loaded again comes back; what a page has left that is no
/// longer open is offered.
export async function bringBack(
  store: Pick<UnsavedStore, "left" | "forget" | "putAside">,
  messages: Pick<Messages, "add">,
  means: BringBackMeans,
): Promise<void> {
  const restore = (left: Unsaved) => {
    const { at, inFile, edited } = left;
    means.restore(left);
    messages.add({
      kind: "notice",
      key: "restored",
      text: `The edits of ${edited.filename} that were not saved are back, as of ${formatMoment(at)}.`,
      action: { label: "Discard", run: () => means.discard(inFile) },
    });
  };
  for (const left of await store.left()) {
    if (left.isOwn && !means.hasCast()) {
      restore(left);
      continue;
    }
    // Where they cannot be put aside there is nothing to forget, and they are lost only with the page.
    const page = left.isOwn ? await store.putAside(left).catch(() => "") : left.page;
    const forget = () => void store.forget(page);
    messages.add({
      kind: "notice",
      key: `left:${left.page}`,
      text: `There are edits of ${left.edited.filename} that were not saved, of ${formatMoment(left.at)}.`,
      action: {
        label: "Restore",
        run: () => means.leaving(() => {
          restore(left);
          forget();
        }),
      },
      otherAction: { label: "Discard", run: forget },
    });
  }
}
