/// Files dropped anywhere on the page.
import type { PickedFile } from "./uploads";

export interface DropEvents {
  /// Whether files can be taken now.
  accepts(): boolean;
  dropped(files: readonly PickedFile[]): void;
}

/// Takes files that are dropped on the page, and shows `hint` while some are held over it. Without
/// this the browser would leave the page for the file.
export function listenForDrops(hint: HTMLElement, { accepts, dropped }: DropEvents): void {
  const hold = (event: DragEvent) => {
    if (!event.dataTransfer?.types.includes("Files")) return;
    event.preventDefault();
    const isTaken = accepts();
    event.dataTransfer.dropEffect = isTaken ? "copy" : "none";
    hint.hidden = !isTaken;
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
    if (accepts() && dataTransfer.files.length > 0) dropped([...dataTransfer.files]);
  });
}
