/// What the user is told about edits of levels.
import { listName } from "./cell-values";
import { formatCount, formatValue } from "./format";
import { columnsSent } from "./identifiers";
import { LEAST_WATER_SPEED, type Air, type surfaceFault } from "./level-edits";
import { levelCount } from "./outbox-words";
import type { Profile } from "./profile";
import { HEADER_KEYS, LIST_KEYS, type HeaderKey } from "./protocol";

export function droppedText(profile: Profile, { levels, byDepth, bySpeed }: Air): string {
  if (levels.length === 0) return `No level of ${profile.filename} lies in air; nothing was dropped.`;
  if (levels.length === profile.count) {
    return `All levels of ${profile.filename} lie in air; none was dropped, since nothing would be left.`;
  }
  const why = [
    ...(byDepth > 0 ? [`${formatCount(byDepth)} not below the surface`] : []),
    ...(bySpeed > 0 ? [`${formatCount(bySpeed)} below it with a sound speed under ${LEAST_WATER_SPEED} m/s`] : []),
  ];
  return `${levelCount(levels.length)} in air dropped: ${why.join(", ")}. They were ${rangesText(levels)}.`;
}

export function downcastText(profile: Profile, kept: number): string {
  if (kept <= 1) return `${profile.filename} has no downcast: its first level is the deepest. Nothing was changed.`;
  return kept === profile.count
    ? `${profile.filename} has no upcast: its last level is the deepest. Nothing was changed.`
    : `Downcast kept: ${formatCount(kept)} of ${levelCount(profile.count)}, to the deepest one.`;
}

export function upcastText(profile: Profile, kept: number): string {
  if (kept <= 1) return `${profile.filename} has no upcast: its last level is the deepest. Nothing was changed.`;
  return `Upcast kept: ${formatCount(kept)} of ${levelCount(profile.count)}, turned so that depth grows.`;
}

export function surfaceFaultText(profile: Profile, fault: Exclude<ReturnType<typeof surfaceFault>, "">): string {
  switch (fault) {
    case "there":
      return `${profile.filename} has a level at 0 m already.`;
    case "above":
      return `${profile.filename} begins above the water. Drop the levels in air first.`;
    case "order":
      return `The first level of ${profile.filename} is not the shallowest. Reverse the cast or sort it by depth first.`;
    case "air":
      return (
        `The first level has ${formatValue(profile.lists.svp_Speed[0])} m/s, which no water has. ` +
        "Drop the levels in air, or mend it, first."
      );
  }
}

/// What was changed by hand in a cast and does not go into the rows of a datagram of this kind, as
/// sentences; "" when all of it does.
export function notCarriedText(profile: Profile, identifier: string): string {
  const sent = columnsSent(identifier);
  const lost = LIST_KEYS.filter((key) => profile.edited?.has(key) && !sent.includes(key));
  if (lost.length === 0) return "";
  const names = lost.map((key) => listName(profile, key)).join(" and ");
  return (
    `You have changed the ${names} of this cast. The rows of kind ${identifier} do not carry that: whoever ` +
    "reads them computes it from the other columns. Another kind can be chosen in the header."
  );
}

const ASVP_KEEPS_NOT: readonly HeaderKey[] = ["hsvp_filetype", "hsvp_filecomment"];
const DATAGRAM_KEEPS: readonly HeaderKey[] = [
  "hsvp_filetime", "hsvp_filelat", "hsvp_filelon", "hsvp_filetype", "hsvp_filesamp", "hsvp_filecomment",
];

/// Fields of the header that the user has stated and that a file of this kind does not keep, as a
/// sentence; "" when it keeps them all.
export function headerLostText(
  profile: Profile, kind: "asvp" | "datagram", label: (key: HeaderKey) => string,
): string {
  const isLost = (key: HeaderKey) =>
    kind === "asvp" ? ASVP_KEEPS_NOT.includes(key) : !DATAGRAM_KEEPS.includes(key);
  const lost = HEADER_KEYS.filter((key) => profile.edited?.has(key) && isLost(key));
  if (lost.length === 0) return "";
  const other = kind === "asvp" ? "a datagram file" : "an .asvp file";
  return `Not kept of the header: ${lost.map((key) => label(key).toLowerCase()).join(", ")}; ${other} keeps that.`;
}

/// "levels 1 to 3 and 9", ascending.
function rangesText(levels: readonly number[]): string {
  const ranges: [number, number][] = [];
  for (const level of levels) {
    const last = ranges[ranges.length - 1];
    if (last && last[1] === level - 1) last[1] = level;
    else ranges.push([level, level]);
  }
  const name = (level: number) => formatCount(level + 1);
  const words = ranges.map(([from, to]) => (from === to ? name(from) : `${name(from)} to ${name(to)}`));
  return `${levels.length === 1 ? "level" : "levels"} ${words.join(" and ")}`;
}
