/// Times that users type, in UTC.
import { formatMoment } from "./format";

/// The form in which a time is asked for.
export const MOMENT_FORM = "2026-11-15 12:34:56";

const EXAMPLE = `Write a time as in ${MOMENT_FORM} UTC.`;
const DAY_MS = 24 * 60 * 60 * 1000;

/// The moment that a user has typed, or why there is none, as a sentence. Taken are
/// "2026-11-15 12:34:56", also with slashes or points or none, "15.11.2026 12:34", and "T" between
/// date and time; seconds may be left out, and so may leading zeros where marks stand.
export function readMoment(text: string): { moment: Date } | { fault: string } {
  const plain = text.trim();
  const clock = String.raw`(\d{1,2}):(\d{1,2})(?::(\d{1,2})(?:[.,]\d+)?)?\s*(?:UTC|GMT|Z)?$`;
  const match = (date: string, time = clock) => new RegExp(`^${date}(?:\\s*T\\s*|\\s+)${time}`, "i").exec(plain);

  const year = match(String.raw`(\d{4})([-/.])(\d{1,2})\2(\d{1,2})`);
  if (year) return momentOf(year[1], year[3], year[4], year[5], year[6], year[7]);
  const day = match(String.raw`(\d{1,2})\.(\d{1,2})\.(\d{4})`);
  if (day) return momentOf(day[3], day[2], day[1], day[4], day[5], day[6]);
  const digits = /^(\d{4})-?(\d\d)-?(\d\d)[ T]*(\d\d):?(\d\d)(?::?(\d\d))?\s*(?:UTC|GMT|Z)?$/i.exec(plain);
  if (digits) return momentOf(digits[1], digits[2], digits[3], digits[4], digits[5], digits[6]);

  if (/^\d{1,2}[/-]\d{1,2}[/-]\d{4}\b/.test(plain)) {
    return { fault: `Which of the first two is the day and which the month is not clear. ${EXAMPLE}` };
  }
  if (/^(\d{4}([-/.])\d{1,2}\2\d{1,2}|\d{1,2}\.\d{1,2}\.\d{4}|\d{8})$/.test(plain)) {
    return { fault: `The time of day is missing. ${EXAMPLE}` };
  }
  if (/\d\s*[+-]\d\d:?\d\d$/.test(plain)) return { fault: `Times are in UTC here, without an offset. ${EXAMPLE}` };
  return { fault: EXAMPLE };
}

/// Whether a moment lies more than a day ahead, which no cast's time does.
export function isInFuture(moment: Date, now: Date = new Date()): boolean {
  return moment.getTime() - now.getTime() > DAY_MS;
}

/// What is said of a time ahead.
export function futureText(moment: Date): string {
  return `The time of the cast, ${formatMoment(moment)}, lies in the future.`;
}

function momentOf(...parts: (string | undefined)[]): { moment: Date } | { fault: string } {
  const [year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0] = parts.map((part) => Number(part ?? 0));
  if (year < 1900) return { fault: `No cast is as old as the year ${year}. ${EXAMPLE}` };
  if (month < 1 || month > 12) return { fault: `There is no month ${month}. ${EXAMPLE}` };
  if (hour > 23 || minute > 59 || second > 59) return { fault: `There is no such time of day. ${EXAMPLE}` };
  const moment = new Date(Date.UTC(year, month - 1, day, hour, minute, second));
  // A date that does not exist (a 31st of February) would silently become another one.
  if (moment.getUTCDate() !== day) return { fault: `That month has no day ${day}. ${EXAMPLE}` };
  return { moment };
}
