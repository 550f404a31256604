/// Time and position of a cast for what leaves the editor: from its header, and where that does
/// not give them, from the user. None is ever made up: 0° N 0° E is a place at sea.
import { ask, type Field } from "./dialog";
import { formatMoment, timeDigits } from "./format";
import { LATITUDE, LONGITUDE, degreesText, readDegrees, type Axis } from "./position";
import { withEdited, type Profile } from "./profile";
import type { Header, HeaderKey } from "./protocol";
import type { Occasion } from "./protocol-output";
import { isMeant, isNowhere, statedBy } from "./stated";
import { MOMENT_FORM, futureText, isInFuture, readMoment } from "./typed-moment";

/// What is known beside the cast.
export interface OccasionHints {
  /// When the cast's file was last written; null where that is not known.
  fileDate(name: string): Promise<Date | null>;
  now?: () => Date;
}

/// Time and position of a profile that states all of them.
export function occasionIn(profile: Profile): Occasion {
  const { time, latitude, longitude } = statedBy(profile);
  if (!time || !latitude || !longitude) throw new Error("a cast without time or position was taken");
  return { time, latitude, longitude };
}

/// The profile with its time and position in the header, the same one where they were there. What it
/// does not state is asked for, and nothing is proposed that could be taken unseen. Null when the user
/// does not state it.
export async function withOccasion(profile: Profile, hints: OccasionHints): Promise<Profile | null> {
  const { header, filename } = profile;
  const stated = statedBy(profile);
  const fields: Field[] = [];
  if (!stated.time) fields.push(timeField(await hints.fileDate(filename)));
  if (!stated.latitude) fields.push(positionField("latitude", "Latitude", LATITUDE));
  if (!stated.longitude) fields.push(positionField("longitude", "Longitude", LONGITUDE));
  if (fields.length === 0) return profile;

  const answer = await ask({
    title: "When and where was this cast taken?",
    text: [
      `${filename} does not say all of it. What you state goes into its header, and out with the profile.`,
      ...(isNowhere(header) && !isMeant(profile) ? ["It says 0° N 0° E, as files without a position do."] : []),
    ],
    fields,
    confirm: "Go on",
  });
  if (!answer) return null;
  const typed: Header = {};
  const keys: HeaderKey[] = [];
  if (!stated.time) {
    const moment = momentIn(answer["time"]);
    if (isInFuture(moment, hints.now?.()) && !(await mayBeFuture(moment))) return null;
    typed.hsvp_filetime = timeDigits(moment);
    keys.push("hsvp_filetime");
  }
  if (!stated.latitude) typed.hsvp_filelat = degreesIn(answer["latitude"], LATITUDE);
  if (!stated.longitude) typed.hsvp_filelon = degreesIn(answer["longitude"], LONGITUDE);
  // Both, so that 0, 0 is known to be meant.
  if (!stated.latitude || !stated.longitude) keys.push("hsvp_filelat", "hsvp_filelon");
  return withEdited({ ...profile, header: { ...header, ...typed } }, keys);
}

async function mayBeFuture(moment: Date): Promise<boolean> {
  const answer = await ask({ title: "A cast from the future?", text: [futureText(moment)], confirm: "It is right" });
  return answer !== null;
}

function timeField(fileDate: Date | null): Field {
  const text = fileDate && formatMoment(fileDate);
  return {
    key: "time",
    label: "Time of the cast, UTC",
    value: "",
    placeholder: MOMENT_FORM,
    hint: text
      ? "Year-month-day, then the time of day. The file’s date is that of its last writing in the profile folder."
      : "Year-month-day, then the time of day.",
    ...(text ? { offer: { label: `Take the file’s date, ${text}`, value: text.replace(" UTC", "") } } : {}),
    fault: (typed) => {
      if (typed === "") return "State the time of the cast.";
      const read = readMoment(typed);
      return "fault" in read ? read.fault : "";
    },
  };
}

function positionField(key: string, label: string, axis: Axis): Field {
  const example = axis === LATITUDE ? "59 30.5 N, or 59.508 and -59.508" : "010 15.2 E, or 10.253 and -10.253";
  return {
    key,
    label,
    value: "",
    hint: `Such as ${example}.`,
    fault: (text) => {
      if (text === "") return `State the ${key}.`;
      const read = readDegrees(text, axis);
      return "fault" in read ? read.fault : "";
    },
  };
}

function momentIn(text: string | undefined): Date {
  const read = readMoment(text ?? "");
  if ("fault" in read) throw new Error("a time was taken that cannot be read");
  return read.moment;
}

function degreesIn(text: string | undefined, axis: Axis): string {
  const read = readDegrees(text ?? "", axis);
  if ("fault" in read) throw new Error("a coordinate was taken that cannot be read");
  return degreesText(read.degrees);
}
