/// Content identifiers of the sound speed profile datagram: which columns its rows carry.
import type { ListKey } from "./protocol";

/// The identifier of depth and sound speed alone, which every profile can be sent as.
export const PLAIN = "00";

const LEGAL: readonly number[] = [
  0, 1, 2, 3, 4, 5, 6, 7, 10, 11, 12, 13, 14, 20, 21, 22, 23, 30, 31, 32, 33, 40, 41, 42, 43,
  50, 51, 52, 53,
];

const SPEEDS = [0, 1, 6, 7, 10, 11, 12, 14];
const ABSORPTIONS = [6, 11, 21, 31, 41, 51];
const NO_TEMPERATURES = [0, 6, 10, 11];
const CONDUCTIVITIES = [3, 5, 7, 14, 30, 31, 32, 50, 51, 52];
const OTHER_FIRST_COLUMNS = [4, 5, 7, 14];

/// Whether the fourth column of an identifier's rows is a conductivity in place of a salinity.
export function carriesConductivity(identifier: string): boolean {
  return identifier !== "" && CONDUCTIVITIES.includes(Number(identifier));
}

/// The identifier of a profile's type in two digits, or "" when the type is no legal one.
export function identifierOf(type: string | number | undefined): string {
  const text = String(type ?? "").trim();
  if (text === "SoundVelocity") return PLAIN;
  if (!/^\d{1,2}$/.test(text) || !LEGAL.includes(Number(text))) return "";
  return text.padStart(2, "0");
}

/// The lists that go into the rows of a datagram, in their order.
export function columnsSent(identifier: string): ListKey[] {
  const number = Number(identifier);
  const other = OTHER_FIRST_COLUMNS.includes(number) || number >= 40;
  const columns: ListKey[] = [other ? "svp_Depth_CTD" : "svp_Depth"];
  if (SPEEDS.includes(number)) columns.push("svp_Speed");
  if (!NO_TEMPERATURES.includes(number)) columns.push("svp_Temp", "svp_Sal");
  if (ABSORPTIONS.includes(number)) columns.push("svp_AbsCoef");
  return columns;
}
