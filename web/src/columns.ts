/// What is shown of a level, and how: used by the table, the hover text and the read-out.
import { decimalsFor, formatValue } from "./format";
import { carriesConductivity, identifierOf } from "./identifiers";
import { isJoined, type Profile } from "./profile";
import type { ListKey } from "./protocol";

export interface Column {
  key: ListKey;
  label: string;
  unit: string;
  /// Decimals that show what was measured without loss; computed values have no more than that.
  decimals: number;
}

/// A quantity that can be plotted against depth.
export interface PlotQuantity {
  key: ListKey;
  /// Its name in a choice.
  name: string;
  /// What its axis says.
  label: string;
}

interface Candidate {
  key: ListKey;
  label: string;
  unit: string;
  /// Shown even when it has no values.
  always?: true;
  /// Left out when it says the same as this other column.
  unlike?: ListKey;
}

const CANDIDATES: readonly Candidate[] = [
  { key: "svp_Depth", label: "Depth", unit: "m", always: true },
  { key: "svp_Speed", label: "Speed", unit: "m/s", always: true },
  { key: "svp_Temp", label: "Temp.", unit: "°C" },
  { key: "svp_Sal", label: "Salinity", unit: "PSU" },
  // The unit of absorption is the source file's own, so none is claimed here.
  { key: "svp_AbsCoef", label: "Absorption", unit: "" },
  { key: "svp_Depth_CTD", label: "Probe depth", unit: "m", unlike: "svp_Depth" },
  { key: "svp_Speed_CTD", label: "Probe speed", unit: "m/s", unlike: "svp_Speed" },
];

/// The columns that this profile has something to say in. A list of nothing but zeros is how a
/// profile says that it has no such values, and a file without separate probe values repeats
/// depth and speed.
export function columnsOf(profile: Profile): Column[] {
  const { lists } = profile;
  return CANDIDATES.filter(({ key, always, unlike }) => {
    if (always) return true;
    const other = unlike ? lists[unlike] : undefined;
    return lists[key].some(
      (value, level) => value !== 0 && !Number.isNaN(value) && value !== other?.[level],
    );
  }).map((candidate) => {
    const { key } = candidate;
    return { key, ...wordsFor(candidate, profile), decimals: shownDecimals(decimalsFor(lists[key]), key) };
  });
}

function wordsFor({ key, label, unit }: Candidate, profile: Profile): { label: string; unit: string } {
  // The unit of a conductivity is the source file's own.
  if (key === "svp_Sal" && holdsConductivity(profile)) return { label: "Conduct.", unit: "" };
  if (key === "svp_Depth_CTD" && holdsPressures(profile)) return { label: "Pressure", unit: "MPa" };
  return { label, unit };
}

/// Instruments give up to four decimals. A value with more was computed, and its digits beyond the
/// third say nothing about water; a pressure in MPa needs two more for the same.
function shownDecimals(decimals: number, key: ListKey): number {
  if (key === "svp_AbsCoef") return decimals;
  if (key === "svp_Depth_CTD") return Math.min(decimals, 5);
  return decimals > 4 ? 3 : decimals;
}

/// Whether what the probe measured for a depth is a pressure in MPa: some 1.01 of it to 100 m.
export function holdsPressures(profile: Profile): boolean {
  const { lists } = profile;
  let compared = 0;
  const isPressure = lists.svp_Depth.every((depth, level) => {
    if (!(depth > 1) || isJoined(profile, level)) return true;
    compared += 1;
    const ratio = depth / (lists.svp_Depth_CTD[level] ?? Number.NaN);
    return ratio > 94 && ratio < 101;
  });
  return isPressure && compared > 0;
}

const PLOT_NAMES: Partial<Record<ListKey, string>> = {
  svp_Speed: "Sound speed",
  svp_Temp: "Temperature",
  svp_Sal: "Salinity",
  svp_AbsCoef: "Absorption",
};

/// What can be plotted of a profile with these columns; sound speed comes first.
export function plotQuantities(columns: readonly Column[]): PlotQuantity[] {
  return columns.flatMap(({ key, label, unit }) => {
    const name = label === "Conduct." ? "Conductivity" : PLOT_NAMES[key];
    return name ? [{ key, name, label: unit ? `${name} (${unit})` : name }] : [];
  });
}

/// What an extension does not know: its levels repeat the last measured value, which is needed where
/// every level must have one, but is none to be looked at.
const MEASURED_ONLY: readonly ListKey[] = ["svp_Temp", "svp_Sal", "svp_AbsCoef"];

/// The values of a list that are worth looking at: NaN where none was measured.
export function shownValues(profile: Profile, key: ListKey): readonly number[] {
  const values = profile.lists[key];
  if (!profile.joined || !MEASURED_ONLY.includes(key)) return values;
  return values.map((value, level) => (isJoined(profile, level) ? NaN : value));
}

/// One of `shownValues`.
export function shownValue(profile: Profile, key: ListKey, level: number): number | undefined {
  const isUnknown = MEASURED_ONLY.includes(key) && isJoined(profile, level);
  return isUnknown ? NaN : profile.lists[key][level];
}

/// Whether the salinities of a profile are conductivities as its file has them.
export function holdsConductivity({ header, hasConductivities }: Profile): boolean {
  return hasConductivities ?? carriesConductivity(identifierOf(header.hsvp_filetype));
}

/// One value of a level with its unit, "12.50 m".
export function valueText(profile: Profile, column: Column, level: number): string {
  const text = formatValue(shownValue(profile, column.key, level), column.decimals);
  return column.unit ? `${text} ${column.unit}` : text;
}
