/// Profiles continued to full ocean depth: what is sent for it, and the profile that comes of the
/// answer.
import { holdsPressures } from "./columns";
import { isJoined, type Profile } from "./profile";
import { LIST_KEYS, cleanPiece, valueItem, type ListKey, type Packet } from "./protocol";

/// What a water mass may be (°C, practical salinity, degrees north), bounds included.
export const WATER_RANGES = {
  temperature: [0, 50],
  salinity: [0, 500],
  latitude: [-90, 90],
} as const;

export interface WaterMass {
  temperature: number;
  salinity: number;
  latitude: number;
}

/// Body of a request to continue a profile with the default rows.
export function extendDefaultBody(profile: Profile): string {
  return `[${samples(profile, ";")}]`;
}

/// Body of a request to continue a profile with a synthetic deep sea.
export function extendWaterBody(profile: Profile, { temperature, salinity, latitude }: WaterMass): string {
  return `[${[samples(profile, "*"), temperature, salinity, latitude].join("*")}]`;
}

/// Body of a request to continue a profile with a file of the profile folder.
export function extendFileBody(profile: Profile, name: string): string {
  return `[${samples(profile, "*")}*${cleanPiece(name)}]`;
}

/// A profile after its extension.
export interface Extended {
  profile: Profile;
  /// Number of levels joined below, and the depths (m) of the first and the deepest of them; 0
  /// levels have none.
  joined: number;
  from: number;
  to: number;
  /// A level at the surface was put in front.
  surface: boolean;
}

/// The profile that an answer makes of `before`, or null when the answer cannot be about it. Levels
/// are matched by position: those of `before` keep the page's own values.
export function extended(before: Profile, { svpX, svpY }: Packet): Extended | null {
  if (!isNumbers(svpX) || !isNumbers(svpY) || svpX.length !== svpY.length) return null;
  const isAt = (offset: number) =>
    svpX.length >= before.count + offset &&
    before.lists.svp_Depth.every((depth, i) => same(depth, svpY[i + offset])) &&
    before.lists.svp_Speed.every((speed, i) => same(speed, svpX[i + offset]));
  const surface = !isAt(0);
  if (before.count === 0 || (surface && !(svpY[0] === 0 && isAt(1)))) return null;

  const front = surface ? 1 : 0;
  const below = front + before.count;
  const level = (i: number) => ({ depth: svpY[i] ?? NaN, speed: svpX[i] ?? NaN });
  const added = Array.from({ length: svpX.length - below }, (_, i) => level(below + i));
  const hasPressures = holdsPressures(before);
  const lists = {} as Record<ListKey, readonly number[]>;
  for (const key of LIST_KEYS) {
    const values = before.lists[key];
    const top = surface ? [valueOf(key, level(0), values[0], hasPressures)] : [];
    const last = values[before.count - 1];
    lists[key] = [...top, ...values, ...added.map((row) => valueOf(key, row, last, hasPressures))];
  }
  const joined = new Set<number>();
  if (surface) joined.add(0);
  for (let i = 0; i < svpX.length; ++i) {
    if (i >= below || (i >= front && isJoined(before, i - front))) joined.add(i);
  }
  const header = { ...before.header, hsvp_filesamp: svpX.length };
  return {
    profile: { ...before, header, lists, count: svpX.length, joined },
    joined: added.length,
    from: added[0]?.depth ?? NaN,
    to: added.reduce((most, { depth }) => Math.max(most, depth), -Infinity),
    surface,
  };
}

/// A value of a level that was not measured. `near` is that of the nearest measured one.
function valueOf(
  key: ListKey,
  { depth, speed }: { depth: number; speed: number },
  near: number | undefined,
  hasPressures: boolean,
): number {
  switch (key) {
    case "svp_Depth":
      return depth;
    case "svp_Speed":
    case "svp_Speed_CTD":
      return speed;
    case "svp_Depth_CTD":
      // A depth among pressures would be read as one.
      return hasPressures ? NaN : depth;
    default:
      return near ?? NaN;
  }
}

/// Sound speeds and depths, as the page holds them.
function samples({ lists, count }: Profile, separator: string): string {
  const list = (key: ListKey) => Array.from({ length: count }, (_, i) => valueItem(lists[key][i])).join(",");
  return list("svp_Speed") + separator + list("svp_Depth");
}

function isNumbers(list: unknown): list is number[] {
  return Array.isArray(list) && list.every((value) => typeof value === "number");
}

/// Equal as 32-bit floats, in which the engine keeps them; what is no number went out as 0.
function same(own: number | undefined, told: number | undefined): boolean {
  const sent = own === undefined || Number.isNaN(own) ? 0 : own;
  return told !== undefined && Math.fround(sent) === Math.fround(told);
}
