/// The casts that this page has had open: each as it was before its last change, and the others.
import type { Profile } from "./profile";

const MOST = 12;

export interface SeenCast {
  label: string;
  profile: Profile;
}

export class SeenCasts {
  private readonly before = new WeakMap<Profile, Profile>();
  /// The newest last; of each cast what was made of it last.
  private opened: Profile[] = [];

  open(profile: Profile): void {
    this.opened = [...this.opened.filter((each) => each !== profile), profile].slice(-MOST);
  }

  /// Something was made of a profile.
  change(before: Profile, after: Profile): void {
    this.before.set(after, before);
    this.opened = this.opened.map((each) => (each === before ? after : each));
  }

  /// What can be laid beside a profile.
  beside(profile: Profile): SeenCast[] {
    const earlier = this.before.get(profile);
    const others = this.opened.filter((each) => each !== profile && each !== earlier && !this.isMadeOf(profile, each) && !this.isMadeOf(each, profile));
    return [
      ...(earlier ? [{ label: `${earlier.filename} before the last change`, profile: earlier }] : []),
      ...others.reverse().map((each) => ({ label: each.filename, profile: each })),
    ];
  }

  private isMadeOf(profile: Profile, origin: Profile): boolean {
    for (let each = this.before.get(profile); each; each = this.before.get(each)) {
      if (each === origin) return true;
    }
    return false;
  }
}
