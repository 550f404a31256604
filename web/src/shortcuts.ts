/// Keys that work anywhere on the page. One table serves both the keys and the help.
import { isAsking } from "./dialog";
import { make } from "./dom";

const STORED_AS = "svp-editor-letter-keys";

export interface Shortcut {
  /// One or several with blanks between them, such as "U Ctrl+Z".
  key: string;
  text: string;
  /// Absent for keys that a part of the page handles itself, and that are only explained here.
  run?: () => void;
}

/// Whether keys that write a character do something on the page as a whole. Who speaks to the page, or
/// rests a hand on the keyboard, can have them off; the browser remembers it.
export class LetterKeys {
  private on = wereOn();

  constructor(control: HTMLInputElement) {
    control.checked = this.on;
    control.addEventListener("change", () => {
      this.on = control.checked;
      try {
        localStorage.setItem(STORED_AS, this.on ? "on" : "off");
      } catch {
        // A browser without storage forgets it.
      }
    });
  }

  get areOn(): boolean {
    return this.on;
  }
}

function wereOn(): boolean {
  try {
    return localStorage.getItem(STORED_AS) !== "off";
  } catch {
    return true;
  }
}

export function listenForShortcuts(shortcuts: readonly Shortcut[], letters: Pick<LetterKeys, "areOn">): void {
  document.addEventListener("keydown", (event) => {
    if (event.defaultPrevented || event.altKey) return;
    // What the shift key makes of another key is that key's own name, save together with Ctrl.
    const held = event.ctrlKey || event.metaKey ? `ctrl+${event.shiftKey ? "shift+" : ""}` : "";
    const pressed = held + event.key.toLowerCase();
    // The browser would save the page itself.
    if (pressed === "ctrl+s") event.preventDefault();
    if (isAsking() || (!letters.areOn && pressed.length === 1)) return;
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
