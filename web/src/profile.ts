/// A profile as the page holds it: the lists of an Open reply, made safe to index.
import { isBuiltIn } from "./file-kinds";
import { HEADER_KEYS, LIST_KEYS, type Header, type HeaderKey, type ListKey, type Packet } from "./protocol";

export interface Profile {
  filename: string;
  header: Header;
  /// All lists have the same length; NaN stands where the reply had no number.
  lists: Record<ListKey, readonly number[]>;
  /// Number of levels.
  count: number;
  /// Indices of the levels that an extension has joined; absent where all were measured.
  joined?: ReadonlySet<number>;
  /// What the user has stated or changed by hand; absent where nothing was.
  edited?: ReadonlySet<HeaderKey | ListKey>;
  /// Whether the salinities are conductivities. Absent: the type in the header tells.
  hasConductivities?: boolean;
}

/// The profile that an Open reply carries. Levels are counted by the longer of the two lists that
/// every profile has, depth and speed, so that none is lost when one of them is short.
export function profileOf(packet: Packet): Profile {
  const count = Math.max(lengthOf(packet.svp_Depth), lengthOf(packet.svp_Speed));
  const lists = {} as Record<ListKey, readonly number[]>;
  for (const key of LIST_KEYS) lists[key] = numbers(packet[key], count);

  const header: Header = {};
  for (const key of HEADER_KEYS) {
    const value: unknown = packet[key];
    if (typeof value === "string" || typeof value === "number") header[key] = value;
  }
  return { filename: packet.filename ?? "", header, lists, count };
}

/// A profile with more of it marked as edited.
export function withEdited(profile: Profile, keys: readonly (HeaderKey | ListKey)[]): Profile {
  return keys.length === 0 ? profile : { ...profile, edited: new Set([...(profile.edited ?? []), ...keys]) };
}

/// Whether nothing but an extension stands behind a level.
export function isJoined({ joined }: Profile, level: number): boolean {
  return joined?.has(level) ?? false;
}

/// Whether two profiles come from the same file and hold the same levels.
export function sameProfile(a: Profile, b: Profile): boolean {
  return (
    sameFile(a.filename, b.filename) &&
    a.count === b.count &&
    LIST_KEYS.every((key) =>
      a.lists[key].every((value, i) => Object.is(value, b.lists[key][i])),
    )
  );
}

/// Whether two profiles are the same in all that a file holds. Column files hold no time; the engine
/// gives them that of opening.
export function sameContent(a: Profile, b: Profile): boolean {
  const keys = HEADER_KEYS.filter((key) => key !== "hsvp_filetime" || isBuiltIn(a.filename));
  return sameProfile(a, b) && keys.every((key) => a.header[key] === b.header[key]);
}

/// Whether two names mean the same file of the profile folder; a path before a name is ignored.
export function sameFile(a: string, b: string): boolean {
  return baseName(a) === baseName(b);
}

/// The name behind a path.
export function baseName(path: string): string {
  return path.slice(Math.max(path.lastIndexOf("/"), path.lastIndexOf("\\")) + 1);
}

function lengthOf(list: unknown): number {
  return Array.isArray(list) ? list.length : 0;
}

function numbers(list: unknown, count: number): number[] {
  const values = new Array<number>(count).fill(NaN);
  if (!Array.isArray(list)) return values;
  for (let i = 0; i < Math.min(count, list.length); ++i) {
    const value: unknown = list[i];
    if (typeof value === "number" && Number.isFinite(value)) values[i] = value;
  }
  return values;
}
