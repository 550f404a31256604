/// Casts that come to the page, asked for here or elsewhere, and the leave of the one that is open.
import { ask, isAsking } from "./dialog";
import type { Message } from "./messages";
import { sameFile, sameProfile, type Profile } from "./profile";

export interface ArrivalsPage {
  open(): Profile | null;
  /// Whether something that the user has done is lost when this profile is.
  isWork(profile: Profile): boolean;
  /// Whether a file is waited for that was asked for here.
  isOpening(): boolean;
  show(profile: Profile): void;
  /// Has the engine open a file of the profile folder as it is now.
  read(name: string): void;
  /// Somebody has had the open cast's file read.
  readElsewhere(profile: Profile): void;
  tell(message: Message): void;
}

export class Arrivals {
  /// The cast that the user has agreed to leave although it is not saved.
  private agreed: Profile | null = null;

  constructor(private readonly page: ArrivalsPage) {}

  /// Goes on to another cast, with the user's consent where the one on the page is not saved. False
  /// without it.
  async leaving(go: () => void): Promise<boolean> {
    const open = this.page.open();
    if (open && this.page.isWork(open) && this.agreed !== open) {
      const answer = await ask({
        title: "Leave without saving?",
        text: [`${open.filename} was changed and is not saved.`],
        confirm: "Leave",
      });
      if (!answer) return false;
      this.agreed = open;
    }
    go();
    return true;
  }

  /// What was asked for does not come.
  failed(): void {
    this.agreed = null;
  }

  /// A profile that this page has asked for. Levels that came to be meanwhile and are not saved are
  /// not put away for it, and a dialog stays with the cast that it was opened for.
  arrived(profile: Profile): void {
    const { page } = this;
    const open = page.open();
    const isKept = open !== null && page.isWork(open) && this.agreed !== open;
    if (!open || (!isKept && !isAsking())) return this.show(profile);
    const why = isKept
      ? `${open.filename} on the page is not saved.`
      : `${open.filename} stays on the page, since a dialog is open.`;
    this.offer(`ready:${profile.filename}`, `${profile.filename} is ready. ${why}`, profile.filename);
  }

  /// A profile that another page, or the survey system, had opened: shown where there is none, else
  /// offered, never forced over the cast that this user is looking at.
  elsewhere(profile: Profile): void {
    const { page } = this;
    const name = profile.filename;
    const open = page.open();
    if (open && sameProfile(open, profile)) return;
    if (open && sameFile(open.filename, name)) return page.readElsewhere(profile);
    if (open || page.isOpening()) return this.offer(`elsewhere:${name}`, `${name} was opened elsewhere.`, name);
    this.show(profile);
    page.tell({ kind: "notice", key: `elsewhere:${name}`, text: `${name} was opened elsewhere and is shown here.` });
  }

  /// Tells of a file, which a button opens as it is then.
  offer(key: string, text: string, name: string): void {
    const run = () => this.leaving(() => this.page.read(name));
    this.page.tell({ kind: "notice", isUrgent: true, key, text, action: { label: "Open it", run } });
  }

  private show(profile: Profile): void {
    this.agreed = null;
    this.page.show(profile);
  }
}
