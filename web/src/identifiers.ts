/// Content identifiers of the sound speed profile datagram: which columns its rows carry, and what
/// those mean.
import type { ListKey } from "./protocol";

/// The identifier of depth and sound speed alone, which every profile can be sent as.
export const PLAIN = "00";

export interface ContentIdentifier {
  number: number;
  /// What the rows begin with; "none" where no rows are written at all.
  first: "depth" | "other" | "none";
  hasSpeed: boolean;
  hasTemperature: boolean;
  hasSalinity: boolean;
  hasAbsorption: boolean;
  /// The sound speed is computed by whoever reads the rows.
  computesSpeed: boolean;
  /// The fourth column is a conductivity in place of a salinity.
  hasConductivity: boolean;
  /// The first column is a pressure.
  hasPressure: boolean;
}

const [depth, other, none] = ["depth", "other", "none"] as const;
const [yes, no] = [true, false];

/// All that are legal, as the engine has them.
export const CONTENT_IDENTIFIERS: readonly ContentIdentifier[] = (
  [
    // number, first, speed, temperature, salinity, absorption, speed computed, conductivity, pressure
    [0, depth, yes, no, no, no, no, no, no],
    [1, depth, yes, yes, yes, no, no, no, no],
    [2, depth, no, yes, yes, no, yes, no, no],
    [3, depth, no, yes, yes, no, yes, yes, no],
    [4, other, no, yes, yes, no, yes, no, yes],
    [5, other, no, yes, yes, no, yes, yes, yes],
    [6, depth, yes, no, no, yes, no, no, no],
    [7, other, yes, yes, yes, no, no, yes, yes],
    [10, depth, yes, no, no, no, no, no, no],
    [11, depth, yes, no, no, yes, no, no, no],
    [12, depth, yes, yes, yes, no, no, no, no],
    [13, none, no, no, no, no, no, no, no],
    [14, other, yes, yes, yes, no, no, yes, yes],
    [20, depth, no, yes, yes, no, yes, no, no],
    [21, depth, no, yes, yes, yes, yes, no, no],
    [22, depth, no, yes, yes, no, yes, no, no],
    [23, none, no, no, no, no, yes, no, no],
    [30, depth, no, yes, yes, no, yes, yes, no],
    [31, depth, no, yes, yes, yes, yes, yes, no],
    [32, depth, no, yes, yes, no, yes, yes, no],
    [33, none, no, no, no, no, yes, yes, no],
    [40, other, no, yes, yes, no, yes, no, yes],
    [41, other, no, yes, yes, yes, yes, no, yes],
    [42, other, no, yes, yes, no, yes, no, yes],
    [43, none, no, no, no, no, yes, no, yes],
    [50, other, no, yes, yes, no, yes, yes, yes],
    [51, other, no, yes, yes, yes, yes, yes, yes],
    [52, other, no, yes, yes, no, yes, yes, yes],
    [53, none, no, no, no, no, yes, no, yes],
  ] as const
).map(([number, first, speed, temperature, salinity, absorption, computed, conductivity, pressure]) => ({
  number,
  first,
  hasSpeed: speed,
  hasTemperature: temperature,
  hasSalinity: salinity,
  hasAbsorption: absorption,
  computesSpeed: computed,
  hasConductivity: conductivity,
  hasPressure: pressure,
}));

/// What is known of an identifier of one or two digits; null when it is no legal one.
export function contentIdentifier(identifier: string): ContentIdentifier | null {
  if (!/^\d{1,2}$/.test(identifier)) return null;
  return CONTENT_IDENTIFIERS.find(({ number }) => number === Number(identifier)) ?? null;
}

/// An identifier's two digits.
export function digitsOf({ number }: ContentIdentifier): string {
  return String(number).padStart(2, "0");
}

/// What the rows of an identifier carry, in words: "depth, temperature and salinity; the speed is
/// computed".
export function identifierWords({ first, ...has }: ContentIdentifier): string {
  if (first === "none") return "no rows: nothing can be sent as this";
  const carried = [
    has.hasPressure ? "pressure" : "depth",
    ...(has.hasSpeed ? ["sound speed"] : []),
    ...(has.hasTemperature ? ["temperature"] : []),
    ...(has.hasSalinity ? [has.hasConductivity ? "conductivity" : "salinity"] : []),
    ...(has.hasAbsorption ? ["absorption"] : []),
  ];
  const last = carried.pop() ?? "";
  const words = `${carried.join(", ")} and ${last}`;
  return has.computesSpeed ? `${words}; sound speed is computed` : words;
}

/// Whether the fourth column of an identifier's rows is a conductivity in place of a salinity.
export function carriesConductivity(identifier: string): boolean {
  const entry = contentIdentifier(identifier);
  return entry !== null && entry.hasSalinity && entry.hasConductivity;
}

/// The identifier of a profile's type in two digits, or "" when the type is no legal one.
export function identifierOf(type: string | number | undefined): string {
  const text = String(type ?? "").trim();
  if (text === "SoundVelocity") return PLAIN;
  const entry = contentIdentifier(text);
  return entry ? digitsOf(entry) : "";
}

/// The lists that go into the rows of a datagram, in their order.
export function columnsSent(identifier: string): ListKey[] {
  const entry = contentIdentifier(identifier);
  if (!entry || entry.first === "none") return [];
  const columns: ListKey[] = [entry.first === "other" ? "svp_Depth_CTD" : "svp_Depth"];
  if (entry.hasSpeed) columns.push("svp_Speed");
  if (entry.hasTemperature) columns.push("svp_Temp");
  if (entry.hasSalinity) columns.push("svp_Sal");
  if (entry.hasAbsorption) columns.push("svp_AbsCoef");
  return columns;
}
