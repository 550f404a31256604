/// What the rows of a datagram carry of a cast, what they need that is not there, and what they leave
/// out.
import { holdsConductivity, columnsOf } from "./columns";
import { listName } from "./cell-values";
import { formatValue } from "./format";
import { columnsSent, contentIdentifier } from "./identifiers";
import { rangesText } from "./level-ranges";
import { isJoined, type Profile } from "./profile";
import { LIST_KEYS, type ListKey } from "./protocol";

/// What an .asvp file, the receiver and the distribution get of each level.
export const PAIR_COLUMNS: readonly ListKey[] = ["svp_Depth", "svp_Speed"];

/// Which levels have no value in one of these lists, as a sentence; "" where all are there. They would
/// go out as zeros.
export function absentText(profile: Profile, keys: readonly ListKey[]): string {
  const parts = keys.flatMap((key) => {
    const levels = levelsWhere(profile, (level) => !Number.isFinite(profile.lists[key][level] ?? NaN));
    if (levels.length === 0) return [];
    const verb = levels.length === 1 ? "has" : "have";
    return [`${rangesText(levels)} ${verb} no ${listName(profile, key)}`];
  });
  const text = parts.join("; ");
  return text && `${text.charAt(0).toUpperCase()}${text.slice(1)}.`;
}

/// The kinds with depth and sound speed in their rows that a profile can go out as instead.
export function otherKinds(profile: Profile, identifier: string): string[] {
  const shown = new Set<ListKey>(columnsOf(profile).map(({ key }) => key));
  const holds = (kind: string) =>
    kind === "00" || (shown.has("svp_Temp") && shown.has("svp_Sal") && !holdsConductivity(profile));
  return ["00", "01"].filter(
    (kind) => kind !== identifier && holds(kind) && absentText(profile, columnsSent(kind)) === "",
  );
}

/// What was changed by hand in a cast, or joined to it, and does not go into the rows of a datagram of
/// this kind, one sentence each.
export function notCarried(profile: Profile, identifier: string): string[] {
  const lost = listsLost(profile, columnsSent(identifier));
  const sentences: string[] = [];
  if (lost.length > 0) {
    const names = lost.map((key) => listName(profile, key)).join(" and ");
    sentences.push(
      `You have changed the ${names} of this cast. The rows of kind ${identifier} do not carry that: whoever ` +
        "reads them computes it from the other columns.",
    );
  }
  const joined = joinedLevels(profile);
  if (joined.length > 0 && contentIdentifier(identifier)?.hasSpeed === false) {
    const known = joinedValues(profile, identifier, joined);
    const [one, they] = joined.length === 1 ? ["has", "was"] : ["have", "were"];
    sentences.push(
      `${capital(rangesText(joined))} ${they} joined and ${one} a sound speed of ${joined.length === 1 ? "its" : "their"} ` +
        `own. The rows of kind ${identifier} do not carry it: whoever reads them computes one anew` +
        `${known && ` from ${known}, which nobody measured there`}, and may come to another.`,
    );
  }
  return sentences;
}

/// What the rows of a kind carry for joined levels where the page shows that nothing was measured, as
/// a sentence; "" where there is no such thing.
export function joinedText(profile: Profile, identifier: string): string {
  const joined = joinedLevels(profile);
  const values = joinedValues(profile, identifier, joined);
  if (!values) return "";
  const were = joined.length === 1 ? "was" : "were";
  return `${capital(rangesText(joined))} ${were} joined, not measured: the rows carry ${values} there, where the page shows “–”.`;
}

/// Lists that the user has changed and that are none of those that go out.
export function listsLost({ edited, lists }: Profile, kept: readonly ListKey[]): ListKey[] {
  return LIST_KEYS.filter((key) => {
    if (!edited?.has(key) || kept.includes(key)) return false;
    // The probe's own list says the same as one that is kept, in most casts.
    const twin = key === "svp_Depth_CTD" ? "svp_Depth" : key === "svp_Speed_CTD" ? "svp_Speed" : null;
    return !twin || !kept.includes(twin) || lists[key].some((value, i) => !Object.is(value, lists[twin][i]));
  });
}

/// Indices of the levels behind which nothing but an extension stands.
export function joinedLevels(profile: Profile): number[] {
  return levelsWhere(profile, (level) => isJoined(profile, level));
}

/// "temperature 9.40 and salinity 35.00 to 35.20".
function joinedValues(profile: Profile, identifier: string, joined: readonly number[]): string {
  const decimals = new Map(columnsOf(profile).map((column) => [column.key, column.decimals]));
  const measured: readonly ListKey[] = ["svp_Temp", "svp_Sal", "svp_AbsCoef"];
  const parts = columnsSent(identifier).filter((key) => measured.includes(key)).flatMap((key) => {
    let [least, most] = [Infinity, -Infinity];
    for (const level of joined) {
      const value = profile.lists[key][level] ?? NaN;
      if (value < least) least = value;
      if (value > most) most = value;
    }
    if (least > most) return [];
    const [from, to] = [least, most].map((value) => formatValue(value, decimals.get(key)).replace("-", "−"));
    return [`${listName(profile, key)} ${from === to ? from : `${from} to ${to}`}`];
  });
  const last = parts.pop() ?? "";
  return parts.length > 0 ? `${parts.join(", ")} and ${last}` : last;
}

function levelsWhere({ count }: Profile, holds: (level: number) => boolean): number[] {
  const levels: number[] = [];
  for (let level = 0; level < count; ++level) if (holds(level)) levels.push(level);
  return levels;
}

function capital(text: string): string {
  return `${text.charAt(0).toUpperCase()}${text.slice(1)}`;
}
