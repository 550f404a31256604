/// Dialogs that hold what the user has typed and not applied: leaving the page is announced then.
const holders = new Map<HTMLDialogElement, () => boolean>();

/// Heeds a dialog; `isTyped` tells whether it holds something now.
export function heedTyped(dialog: HTMLDialogElement, isTyped: () => boolean): void {
  holders.set(dialog, isTyped);
}

/// The dialog is not on the page any more.
export function forgetTyped(dialog: HTMLDialogElement): void {
  holders.delete(dialog);
}

/// Whether an open dialog holds something that was typed and not applied.
export function hasTypedInput(): boolean {
  return [...holders].some(([dialog, isTyped]) => dialog.open && isTyped());
}
