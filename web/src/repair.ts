/// Fixing, ray paths and the atlas: their dialogs made and joined to the page.
import type { Asker } from "./asker";
import { AtlasDialog } from "./atlas-dialog";
import type { Connection } from "./connection";
import { byId } from "./dom";
import { FixDialog } from "./fix-dialog";
import { Fixer, type FixedFile } from "./fixer";
import type { MessageAction } from "./messages";
import { levelCount } from "./outbox-words";
import type { Profile } from "./profile";
import { Action, SUCCESS, type ListKey } from "./protocol";
import { RayDialog } from "./ray-dialog";
import { SeenCasts } from "./seen-casts";
import type { Shortcut } from "./shortcuts";

/// A fix leaves levels out that have none of these.
const MENDED: readonly ListKey[] = ["svp_Depth", "svp_Speed"];

/// What the page lends to these dialogs.
export interface RepairPage {
  open(): Profile | null;
  /// The open cast before its last change; null where there was none.
  earlier(): Profile | null;
  /// Puts what was made of the open cast in its place. `label` says what a step back undoes.
  change(label: string, profile: Profile): void;
  /// A file of this name holds the profile now.
  saved(name: string, profile: Profile): void;
  mark(name: string): void;
  notice(text: string, action?: MessageAction): void;
  failure(text: string): void;
  refresh(): Promise<void>;
  listed(name: string): Promise<string>;
  stated(profile: Profile): Promise<Profile | null>;
  writable(profile: Profile, mends: readonly ListKey[]): Promise<Profile | null>;
  check(): void;
}

export class Repair {
  private readonly seen = new SeenCasts();
  private readonly fixer: Fixer;
  private readonly fixDialog: FixDialog;
  private readonly rayDialog: RayDialog;
  private readonly atlasDialog: AtlasDialog;
  private readonly fixButton = byId<HTMLButtonElement>("fix");
  private readonly raysButton = byId<HTMLButtonElement>("rays");

  readonly shortcuts: readonly Shortcut[] = [
    { key: "X", text: "Fix the open cast: clean, extend and thin it in one step", run: () => this.fix() },
    { key: "Y", text: "Ray paths through the open cast and another profile", run: () => this.rays() },
    { key: "A", text: "World Ocean Atlas: its files, and whether Fix uses it", run: () => this.atlas() },
  ];

  constructor(
    asker: Asker,
    connection: Connection,
    private readonly page: RepairPage,
  ) {
    this.fixer = new Fixer(asker, connection);
    this.atlasDialog = new AtlasDialog((text) => page.notice(text));
    this.rayDialog = new RayDialog(asker, { beside: (profile) => this.seen.beside(profile, page.earlier()), fix: () => this.fix() });
    this.fixDialog = new FixDialog(this.fixer, {
      fixed: (before, after, file, compare) => this.fixed(before, after, file, compare),
      written: (before, { path }) => page.notice(`${before.filename} was fixed and written as ${path}.`),
      unreadable: (text) => {
        page.failure(text);
        void page.refresh();
      },
      surfaced: (before, after) => {
        if (before === page.open()) page.change("Undo surface level", after);
      },
      stated: (profile) => page.stated(profile),
      writable: (profile) => page.writable(profile, MENDED),
      listed: (name) => page.listed(name),
      atlas: () => this.atlas(),
      check: () => page.check(),
    });
    // A file that this page or another one has written.
    connection.on(Action.fix, ({ result }) => {
      if (result === SUCCESS) void page.refresh();
    });
    connection.onState(({ kind }) => {
      if (kind === "open") this.rayDialog.connected();
    });
    this.fixButton.addEventListener("click", () => this.fix());
    this.raysButton.addEventListener("click", () => this.rays());
    byId("atlas").addEventListener("click", () => this.atlas());
  }

  /// A cast was opened.
  opened(profile: Profile): void {
    this.seen.open(profile);
  }

  /// Something was made of the open cast, or a step back or forth was taken.
  changed(before: Profile, after: Profile): void {
    this.seen.change(before, after);
  }

  /// Whether a profile that comes from the engine is only being read back here.
  isReading(name: string): boolean {
    return this.fixer.isReading(name);
  }

  /// There is a cast to work with, or none.
  enable(isOpen: boolean): void {
    this.fixButton.disabled = !isOpen;
    this.raysButton.disabled = !isOpen;
  }

  private fix(): void {
    const open = this.page.open();
    if (open && !this.fixButton.disabled) this.fixDialog.show(open);
  }

  private rays(): void {
    const open = this.page.open();
    if (open && !this.raysButton.disabled) this.rayDialog.show(open);
  }

  private atlas(): void {
    void this.atlasDialog.show();
  }

  private fixed(before: Profile, after: Profile, file: FixedFile, compare: () => void): void {
    const { page } = this;
    page.notice(`${before.filename} fixed, ${levelCount(after.count)}, written as ${file.path}.`, {
      label: "Show the comparison",
      // It can be looked at again: the notice stays.
      run: () => {
        compare();
        return false;
      },
    });
    if (before !== page.open()) return;
    page.saved(file.name, after);
    page.change("Undo fix", after);
    void page.refresh().then(() => page.mark(after.filename));
  }
}
