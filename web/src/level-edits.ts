/// Changes to the levels of a cast. Each takes a profile and makes another; what is marked as joined
/// stays so wherever it goes.
import { holdsPressures } from "./columns";
import { isJoined, withEdited, type Profile } from "./profile";
import { LIST_KEYS, type ListKey } from "./protocol";

/// Sound speed (m/s) below which a probe is not in water; it is what the check refuses too.
export const LEAST_WATER_SPEED = 1400;
/// A speed of air below this depth (m) is a fault of the probe, not air.
const MOST_AIR_DEPTH = 10;

export type Values = Record<ListKey, number>;

/// The list that repeats another one where a file has no separate values of the probe.
const TWINS: Partial<Record<ListKey, ListKey>> = { svp_Depth: "svp_Depth_CTD", svp_Speed: "svp_Speed_CTD" };

/// A profile of these levels of another, in this order.
export function picked(profile: Profile, levels: readonly number[]): Profile {
  const lists = {} as Record<ListKey, readonly number[]>;
  for (const key of LIST_KEYS) lists[key] = levels.map((level) => profile.lists[key][level] ?? NaN);
  const joined = new Set<number>();
  levels.forEach((level, i) => isJoined(profile, level) && joined.add(i));
  return withLevels(profile, lists, levels.length, joined);
}

/// A profile with one value changed. The engine keeps 32-bit floats, and so does the page. Where the
/// probe's own list says the same as the one that is changed, it follows.
export function withValue(profile: Profile, level: number, key: ListKey, value: number): Profile {
  const lists = { ...profile.lists };
  const twin = TWINS[key];
  const repeats = twin && lists[key].every((each, i) => Object.is(each, lists[twin][i]));
  for (const each of repeats ? [key, twin] : [key]) {
    const values = [...lists[each]];
    values[level] = Math.fround(value);
    lists[each] = values;
  }
  return withEdited({ ...profile, lists }, [key]);
}

/// A profile without the levels from one to another, both included.
export function withoutLevels(profile: Profile, from: number, to: number): Profile {
  const lists = {} as Record<ListKey, readonly number[]>;
  for (const key of LIST_KEYS) {
    const all = profile.lists[key];
    lists[key] = [...all.slice(0, from), ...all.slice(to + 1)];
  }
  const gone = to - from + 1;
  const joined = new Set<number>();
  for (const level of profile.joined ?? []) {
    if (level < from) joined.add(level);
    else if (level > to) joined.add(level - gone);
  }
  return withLevels(profile, lists, profile.count - gone, joined);
}

/// A profile with a level put in front of the one at `index` (behind all when that is the count). It
/// counts as joined where nothing was measured on either side of it, or where `asJoined` says so.
export function withLevel(profile: Profile, index: number, values: Values, asJoined = false): Profile {
  const lists = {} as Record<ListKey, readonly number[]>;
  for (const key of LIST_KEYS) {
    const all = profile.lists[key];
    lists[key] = [...all.slice(0, index), Math.fround(values[key]), ...all.slice(index)];
  }
  const neighbours = [index - 1, index].filter((level) => level >= 0 && level < profile.count);
  const joined = new Set<number>();
  for (const level of profile.joined ?? []) joined.add(level < index ? level : level + 1);
  if (asJoined || neighbours.every((level) => isJoined(profile, level))) joined.add(index);
  return withLevels(profile, lists, profile.count + 1, joined);
}

/// A level that could be put into a cast, and where its values come from.
export interface Offer {
  index: number;
  values: Values;
  /// Its values lie on the straight line between both neighbours; otherwise they are those of the
  /// nearest level.
  isBetween: boolean;
}

/// The level that could be put in front of the one at `index`: halfway between its neighbours; beyond
/// the first or last one as far as the next level is from that, and not above the surface.
export function offerAt(profile: Profile, index: number): Offer {
  const { svp_Depth: depths } = profile.lists;
  const depthOf = (level: number) => depths[level] ?? NaN;
  let depth = (depthOf(index - 1) + depthOf(index)) / 2;
  if (index === 0) {
    const first = depthOf(0);
    depth = first > 0 ? Math.max(0, first / 2) : first;
  } else if (index === profile.count) {
    const last = depthOf(index - 1);
    depth = last + (index > 1 ? last - depthOf(index - 2) : 1);
    if (last >= 0) depth = Math.max(0, depth);
  }
  return offer(profile, index, rounded(depth));
}

/// The level at a depth (m) that could be put into a cast, at its place. `level` instead when there
/// is one at that depth.
export function offerFor(profile: Profile, depth: number): Offer | { level: number } {
  const { svp_Depth: depths } = profile.lists;
  const level = depths.findIndex((each) => Math.fround(depth) === Math.fround(each));
  if (level >= 0) return { level };
  let index = -1;
  for (let i = 1; i < profile.count && index < 0; ++i) {
    const [a, b] = [depths[i - 1] ?? NaN, depths[i] ?? NaN];
    if ((a < depth && depth < b) || (b < depth && depth < a)) index = i;
  }
  if (index < 0) {
    const [first, last] = [depths[0] ?? NaN, depths[profile.count - 1] ?? NaN];
    // Beyond both ends: in front where the cast begins at that end.
    const isDown = !(first > last);
    index = depth < first === isDown ? 0 : profile.count;
  }
  return offer(profile, index, depth);
}

/// The levels of the way down: to the deepest one.
export function downcast(profile: Profile): number[] {
  return range(0, deepest(profile).first + 1);
}

/// The levels of the way up from the deepest one, turned round so that depth grows.
export function upcast(profile: Profile): number[] {
  return range(deepest(profile).last, profile.count).reverse();
}

export function reversed(profile: Profile): number[] {
  return range(0, profile.count).reverse();
}

/// All levels by depth; equal ones keep their order, and those without a depth come last.
export function byDepth(profile: Profile): number[] {
  const { svp_Depth: depths } = profile.lists;
  const depthOf = (level: number) => {
    const depth = depths[level] ?? NaN;
    return Number.isNaN(depth) ? Infinity : depth;
  };
  const order = (a: number, b: number) => (depthOf(a) < depthOf(b) ? -1 : depthOf(a) > depthOf(b) ? 1 : a - b);
  return range(0, profile.count).sort(order);
}

/// Levels in air, as they stand at one end of a cast or at both.
export interface Air {
  levels: number[];
  /// How many of them lie above the water or at its surface, and how many are told by their speed.
  byDepth: number;
  bySpeed: number;
}

/// The levels in air at the start of a cast, and at its end when it comes up again: those not below
/// the surface, and those with a speed of air in the uppermost metres. A level at exactly 0 m next to
/// the water, with a speed of water, is the surface and stays. All levels where none lies in water.
export function levelsInAir(profile: Profile): Air {
  const { svp_Depth: depths, svp_Speed: speeds } = profile.lists;
  const isHigh = (level: number) => (depths[level] ?? NaN) <= 0;
  const isSlow = (level: number) =>
    (speeds[level] ?? NaN) < LEAST_WATER_SPEED && (depths[level] ?? NaN) < MOST_AIR_DEPTH;
  const isSurface = (level: number) => depths[level] === 0 && !isSlow(level);
  const run = (order: readonly number[]) => {
    const end = order.findIndex((level) => !isHigh(level) && !isSlow(level));
    const found = end < 0 ? [...order] : order.slice(0, end);
    const last = found[found.length - 1];
    if (last !== undefined && isSurface(last)) found.pop();
    return found;
  };
  const order = range(0, profile.count);
  const hasWater = order.some((level) => !isHigh(level) && !isSlow(level));
  const levels = hasWater ? [...run(order), ...run([...order].reverse()).reverse()] : order;
  const slow = levels.filter((level) => !isHigh(level)).length;
  return { levels, byDepth: levels.length - slow, bySpeed: slow };
}

/// A profile with the first level's values at 0 m in front, marked as joined.
export function withSurface(profile: Profile): Profile {
  const values = valuesOf(profile, 0);
  values.svp_Depth = 0;
  // A pressure is one above that of the air: 0 at the surface, as the depth is.
  values.svp_Depth_CTD = 0;
  return withLevel(profile, 0, values, true);
}

/// Why a level at the surface cannot be put in front: "" when it can.
export function surfaceFault(profile: Profile): "" | "there" | "above" | "order" | "air" {
  const { svp_Depth: depths, svp_Speed: speeds } = profile.lists;
  const first = depths[0] ?? NaN;
  if (first === 0) return "there";
  if (!(first > 0)) return "above";
  if (depths.some((depth) => depth < first)) return "order";
  return (speeds[0] ?? NaN) >= LEAST_WATER_SPEED ? "" : "air";
}

function offer(profile: Profile, index: number, depth: number): Offer {
  const { svp_Depth: depths } = profile.lists;
  const [above, below] = [index - 1, index];
  const isBetween = above >= 0 && below < profile.count;
  const height = (depths[below] ?? NaN) - (depths[above] ?? NaN);
  const part = isBetween && height !== 0 ? (depth - (depths[above] ?? NaN)) / height : 0;
  const near = above >= 0 ? above : below;
  const values = valuesOf(profile, near);
  if (isBetween) {
    const other = valuesOf(profile, below);
    for (const key of LIST_KEYS) values[key] = between(values[key], other[key], part);
  }
  values.svp_Depth = depth;
  // What the probe measured for a depth is not known beyond its levels unless it is a depth.
  if (!isBetween) values.svp_Depth_CTD = holdsPressures(profile) ? NaN : depth;
  return { index, values, isBetween };
}

function between(a: number, b: number, part: number): number {
  if (Number.isNaN(a)) return b;
  return Number.isNaN(b) ? a : rounded(a + (b - a) * part);
}

/// To a thousandth: more digits than that would be made up. Small values keep five that count.
function rounded(value: number): number {
  return Math.abs(value) < 10 ? Number(value.toPrecision(5)) : Math.round(value * 1000) / 1000;
}

function valuesOf(profile: Profile, level: number): Values {
  const values = {} as Values;
  for (const key of LIST_KEYS) values[key] = profile.lists[key][level] ?? NaN;
  return values;
}

/// The first and the last of the deepest measured levels.
function deepest(profile: Profile): { first: number; last: number } {
  let [first, last, most] = [-1, -1, -Infinity];
  profile.lists.svp_Depth.forEach((depth, level) => {
    if (depth > most) [first, most] = [level, depth];
    if (depth === most) last = level;
  });
  return { first, last };
}

function withLevels(
  profile: Profile,
  lists: Record<ListKey, readonly number[]>,
  count: number,
  joined: ReadonlySet<number>,
): Profile {
  const { joined: _before, ...rest } = profile;
  const header = { ...profile.header, hsvp_filesamp: count };
  return { ...rest, header, lists, count, ...(joined.size > 0 ? { joined } : {}) };
}

function range(from: number, to: number): number[] {
  return Array.from({ length: Math.max(0, to - from) }, (_, i) => from + i);
}
