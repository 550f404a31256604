/// The menus of the buttons "Send" and "Save".
import { byId } from "./dom";
import { Menu } from "./menu";
import type { Output } from "./output";

export class OutputMenus {
  private readonly sendButton = byId<HTMLButtonElement>("send");
  private readonly saveButton = byId<HTMLButtonElement>("save");
  readonly send: Menu;
  readonly save: Menu;

  constructor(output: Output) {
    this.send = new Menu(this.sendButton, [
      {
        label: "Survey system",
        detail: "As a datagram, to UDP port 14002 of the host’s machine",
        run: () => void output.send(),
      },
      { label: "Receiver", detail: "The engine takes note of it for the RVT300; it sends nothing itself", run: () => void output.toReceiver() },
      { label: "Distribute", detail: "The engine takes note of it; it sends nothing itself", run: () => void output.distribute() },
    ]);
    this.save = new Menu(this.saveButton, [
      { label: "Save", detail: "As .asvp, under the cast’s own name", run: () => void output.save() },
      { label: "Save as…", detail: "As .asvp, under another name", run: () => void output.saveAs() },
      {
        label: "Save as datagram file…",
        detail: "As .ssp, with all that the datagram carries",
        run: () => void output.saveDatagram(),
      },
    ]);
  }

  /// There is a cast to send and save, or none.
  enable(isOpen: boolean): void {
    this.sendButton.disabled = !isOpen;
    this.saveButton.disabled = !isOpen;
  }
}
