/// The dialog in which the user keeps the import filters.
import { ask } from "./dialog";
import { button, isNowhere, make, setDisabled } from "./dom";
import { guessFilter } from "./filter-guess";
import { FilterForm } from "./filter-form";
import { FilterPreview, PreviewFile } from "./filter-preview";
import type { FilterTable, Listing } from "./filter-table";
import {
  BUILT_IN_FILTERS,
  emptyFilter,
  faultsOf,
  filterFor,
  refusedField,
  replacedBy,
  sameFilter,
  sameWord,
  type Filter,
} from "./filters";
import type { PickedFile } from "./uploads";
import { heedTyped } from "./typed-input";

export interface FilterDialogEvents {
  /// Something was done, in words for the user.
  done(text: string): void;
  /// The dialog was closed while rows wait to be put back into the table.
  leftUnstored(text: string): void;
  /// The user wants a file opened. `stored` is its name in the profile folder, or "".
  open(file: PickedFile, stored: string): void;
}

export class FilterDialog {
  private readonly dialog = make("dialog", "filters");
  private readonly list = make("ul", "filter-list");
  private readonly listNote = make("p", "field-hint");
  private readonly unstored = make("div", "filter-unstored");
  private readonly status = make("p", "filter-status");
  private readonly fileName = make("span", "preview-name");
  private readonly form = new FilterForm(() => this.changed());
  private readonly preview = new FilterPreview((column, quantity) => this.form.assign(column, quantity));
  private readonly saveButton = button("primary", "Save filter", () => void this.save());
  private readonly deleteButton = button("", "Delete…", () => void this.remove());
  private readonly openButton = button("", "", () => this.openFile());
  private readonly picker = make("input");

  private listing: Listing = { filters: [], faults: [], failure: "" };
  /// The row that is being changed; null for a new one.
  private edited: Filter | null = null;
  /// What the form held when it was filled.
  private filled: Filter = emptyFilter();
  private file: PreviewFile | null = null;
  private drawing = false;
  private busy = false;
  /// The opening whose rows are being read; 0 when there is none.
  private reading = 0;
  private openings = 0;

  constructor(
    private readonly table: FilterTable,
    private readonly events: FilterDialogEvents,
  ) {
    this.build();
  }

  get isOpen(): boolean {
    return this.dialog.open;
  }

  /// Whether the dialog is open and no question lies over it.
  get isAlone(): boolean {
    return this.isOpen && document.querySelectorAll("dialog[open]").length === 1;
  }

  /// Opens the dialog. A file that no filter fits can be handed over with its name in the profile
  /// folder: a filter for it is begun.
  async show(handed: { file: PickedFile; stored: string } | null = null): Promise<void> {
    if (this.dialog.open) return;
    this.file = null;
    this.fill(null, emptyFilter());
    this.tell("");
    this.dialog.showModal();
    this.form.focus();
    // Until the rows are here, nothing can be said about what saving would replace.
    this.rest(true);
    const opening = ++this.openings;
    this.reading = opening;
    await this.reload();
    // Closed meanwhile.
    if (this.reading !== opening) return;
    this.reading = 0;
    this.rest(false);
    if (handed) await this.take(handed.file, handed.stored);
    else if (!this.isChanged && this.listing.filters[0]) this.select(this.listing.filters[0]);
  }

  /// Takes a file for the preview. While nothing is filled in, the filter for it is chosen, or one
  /// is begun.
  async take(file: PickedFile, stored = ""): Promise<void> {
    try {
      this.file = await PreviewFile.read(file, stored);
    } catch {
      return this.tell(`${file.name} cannot be read. Look whether it is still where it was.`, true);
    }
    this.fileName.textContent = file.name;
    this.fileName.title = file.name;
    const name = stored || file.name;
    const own = filterFor(name, this.listing.filters);
    if (!this.isChanged) {
      if (own) this.select(own);
      else this.begin();
    }
    this.changed();
  }

  private build(): void {
    const { dialog, picker } = this;
    const title = make("h2", "", "Import filters");
    title.id = "filters-title";
    dialog.setAttribute("aria-labelledby", title.id);
    this.status.setAttribute("role", "status");
    this.list.setAttribute("aria-label", "Filters");
    this.unstored.setAttribute("role", "alert");
    picker.type = "file";
    picker.hidden = true;
    picker.addEventListener("change", () => {
      const file = picker.files?.[0];
      picker.value = "";
      if (file) void this.take(file);
    });

    const side = make("div", "filter-side",
      button("", "New filter", () => void this.leave(() => this.begin())),
      this.list, this.listNote, this.unstored,
      make("p", "field-hint", "Built in, tried first: " +
        `${BUILT_IN_FILTERS.map(({ name, postfix }) => `${name} (${postfix})`).join(", ")}.`));
    const previewHead = make("div", "preview-head",
      button("", "Choose a file…", () => picker.click()), this.fileName, picker);
    previewHead.setAttribute("role", "group");
    previewHead.setAttribute("aria-label", "Preview");
    const actions = make("div", "filter-actions", this.status, this.openButton, this.deleteButton, this.saveButton);
    const main = make("div", "filter-main", this.form.element, previewHead, this.preview.element, actions);
    dialog.append(
      make("div", "panel-head", title, button("quiet", "Close", () => this.close())),
      make("div", "filter-parts", side, main),
    );
    // The browser closes a dialog on a second Escape whatever is unsaved; so the key is taken here.
    dialog.addEventListener("keydown", (event) => {
      if (event.key !== "Escape" || event.defaultPrevented) return;
      event.preventDefault();
      this.close();
    });
    dialog.addEventListener("cancel", (event) => {
      // A file that was not chosen after all is told of in this way too.
      if (event.target !== dialog) return;
      event.preventDefault();
      this.close();
    });
    heedTyped(dialog, () => this.isChanged);
    this.form.element.addEventListener("keydown", (event) => {
      if (event.key !== "Enter" || !(event.target instanceof HTMLInputElement)) return;
      // It would press a button of the question that may come of it.
      event.preventDefault();
      void this.save();
    });
    document.body.append(dialog);
  }

  private close(): void {
    void this.leave(() => {
      if (this.reading > 0) {
        this.reading = 0;
        this.rest(false);
      }
      this.dialog.close();
      const names = this.table.unstored.map(({ name }) => name);
      if (names.length > 0) {
        this.events.leftUnstored(`Import filters that are not stored yet: ${names.join(", ")}.`);
      }
    });
  }

  /// Goes on once the user agrees to lose what the form holds.
  private async leave(go: () => void): Promise<void> {
    // Who waits for the rows may leave; the buttons that this also serves rest meanwhile.
    if (this.busy && this.reading === 0) return;
    if (this.isChanged) {
      const { name } = this.form.value;
      const answer = await ask({
        title: "Leave without saving?",
        text: [`What was changed in ${name ? `the filter ${name}` : "this filter"} is not saved.`],
        confirm: "Leave",
      });
      if (!answer) return;
    }
    go();
  }

  private get isChanged(): boolean {
    return !sameFilter(this.form.value, this.filled);
  }

  private isEdited({ name }: Filter): boolean {
    return this.edited !== null && sameWord(name, this.edited.name);
  }

  /// Begins a new filter, for the file of the preview if there is one.
  private begin(): void {
    const name = this.file ? this.file.stored || this.file.file.name : "";
    this.fill(null, this.file ? guessFilter(name, this.file.lines) : emptyFilter());
    this.tell(this.file ? "A first guess from the file: compare it with the preview, then save." : "");
    this.form.focus();
  }

  private select(filter: Filter | null): void {
    if (!filter) return this.fill(null, emptyFilter());
    this.fill(filter, filter);
    this.tell("");
  }

  private fill(edited: Filter | null, filter: Filter): void {
    this.edited = edited;
    this.form.value = filter;
    this.filled = this.form.value;
    this.changed();
    this.drawList();
  }

  /// Draws the preview anew, once for all changes of a frame.
  private changed(): void {
    this.openButton.hidden = true;
    if (this.drawing) return;
    this.drawing = true;
    requestAnimationFrame(() => {
      this.drawing = false;
      this.preview.show(this.file, this.form.value);
    });
  }

  private async save(): Promise<void> {
    const filter = this.form.value;
    if (this.busy) return;
    if (!this.form.tell(faultsOf(filter))) {
      this.tell("Mend what is marked; then save again.");
      return this.form.focus();
    }
    const { edited } = this;
    const others = this.listing.filters.filter((row) => !this.isEdited(row));
    const replaced = replacedBy(filter, others);
    if (replaced.length > 0 && !(await mayReplace(replaced))) return;
    await this.work("Saving…", async () => {
      let reason = await this.table.save(filter);
      const field = refusedField(reason);
      if (field) {
        this.form.tell({ [field]: reason });
        this.form.focus();
      }
      // The engine replaces a row by its name or its postfix; one that has kept neither stays.
      const isNew = edited && replacedBy(filter, [edited]).length === 0;
      if (!reason && isNew) reason = await this.table.remove(edited.name);
      if (reason) return this.tell(`The filter was not saved. ${whatNext(reason)}`, true);
      await this.reload();
      this.select(this.listing.filters.find((row) => sameFilter(row, filter)) ?? null);
      this.tell(`Filter ${filter.name} saved.`);
      this.events.done(`Import filter ${filter.name} for files ending in ${filter.postfix} saved.`);
      this.offerFile(filter);
    });
  }

  private async remove(): Promise<void> {
    const { edited, busy } = this;
    if (!edited || busy) return;
    const { faults } = this.listing;
    const answer = await ask({
      title: `Delete the filter ${edited.name}?`,
      text: [
        `Files ending in ${edited.postfix} will not open any more.`,
        ...(faults.length > 0
          ? [`The table also has ${rows(faults.length)} that cannot be used; deleting takes them out as well.`]
          : []),
      ],
      confirm: "Delete",
    });
    if (!answer) return;
    await this.work("Deleting…", async () => {
      const reason = await this.table.remove(edited.name);
      await this.reload();
      const isGone = !this.listing.filters.some(({ name }) => sameWord(name, edited.name));
      if (isGone) this.select(this.listing.filters[0] ?? null);
      if (reason) return this.tell(`Deleting did not come to its end. ${whatNext(reason)}`, true);
      this.tell(`Filter ${edited.name} deleted.`);
      this.events.done(`Import filter ${edited.name} deleted.`);
    });
  }

  private async restore(): Promise<void> {
    await this.work("Saving…", async () => {
      const reason = await this.table.restore();
      await this.reload();
      if (reason) return this.tell(`Not all filters are stored. ${whatNext(reason)}`, true);
      this.tell("All filters are stored.");
      this.events.done("All import filters are stored.");
    });
  }

  /// Runs one job with the table; the buttons rest meanwhile.
  private async work(text: string, run: () => Promise<void>): Promise<void> {
    if (this.busy) return;
    this.rest(true);
    this.tell(text);
    try {
      await run();
    } finally {
      this.rest(false);
      // Where the button that was pressed is not there any more.
      if (isNowhere()) this.form.focus();
    }
  }

  private rest(busy: boolean): void {
    this.busy = busy;
    this.dialog.setAttribute("aria-busy", String(busy));
    setDisabled(this.saveButton, busy);
    setDisabled(this.deleteButton, busy);
    this.restSide();
  }

  /// While a job is at the table, a press in the list beside it would be lost; so it cannot be made.
  private restSide(): void {
    for (const each of this.dialog.querySelectorAll<HTMLButtonElement>(".filter-side button")) {
      setDisabled(each, this.busy);
    }
  }

  private async reload(): Promise<void> {
    this.listing = await this.table.list();
    this.drawList();
  }

  private drawList(): void {
    const { filters, faults, failure } = this.listing;
    const hadFocus = this.list.contains(document.activeElement);
    this.list.replaceChildren(
      ...filters.map((filter) => {
        const entry = button("cast", "", () => void this.leave(() => this.select(filter)));
        entry.append(make("span", "cast-name", filter.name), make("span", "cast-detail", filter.postfix));
        entry.title = filter.name;
        if (this.isEdited(filter)) entry.setAttribute("aria-current", "true");
        return make("li", "", entry);
      }),
    );
    const notes = [
      ...(failure ? [`The filters could not be listed. ${whatNext(failure)}`] : []),
      ...(!failure && filters.length === 0 && faults.length === 0 ? ["No import filters yet."] : []),
      ...(faults.length > 0
        ? [`${rows(faults.length)} of the table cannot be used: ${[...new Set(faults)].join(" ")} ` +
           "Save a filter of the same name or suffix in its place."]
        : []),
    ];
    if (hadFocus) this.list.querySelector<HTMLElement>("[aria-current]")?.focus();
    this.listNote.textContent = notes.join(" ");
    this.listNote.classList.toggle("field-fault", failure !== "" || faults.length > 0);
    this.deleteButton.hidden = this.edited === null;
    const { unstored } = this.table;
    this.unstored.hidden = unstored.length === 0;
    this.unstored.replaceChildren(
      ...(unstored.length === 0
        ? []
        : [
            make("p", "", `Not stored yet: ${unstored.map(({ name }) => name).join(", ")}`),
            button("", "Save all again", () => void this.restore()),
          ]),
    );
    this.restSide();
  }

  private offerFile({ postfix }: Filter): void {
    const { file } = this;
    const name = file ? file.stored || file.file.name : "";
    if (!file || !name.toLowerCase().endsWith(postfix.toLowerCase())) return;
    this.openButton.textContent = `Open ${name}`;
    this.openButton.hidden = false;
    this.openButton.focus();
  }

  private openFile(): void {
    const { file } = this;
    if (!file) return;
    this.dialog.close();
    this.events.open(file.file, file.stored);
  }

  private tell(text: string, isFailure = false): void {
    this.status.textContent = text;
    this.status.setAttribute("role", isFailure ? "alert" : "status");
    this.status.classList.toggle("field-fault", isFailure);
  }
}

async function mayReplace(replaced: readonly Filter[]): Promise<boolean> {
  const names = replaced.map(({ name, postfix }) => `${name} (${postfix})`).join(" and ");
  const answer = await ask({
    title: `Replace ${names}?`,
    text: ["A name and a suffix stand in the table once. What has the same is taken out."],
    confirm: "Replace",
  });
  return answer !== null;
}

function rows(count: number): string {
  return `${count} ${count === 1 ? "row" : "rows"}`;
}

/// A refusal of the engine with what to do about it.
function whatNext(reason: string): string {
  switch (reason) {
    case "ProgramData not found.":
      return "The folder of the filter table is missing. Have the survey system installed, or start the host with its data folder.";
    case "File not opened.":
      return "The filter table could not be opened. Look whether its folder is there and may be written to.";
    case "Cannot write to file.":
      return "The filter table cannot be written. Look whether it is write-protected and its disk has room.";
    case "Wrong input parameters.":
      return "Load the page again, so that it fits the engine; then save again.";
    case "There is no connection to the host.":
      return `${reason} Wait until the page is connected; then try again.`;
    default:
      return reason;
  }
}
