/// Which casts the open one can be compared with, and how another one is had.
import type { Look } from "./engine";
import { baseName, sameFile, type Profile } from "./profile";

/// So many casts are remembered as they were opened; a long watch does not fill the memory.
export const MOST_REMEMBERED = 12;

/// A cast that can be laid under the open one.
export interface Candidate {
  name: string;
  /// Said in the choice, where it is not the name.
  label: string;
  /// Opened in this session: it is at hand.
  isRemembered: boolean;
}

export class ComparedCasts {
  /// The last one opened comes last.
  private remembered: Profile[] = [];

  constructor(private readonly look: (name: string) => Promise<Look>) {}

  /// A cast was opened, and nothing is done to it yet.
  opened(profile: Profile): void {
    const others = this.remembered.filter(({ filename }) => !sameFile(filename, profile.filename));
    this.remembered = [...others, profile].slice(-MOST_REMEMBERED);
  }

  /// What the open cast can be compared with: casts opened in this session, the last one first, then
  /// the rest of the folder. The open one itself is among them once it is not what was opened.
  candidates(open: Profile, listed: readonly string[]): Candidate[] {
    const remembered = [...this.remembered].reverse().filter((profile) => profile !== open);
    const names = remembered.map(({ filename }) => filename);
    const rest = listed.filter((name) => ![...names, open.filename].some((each) => sameFile(each, name)));
    return [
      ...names.map((name) => ({
        name,
        label: sameFile(name, open.filename) ? `${baseName(name)}, as it was opened` : baseName(name),
        isRemembered: true,
      })),
      ...rest.map((name) => ({ name, label: name, isRemembered: false })),
    ];
  }

  /// The profile of a candidate: as it was opened in this session, or read now.
  async profileOf({ name, isRemembered }: Candidate): Promise<Look> {
    const known = isRemembered && this.remembered.find(({ filename }) => sameFile(filename, name));
    return known ? { profile: known } : this.look(name);
  }
}
