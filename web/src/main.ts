/// The page: its parts made and joined.
import { Arrivals } from "./arrivals";
import { Asker } from "./asker";
import { bringBack } from "./bring-back";
import { joinedText } from "./carried";
import { CastList, fetchCasts } from "./casts";
import { CastView, type CastState } from "./cast-view";
import { CompareDialog } from "./compare-dialog";
import { ComparedCasts } from "./compared-casts";
import { Connection } from "./connection";
import { isAsking } from "./dialog";
import { byId, painted, setDisabled } from "./dom";
import { listenForDrops } from "./drop-zone";
import { Editing } from "./editing";
import { Edits, type Place } from "./edits";
import { Engine } from "./engine";
import { ExtendDialog } from "./extend-dialog";
import { extendedText, thinnedText } from "./extend-words";
import { Extender } from "./extender";
import { OUTPUT_WAITS, SILENT, checkFailedText, elsewhereFailedText, notOpenText, refusedText } from "./engine-words";
import type { Stamp } from "./file-watch";
import { FilterDialog } from "./filter-dialog";
import { FilterTable, browserSafe } from "./filter-table";
import { Folder } from "./folder";
import { LinkState } from "./link-state";
import { Messages } from "./messages";
import { isAboutFilter, openFailedText, refusedDropText } from "./open-words";
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
import { pageKeys } from "./page-keys";
import { postFile } from "./post-file";
import type { Profile } from "./profile";
import { Action, SUCCESS } from "./protocol";
import { Repair } from "./repair";
import { LetterKeys, explainShortcuts, listenForShortcuts } from "./shortcuts";
import { ThemeSwitch } from "./theme";
import { ThinDialog } from "./thin-dialog";
import { Thinner, type ThinnedFile } from "./thinner";
import { hasTypedInput } from "./typed-input";
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
const castList = new CastList(byId("cast-list"), byId("cast-summary"), (name) => void arrivals.leaving(() => engine.open(name)));
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

const arrivals: Arrivals = new Arrivals({
  open: () => castView.open,
  isWork: (profile) => edits.isWork(profile),
  isOpening: () => engine.opening !== "",
  show,
  read: (name) => engine.open(name),
  readElsewhere: (profile) => folder.readElsewhere(profile),
  tell: (message) => messages.add(message),
});

const engine = new Engine(connection, {
  opened: (profile) => arrivals.arrived(profile),
  openFailed: (name, reason) => {
    arrivals.failed();
    messages.add({
      kind: "failure",
      key: `open:${name}`,
      text: openFailedText(name, reason),
      ...(isAboutFilter(name, reason) ? { action: toFilters(null) } : {}),
    });
  },
  openFailedFalsely: (name) => messages.dismiss(`open:${name}`),
  checked: (profile, verdict) => {
    if (profile === castView.open) castView.showVerdict(verdict);
  },
  checkFailed: (name, reason) =>
    messages.add({ kind: "failure", text: checkFailedText(name, reason) }),
  openedElsewhere: (profile) => {
    if (repair.isReading(profile.filename)) return;
    // Most likely it was handed in there, and is new to the folder.
    if (!castList.listed(profile.filename)) void folder.refresh();
    arrivals.elsewhere(profile);
  },
  openFailedElsewhere: (reason) => {
    if (!asker.isWaiting(Action.open)) messages.add({ kind: "failure", text: elsewhereFailedText(reason) });
  },
  alerted: (text) => messages.add({ kind: "alert", text: text || "Alert without a text" }),
  silent: () => messages.add({ kind: "failure", text: SILENT }),
  refused: (reason) => messages.add({ kind: "failure", text: refusedText(reason) }),
  waiting: showWaiting,
});
const folder = new Folder(castList, edits, {
  look: (name) => engine.look(name),
  isConnected: () => linkState.isOpen,
  changed: ({ name, what }) => {
    edits.lost(name, what);
    showEdits();
    if (what === "changed") {
      const text = `${name} has changed on disk since it was opened. What is on the page is not what the file holds now.`;
      return arrivals.offer(`disk:${name}`, text, name);
    }
    const text = `${name} is no longer in the profile folder. What is on the page is in no file: save it to keep it.`;
    messages.add({ kind: "notice", key: `disk:${name}`, text });
  },
  failed: (reason) => messages.add({ kind: "failure", key: "casts", text: `The casts could not be listed: ${reason}` }),
  listed: () => messages.dismiss("casts"),
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
      arrivals.failed();
      messages.add({
        kind: "failure",
        text,
        ...(filterFile ? { action: toFilters({ file: filterFile, stored: name }) } : {}),
      });
    },
    folderChanged: () => void folder.refresh(),
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
  open: (file, stored) => void arrivals.leaving(() => (stored ? engine.open(stored) : uploads.add([file]))),
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
    void folder.refresh();
  },
  handedOn: (job, words) => messages.add({ kind: "notice", text: handedOnText(job, words) }),
  failed: (job, reason) =>
    messages.add({
      kind: "failure",
      text: failedText(job, reason),
      ...(reason === CHECK_REFUSAL ? { action: { label: "Check", run: check } } : {}),
    }),
  savedElsewhere: (path) => folder.savedElsewhere(path),
  waiting: showWaiting,
});
const output = new Output(outbox, {
  open: () => castView.open,
  listed: (name) => folder.listed(name),
  isChanged: (name) => folder.watch.isChanged(name),
  fileDate,
  stated: (before, after) => {
    if (before === castView.open) change("Undo time and place", after, "here");
  },
  waits: () => messages.add({ kind: "notice", key: "output-waits", text: OUTPUT_WAITS }),
});
const asker = new Asker(connection, [
  Action.extendDefault, Action.extendTempSal, Action.extendFile, Action.extensionName, Action.thin, Action.open,
  Action.fix, Action.rays,
]);
const extendDialog = new ExtendDialog(new Extender(asker, postFile), {
  extended: (before, way, result) => {
    const text = extendedText(before, way, result);
    if (before !== castView.open) return messages.add({ kind: "notice", text: notOpenText(before) });
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
    void folder.refresh().then(() => castList.mark(after.filename));
  },
  written: wroteThinned,
  stated: (profile) => output.stated(profile),
  writable,
  listed: (name) => folder.listed(name),
  extend: () => extend(),
  check: () => check(),
});
const repair = new Repair(asker, connection, {
  open: () => castView.open,
  earlier: () => castView.open && edits.earlier(castView.open),
  change,
  saved: (name, profile) => void wrote(name, profile),
  mark: (name) => castList.mark(name),
  notice: (text, action) => messages.add({ kind: "notice", text, ...(action && { action }) }),
  failure: (text) => messages.add({ kind: "failure", text }),
  refresh: () => folder.refresh(),
  listed: (name) => folder.listed(name),
  stated: (profile) => output.stated(profile),
  writable,
  check: () => check(),
});
// A file that this page or another one has written.
connection.on(Action.thin, ({ result, file }) => {
  if (result === SUCCESS && file && !isOwnFile(file)) void folder.refresh();
});

function wroteThinned(before: Profile, { path }: ThinnedFile): void {
  messages.add({ kind: "notice", text: `${before.filename} was thinned and written as ${path}.` });
}

/// When a file of the profile folder was last written; null where that cannot be told.
async function fileDate(name: string): Promise<Date | null> {
  try {
    const { casts } = await fetchCasts(folder.endings);
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
  folder.watch.saved(name);
  messages.dismiss(`disk:${name}`);
  return missing;
}

const outputMenus = new OutputMenus(output);

/// Puts a cast on the page as a file of this name holds it; `stamp` is what that was like when it was
/// read, if that was not just now.
function show(profile: Profile, file = profile.filename, stamp: Stamp | null = null): void {
  comparison.opened(profile);
  edits.opened(profile, file);
  folder.watch.opened(file, stamp);
  messages.dismiss(`disk:${file}`);
  repair.opened(profile);
  put({ profile, verdict: null });
  void painted().then(() => folder.refresh());
}

/// Puts a cast on the page, freshly opened or not.
function put(state: CastState, place: Place = "whole", isOnly = false): void {
  engine.forgetCheck();
  // What is drawn has to have its place.
  document.body.classList.add("has-cast");
  if (place === "whole") castView.restore(state);
  else castView.update(state, place, isOnly);
  castList.mark(state.profile.filename);
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
  const { inFile, inFileName, undoLabel, redoLabel } = edits;
  const isUnsaved = open !== null && edits.isUnsaved(open);
  showStep("undo", undoLabel);
  showStep("redo", redoLabel);
  byId("unsaved").textContent = isUnsaved ? "Not saved" : "";
  editing.refresh();
  if (open && inFile && edits.isWork(open)) unsaved.keep(inFile, open, inFileName, folder.watch.stamp(inFileName));
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

function showWaiting(): void {
  const { opening, checking } = engine;
  document.body.classList.toggle("waiting", opening !== "" || checking);
  byId("plot").setAttribute("aria-busy", String(opening !== ""));
  setDisabled(checkButton, checking || !castView.open || castView.open.count === 0);
  checkButton.textContent = checking ? "Checking…" : "Check";
  showUpload();
  byId("doing").textContent = uploads.current
    ? `Handing in ${uploads.current.name}…`
    : opening ? `Opening ${opening}…` : workText(outbox.current) || (folder.isSlow ? "Reading the list of casts…" : "");
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

function save(): void {
  if (castView.open && castView.open.count > 0) void output.save();
}

/// The kinds of files that can be opened, and with them the list.
async function refreshKinds(): Promise<void> {
  const { filters, failure } = await filterTable.list();
  if (!failure) folder.endings = filters.map(({ postfix }) => postfix);
  await folder.refresh();
}

const linkState = new LinkState(messages, () => {
  void folder.refresh();
  void refreshKinds();
});

const help = byId<HTMLDialogElement>("help");
const shortcuts = pageKeys(
  { castList, castView, messages, editing, repair, outputMenus, filterDialog, folder, theme },
  {
    check, extend, thin, undo, redo, save, compare,
    pickFiles: () => byId("file-picker").click(),
    help: () => help.showModal(),
  },
);

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
  refused: (files) => messages.add({ kind: "notice", isUrgent: true, text: refusedDropText(files) }),
});
addEventListener("beforeunload", (event) => {
  if (!hasTypedInput() && (!castView.open || !edits.isWork(castView.open))) return;
  event.preventDefault();
  // What browsers before 2023 go by.
  event.returnValue = "Not saved";
});

function handIn(files: readonly PickedFile[]): void {
  if (files.length > 0) void arrivals.leaving(() => uploads.add(files));
}

checkButton.addEventListener("click", check);
byId("extend").addEventListener("click", extend);
byId("thin").addEventListener("click", thin);
byId("compare").addEventListener("click", compare);
byId("undo").addEventListener("click", undo);
byId("redo").addEventListener("click", redo);
byId("open-file").addEventListener("click", () => filePicker.click());
byId("filters").addEventListener("click", () => void filterDialog.show());
byId("refresh").addEventListener("click", () => void folder.refresh());
byId("help-open").addEventListener("click", () => help.showModal());
explainShortcuts(byId("help-keys"), shortcuts);
listenForShortcuts(shortcuts, new LetterKeys(byId("letter-keys")));
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
  leaving: (go) => arrivals.leaving(go),
  restore: ({ inFile, edited, file, stamp }) => {
    show(inFile, file, stamp);
    change("Undo edits", edited);
  },
  discard: (inFile) => {
    const { open } = castView;
    if (open && edits.inFile === inFile && edits.isUnsaved(open)) change("Undo discard", inFile);
  },
});
