/// The header of a profile as rows for reading.
import {
  formatHeaderTime,
  formatLatitude,
  formatLongitude,
  isAbsent,
} from "./format";
import { contentIdentifier, identifierWords } from "./identifiers";
import { HEADER_KEYS, type Header, type HeaderKey } from "./protocol";

export interface HeaderRow {
  key: HeaderKey;
  label: string;
  /// "" when the profile does not give the field.
  value: string;
  /// The value as received, when reading made another text of it.
  raw: string;
}

type Value = string | number | undefined;

const FIELDS: Record<HeaderKey, { label: string; read: (value: Value) => string }> = {
  hsvp_filetime: { label: "Time", read: formatHeaderTime },
  hsvp_filelat: { label: "Latitude", read: formatLatitude },
  hsvp_filelon: { label: "Longitude", read: formatLongitude },
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

/// All thirteen fields, given or not, in a fixed order.
export function headerRows(header: Header): HeaderRow[] {
  return HEADER_KEYS.map((key) => {
    const value = FIELDS[key].read(header[key]);
    const raw = String(header[key] ?? "");
    return { key, label: FIELDS[key].label, value, raw: raw === value ? "" : raw };
  });
}

/// A header value as text; "" where it is none.
export function asText(value: Value): string {
  const text = String(value ?? "").trim();
  return isAbsent(text) ? "" : text;
}
