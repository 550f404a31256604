/// Profiles that shed the levels they do not need: what is sent for it, and what comes of it.
import { identifierOf } from "./identifiers";
import { baseName, type Profile } from "./profile";
import { LIST_KEYS, textPiece, type ListKey } from "./protocol";
import { datagramFormPieces, type Occasion } from "./protocol-output";

/// What a tolerance may be, bounds included. It is a distance in the plane of metres and m/s.
export const TOLERANCES = [0.01, 1] as const;
export const PROPOSED_TOLERANCE = 0.1;

/// The kind of profile that is written as an `.asvp` file.
const PLAIN_KIND = "SoundVelocity";
/// Depth (m) at which a profile must end to be thinned.
export const FULL_DEPTH = 12_000;

/// Kind under which a profile is thinned: its own where it can be written, else that of `.asvp`.
export function thinKind({ header }: Pick<Profile, "header">): string {
  const type = String(header.hsvp_filetype ?? "");
  return type.includes(PLAIN_KIND) ? PLAIN_KIND : identifierOf(type) || PLAIN_KIND;
}

/// A profile under the kind of another one.
export function underKindOf(profile: Profile, { header }: Pick<Profile, "header">): Profile {
  const kind = header.hsvp_filetype;
  if (kind === undefined || kind === profile.header.hsvp_filetype) return profile;
  return { ...profile, header: { ...profile.header, hsvp_filetype: kind } };
}

/// Name of the file that the engine writes for a profile of this name and kind.
export function thinnedName(name: string, kind: string): string {
  const stem = textPiece(baseName(name)).replace(/\.[^.]*$/, "");
  return `${stem}_thinned.${kind === PLAIN_KIND ? "asvp" : "ssp"}`;
}

/// Body of a request that thins a profile, in 16 pieces.
export function thinBody(
  profile: Profile,
  name: string,
  kind: string,
  occasion: Partial<Occasion>,
  tolerance: number,
): string {
  const stated = { time: "0", latitude: "0", longitude: "0", ...occasion };
  return `[${[...datagramFormPieces(profile, baseName(name), kind, stated), String(tolerance)].join("*")}]`;
}

/// The body of a preview: an `.asvp` file of the name given.
export function previewBody(profile: Profile, name: string, tolerance: number): string {
  return thinBody(profile, name, PLAIN_KIND, {}, tolerance);
}

/// Indices, ascending, of the levels of `profile` that the rows of a thinned file mean, or null when
/// they are of another profile. The file has two decimals; of levels that read the same in it the
/// first is taken, which leaves enough for the others.
export function keptLevels(profile: Profile, rows: Pick<Profile, "lists" | "count">): number[] | null {
  const { svp_Depth: depths, svp_Speed: speeds } = profile.lists;
  const kept: number[] = [];
  let level = 0;
  for (let row = 0; row < rows.count; ++row) {
    const depth = rows.lists.svp_Depth[row];
    const speed = rows.lists.svp_Speed[row];
    while (level < profile.count && !(reads(depths[level], depth) && reads(speeds[level], speed))) ++level;
    if (level === profile.count) return null;
    kept.push(level++);
  }
  // Both ends are always kept.
  return kept[0] === 0 && kept[kept.length - 1] === profile.count - 1 ? kept : null;
}

export interface Difference {
  /// Largest difference in sound speed, m/s, and the depth (m) at which it is.
  speed: number;
  depth: number;
}

/// The largest difference between a profile and the straight lines through some of its levels, over
/// all its levels. `kept` are indices, ascending, the first and the last level among them.
export function largestDifference({ lists }: Profile, kept: readonly number[]): Difference {
  const { svp_Depth: depths, svp_Speed: speeds } = lists;
  const at = (list: readonly number[], level: number) => list[level] ?? NaN;
  const largest: Difference = { speed: 0, depth: at(depths, kept[0] ?? 0) };
  for (let i = 1; i < kept.length; ++i) {
    const upper = kept[i - 1] ?? 0;
    const lower = kept[i] ?? 0;
    const height = at(depths, lower) - at(depths, upper);
    for (let level = upper + 1; level < lower; ++level) {
      const part = height > 0 ? (at(depths, level) - at(depths, upper)) / height : 0;
      const line = at(speeds, upper) + part * (at(speeds, lower) - at(speeds, upper));
      const speed = Math.abs(at(speeds, level) - line);
      if (speed > largest.speed) Object.assign(largest, { speed, depth: at(depths, level) });
    }
  }
  return largest;
}

/// A profile of some levels of another, with all that is known of each, under the name of the file
/// that has been written of it.
export function thinned(
  before: Profile,
  kept: readonly number[],
  filename: string,
  { time, latitude, longitude }: Occasion,
): Profile {
  const { lists: all, header, joined, ...frame } = before;
  const lists = {} as Record<ListKey, readonly number[]>;
  for (const key of LIST_KEYS) lists[key] = kept.map((level) => all[key][level] ?? NaN);
  const stillJoined = new Set(kept.flatMap((level, i) => (joined?.has(level) ? [i] : [])));
  return {
    ...frame,
    filename,
    header: {
      ...header,
      hsvp_filetime: time,
      hsvp_filelat: latitude,
      hsvp_filelon: longitude,
      hsvp_filesamp: kept.length,
    },
    lists,
    count: kept.length,
    ...(stillJoined.size > 0 ? { joined: stillJoined } : {}),
  };
}

/// Whether a value with two decimals is what `own` reads as.
function reads(own: number | undefined, written: number | undefined): boolean {
  if (own === undefined || written === undefined) return false;
  // As the 32-bit float that the engine has of it; one that is no number went out as 0. A tie may
  // go either way.
  const sent = Number.isNaN(own) ? 0 : Math.fround(own);
  return Math.abs(sent * 100 - Math.round(written * 100)) <= 0.5 + 1e-6;
}
