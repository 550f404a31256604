/// The casts that this page has had open, each as it was left.
import type { Profile } from "./profile";

const MOST = 12;

export interface SeenCast {
  label: string;
  profile: Profile;
}

export class SeenCasts {
  /// The newest last.
  private opened: Profile[] = [];

  open(profile: Profile): void {
    this.opened = [...this.opened.filter((each) => each !== profile), profile].slice(-MOST);
  }

  /// Something was made of a profile, or it was taken back.
  change(before: Profile, after: Profile): void {
    this.opened = this.opened.map((each) => (each === before ? after : each));
  }

  /// What can be laid beside a profile: itself before its last change, if there was one, and the
  /// other casts.
  beside(profile: Profile, earlier: Profile | null): SeenCast[] {
    const others = this.opened.filter((each) => each !== profile);
    return [
      ...(earlier ? [{ label: `${earlier.filename} before the last change`, profile: earlier }] : []),
      ...others.reverse().map((each) => ({ label: each.filename, profile: each })),
    ];
  }
}
