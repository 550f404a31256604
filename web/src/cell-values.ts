/// Values of levels as users type them: what is taken, and why something is not.
import { holdsConductivity, holdsPressures, type Column } from "./columns";
import { formatCount } from "./format";
import { isJoined, type Profile } from "./profile";
import type { ListKey } from "./protocol";
import { noNumberText, typedNumber } from "./typed-number";

interface Kind {
  name: string;
  unit: string;
  /// What can be meant, bounds included. It is wide: whether a value can be used is for the check to
  /// say, and these only catch what is no such value at all.
  from: number;
  to: number;
}

const KINDS: Record<ListKey, Kind> = {
  svp_Depth: { name: "depth", unit: "m", from: -1000, to: 15_000 },
  svp_Depth_CTD: { name: "probe depth", unit: "m", from: -1000, to: 15_000 },
  svp_Speed: { name: "sound speed", unit: "m/s", from: 200, to: 2000 },
  svp_Speed_CTD: { name: "probe speed", unit: "m/s", from: 200, to: 2000 },
  svp_Temp: { name: "temperature", unit: "°C", from: -10, to: 60 },
  svp_Sal: { name: "salinity", unit: "", from: 0, to: 500 },
  svp_AbsCoef: { name: "absorption", unit: "", from: 0, to: 100_000 },
};

function kindOf(profile: Profile, key: ListKey): Kind {
  if (key === "svp_Depth_CTD" && holdsPressures(profile)) return { name: "pressure", unit: "MPa", from: -1, to: 200 };
  if (key === "svp_Sal" && holdsConductivity(profile)) return { ...KINDS.svp_Sal, name: "conductivity" };
  return KINDS[key];
}

/// What a list holds, in words, as in "sound speed".
export function listName(profile: Profile, key: ListKey): string {
  return kindOf(profile, key).name;
}

/// The number that a user has typed for a list, or why it is not taken, as a sentence.
export function typedValue(profile: Profile, key: ListKey, text: string): { value: number } | { fault: string } {
  const { name, unit, from, to } = kindOf(profile, key);
  if (text.trim() === "") return { fault: `A level needs a ${name}. To take the level out, press Escape, then Delete.` };
  const value = typedNumber(text);
  if (value === null) return { fault: noNumberText(text) };
  if (value >= from && value <= to) return { value };
  return { fault: `The ${name} must lie from ${bound(from)} to ${bound(to)}${unit && ` ${unit}`}.` };
}

/// Why a value cannot be changed, as a sentence; "" when it can.
export function untouchable(profile: Profile, { key }: Pick<Column, "key">, level: number): string {
  const isMeasured = key === "svp_Temp" || key === "svp_Sal" || key === "svp_AbsCoef";
  if (!isMeasured || !isJoined(profile, level)) return "";
  return `Level ${formatCount(level + 1)} was joined, not measured: it has no ${listName(profile, key)} of its own.`;
}

function bound(value: number): string {
  return value < 0 ? `−${formatCount(-value)}` : formatCount(value);
}
