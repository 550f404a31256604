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

/// A coordinate that a user has typed, in degrees, or why it is none, as a sentence. Taken are decimal
/// degrees, and degrees with minutes and seconds, with a sign or a hemisphere letter: "-59.5",
/// "59 30.0 S", "59° 30′ 12″ S", "59-30.5N", "59:30.5", "59d30m N", "5930.5N".
export function readDegrees(text: string, axis: Axis): { degrees: number } | { fault: string } {
  const { positive, negative, limit } = axis;
  const name = limit === 90 ? "latitude" : "longitude";
  const example = `Write it as in ${limit === 90 ? "59 30.5 N or 59.508" : "010 15.2 E or 10.253"}.`;
  const none = { fault: `This is no ${name}. ${example}` };
  let plain = text.trim().toUpperCase().replace(/,/g, ".").replace(/−/g, "-");
  const marked = withoutWords(plain, axis);
  if (marked === null) {
    return { fault: "Whether the last S means seconds or south is not clear: write 59 30 12 N or 59 30 12 S." };
  }
  plain = marked;
  const match = /^([NSEW])?\s*([+-])?\s*(\d[\d.\s°º'′’"″:-]*?)\s*([NSEW])?$/.exec(plain);
  if (!match) return none;
  const [, before, sign, digits = "", behind] = match;
  if (before && behind) return { fault: "The hemisphere stands twice: write it once." };
  const letter = before ?? behind;
  if (letter && letter !== positive && letter !== negative) {
    return { fault: `${letter} is for a ${limit === 90 ? "longitude" : "latitude"}; a ${name} has ${positive} or ${negative}.` };
  }
  if (letter && sign) {
    return { fault: `A sign and ${letter} together may contradict each other: write one of them, ${sign}${digits} or ${digits} ${letter}.` };
  }

  const parts = digits.split(/[\s°º'′’"″:-]+/).filter(Boolean);
  if (parts.length > 3 || !parts.every((part) => /^\d+(\.\d+)?$/.test(part))) return none;
  if (parts.slice(0, -1).some((part) => part.includes("."))) {
    return { fault: `Only the last number may have decimals. ${example}` };
  }
  const compact = parts.length === 1 ? compactParts(parts[0] ?? "", axis) : null;
  if (compact && !letter) {
    const [whole, minutes] = compact;
    return { fault: `If this means ${whole}° ${minutes}′, write ${whole} ${minutes} ${positive} or ${whole} ${minutes} ${negative}; degrees go up to ${limit}.` };
  }
  const [degrees = 0, minutes = 0, seconds = 0] = (compact ?? parts).map(Number);
  if (minutes >= 60) return { fault: `There are ${minutes} minutes in it; they go up to 59.999. ${example}` };
  if (seconds >= 60) return { fault: `There are ${seconds} seconds in it; they go up to 59.999. ${example}` };
  const size = degrees + minutes / 60 + seconds / 3600;
  const value = within(sign === "-" || letter === negative ? -size : size, axis);
  return value === null ? { fault: `This is no ${name} up to ${limit}° ${positive} or ${negative}.` } : { degrees: value };
}

/// A text with marks in place of the words for degrees, minutes and seconds; null where its last "S"
/// may be either of two things.
function withoutWords(text: string, { negative }: Axis): string | null {
  const marked = text
    .replace(/(\d)\s*(?:DEGREES?|DEG|D)\.?\s*(?=[\dNSEW]|$)/, "$1° ")
    .replace(/(\d)\s*(?:MINUTES?|MIN|M)\.?\s*(?=[\dNSEW]|$)/, "$1′ ");
  const seconds = /[′'].*\d\s*(SECONDS?|SECS?|S)\.?\s*([NSEW]?)$/.exec(marked);
  if (!seconds) return marked;
  const [, word, letter] = seconds;
  if (word === "S" && !letter && negative === "S") {
    // Marks that are no letters leave it to mean the hemisphere.
    return marked === text ? marked : null;
  }
  return marked.replace(/(\d)\s*(?:SECONDS?|SECS?|S)\.?\s*([NSEW]?)$/, "$1″ $2");
}

/// Degrees and minutes of digits without a mark between them, as "5930.5" has them; null for what can
/// be degrees, and for other numbers of digits.
function compactParts(part: string, { limit }: Axis): [string, string] | null {
  const [, whole = "", minutes = ""] = /^(\d+)(\d\d(?:\.\d+)?)$/.exec(part) ?? [];
  const mostDigits = limit === 90 ? 2 : 3;
  return Number(part) > 360 && whole.length >= 2 && whole.length <= mostDigits ? [whole, minutes] : null;
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
