/// Positions: what a header states, what a user types, and the text that goes to the engine.
import { isAbsent } from "./format";

/// One of the two coordinates of a position.
export interface Axis {
  /// Largest size in degrees.
  limit: 90 | 180;
  positive: "N" | "E";
  negative: "S" | "W";
}

export const LATITUDE: Axis = { limit: 90, positive: "N", negative: "S" };
export const LONGITUDE: Axis = { limit: 180, positive: "E", negative: "W" };

/// A coordinate of a header as decimal degrees, in the header's own digits where they will do, or
/// "" when there is none. Longitudes above 180 become the west that they mean.
export function headerDegrees(value: string | number | undefined, axis: Axis): string {
  const text = String(value ?? "").trim();
  const degrees = isAbsent(text) ? null : within(Number(text), axis);
  if (degrees === null) return "";
  return degrees === Number(text) && /^-?\d+(\.\d+)?$/.test(text) ? text : degreesText(degrees);
}

/// A coordinate that a user has typed, in degrees, or null when it is none: decimal degrees, or
/// degrees with minutes and seconds, with a sign or a hemisphere letter ("-59.5", "59 30.0 S",
/// "59° 30′ 12″ S").
export function typedDegrees(text: string, axis: Axis): number | null {
  const plain = text.trim().toUpperCase().replace(/,/g, ".").replace(/−/g, "-");
  const match = /^([NSEW])?\s*([+-])?\s*(\d[\d.\s°º'′’"″]*?)\s*([NSEW])?$/.exec(plain);
  if (!match) return null;
  const [, before, sign, digits = "", behind] = match;
  if ([before, sign, behind].filter(Boolean).length > 1) return null;
  const letter = before ?? behind;
  if (letter && letter !== axis.positive && letter !== axis.negative) return null;

  const parts = digits.split(/[\s°º'′’"″]+/).filter(Boolean);
  // Only the last part may have decimals: "59.5 30" is no position.
  if (parts.length > 3 || !parts.every((part, i) =>
    (i === parts.length - 1 ? /^\d+(\.\d+)?$/ : /^\d+$/).test(part))) return null;
  const [degrees = 0, minutes = 0, seconds = 0] = parts.map(Number);
  if (minutes >= 60 || seconds >= 60) return null;
  const size = degrees + minutes / 60 + seconds / 3600;
  return within(sign === "-" || letter === axis.negative ? -size : size, axis);
}

/// Degrees as text without an exponent; nine decimals are a tenth of a millimetre.
export function degreesText(degrees: number): string {
  const text = degrees.toFixed(9).replace(/\.?0+$/, "");
  return text === "-0" ? "0" : text;
}

/// Letter of the hemisphere in which a coordinate lies, from its text.
export function hemisphere(degrees: string, axis: Axis): string {
  return Number(degrees) < 0 ? axis.negative : axis.positive;
}

function within(degrees: number, { limit }: Axis): number | null {
  const turned = limit === 180 && degrees > 180 && degrees <= 360 ? degrees - 360 : degrees;
  return Math.abs(turned) <= limit ? turned : null;
}
