/// The header of a cast as users edit it: what each field means, how it is typed, and what is refused.
import { absentText } from "./carried";
import { columnsOf, holdsConductivity, holdsPressures } from "./columns";
import { formatHeaderTime, formatLatitude, formatLongitude, headerMoment, timeDigits } from "./format";
import { asText, headerRows } from "./header-fields";
import { CONTENT_IDENTIFIERS, columnsSent, contentIdentifier, digitsOf, identifierWords } from "./identifiers";
import { LATITUDE, LONGITUDE, degreesText, readDegrees, type Axis } from "./position";
import { positionForm } from "./position-form";
import { withEdited, type Profile } from "./profile";
import { HEADER_KEYS, type Header, type HeaderKey, type ListKey } from "./protocol";
import { hasPosition, hasTime } from "./stated";
import { readMoment } from "./typed-moment";
import { noNumberText, typedNumber } from "./typed-number";

/// The kind that an `.asvp` file states.
export const PLAIN_KIND = "SoundVelocity";

/// What came of a text: the value for the header (undefined for none), or why there is none.
type Typed = { value: string | undefined } | { fault: string };

interface HeaderField {
  /// What the field means and how it is typed.
  meaning: string;
  /// The value as text to be edited.
  text(profile: Profile): string;
  /// Absent where the user cannot state it.
  typed?(text: string, profile: Profile): Typed;
}

const asHeader = (key: HeaderKey) => ({ header }: Profile) => asText(header[key]);

/// Characters that no request can carry, and some that a field's own place in a file forbids.
function textField(key: HeaderKey, meaning: string, isWord = false, forbidden = ""): HeaderField {
  return {
    meaning,
    text: asHeader(key),
    typed: (text) => {
      const bad = [...text].find((each) => "*[]".includes(each) || forbidden.includes(each) || each < " " || each === "\u007f");
      if (bad) return { fault: `${mark(bad)} cannot be sent with a profile. Write it in another way.` };
      if (isWord && /\s/.test(text)) return { fault: "This is one word, without a space." };
      return { value: text };
    },
  };
}

function timeField(key: HeaderKey, meaning: string): HeaderField {
  return {
    meaning,
    text: (profile) =>
      key === "hsvp_filetime" && !hasTime(profile) ? "" : formatHeaderTime(profile.header[key]),
    typed: (text) => {
      const read = readMoment(text);
      return "moment" in read ? { value: timeDigits(read.moment) } : read;
    },
  };
}

function positionField(key: HeaderKey, axis: Axis, meaning: string): HeaderField {
  const format = axis === LATITUDE ? formatLatitude : formatLongitude;
  return {
    meaning,
    text: (profile) => (hasPosition(profile) ? format(profile.header[key], positionForm()) : ""),
    typed: (text) => {
      const read = readDegrees(text, axis);
      return "degrees" in read ? { value: degreesText(read.degrees) } : read;
    },
  };
}

const FIELDS: Record<HeaderKey, HeaderField> = {
  hsvp_filetime: timeField("hsvp_filetime", "When the cast was taken: year-month-day, then the time of day, in UTC."),
  hsvp_filelat: positionField("hsvp_filelat", LATITUDE, "Where it was taken: 59 30.5 N, or 59.508 and −59.508."),
  hsvp_filelon: positionField("hsvp_filelon", LONGITUDE, "Where it was taken: 010 15.2 E, or 10.253 and −10.253."),
  hsvp_filevalidfrom: timeField("hsvp_filevalidfrom", "From when on it is to be used, UTC; empty for no limit."),
  hsvp_filevalidto: timeField("hsvp_filevalidto", "Until when it is to be used, UTC; empty for no limit."),
  hsvp_filetype: {
    meaning: "What the rows of a datagram carry.",
    text: ({ header }) => String(header.hsvp_filetype ?? "").trim(),
    typed: (text, profile) => {
      const fault = kindFault(profile, text);
      return fault ? { fault } : { value: text };
    },
  },
  hsvp_fileversion: {
    meaning: "Version of the profile’s form, such as 1.0.",
    text: asHeader("hsvp_fileversion"),
    typed: (text) =>
      /^\d+([.,]\d+)?$/.test(text) ? { value: text.replace(",", ".") } : { fault: "Write a version as in 1.0." },
  },
  hsvp_fileid: textField("hsvp_fileid", "A number or a word by which the profile is known.", true),
  hsvp_fileradii: {
    meaning: "How far around its position the profile holds; empty where that is not stated.",
    text: (profile) => headerRows(profile.header).find(({ key }) => key === "hsvp_fileradii")?.value ?? "",
    typed: (text) => {
      const value = typedNumber(text);
      if (value === null) return { fault: noNumberText(text) };
      return value >= 0 && value <= 1e9 ? { value: String(value) } : { fault: "A radius is 0 or greater, and no more than 1 000 000 000." };
    },
  },
  hsvp_filesource: textField("hsvp_filesource", "Where the profile came from. A file writes its spaces as “_”."),
  hsvp_filesamp: { meaning: "Number of levels; the page counts them.", text: ({ count }) => String(count) },
  hsvp_filehistory: textField("hsvp_filehistory", "What was done to it before. A file writes its spaces as “_”."),
  hsvp_filecomment: textField("hsvp_filecomment", "A remark. A datagram carries it, an .asvp file does not.", false, ","),
};

export function fieldOf(key: HeaderKey): HeaderField {
  return FIELDS[key];
}

/// The text that stands in a field at first.
export function fieldText(profile: Profile, key: HeaderKey): string {
  return FIELDS[key].text(profile);
}

export interface KindChoice {
  value: string;
  words: string;
}

/// The kinds from which to choose: those that rows are written for, and the profile's own.
export function kindChoices({ header }: Pick<Profile, "header">): KindChoice[] {
  const own = String(header.hsvp_filetype ?? "").trim();
  const choices: KindChoice[] = [
    { value: PLAIN_KIND, words: "Sound velocity – depth and sound speed, as an .asvp file has them" },
    ...CONTENT_IDENTIFIERS.filter((entry) => entry.first !== "none" || digitsOf(entry) === own)
      .map((entry) => ({ value: digitsOf(entry), words: `${digitsOf(entry)} – ${identifierWords(entry)}` })),
  ];
  if (choices.some(({ value }) => value === own)) return choices;
  const same = contentIdentifier(own);
  const words = own === "" ? "Not given" : same ? `${own} – ${identifierWords(same)}` : `${own} – no content identifier`;
  return [{ value: own, words }, ...choices];
}

/// Why a profile cannot become one of this kind, as a sentence; "" when it can. Rows of another kind
/// must not claim what the profile does not hold.
export function kindFault(profile: Profile, kind: string): string {
  if (kind === PLAIN_KIND) return "";
  const entry = contentIdentifier(kind);
  if (!entry || entry.first === "none") return "Nothing can be sent as this kind.";
  const shown = new Set<ListKey>(columnsOf(profile).map(({ key }) => key));
  const conductivities = holdsConductivity(profile);
  const missing = [
    ...(entry.hasPressure && !holdsPressures(profile) ? ["pressures"] : []),
    ...(entry.hasTemperature && !shown.has("svp_Temp") ? ["temperatures"] : []),
    ...(entry.hasSalinity && (!shown.has("svp_Sal") || entry.hasConductivity !== conductivities)
      ? [entry.hasConductivity ? "conductivities" : "salinities"] : []),
    ...(entry.hasAbsorption && !shown.has("svp_AbsCoef") ? ["absorptions"] : []),
  ];
  if (missing.length > 0) return `Its rows carry ${missing.join(" and ")}, which this cast does not have.`;
  const absent = absentText(profile, columnsSent(kind));
  return absent && `Its rows carry what is not there: ${absent}`;
}

/// The profile with the header that was typed, or what is wrong with which field. Texts that were left
/// as they stood change nothing, not even the digits behind those that they show.
export function withHeader(
  profile: Profile,
  texts: ReadonlyMap<HeaderKey, string>,
): { profile: Profile } | { faults: Map<HeaderKey, string> } {
  const header: Header = { ...profile.header };
  const faults = new Map<HeaderKey, string>();
  const changed: HeaderKey[] = [];
  for (const key of HEADER_KEYS) {
    const text = texts.get(key)?.trim();
    const { typed, text: textOf } = FIELDS[key];
    if (text === undefined || !typed || text === textOf(profile)) continue;
    const taken: Typed = text === "" ? { value: undefined } : typed(text, profile);
    if ("fault" in taken) {
      faults.set(key, taken.fault);
      continue;
    }
    changed.push(key);
    if (taken.value === undefined) delete header[key];
    else header[key] = taken.value;
  }
  const [from, to] = [headerMoment(header.hsvp_filevalidfrom), headerMoment(header.hsvp_filevalidto)];
  const touched = changed.includes("hsvp_filevalidfrom") || changed.includes("hsvp_filevalidto");
  if (touched && from && to && to < from) faults.set("hsvp_filevalidto", "This is before it begins to be valid.");
  if (faults.size > 0) return { faults };
  if (changed.length === 0) return { profile };
  // What the salinities are does not change with what a datagram will call them.
  const kind = changed.includes("hsvp_filetype") ? { hasConductivities: holdsConductivity(profile) } : {};
  return { profile: withEdited({ ...profile, header, ...kind }, changed) };
}

function mark(character: string): string {
  return character < " " || character === "\u007f" ? "A control character" : `“${character}”`;
}
