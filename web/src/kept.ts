/// What a file keeps of that which the user has stated or changed in a cast.
import { PAIR_COLUMNS, joinedLevels, listsLost } from "./carried";
import { listName } from "./cell-values";
import { decimalsFor, formatCount } from "./format";
import { headerLabel } from "./header-fields";
import { columnsSent, contentIdentifier } from "./identifiers";
import type { Profile } from "./profile";
import { HEADER_KEYS, type HeaderKey } from "./protocol";
import { MOST_LEVELS } from "./protocol-output";
import { FULL_DEPTH } from "./thinning";

/// A file to which a cast goes: an `.asvp` file, or a datagram of a kind.
export type FileForm = "asvp" | { kind: string };

const ASVP_KEEPS_NOT: readonly HeaderKey[] = ["hsvp_filetype", "hsvp_filecomment"];
/// What the engine asks of a datagram file, m: from one depth to the next, and from the last one to
/// full depth.
const LEAST_STEP = 0.00998;
const MOST_MISSING = 100;
/// Decimals that an `.asvp` file writes.
const ASVP_DECIMALS = 2;
const DATAGRAM_KEEPS: readonly HeaderKey[] = [
  "hsvp_filetime", "hsvp_filelat", "hsvp_filelon", "hsvp_filetype", "hsvp_filesamp", "hsvp_filecomment",
];

/// What the user has stated or changed and a file of this form does not keep, in words; empty when it
/// keeps all of that.
export function editsLost(profile: Profile, form: FileForm): string[] {
  const { edited } = profile;
  const header = HEADER_KEYS.filter((key) => edited?.has(key) && !keepsField(profile, key, form));
  const lists = listsLost(profile, form === "asvp" ? PAIR_COLUMNS : columnsSent(form.kind));
  const names = lists.map((key) => listName(profile, key));
  if (form === "asvp") {
    for (const key of PAIR_COLUMNS) {
      if (edited?.has(key) && decimalsFor(profile.lists[key]) > ASVP_DECIMALS) {
        names.push(`more than two decimals of ${listName(profile, key)}`);
      }
    }
  } else if (contentIdentifier(form.kind)?.hasSpeed === false && joinedLevels(profile).length > 0) {
    names.push("sound speed of the joined levels");
  }
  return [...header.map((key) => headerLabel(key).toLowerCase()), ...names];
}

/// The sentence about what is lost; "" when nothing is.
export function lostText(lost: readonly string[], form: FileForm): string {
  if (lost.length === 0) return "";
  const other = form === "asvp" ? "A datagram file keeps what its kind carries." : "An .asvp file keeps the header but for type and comment.";
  return `Not kept of what you have changed: ${lost.join(", ")}. ${other}`;
}

/// Which edits of a cast none of the files written of it keeps.
export class KeptEdits {
  private readonly missing = new WeakMap<Profile, readonly string[]>();

  /// A file was written that lacks `lost`; what all files written so far lack comes back.
  wrote(profile: Profile, lost: readonly string[]): readonly string[] {
    const before = this.missing.get(profile) ?? lost;
    const still = lost.filter((each) => before.includes(each));
    this.missing.set(profile, still);
    return still;
  }
}

function keepsField({ header }: Profile, key: HeaderKey, form: FileForm): boolean {
  const type = String(header.hsvp_filetype ?? "").trim();
  if (form === "asvp") return !ASVP_KEEPS_NOT.includes(key) || (key === "hsvp_filetype" && type === "SoundVelocity");
  // The kind of a datagram is what the user has it written as, whatever the header says.
  return DATAGRAM_KEEPS.includes(key);
}

/// Why a datagram file of a profile would not open again, as a sentence; "" when nothing speaks against
/// it. Such a file is read as a whole profile or not at all.
export function reopeningText({ lists: { svp_Depth: depths }, count }: Profile): string {
  const [first, last] = [depths[0] ?? NaN, depths[count - 1] ?? NaN];
  const isCrowded = depths.some((depth, level) => level > 0 && !(depth - (depths[level - 1] ?? NaN) >= LEAST_STEP));
  const why =
    count > MOST_LEVELS ? `it has more than ${formatCount(MOST_LEVELS)} levels; thin the cast first`
    : first < 0 ? "it begins above the surface; drop the levels in air first"
    : isCrowded ? "not each of its levels lies a centimetre below the one before; check and mend the cast first"
    : last > FULL_DEPTH ? `it goes below ${formatCount(FULL_DEPTH)} m`
    : last < FULL_DEPTH - MOST_MISSING ? `it ends above ${formatCount(FULL_DEPTH - MOST_MISSING)} m; extend the cast first`
    : "";
  return why && `This file will not open again as it stands: ${why}.`;
}
