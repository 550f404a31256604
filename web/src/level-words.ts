/// What the user is told about edits of levels.
import { formatCount, formatValue } from "./format";
import { LEAST_WATER_SPEED, type Air, type surfaceFault } from "./level-edits";
import { rangesText } from "./level-ranges";
import { levelCount } from "./outbox-words";
import type { Profile } from "./profile";

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
