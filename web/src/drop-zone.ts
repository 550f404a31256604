/// Files dropped anywhere on the page.
import type { PickedFile } from "./uploads";

export interface DropEvents {
  /// Whether files can be taken now.
  accepts(): boolean;
  dropped(files: readonly PickedFile[]): void;
  /// Files were dropped when they cannot be taken.
  refused(files: readonly PickedFile[]): void;
}

/// Takes files that are dropped on the page, and shows `hint` while some are held over it. Without
/// this the browser would leave the page for the file.
export function listenForDrops(hint: HTMLElement, { accepts, dropped, refused }: DropEvents): void {
  const words = hint.querySelector("p") ?? hint;
  const hold = (event: DragEvent) => {
    if (!event.dataTransfer?.types.includes("Files")) return;
    event.preventDefault();
    // Without an effect the browser would not tell of the drop.
    event.dataTransfer.dropEffect = "copy";
    words.textContent = accepts() ? "Drop to open" : "Close the dialog first";
    hint.hidden = false;
  };
  document.addEventListener("dragenter", hold);
  document.addEventListener("dragover", hold);
  document.addEventListener("dragleave", ({ relatedTarget }) => {
    if (!relatedTarget) hint.hidden = true;
  });
  document.addEventListener("drop", (event) => {
    hint.hidden = true;
    const { dataTransfer } = event;
    if (!dataTransfer?.types.includes("Files")) return;
    event.preventDefault();
    const files = [...dataTransfer.files];
    if (files.length > 0) (accepts() ? dropped : refused)(files);
  });
}
