/// Which levels a check reply means.

/// Indices, ascending, of the levels that a check reply calls invalid, or null when the reply
/// does not fit these levels and so cannot be about them.
///
/// The reply lists the invalid samples as pairs of speed and depth in sample order, without their
/// numbers. Pairs and levels are walked together from the end: of equal samples the check refuses
/// the later ones and accepts at most the first, so the last equal level is the one that is meant.
export function invalidLevels(
  speeds: readonly number[],
  depths: readonly number[],
  invalidSpeeds: unknown,
  invalidDepths: unknown,
): number[] | null {
  if (!Array.isArray(invalidSpeeds) || !Array.isArray(invalidDepths)) return null;
  if (invalidSpeeds.length !== invalidDepths.length) return null;

  const found: number[] = [];
  let level = depths.length - 1;
  for (let pair = invalidSpeeds.length - 1; pair >= 0; --pair) {
    while (
      level >= 0 &&
      !(same(speeds[level], invalidSpeeds[pair]) && same(depths[level], invalidDepths[pair]))
    ) {
      --level;
    }
    if (level < 0) return null;
    found.push(level--);
  }
  return found.reverse();
}

/// Equal as 32-bit floats, which is what the engine compared. A level without a number went out
/// as 0 and comes back as 0.
function same(level: number | undefined, reported: unknown): boolean {
  if (typeof reported !== "number") return false;
  const sent = level === undefined || Number.isNaN(level) ? 0 : level;
  return Math.fround(sent) === Math.fround(reported);
}
