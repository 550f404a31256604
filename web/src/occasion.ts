/// Time and position of a cast for what leaves the editor: from its header, and where that does
/// not give them, from the user. None is ever made up: 0° N 0° E is a place at sea.
import { ask, type Field } from "./dialog";
import { isBuiltIn } from "./file-kinds";
import { formatMoment, headerMoment, timeDigits, typedMoment } from "./format";
import { LATITUDE, LONGITUDE, degreesText, headerDegrees, typedDegrees, type Axis } from "./position";
import type { Profile } from "./profile";
import type { Header } from "./protocol";
import type { Occasion } from "./protocol-output";

/// What a header states of time and position. A part that is missing or makes no sense is left
/// out; a position of exactly 0, 0 counts as missing, since files without one are written so.
export function statedIn(header: Header): Partial<Occasion> {
  const stated: Partial<Occasion> = {};
  const moment = headerMoment(header.hsvp_filetime);
  if (moment) stated.time = timeDigits(moment);
  const latitude = headerDegrees(header.hsvp_filelat, LATITUDE);
  const longitude = headerDegrees(header.hsvp_filelon, LONGITUDE);
  if (isNowhere(header)) return stated;
  if (latitude) stated.latitude = latitude;
  if (longitude) stated.longitude = longitude;
  return stated;
}

function isNowhere({ hsvp_filelat, hsvp_filelon }: Header): boolean {
  const texts = [headerDegrees(hsvp_filelat, LATITUDE), headerDegrees(hsvp_filelon, LONGITUDE)];
  return texts.every((text) => text !== "" && Number(text) === 0);
}

/// What a profile states of time and position. A column file gives no time of its own: the engine
/// puts that of opening in its place, which is not when the cast was taken. What the user has put
/// into the header holds as it stands.
export function statedBy(profile: Pick<Profile, "filename" | "header" | "edited">): Partial<Occasion> {
  const { filename, header, edited } = profile;
  const stated = statedIn(header);
  if (!isBuiltIn(filename) && !edited?.has("hsvp_filetime")) delete stated.time;
  if (isMeant(profile)) Object.assign(stated, { latitude: "0", longitude: "0" });
  return stated;
}

/// Whether a position of 0, 0 was typed.
function isMeant({ header, edited }: Pick<Profile, "header" | "edited">): boolean {
  return isNowhere(header) && (edited?.has("hsvp_filelat") ?? false) && (edited?.has("hsvp_filelon") ?? false);
}

/// Time and position of a profile. What it does not state is asked for, with `earlier` (or the
/// present time) proposed. Null when the user does not state it.
export async function occasionOf(
  profile: Profile,
  earlier: Partial<Occasion>,
  now: () => Date = () => new Date(),
): Promise<Occasion | null> {
  const { header } = profile;
  const stated = statedBy(profile);
  const fields: Field[] = [];
  if (!stated.time) {
    fields.push({
      key: "time",
      label: "Time of the cast, UTC",
      value: formatMoment(headerMoment(earlier.time) ?? now()).replace(" UTC", ""),
      hint: `Year-month-day, then the time of day.${earlier.time ? "" : " Proposed is the present time."}`,
      fault: (text) => (typedMoment(text) ? "" : "Write a time as in 2026-11-15 12:34:56."),
    });
  }
  if (!stated.latitude) {
    fields.push(positionField("latitude", "Latitude", earlier.latitude, LATITUDE));
  }
  if (!stated.longitude) {
    fields.push(positionField("longitude", "Longitude", earlier.longitude, LONGITUDE));
  }
  if (fields.length === 0) return stated as Occasion;

  const answer = await ask({
    title: "When and where was this cast taken?",
    text: [
      `${profile.filename} does not say all of it. What you state goes out with the profile.`,
      ...(isNowhere(header) && !isMeant(profile) ? ["It says 0° N 0° E, as files without a position do."] : []),
    ],
    fields,
    confirm: "Go on",
  });
  if (!answer) return null;
  return {
    time: stated.time ?? digits(answer["time"]),
    latitude: stated.latitude ?? degrees(answer["latitude"], LATITUDE),
    longitude: stated.longitude ?? degrees(answer["longitude"], LONGITUDE),
  };
}

function positionField(
  key: string,
  label: string,
  earlier: string | undefined,
  axis: Axis,
): Field {
  const example = axis === LATITUDE ? "59 30.5 N, or 59.508 and -59.508" : "010 15.2 E, or 10.253 and -10.253";
  return {
    key,
    label,
    value: earlier ?? "",
    hint: `Such as ${example}.`,
    fault: (text) => {
      if (typedDegrees(text, axis) !== null) return "";
      return text === ""
        ? `State the ${key}.`
        : `This is no ${key} up to ${axis.limit}° ${axis.positive} or ${axis.negative}.`;
    },
  };
}

function digits(text: string | undefined): string {
  const moment = typedMoment(text ?? "");
  if (!moment) throw new Error("a time was taken that cannot be read");
  return timeDigits(moment);
}

function degrees(text: string | undefined, axis: Axis): string {
  const value = typedDegrees(text ?? "", axis);
  if (value === null) throw new Error("a coordinate was taken that cannot be read");
  return degreesText(value);
}
