/// Keys that work anywhere on the page. One table serves both the keys and the help.
import { isAsking } from "./dialog";
import { make } from "./dom";

export interface Shortcut {
  /// One or several with blanks between them, such as "U Ctrl+Z".
  key: string;
  text: string;
  /// Absent for keys that a part of the page handles itself, and that are only explained here.
  run?: () => void;
}

export function listenForShortcuts(shortcuts: readonly Shortcut[]): void {
  document.addEventListener("keydown", (event) => {
    if (event.defaultPrevented || event.altKey) return;
    // What the shift key makes of another key is that key's own name, save together with Ctrl.
    const held = event.ctrlKey || event.metaKey ? `ctrl+${event.shiftKey ? "shift+" : ""}` : "";
    const pressed = held + event.key.toLowerCase();
    // The browser would save the page itself.
    if (pressed === "ctrl+s") event.preventDefault();
    if (isAsking()) return;
    const shortcut = shortcuts.find(({ key, run }) => run && key.toLowerCase().split(" ").includes(pressed));
    if (!shortcut?.run) return;
    event.preventDefault();
    shortcut.run();
  });
}

export function explainShortcuts(list: HTMLElement, shortcuts: readonly Shortcut[]): void {
  for (const { key, text } of shortcuts) {
    const keys = make("dt");
    key.split(" ").forEach((each) => keys.append(make("kbd", "", each)));
    list.append(keys, make("dd", "", text));
  }
}
