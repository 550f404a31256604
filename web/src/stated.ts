/// What a cast states of its time and position, and what it only seems to state.
import { isBuiltIn } from "./file-kinds";
import { headerMoment, timeDigits } from "./format";
import { LATITUDE, LONGITUDE, headerDegrees } from "./position";
import type { Profile } from "./profile";
import type { Header } from "./protocol";
import type { Occasion } from "./protocol-output";
import { futureText, isInFuture } from "./typed-moment";

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

/// Whether a header says 0° N 0° E, as files without a position do.
export function isNowhere({ hsvp_filelat, hsvp_filelon }: Header): boolean {
  const texts = [headerDegrees(hsvp_filelat, LATITUDE), headerDegrees(hsvp_filelon, LONGITUDE)];
  return texts.every((text) => text !== "" && Number(text) === 0);
}

/// What a profile states of time and position. A column file gives no time of its own: the engine
/// puts that of opening in its place, which is not when the cast was taken. What the user has put
/// into the header holds as it stands.
export function statedBy(profile: Pick<Profile, "filename" | "header" | "edited">): Partial<Occasion> {
  const { header } = profile;
  const stated = statedIn(header);
  if (!hasTime(profile)) delete stated.time;
  if (isMeant(profile)) Object.assign(stated, { latitude: "0", longitude: "0" });
  return stated;
}

/// Whether a position of 0, 0 was typed.
export function isMeant({ header, edited }: Pick<Profile, "header" | "edited">): boolean {
  return isNowhere(header) && (edited?.has("hsvp_filelat") ?? false) && (edited?.has("hsvp_filelon") ?? false);
}

/// Whether the time in a profile's header is that of the cast, if there is one.
export function hasTime({ filename, edited }: Pick<Profile, "filename" | "edited">): boolean {
  return isBuiltIn(filename) || (edited?.has("hsvp_filetime") ?? false);
}

/// Whether the position in a profile's header is that of the cast, if there is one.
export function hasPosition(profile: Pick<Profile, "header" | "edited">): boolean {
  return !isNowhere(profile.header) || isMeant(profile);
}

/// A warning about a time more than a day ahead, which no cast has; "" where there is none.
export function aheadText(profile: Pick<Profile, "filename" | "header" | "edited">): string {
  const moment = headerMoment(hasTime(profile) ? profile.header.hsvp_filetime : undefined);
  return moment && isInFuture(moment) ? futureText(moment) : "";
}
