/// What makes one profile of another, kept small: a cast of many levels may be edited many times,
/// and each edit can be taken back.
import type { Profile } from "./profile";
import { LIST_KEYS, type ListKey } from "./protocol";

/// All of a profile but its levels.
type Frame = Omit<Profile, "lists" | "count" | "joined">;

/// Neighbouring levels. Lists that stay as they are have no values here.
interface Stretch {
  count: number;
  lists: Partial<Record<ListKey, Float64Array>>;
  /// Which of them are joined, counted from the first.
  joined: readonly number[];
}

/// The levels before and after between the first and the last one that differ.
export interface Delta {
  /// Number of equal levels in front.
  at: number;
  before: Stretch;
  after: Stretch;
  /// Nothing but the order of the levels is the other way round; neither stretch has values.
  mirrored: boolean;
  frameBefore: Frame;
  frameAfter: Frame;
}

export function deltaOf(before: Profile, after: Profile): Delta {
  const least = Math.min(before.count, after.count);
  const sameCount = before.count === after.count;
  const lists = LIST_KEYS.filter((key) => !sameCount || before.lists[key] !== after.lists[key]);
  const flagsDiffer = before.joined !== after.joined;
  const pairs = lists.map((key) => [before.lists[key], after.lists[key]] as const);
  const isSame = (i: number, j: number) => {
    for (const [old, next] of pairs) if (!Object.is(old[i], next[j])) return false;
    return !flagsDiffer || (before.joined?.has(i) ?? false) === (after.joined?.has(j) ?? false);
  };

  let at = 0;
  while (at < least && isSame(at, at)) ++at;
  let behind = 0;
  while (behind < least - at && isSame(before.count - 1 - behind, after.count - 1 - behind)) ++behind;
  const ends = [before.count - behind, after.count - behind] as const;
  const mirrored = sameCount && isMirrored(before, after, at, ends[0]);
  const changed = mirrored ? [] : LIST_KEYS.filter((key) => !sameCount || lists.includes(key));
  return {
    at,
    mirrored,
    before: stretch(before, at, ends[0], changed),
    after: stretch(after, at, ends[1], changed),
    frameBefore: frameOf(before),
    frameAfter: frameOf(after),
  };
}

/// The profile that came of `before`.
export function redone(before: Profile, delta: Delta): Profile {
  return replaced(before, delta, delta.before, delta.after, delta.frameAfter);
}

/// The profile of which `after` came.
export function undone(after: Profile, delta: Delta): Profile {
  return replaced(after, delta, delta.after, delta.before, delta.frameBefore);
}

function isMirrored(before: Profile, after: Profile, from: number, to: number): boolean {
  for (let i = from; i < to; ++i) {
    const other = from + to - 1 - i;
    const same = LIST_KEYS.every((key) => Object.is(before.lists[key][i], after.lists[key][other]));
    if (!same || (before.joined?.has(i) ?? false) !== (after.joined?.has(other) ?? false)) return false;
  }
  return to > from;
}

function stretch(profile: Profile, from: number, to: number, keys: readonly ListKey[]): Stretch {
  const lists: Stretch["lists"] = {};
  for (const key of keys) lists[key] = Float64Array.from(profile.lists[key].slice(from, to));
  const joined = [...(profile.joined ?? [])].filter((i) => i >= from && i < to).map((i) => i - from);
  return { count: to - from, lists, joined };
}

function frameOf({ lists: _lists, count: _count, joined: _joined, ...frame }: Profile): Frame {
  return frame;
}

function replaced(profile: Profile, delta: Delta, old: Stretch, next: Stretch, frame: Frame): Profile {
  const { at, mirrored } = delta;
  const end = at + old.count;
  const lists = {} as Record<ListKey, readonly number[]>;
  for (const key of LIST_KEYS) {
    const all = profile.lists[key];
    const values = mirrored ? all.slice(at, end).reverse() : next.lists[key];
    lists[key] = values ? [...all.slice(0, at), ...values, ...all.slice(end)] : all;
  }
  const shift = next.count - old.count;
  const joined = new Set<number>();
  for (const level of profile.joined ?? []) {
    if (level < at) joined.add(level);
    else if (level >= end) joined.add(level + shift);
  }
  for (const level of next.joined) joined.add(at + level);
  return { ...frame, lists, count: profile.count + shift, ...(joined.size > 0 ? { joined } : {}) };
}
