/// Casts that are repaired in one step: what is sent for it, and the profile that comes of it.
import { baseName, type Profile } from "./profile";
import { textPiece } from "./protocol";
import type { Occasion } from "./protocol-output";
import { FULL_DEPTH, thinBody, thinKind } from "./thinning";

/// Name of the file that the engine writes for a profile of this name and kind.
export function fixedName({ filename, header }: Pick<Profile, "filename" | "header">): string {
  const stem = textPiece(baseName(filename)).replace(/\.[^.]*$/, "");
  return `${stem}_fixed.${thinKind({ header }) === "SoundVelocity" ? "asvp" : "ssp"}`;
}

/// Body of a request that fixes a profile, in the 16 pieces of thinning.
export function fixBody(profile: Profile, occasion: Occasion, tolerance: number): string {
  return thinBody(profile, profile.filename, thinKind(profile), occasion, tolerance);
}

/// What a fix made of a profile.
export interface FixFacts {
  /// Levels of the profile that are invalid and were left out.
  invalid: number;
  /// Depth (m) from which on it was continued; NaN when it was not.
  from: number;
}

/// Indices of the levels that cleaning keeps: a sound speed from 1400 to 1700 m/s, no negative depth,
/// and each at least 0.01 m deeper than the one kept before it.
export function validLevels({ lists, count }: Profile): number[] {
  const { svp_Depth, svp_Speed } = lists;
  const kept: number[] = [];
  let last = -Infinity;
  for (let i = 0; i < count; ++i) {
    const depth = svp_Depth[i] ?? NaN;
    const speed = svp_Speed[i] ?? NaN;
    if (!(speed >= 1400 && speed <= 1700 && depth >= 0) || last > depth - 0.01) continue;
    kept.push(i);
    last = depth;
  }
  return kept;
}

/// The profile that was read back of the file of a fix, with the levels marked that were not in
/// `before`: those below the deepest one that is. A file has two decimals.
export function fixedProfile(before: Profile, read: Profile): { profile: Profile; facts: FixFacts } {
  const valid = validLevels(before);
  const deepest = before.lists.svp_Depth[valid[valid.length - 1] ?? -1] ?? NaN;
  const joined = new Set<number>();
  read.lists.svp_Depth.forEach((depth, level) => {
    if (depth > deepest + ROUNDING) joined.add(level);
  });
  // What had been joined before is no more measured than what was joined now.
  before.joined?.forEach((level) => {
    const depth = before.lists.svp_Depth[level] ?? NaN;
    read.lists.svp_Depth.forEach((each, i) => {
      if (Math.abs(each - depth) <= ROUNDING) joined.add(i);
    });
  });
  return {
    profile: joined.size > 0 ? { ...read, joined } : read,
    facts: {
      invalid: before.count - valid.length,
      from: deepest < FULL_DEPTH - 1 ? deepest : NaN,
    },
  };
}

/// Half a step of the second decimal, and what 32-bit floats add to it.
const ROUNDING = 0.0055;

/// Whether a profile begins below the surface.
export function lacksSurface({ lists, count }: Profile): boolean {
  return count > 0 && (lists.svp_Depth[0] ?? NaN) > 0;
}
