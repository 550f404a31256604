/// Requests by which a profile leaves the editor: their bodies, piece by piece.
import { decimalsFor, headerMoment, timeDigits } from "./format";
import { columnsSent } from "./identifiers";
import { hemisphere, LATITUDE, LONGITUDE } from "./position";
import type { Profile } from "./profile";
import {
  cleanPiece,
  numberPiece,
  textPiece,
  valueItem,
  valueLists,
  type Header,
} from "./protocol";

/// Where the survey system on the host's machine listens (UDP).
export const SURVEY_SYSTEM_PORT = 14002;
/// Levels that the survey system takes.
export const MOST_LEVELS = 1000;
/// Bytes that one UDP datagram can carry.
export const MOST_DATAGRAM_BYTES = 65_507;
/// Levels below which the engine writes and hands on nothing.
export const LEAST_LEVELS = 3;

/// When and where a cast was taken, as requests carry it.
export interface Occasion {
  /// yyyyMMddHHmmss, UTC.
  time: string;
  /// Decimal degrees, north and east positive.
  latitude: string;
  longitude: string;
}

/// Body of a request that sends a profile to the survey system, in 16 pieces. `identifier` is the
/// datagram's content identifier in two digits.
export function sendBody(profile: Profile, identifier: string, occasion: Occasion): string {
  return block([
    String(Number(identifier)),
    textPiece(profile.filename),
    valueLists(profile.lists),
    identifier,
    ...datagramPieces(profile, occasion),
  ]);
}

/// Body of a request that saves a profile as a datagram file named `name`, in 15 pieces.
export function saveDatagramBody(
  profile: Profile,
  name: string,
  identifier: string,
  occasion: Occasion,
): string {
  return block(datagramFormPieces(profile, name, identifier, occasion));
}

/// The 15 pieces by which a profile is saved as a datagram, or thinned. None of them is empty.
export function datagramFormPieces(
  profile: Profile,
  name: string,
  kind: string,
  occasion: Occasion,
): string[] {
  return [valueLists(profile.lists), textPiece(name), kind, ...datagramPieces(profile, occasion)];
}

/// Body of a request that saves a profile as an `.asvp` file named `name`, in 15 pieces.
export function saveAsvpBody(profile: Profile, name: string, occasion: Occasion): string {
  const { header } = profile;
  const { latitude, longitude } = occasion;
  return block([
    pairs(profile),
    textPiece(name),
    "SoundVelocity",
    numberPiece(header.hsvp_fileversion),
    numberPiece(header.hsvp_fileid),
    occasion.time,
    latitude,
    hemisphere(latitude, LATITUDE),
    longitude,
    hemisphere(longitude, LONGITUDE),
    ...validityPieces(header),
    textPiece(header.hsvp_filesource),
    textPiece(header.hsvp_filehistory),
  ]);
}

/// Body of a request to the receiver, or to distribute: depths and sound speeds alone.
export function pairsBody(profile: Profile): string {
  return block([pairs(profile)]);
}

/// The name in the form in which a request carries it, and a reply gives it back.
export function nameSent(name: string): string {
  return cleanPiece(name);
}

/// About how many bytes the datagram of a profile has. The engine may write more decimals than the
/// profile shows, when another cast has shown it more of them.
export function datagramSize(profile: Profile, identifier: string): number {
  const columns = columnsSent(identifier).map((key) => {
    const values = profile.lists[key];
    return { values, decimals: Math.max(decimalsFor(values), key === "svp_Depth_CTD" ? 5 : 2) };
  });
  const frame = 74 + new TextEncoder().encode(textPiece(profile.header.hsvp_filecomment)).length;
  const separators = 4 + 2;
  let size = frame + profile.count * separators;
  for (const { values, decimals } of columns) {
    for (const value of values) size += (Number.isFinite(value) ? value : 0).toFixed(decimals).length;
  }
  return size;
}

/// Pieces from the version to the comment, which sending and saving a datagram share.
function datagramPieces({ header, count }: Profile, occasion: Occasion): string[] {
  return [
    numberPiece(header.hsvp_fileversion),
    numberPiece(header.hsvp_fileid),
    occasion.time,
    occasion.latitude,
    occasion.longitude,
    ...validityPieces(header),
    textPiece(header.hsvp_filesource),
    textPiece(header.hsvp_filehistory),
    // What the header states may be out of date, and the engine counts.
    String(count),
    textPiece(header.hsvp_filecomment),
  ];
}

/// Radius, valid from and valid to.
function validityPieces(header: Header): string[] {
  return [
    numberPiece(header.hsvp_fileradii),
    timePiece(header.hsvp_filevalidfrom),
    timePiece(header.hsvp_filevalidto),
  ];
}

function timePiece(value: string | number | undefined): string {
  const moment = headerMoment(value);
  return moment ? timeDigits(moment) : numberPiece(value);
}

/// Depth, sound speed, depth, sound speed…
function pairs({ lists, count }: Profile): string {
  const items: string[] = [];
  for (let i = 0; i < count; ++i) items.push(valueItem(lists.svp_Depth[i]), valueItem(lists.svp_Speed[i]));
  return items.join(",");
}

function block(pieces: readonly string[]): string {
  return `[${pieces.join("*")}]`;
}
