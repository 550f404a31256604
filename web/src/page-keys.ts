/// The keys of the page: one table serves what they do and the help.
import type { CastList } from "./casts";
import type { CastView } from "./cast-view";
import type { Editing } from "./editing";
import type { FilterDialog } from "./filter-dialog";
import type { Folder } from "./folder";
import type { Messages } from "./messages";
import type { OutputMenus } from "./output-menus";
import type { Repair } from "./repair";
import type { Shortcut } from "./shortcuts";
import type { ThemeSwitch } from "./theme";

/// The parts of the page that keys lead to.
export interface KeyedParts {
  castList: CastList;
  castView: CastView;
  messages: Messages;
  editing: Editing;
  repair: Repair;
  outputMenus: OutputMenus;
  filterDialog: FilterDialog;
  folder: Folder;
  theme: ThemeSwitch;
}

/// What else keys do.
export type KeyedCommands = Record<
  "pickFiles" | "check" | "extend" | "thin" | "undo" | "redo" | "save" | "compare" | "help", () => void
>;

export function pageKeys(parts: KeyedParts, commands: KeyedCommands): Shortcut[] {
  return [
    { key: "L", text: "Go to the list of casts", run: () => parts.castList.focus() },
    { key: "G", text: "Go to the plot", run: () => parts.castView.focusPlot() },
    { key: "V", text: "Go to the table of levels", run: () => parts.castView.focusTable() },
    { key: "J", text: "Go to the messages", run: () => parts.messages.focus() },
    { key: "↑ ↓", text: "In the list: choose a cast, Enter opens it. In plot and table: select a level" },
    { key: "O", text: "Open files of this computer; they can be dropped on the page as well", run: commands.pickFiles },
    { key: "C", text: "Check the open cast", run: commands.check },
    { key: "N", text: "Select the next invalid level", run: () => parts.castView.selectNextInvalid() },
    { key: "F", text: "Zoom to the levels that were measured and are valid", run: () => parts.castView.fit() },
    { key: "+ −", text: "In the plot: zoom in and out around the selected level" },
    { key: "0", text: "Show all levels, outside the table", run: () => parts.castView.reset() },
    { key: "E", text: "Extend the open cast to full ocean depth", run: commands.extend },
    { key: "H", text: "Thin the open cast", run: commands.thin },
    ...parts.repair.shortcuts,
    { key: "U Ctrl+Z", text: "Undo: one step back", run: commands.undo },
    { key: "Ctrl+Y Ctrl+Shift+Z", text: "Redo: the step forth again", run: commands.redo },
    { key: "M", text: "Change the levels: arrow keys choose what, Enter does it", run: () => parts.editing.openMenu() },
    { key: "D", text: "Edit the header of the open cast", run: () => parts.editing.editHeader() },
    { key: "P", text: "Edit in the plot: drag the selected level, double-click for a new one; P again ends it", run: () => parts.editing.switchPlot() },
    { key: "Alt", text: "In the plot: held while the selected level is dragged, it moves it at any time" },
    { key: "F2 Enter", text: "In the table: type into the cell, which ← and → choose; Tab goes on, Escape leaves" },
    { key: "0…9", text: "In the table: type a number in place of the cell’s" },
    { key: "Ctrl+A", text: "In the table: select all levels" },
    { key: "Shift+↓", text: "In the table: select several levels" },
    { key: "Delete", text: "In the table and the plot: take the selected levels out" },
    { key: "Insert", text: "In the table: put a level in above; with Shift below" },
    { key: "Ctrl+S", text: "Save the open cast as .asvp under its own name", run: commands.save },
    { key: "S", text: "Send the open cast: arrow keys choose where to, Enter sends", run: () => parts.outputMenus.send.open() },
    { key: "W", text: "Write the open cast to a file: arrow keys choose how, Enter goes on", run: () => parts.outputMenus.save.open() },
    { key: "I", text: "Import filters: how column files are read", run: () => void parts.filterDialog.show() },
    { key: "R", text: "Read the list of casts again", run: () => void parts.folder.refresh() },
    { key: "K", text: "Compare with another cast, drawn under the open one", run: commands.compare },
    { key: "T", text: "The next colours: night, day, high contrast, red", run: () => parts.theme.next() },
    { key: "?", text: "This help", run: commands.help },
  ];
}
