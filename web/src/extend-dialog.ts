/// The dialog in which the user says by what the open cast is continued.
import { columnsOf, holdsConductivity } from "./columns";
import { onClosed } from "./dialog";
import { button, dialogForm, make, setDisabled } from "./dom";
import { extendFailedText, isAboutOrder } from "./extend-words";
import type { ExtendWay, Extender, ExtensionFile } from "./extender";
import { WATER_RANGES, type Extended } from "./extension";
import { extensionFacts, extensionRows } from "./extension-file";
import { formatCount, formatSize, formatValue } from "./format";
import { NumberField } from "./number-field";
import { statedIn } from "./stated";
import { isJoined, type Profile } from "./profile";
import { rangeFault } from "./typed-number";
import type { PickedFile } from "./uploads";

/// More than any list of depths and speeds has; the host takes no larger one.
const LARGEST_FILE = 32 * 1024 * 1024;

export interface ExtendDialogEvents {
  extended(before: Profile, way: ExtendWay, result: Extended): void;
  /// The user wants the cast checked.
  check(): void;
}

type Kind = ExtendWay["kind"];

const KINDS: readonly { kind: Kind; label: string; hint: string }[] = [
  { kind: "default", label: "Default rows", hint: "A mean deep sea, eight depths from 500 m to 12000 m." },
  {
    kind: "water",
    label: "Temperature and salinity",
    hint: "A deep sea computed from what was measured at the deepest level.",
  },
  {
    kind: "file",
    label: "A file of one’s own",
    hint: "A comment line, then one depth (m) and sound speed (m/s) a line.",
  },
];

export class ExtendDialog {
  private readonly dialog = make("dialog", "question extend");
  private readonly status = make("p", "dialog-status");
  private readonly confirm = make("button", "primary", "Extend");
  private readonly checkButton = button("", "Check the cast", () => {
    this.dialog.close();
    this.events.check();
  });
  private readonly radios = new Map<Kind, HTMLInputElement>();
  private readonly parts = new Map<Kind, HTMLElement>();
  private readonly fields = {
    temperature: rangeField("temperature", "Temperature, °C", "The temperature", "°C"),
    salinity: rangeField("salinity", "Salinity, PSU", "The salinity", ""),
    latitude: rangeField("latitude", "Latitude, ° north", "The latitude", "degrees"),
  };
  private readonly picker = make("input");
  private readonly fileFacts = make("div", "file-facts");
  private profile: Profile | null = null;
  private file: ExtensionFile | null = null;
  /// Counts what was begun, so that an answer to what the user has left is not taken.
  private turn = 0;

  constructor(
    private readonly extender: Extender,
    private readonly events: ExtendDialogEvents,
  ) {
    this.build();
  }

  get isOpen(): boolean {
    return this.dialog.open;
  }

  show(profile: Profile): void {
    if (this.isOpen) return;
    this.left();
    this.profile = profile;
    this.file = null;
    this.fileFacts.replaceChildren();
    const stated = measuredAtDeepest(profile);
    this.fields.temperature.value = stated.temperature;
    this.fields.salinity.value = stated.salinity;
    this.fields.latitude.value = statedIn(profile.header).latitude ?? "";
    this.rest(false);
    this.tell("");
    this.choose("default");
    this.dialog.showModal();
    this.radios.get("default")?.focus();
  }

  /// Takes a file that was picked or dropped.
  async take(file: PickedFile): Promise<void> {
    const turn = ++this.turn;
    this.rest(false);
    this.choose("file");
    this.tell("");
    this.file = null;
    const name = make("p", "file-name", `${file.name}, ${formatSize(file.size)}`);
    this.fileFacts.replaceChildren(name);
    if (file.size > LARGEST_FILE) {
      return this.tellFile(["The file is too large for an extension file."], "field-fault");
    }
    let bytes: Uint8Array;
    try {
      bytes = new Uint8Array(await file.arrayBuffer());
    } catch {
      const fault = "The file cannot be read. Look whether it is still where it was.";
      if (turn === this.turn) this.tellFile([fault], "field-fault");
      return;
    }
    const { profile } = this;
    if (turn !== this.turn || !profile) return;
    const rows = extensionRows(bytes);
    const { fault, remarks } = extensionFacts(rows, profile.lists.svp_Depth[profile.count - 1] ?? NaN);
    if (fault) return this.tellFile([fault], "field-fault");
    const first = rows[0]?.depth ?? NaN;
    const last = rows[rows.length - 1]?.depth ?? NaN;
    name.append(`: ${formatCount(rows.length)} rows, ${formatValue(first)} to ${formatValue(last)} m`);
    this.tellFile(remarks, "file-remark");
    this.file = { file, rows };
    this.tell("");
  }

  private left(): void {
    this.turn += 1;
    this.profile = null;
  }

  private build(): void {
    const { dialog, status, picker, confirm } = this;
    const title = make("h2", "", "Extend to full ocean depth");
    title.id = "extend-title";
    dialog.setAttribute("aria-labelledby", title.id);
    const text = make(
      "p",
      "",
      "Levels are joined below the deepest one, and a level at 0 m where there is none. " +
        "What was measured stays as it is.",
    );
    text.id = "extend-text";
    dialog.setAttribute("aria-describedby", text.id);
    status.setAttribute("role", "status");
    this.fileFacts.setAttribute("role", "status");

    const ways = make("fieldset", "ways", make("legend", "unseen", "Extend with"));
    for (const each of KINDS) ways.append(...this.way(each));
    this.parts.get("water")?.append(...Object.values(this.fields).map(({ element }) => element));
    picker.type = "file";
    picker.hidden = true;
    picker.setAttribute("aria-label", "Extension file");
    picker.addEventListener("change", () => {
      const file = picker.files?.[0];
      picker.value = "";
      if (file) void this.take(file);
    });
    this.parts.get("file")?.append(
      button("", "Choose a file…", () => picker.click()),
      make("span", "field-hint", " or drop one here"),
      picker,
      this.fileFacts,
    );
    confirm.type = "submit";
    const form = dialogForm("", () => void this.extend(), title, text, ways, status,
      make("div", "question-buttons", this.checkButton, button("", "Cancel", () => dialog.close()), confirm));
    onClosed(dialog, () => this.left());
    dialog.append(form);
    document.body.append(dialog);
  }

  private way({ kind, label, hint }: (typeof KINDS)[number]): HTMLElement[] {
    const radio = make("input");
    radio.type = "radio";
    radio.name = "extend-with";
    radio.value = kind;
    radio.id = `extend-${kind}`;
    const more = make("span", "field-hint", hint);
    more.id = `${radio.id}-hint`;
    radio.setAttribute("aria-describedby", more.id);
    radio.addEventListener("change", () => this.choose(kind));
    const name = make("label", "", label);
    name.htmlFor = radio.id;
    const part = make("div", `way-part way-${kind}`);
    this.radios.set(kind, radio);
    this.parts.set(kind, part);
    return [make("div", "way", radio, name, more), part];
  }

  private choose(kind: Kind): void {
    for (const [each, radio] of this.radios) radio.checked = each === kind;
    for (const [each, part] of this.parts) part.hidden = each !== kind;
    this.tell("");
  }

  /// The way that is filled in, or null after what is missing was said.
  private taken(): ExtendWay | null {
    if (this.radios.get("water")?.checked) {
      const { temperature, salinity, latitude } = this.fields;
      const all = [temperature, salinity, latitude].map((field) => ({ field, value: field.take() }));
      all.find(({ value }) => value === null)?.field.focus();
      const [warmth, salt, north] = all.map(({ value }) => value);
      if (warmth == null || salt == null || north == null) return null;
      return { kind: "water", water: { temperature: warmth, salinity: salt, latitude: north } };
    }
    if (!this.radios.get("file")?.checked) return { kind: "default" };
    if (this.file) return { kind: "file", file: this.file };
    this.tell("Choose a file that can be used.", true);
    return null;
  }

  private async extend(): Promise<void> {
    const { profile } = this;
    if (!profile || this.confirm.disabled) return;
    const way = this.taken();
    if (!way) return;
    const turn = ++this.turn;
    this.rest(true);
    this.tell("Extending…");
    const result = await this.extender.extend(profile, way);
    if (turn !== this.turn) return;
    this.rest(false);
    if ("reason" in result) {
      this.tell(extendFailedText(profile, way.kind, result.reason), true);
      this.checkButton.hidden = !isAboutOrder(result.reason);
    } else {
      this.dialog.close();
      this.events.extended(profile, way, result.extended);
    }
  }

  private rest(busy: boolean): void {
    this.dialog.setAttribute("aria-busy", String(busy));
    setDisabled(this.confirm, busy);
  }

  private tell(text: string, isFailure = false): void {
    this.checkButton.hidden = true;
    this.status.textContent = text;
    this.status.hidden = text === "";
    this.status.setAttribute("role", isFailure ? "alert" : "status");
    this.status.classList.toggle("field-fault", isFailure);
  }

  private tellFile(texts: readonly string[], className: string): void {
    this.fileFacts.append(...texts.map((text) => make("p", className, text)));
  }
}

function rangeField(key: keyof typeof WATER_RANGES, label: string, what: string, unit: string): NumberField {
  const [low, high] = WATER_RANGES[key];
  return new NumberField(key, label, "", (text) => rangeFault(text, what, low, high, unit));
}

/// Temperature and salinity of the deepest level that has them, as texts; "" where the cast has none.
/// A column of zeros is how a profile says that it has no such values.
export function measuredAtDeepest(profile: Profile): { temperature: string; salinity: string } {
  const columns = columnsOf(profile);
  const { svp_Temp, svp_Sal } = profile.lists;
  const decimals = (key: string) => columns.find((column) => column.key === key)?.decimals;
  const warmth = decimals("svp_Temp");
  const salt = holdsConductivity(profile) ? undefined : decimals("svp_Sal");
  let level = profile.count - 1;
  const isMeasured = (value: number | undefined) => value !== undefined && !Number.isNaN(value) && value !== 0;
  const hasWater = (at: number) => isMeasured(svp_Temp[at]) || isMeasured(svp_Sal[at]);
  while (level >= 0 && (isJoined(profile, level) || !hasWater(level))) --level;
  const text = (value: number | undefined, shown: number | undefined) =>
    shown === undefined || value === undefined || Number.isNaN(value) ? "" : formatValue(value, shown);
  return { temperature: text(svp_Temp[level], warmth), salinity: text(svp_Sal[level], salt) };
}
