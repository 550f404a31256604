/// Numbers, times and positions as text. Formatting only: no value is changed on its way.
import { shortestDecimal } from "./protocol";

/// Shown where a profile has no value.
export const ABSENT = "–";

const MOST_DECIMALS = 6;
const LEAST_DECIMALS = 2;

/// Number of decimals (2 to 6) that shows every value of a column without loss.
export function decimalsFor(values: readonly number[]): number {
  let most = LEAST_DECIMALS;
  for (const value of values) {
    if (Number.isInteger(value) || !Number.isFinite(value) || isShownBy(most, value)) continue;
    most = Math.max(most, decimalsOf(shortestDecimal(value)));
    if (most >= MOST_DECIMALS) return MOST_DECIMALS;
  }
  return most;
}

/// Whether so many decimals show a widened 32-bit float without loss. Texts are slow to make, and
/// most values of a long cast need no more decimals than those before.
function isShownBy(decimals: number, value: number): boolean {
  const power = 10 ** decimals;
  return Math.fround(Math.round(value * power) / power) === value;
}

function decimalsOf(text: string): number {
  const [mantissa = "", exponent] = text.split("e");
  const point = mantissa.indexOf(".");
  const decimals = point < 0 ? 0 : mantissa.length - point - 1;
  return exponent === undefined ? decimals : Math.max(0, decimals - Number(exponent));
}

/// A value with a fixed number of decimals, free of the noise of widened 32-bit floats.
export function formatValue(value: number | undefined, decimals = LEAST_DECIMALS): string {
  if (value === undefined || !Number.isFinite(value)) return ABSENT;
  return Number(shortestDecimal(value)).toFixed(decimals);
}

/// A count with its thousands set apart by a narrow space: 20 000.
export function formatCount(count: number): string {
  return String(count).replace(/\B(?=(\d{3})+$)/g, "\u202f");
}

/// A file size in bytes for reading: 980 B, 12 kB, 3.4 MB.
export function formatSize(bytes: number): string {
  if (bytes < 1000) return `${bytes} B`;
  if (bytes < 999_500) return `${Math.round(bytes / 1000)} kB`;
  return `${(bytes / 1e6).toFixed(1)} MB`;
}

/// A moment as "2026-11-15 12:34:56 UTC". Always UTC: a survey's log knows no local time.
export function formatMoment(moment: Date): string {
  return `${moment.toISOString().slice(0, 19).replace("T", " ")} UTC`;
}

/// Time of day as "12:34:56 UTC".
export function formatClock(moment: Date): string {
  return `${moment.toISOString().slice(11, 19)} UTC`;
}

/// A header time for reading. Taken are milliseconds since 1970 and the digits yyyyMMddHHmmss or
/// yyyyMMddHHmm; other text comes back as it is, and "" stands for a time that is not given.
export function formatHeaderTime(value: string | number | undefined): string {
  const text = String(value ?? "").trim();
  if (isAbsent(text) || text === "0") return "";
  const moment = headerMoment(text);
  return moment ? formatMoment(moment) : text;
}

/// The moment that a header time means, or null when it gives none or cannot be read.
export function headerMoment(value: string | number | undefined): Date | null {
  const text = String(value ?? "").trim();
  if (isAbsent(text) || text === "0") return null;
  if (/^\d{12}(\d\d)?$/.test(text)) {
    const moment = momentOfDigits(text);
    if (moment) return moment;
  }
  // Milliseconds of any year up to 2286; what has more digits was meant as a date and is none.
  return /^-?\d{1,13}$/.test(text) ? new Date(Number(text)) : null;
}

/// A moment as the fourteen digits yyyyMMddHHmmss, in UTC.
export function timeDigits(moment: Date): string {
  return moment.toISOString().replace(/\D/g, "").slice(0, 14);
}

function momentOfDigits(digits: string): Date | null {
  const part = (from: number, length = 2) => Number(digits.slice(from, from + length) || 0);
  const moment = new Date(
    Date.UTC(part(0, 4), part(4) - 1, part(6), part(8), part(10), part(12)),
  );
  // A date that does not exist (a 31st of February) would silently become another one. Years
  // before 1900 are no times of a cast: twelve such digits are milliseconds.
  const back = moment.toISOString().replace(/\D/g, "").slice(0, digits.length);
  return back === digits && part(0, 4) >= 1900 ? moment : null;
}

/// How positions are shown.
export type PositionForm = "minutes" | "decimal";

/// Latitude in degrees and minutes with its hemisphere, "59° 30.000′ N", or in decimal degrees,
/// "59.500000° N"; "" when it is not given.
export function formatLatitude(value: string | number | undefined, form: PositionForm = "minutes"): string {
  return formatAngle(value, form, 90, 2, "N", "S");
}

/// Longitude likewise, "010° 15.000′ E". Longitudes above 180 are shown as the west they mean.
export function formatLongitude(value: string | number | undefined, form: PositionForm = "minutes"): string {
  return formatAngle(value, form, 180, 3, "E", "W");
}

function formatAngle(
  value: string | number | undefined,
  form: PositionForm,
  limit: number,
  width: number,
  positive: string,
  negative: string,
): string {
  const text = String(value ?? "").trim();
  if (isAbsent(text)) return "";
  let degrees = Number(text);
  if (!Number.isFinite(degrees)) return text;
  if (limit === 180 && degrees > 180 && degrees <= 360) degrees -= 360;
  if (Math.abs(degrees) > limit) return text;
  const letter = degrees < 0 ? negative : positive;
  // A millionth of a degree is a tenth of a metre.
  if (form === "decimal") return `${Math.abs(degrees).toFixed(6)}° ${letter}`;
  // Rounded as a whole, so that 59.99999 becomes 60 degrees and not 59 degrees 60 minutes.
  const thousandths = Math.round(Math.abs(degrees) * 60_000);
  const whole = String(Math.floor(thousandths / 60_000)).padStart(width, "0");
  const minutes = ((thousandths % 60_000) / 1000).toFixed(3).padStart(6, "0");
  return `${whole}° ${minutes}′ ${letter}`;
}

/// Whether a header text means that there is no value.
export function isAbsent(text: string): boolean {
  return text === "" || /^n\/?a$/i.test(text);
}

/// A difference with its sign, "0.00" for what rounds to nothing.
export function differenceText(difference: number, decimals: number): string {
  const text = Math.abs(difference).toFixed(decimals);
  if (Number(text) === 0) return text;
  return `${difference < 0 ? "\u2212" : "+"}${text}`;
}

/// A name as it is shown: characters that are not seen, or that turn others round, have a mark in
/// their place.
export function shownName(name: string): string {
  return name.replace(/[\p{Cc}\p{Cf}\p{Zl}\p{Zp}]/gu, "\ufffd");
}
