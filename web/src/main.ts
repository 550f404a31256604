/// The page: its parts made and joined.
import { Asker } from "./asker";
import { bringBack } from "./bring-back";
import { joinedText } from "./carried";
import { CastList, fetchCasts } from "./casts";
import { CastView, type CastState } from "./cast-view";
import { CompareDialog } from "./compare-dialog";
import { ComparedCasts } from "./compared-casts";
import { Connection } from "./connection";
import { ask, isAsking } from "./dialog";
import { byId, setDisabled } from "./dom";
import { listenForDrops } from "./drop-zone";
import { Editing } from "./editing";
import { Edits, type Place } from "./edits";
import { Engine } from "./engine";
import { ExtendDialog } from "./extend-dialog";
import { extendedText, thinnedText } from "./extend-words";
import { Extender } from "./extender";
import { FilterDialog } from "./filter-dialog";
import { FilterTable, browserSafe } from "./filter-table";
import { LinkState } from "./link-state";
import { Messages } from "./messages";
import { isAboutFilter, openFailedText } from "./open-words";
import { Outbox } from "./outbox";
import {
  CHECK_REFUSAL,
  failedText,
  handedOnText,
  savedText,
  sentText,
  workText,
} from "./outbox-words";
import { identifierOf } from "./identifiers";
import { KeptEdits, editsLost, lostText, type FileForm } from "./kept";
import { Output, leftOut, writable } from "./output";
import { OutputMenus } from "./output-menus";
import { isOwnFile } from "./own-files";
import { postFile } from "./post-file";
import { sameFile, sameProfile, type Profile } from "./profile";
import { Action, SUCCESS } from "./protocol";
import { Repair } from "./repair";
import { explainShortcuts, listenForShortcuts, type Shortcut } from "./shortcuts";
import { ThemeSwitch } from "./theme";
import { ThinDialog } from "./thin-dialog";
import { Thinner, type ThinnedFile } from "./thinner";
import { UnsavedStore } from "./unsaved-store";
import { Uploads, type PickedFile } from "./uploads";

const EXPIRE_EVERY_MS = 1000;

const theme = new ThemeSwitch(byId<HTMLButtonElement>("theme"));
const messages = new Messages(byId("messages"), () => castList.focus());
const editing: Editing = new Editing((): CastView => castView, {
  changed: change,
  told: (text) => messages.add({ kind: "notice", text }),
});
const castView = new CastView(editing.inTable, editing.inPlot);
const castList = new CastList(byId("cast-list"), byId("cast-summary"), (name) => void leaving(() => engine.open(name)));
const connection = new Connection(new URL("ws", location.href).href.replace(/^http/, "ws"));
const edits = new Edits<NonNullable<CastState["verdict"]>>();
const unsaved = new UnsavedStore((reason) =>
  messages.add({
    kind: "alert",
    key: "unsaved",
    text: `This browser cannot keep unsaved edits over a reload. Save before you leave the page. ${reason}`,
  }),
);
const keptEdits = new KeptEdits();
const checkButton = byId<HTMLButtonElement>("check");

const engine = new Engine(connection, {
  opened: arrived,
  openFailed: (name, reason) => {
    agreed = null;
    messages.add({
      kind: "failure",
      key: openFailure(name),
      text: openFailedText(name, reason),
      ...(isAboutFilter(name, reason) ? { action: toFilters(null) } : {}),
    });
  },
  checked: (profile, verdict) => {
    if (profile === castView.open) castView.showVerdict(verdict);
  },
  checkFailed: (name, reason) =>
    messages.add({ kind: "failure", text: `${name} could not be checked. ${reason}` }),
  openedElsewhere: (profile) => {
    if (!repair.isReading(profile.filename)) offer(profile);
  },
  alerted: (text) => messages.add({ kind: "alert", text: text || "Alert without a text" }),
  silent: () => messages.add({ kind: "failure", text: "The engine does not answer." }),
  refused: (reason) =>
    messages.add({ kind: "failure", text: `The host refused a request. ${reason}` }),
  waiting: showWaiting,
});

const comparison = new ComparedCasts((name) => engine.look(name));
const compareDialog = new CompareDialog(comparison, () => castList.all, (open, other) => {
  if (castView.open === open) castView.compare(other);
});

const uploads = new Uploads(
  {
    beginUpload: (name) => engine.beginUpload(name),
    post: postFile,
    listed: (name) => castList.listed(name),
  },
  {
    stored: (text) => messages.add({ kind: "notice", text }),
    failed: (text, name, filterFile) => {
      agreed = null;
      messages.add({
        kind: "failure",
        text,
        ...(filterFile ? { action: toFilters({ file: filterFile, stored: name }) } : {}),
      });
    },
    folderChanged: () => void refresh(),
    waiting: showWaiting,
  },
);
const filterTable = new FilterTable(connection, browserSafe);
const filterDialog = new FilterDialog(filterTable, {
  done: (text) => {
    messages.add({ kind: "notice", text });
    void refreshKinds();
  },
  leftUnstored: (text) =>
    messages.add({ kind: "failure", key: "filters", text, action: toFilters(null) }),
  open: (file, stored) => void leaving(() => (stored ? engine.open(stored) : uploads.add([file]))),
});

/// The way to the import filters that a message offers, with the file that needs one.
function toFilters(handed: { file: PickedFile; stored: string } | null) {
  return { label: "Import filters…", run: () => void filterDialog.show(handed) };
}

const outbox = new Outbox(connection, {
  sent: (job, svptype) => messages.add({ kind: "notice", text: sentText(job, svptype) }),
  saved: (job, path) => {
    const missing = job.profile ? wrote(job.name, job.profile, job.lost) : [];
    showEdits();
    messages.add({ kind: "notice", text: savedText(job, path, missing) });
    void refresh();
  },
  handedOn: (job, words) => messages.add({ kind: "notice", text: handedOnText(job, words) }),
  failed: (job, reason) =>
    messages.add({
      kind: "failure",
      text: failedText(job, reason),
      ...(reason === CHECK_REFUSAL ? { action: { label: "Check", run: check } } : {}),
    }),
  savedElsewhere: () => void refresh(),
  waiting: showWaiting,
});
const output = new Output(outbox, {
  open: () => castView.open,
  listed: listedNow,
  fileDate,
  stated: (before, after) => {
    if (before === castView.open) change("Undo time and place", after, "here");
  },
});
const asker = new Asker(connection, [
  Action.extendDefault, Action.extendTempSal, Action.extendFile, Action.extensionName, Action.thin, Action.open,
  Action.fix, Action.rays,
]);
const extendDialog = new ExtendDialog(new Extender(asker, postFile), {
  extended: (before, way, result) => {
    const text = extendedText(before, way, result);
    if (before !== castView.open) return;
    if (result.joined > 0 || result.surface) change("Undo extend", result.profile);
    messages.add({ kind: "notice", text });
  },
  check: () => check(),
});
const thinDialog = new ThinDialog(new Thinner(asker, connection), {
  kept: (before, after, file) => {
    if (before !== castView.open) return wroteThinned(before, file);
    const form: FileForm = /\.asvp$/i.test(file.name) ? "asvp" : { kind: identifierOf(after.header.hsvp_filetype) };
    const lost = editsLost(after, form);
    wrote(file.name, after, lost);
    change("Undo thin", after);
    const remark = form === "asvp" ? leftOut(before) : "";
    const joined = form === "asvp" ? "" : joinedText(after, form.kind);
    const said = [remark && `The file has ${remark}`, lostText(lost, form), joined];
    messages.add({ kind: "notice", text: thinnedText(before, file, after.count, said.filter(Boolean)) });
    void refresh().then(() => castList.mark(after.filename));
  },
  written: wroteThinned,
  stated: (profile) => output.stated(profile),
  writable,
  listed: listedNow,
  extend: () => extend(),
  check: () => check(),
});
const repair = new Repair(asker, connection, {
  open: () => castView.open,
  earlier: () => castView.open && edits.earlier(castView.open),
  change,
  saved: (name, profile) => edits.saved(name, profile),
  mark: (name) => castList.mark(name),
  notice: (text) => messages.add({ kind: "notice", text }),
  failure: (text) => messages.add({ kind: "failure", text }),
  refresh: () => refresh(),
  listed: listedNow,
  stated: (profile) => output.stated(profile),
  writable,
  check: () => check(),
});
// A file that this page or another one has written.
connection.on(Action.thin, ({ result, file }) => {
  if (result === SUCCESS && file && !isOwnFile(file)) void refresh();
});

function wroteThinned(before: Profile, { path }: ThinnedFile): void {
  messages.add({ kind: "notice", text: `${before.filename} was thinned and written as ${path}.` });
}

/// The name in the profile folder, read anew, of a file that `name` would replace, or "".
async function listedNow(name: string): Promise<string> {
  await refresh();
  return castList.listed(name);
}

/// When a file of the profile folder was last written; null where that cannot be told.
async function fileDate(name: string): Promise<Date | null> {
  try {
    const { casts } = await fetchCasts(endings);
    const date = new Date(casts.find((cast) => cast.name === name)?.modified ?? "");
    return Number.isNaN(date.getTime()) ? null : date;
  } catch {
    return null;
  }
}

/// A file of this name was written of the profile, without `lost`. What no file written of it keeps of
/// the user's edits comes back; while that is any, the cast is not saved.
function wrote(name: string, profile: Profile, lost: readonly string[] = []): readonly string[] {
  const missing = keptEdits.wrote(profile, lost);
  if (missing.length === 0) edits.saved(name, profile);
  else edits.overwritten(name);
  return missing;
}

const outputMenus = new OutputMenus(output);

/// The cast that the user has agreed to leave although it is not saved.
let agreed: Profile | null = null;

/// Goes on to another cast, with the user's consent where the one on the page is not saved.
async function leaving(go: () => void): Promise<void> {
  const { open } = castView;
  if (open && edits.isUnsaved(open) && agreed !== open) {
    const answer = await ask({
      title: "Leave without saving?",
      text: [`${open.filename} was changed and is not saved.`],
      confirm: "Leave",
    });
    if (!answer) return;
    agreed = open;
  }
  go();
}

const openFailure = (name: string) => `open:${name}`;

/// A profile that this page has asked for. Levels that came to be meanwhile and are not saved are
/// not put away for it.
function arrived(profile: Profile): void {
  // A failure that was told before it was another page's.
  messages.dismiss(openFailure(profile.filename));
  const { open } = castView;
  if (!open || !edits.isUnsaved(open) || agreed === open) return show(profile);
  messages.add({
    kind: "notice",
    key: `ready:${profile.filename}`,
    text: `${profile.filename} is ready. ${open.filename} on the page is not saved.`,
    action: { label: "Open it", run: () => void leaving(() => show(profile)) },
  });
}

function show(profile: Profile): void {
  agreed = null;
  comparison.opened(profile);
  edits.opened(profile);
  repair.opened(profile);
  put({ profile, verdict: null });
}

/// Puts a cast on the page, freshly opened or not.
function put(state: CastState, place: Place = "whole", isOnly = false): void {
  engine.forgetCheck();
  if (place === "whole") castView.restore(state);
  else castView.update(state, place, isOnly);
  castList.mark(state.profile.filename);
  document.body.classList.add("has-cast");
  showEdits();
  showWaiting();
}

/// Puts what was made of the open cast in its place.
function change(label: string, profile: Profile, place: Place = "whole", isOnly = false): void {
  const before = castView.state;
  if (before) {
    edits.changed(label, before, profile, place !== "whole");
    repair.changed(before.profile, profile);
  }
  put({ profile, verdict: null }, place, isOnly);
}

function undo(): void {
  if (castView.state) take(castView.state, edits.undo(castView.state));
}

function redo(): void {
  if (castView.state) take(castView.state, edits.redo(castView.state));
}

/// Puts on the page where a step back or forth leads.
function take(before: CastState, step: ReturnType<typeof edits.undo>): void {
  if (!step) return;
  repair.changed(before.profile, step.profile);
  put(step, step.place, step.isOnly);
}

function showEdits(): void {
  const { open } = castView;
  const { inFile, undoLabel, redoLabel } = edits;
  const isUnsaved = open !== null && edits.isUnsaved(open);
  showStep("undo", undoLabel);
  showStep("redo", redoLabel);
  byId("unsaved").textContent = isUnsaved ? "Not saved" : "";
  editing.refresh();
  if (isUnsaved && inFile) unsaved.keep(inFile, open);
  else unsaved.clear();
}

function showStep(id: "undo" | "redo", label: string): void {
  const stepButton = byId(id);
  // A button that goes away must not take the keyboard with it.
  if (label === "" && document.activeElement === stepButton) castView.focusTable();
  stepButton.textContent = label;
  stepButton.hidden = label === "";
}

function extend(): void {
  if (castView.open && !byId<HTMLButtonElement>("extend").disabled) extendDialog.show(castView.open);
}

function compare(): void {
  if (castView.open) compareDialog.show(castView.open);
}

function thin(): void {
  if (castView.open && !byId<HTMLButtonElement>("thin").disabled) thinDialog.show(castView.open);
}

/// A profile that another page, or the survey system, had opened: offered, never forced over the
/// cast that this user is looking at.
function offer(profile: Profile): void {
  if (castView.open && sameProfile(castView.open, profile)) return;
  const changed = castView.open !== null && sameFile(castView.open.filename, profile.filename);
  // Most likely it was handed in there, and is new to the folder.
  if (!castList.listed(profile.filename)) void refresh();
  messages.add({
    kind: "notice",
    key: `elsewhere:${profile.filename}`,
    text: changed
      ? `${profile.filename} was opened elsewhere and has changed since.`
      : `${profile.filename} was opened elsewhere.`,
    action: { label: "Open it", run: () => void leaving(() => show(profile)) },
  });
}

function showWaiting(): void {
  const { opening, checking } = engine;
  document.body.classList.toggle("waiting", opening !== "" || checking);
  byId("plot").setAttribute("aria-busy", String(opening !== ""));
  setDisabled(checkButton, checking || !castView.open || castView.open.count === 0);
  checkButton.textContent = checking ? "Checking…" : "Check";
  showUpload();
  byId("doing").textContent = uploads.current
    ? `Handing in ${uploads.current.name}…`
    : opening ? `Opening ${opening}…` : workText(outbox.current);
  const isOpen = castView.open !== null && castView.open.count > 0;
  outputMenus.enable(isOpen);
  byId<HTMLButtonElement>("extend").disabled = !isOpen;
  byId<HTMLButtonElement>("thin").disabled = !isOpen;
  repair.enable(isOpen);
}

function showUpload(): void {
  const progress = byId<HTMLProgressElement>("upload-progress");
  progress.hidden = uploads.current === null;
  progress.value = uploads.current?.part ?? 0;
}

function check(): void {
  if (castView.open && !checkButton.disabled) engine.check(castView.open);
}

/// Ends of the names of files that the user's import filters read.
let endings: readonly string[] = [];

/// The kinds of files that can be opened, and with them the list.
async function refreshKinds(): Promise<void> {
  const { filters, failure } = await filterTable.list();
  if (!failure) endings = filters.map(({ postfix }) => postfix);
  await refresh();
}

async function refresh(): Promise<void> {
  try {
    castList.show(await fetchCasts(endings));
  } catch (error) {
    const reason = error instanceof Error ? error.message : String(error);
    messages.add({ kind: "failure", key: "casts", text: `The casts could not be listed: ${reason}.` });
  }
}

const linkState = new LinkState(messages, () => {
  void refresh();
  void refreshKinds();
});

const help = byId<HTMLDialogElement>("help");
const shortcuts: Shortcut[] = [
  { key: "L", text: "Go to the list of casts", run: () => castList.focus() },
  { key: "G", text: "Go to the plot", run: () => castView.focusPlot() },
  { key: "V", text: "Go to the table of levels", run: () => castView.focusTable() },
  { key: "J", text: "Go to the messages", run: () => messages.focus() },
  { key: "↑ ↓", text: "In the list: choose a cast, Enter opens it. In plot and table: select a level" },
  { key: "O", text: "Open files of this computer; they can be dropped on the page as well", run: () => filePicker.click() },
  { key: "C", text: "Check the open cast", run: check },
  { key: "N", text: "Select the next invalid level", run: () => castView.selectNextInvalid() },
  { key: "F", text: "Zoom to the levels that were measured and are valid", run: () => castView.fit() },
  { key: "+ −", text: "In the plot: zoom in and out around the selected level" },
  { key: "0", text: "Show all levels", run: () => castView.reset() },
  { key: "E", text: "Extend the open cast to full ocean depth", run: extend },
  { key: "H", text: "Thin the open cast", run: thin },
  ...repair.shortcuts,
  { key: "U Ctrl+Z", text: "Undo: one step back", run: undo },
  { key: "Ctrl+Y Ctrl+Shift+Z", text: "Redo: the step forth again", run: redo },
  { key: "M", text: "Change the levels: arrow keys choose what, Enter does it", run: () => editing.openMenu() },
  { key: "D", text: "Edit the header of the open cast", run: () => editing.editHeader() },
  { key: "P", text: "Edit in the plot: drag the selected level, double-click for a new one; P again ends it", run: () => editing.switchPlot() },
  { key: "Alt", text: "In the plot: held while the selected level is dragged, it moves it at any time" },
  { key: "F2 Enter", text: "In the table: type into the cell, which ← and → choose; Tab goes on, Escape leaves" },
  { key: "Shift+↓", text: "In the table: select several levels" },
  { key: "Delete", text: "In the table and the plot: take the selected levels out" },
  { key: "Insert", text: "In the table: put a level in above; with Shift below" },
  { key: "S", text: "Send the open cast: arrow keys choose where to, Enter sends", run: () => outputMenus.send.open() },
  { key: "W", text: "Write the open cast to a file: arrow keys choose how, Enter goes on", run: () => outputMenus.save.open() },
  { key: "I", text: "Import filters: how column files are read", run: () => void filterDialog.show() },
  { key: "R", text: "Read the list of casts again", run: () => void refresh() },
  { key: "K", text: "Compare with another cast, drawn under the open one", run: compare },
  { key: "T", text: "The next colours: night, day, high contrast, red", run: () => theme.next() },
  { key: "?", text: "This help", run: () => help.showModal() },
];

const filePicker = byId<HTMLInputElement>("file-picker");
filePicker.addEventListener("change", () => {
  const files = [...(filePicker.files ?? [])];
  // So that the same file can be picked again once it was mended.
  filePicker.value = "";
  handIn(files);
});
listenForDrops(byId("drop-hint"), {
  accepts: () => filterDialog.isAlone || extendDialog.isOpen || !isAsking(),
  dropped: (files) => {
    const [first] = files;
    if (!extendDialog.isOpen && !filterDialog.isOpen) handIn(files);
    else if (first) void (extendDialog.isOpen ? extendDialog : filterDialog).take(first);
  },
});
addEventListener("beforeunload", (event) => {
  if (!castView.open || !edits.isUnsaved(castView.open)) return;
  event.preventDefault();
  // What browsers before 2023 go by.
  event.returnValue = "Not saved";
});

function handIn(files: readonly PickedFile[]): void {
  if (files.length > 0) void leaving(() => uploads.add(files));
}

checkButton.addEventListener("click", check);
byId("extend").addEventListener("click", extend);
byId("thin").addEventListener("click", thin);
byId("compare").addEventListener("click", compare);
byId("undo").addEventListener("click", undo);
byId("redo").addEventListener("click", redo);
byId("open-file").addEventListener("click", () => filePicker.click());
byId("filters").addEventListener("click", () => void filterDialog.show());
byId("refresh").addEventListener("click", () => void refresh());
byId("help-open").addEventListener("click", () => help.showModal());
explainShortcuts(byId("help-keys"), shortcuts);
listenForShortcuts(shortcuts);
connection.onState((state) => linkState.show(state));
setInterval(() => {
  engine.expire();
  outbox.expire();
  asker.expire();
  filterTable.expire();
}, EXPIRE_EVERY_MS);
connection.start();
void bringBack(unsaved, messages, {
  hasCast: () => castView.open !== null,
  leaving: (go) => void leaving(go),
  restore: (inFile, edited) => {
    show(inFile);
    change("Undo edits", edited);
  },
  discard: (inFile) => {
    const { open } = castView;
    if (open && edits.inFile === inFile && edits.isUnsaved(open)) change("Undo discard", inFile);
  },
});
