/// The header of a profile as rows for reading.
import {
  formatHeaderTime,
  formatLatitude,
  formatLongitude,
  isAbsent,
} from "./format";
import { contentIdentifier, identifierWords } from "./identifiers";
import { positionForm } from "./position-form";
import type { Profile } from "./profile";
import { HEADER_KEYS, type Header, type HeaderKey } from "./protocol";
import { hasPosition, hasTime } from "./stated";

export interface HeaderRow {
  key: HeaderKey;
  label: string;
  /// "" when the profile does not give the field.
  value: string;
  /// The value as received, when reading made another text of it.
  raw: string;
}

/// A header that stands in a file of a kind that gives the time.
const OF_FILE = { filename: ".asvp" };

type Value = string | number | undefined;

const FIELDS: Record<HeaderKey, { label: string; read: (value: Value) => string }> = {
  hsvp_filetime: { label: "Time", read: formatHeaderTime },
  hsvp_filelat: { label: "Latitude", read: (value) => formatLatitude(value, positionForm()) },
  hsvp_filelon: { label: "Longitude", read: (value) => formatLongitude(value, positionForm()) },
  hsvp_filevalidfrom: { label: "Valid from", read: formatHeaderTime },
  hsvp_filevalidto: { label: "Valid to", read: formatHeaderTime },
  hsvp_filetype: {
    label: "Type",
    read: kindText,
  },
  hsvp_fileversion: { label: "Version", read: asText },
  hsvp_fileid: { label: "Identifier", read: asText },
  // 0 and -1 are how files say that no radius was given.
  hsvp_fileradii: { label: "Radius", read: (value) => asText(value).replace(/^(0|-1)$/, "") },
  hsvp_filesource: { label: "Source", read: asText },
  hsvp_filesamp: { label: "Samples", read: asText },
  hsvp_filehistory: { label: "History", read: asText },
  hsvp_filecomment: { label: "Comment", read: asText },
};

/// A kind with what its rows carry.
function kindText(value: Value): string {
  const text = asText(value);
  if (text === "SoundVelocity") return "Sound velocity";
  const entry = contentIdentifier(text);
  return entry ? `${text} – ${identifierWords(entry)}` : text;
}

/// What a field is called.
export function headerLabel(key: HeaderKey): string {
  return FIELDS[key].label;
}

/// All thirteen fields, given or not, in a fixed order. What the cast only seems to state counts as not
/// given; `cast` tells whose header it is and what of it was typed.
export function headerRows(header: Header, cast: Pick<Profile, "filename" | "edited"> = OF_FILE): HeaderRow[] {
  const isTimed = hasTime(cast);
  const isPlaced = hasPosition({ ...cast, header });
  return HEADER_KEYS.map((key) => {
    const isPosition = key === "hsvp_filelat" || key === "hsvp_filelon";
    const isGiven = isPosition ? isPlaced : key !== "hsvp_filetime" || isTimed;
    const value = isGiven ? FIELDS[key].read(header[key]) : "";
    // A time that does not stand in the file is none of what the file said.
    const raw = key === "hsvp_filetime" && !isTimed ? "" : String(header[key] ?? "");
    return { key, label: FIELDS[key].label, value, raw: raw === value ? "" : raw };
  });
}

/// A header value as text; "" where it is none.
export function asText(value: Value): string {
  const text = String(value ?? "").trim();
  return isAbsent(text) ? "" : text;
}
