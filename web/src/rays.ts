/// Rays through two profiles: what is asked for them, and the paths that come back.
import { validLevels } from "./fixing";
import type { Profile } from "./profile";
import { valueItem, type Packet } from "./protocol";

/// What an angle below the horizontal may be, degrees, bounds included.
export const ANGLE_RANGE = [0, 90] as const;
/// What the speed of the reference may be at the surface, m/s, bounds included: others are invalid.
export const REFERENCE_RANGE = [1400, 1700] as const;
/// Sound speed, m/s, that the engine gives the reference from 1000 m on.
export const REFERENCE_SPEED = 1500;

/// Samples by depth (m) and sound speed (m/s).
export interface Samples {
  depths: readonly number[];
  speeds: readonly number[];
}

/// The points of a ray: horizontal distance and depth, m.
export interface Path {
  x: readonly number[];
  y: readonly number[];
}

export interface Rays {
  first: Path;
  second: Path;
}

export function samplesOf({ lists }: Pick<Profile, "lists">): Samples {
  return { depths: lists.svp_Depth, speeds: lists.svp_Speed };
}

/// The reference: a sample at the surface. The engine joins 1500 m/s from 1000 m down.
export function reference(speed: number): Samples {
  return { depths: [0], speeds: [speed] };
}

/// Whether the engine takes samples as a second profile: six at least, each below the one before it.
export function isTraceable({ depths }: Samples): boolean {
  const step = 0.005;
  return depths.length >= 6 && depths.every((depth, i) => i === 0 || (depths[i - 1] ?? NaN) < depth - step);
}

/// Body of a request for the ray of an angle, degrees below the horizontal, in two profiles.
export function raysBody(angle: number, first: Samples, second: Samples): string {
  const list = (values: readonly number[]) => values.map(valueItem).join(",");
  return `[${[String(angle), list(first.speeds), list(first.depths), list(second.speeds), list(second.depths)].join("*")}]`;
}

/// The rays in an answer; null when it holds none.
export function raysOf({ svp1X, svp1Y, svp2X, svp2Y }: Packet): Rays | null {
  const first = pathOf(svp1X, svp1Y);
  const second = pathOf(svp2X, svp2Y);
  return first && second ? { first, second } : null;
}

/// Whether a path can be the ray of an angle in a profile. An answer says of neither what it is; so
/// its first piece is held against the first layer: there the ray is an arc, and the straight line
/// between two of its points has the mean of their directions.
export function fits({ x, y }: Path, angle: number, samples: Samples): boolean {
  const { depths, speeds } = samples;
  const lists = { svp_Depth: depths, svp_Speed: speeds } as Profile["lists"];
  const [top, next] = depths.length === 1 ? [0, -1] : validLevels({ lists, count: depths.length, filename: "", header: {} });
  const depth = depths[top ?? -1];
  const speed = speeds[top ?? -1];
  const startX = x[0];
  const startY = y[0];
  if (depth === undefined || speed === undefined || startX !== 0 || startY === undefined) return false;
  if (Math.abs(startY - depth) > 1e-3) return false;
  const right = x[1];
  const down = y[1];
  // A ray that bends upward where it sets out.
  if (right === undefined || down === undefined) return true;
  const below = next === undefined || next < 0 ? { depth: 1000, speed: REFERENCE_SPEED } : { depth: depths[next] ?? NaN, speed: speeds[next] ?? NaN };
  const gradient = (below.speed - speed) / (below.depth - depth);
  const start = (angle * Math.PI) / 180;
  const end = Math.acos(Math.min(1, (Math.cos(start) * (speed + gradient * (down - depth))) / speed));
  const seen = Math.atan2(down - depth, right);
  const isNear = (expected: number) => Math.abs(seen - expected) < DIRECTION_TOLERANCE;
  if (isNear((start + end) / 2)) return true;
  // Behind its turn only as far away as its arc is wide.
  const width = ((2 * speed) / (gradient * Math.cos(start))) * Math.sin((start + end) / 2);
  return gradient > 0 && isNear((start - end) / 2) && Math.abs(Math.hypot(right, down - depth) / width - 1) < WIDTH_TOLERANCE;
}

/// Radians. Depths go out as 32-bit floats, and near the horizontal a cosine has half the digits.
const DIRECTION_TOLERANCE = 1e-3;
const WIDTH_TOLERANCE = 0.01;

/// Depth (m) of a ray at a horizontal distance; NaN where it does not come. Of a vertical ray there
/// is none to tell.
export function depthAt({ x, y }: Path, distance: number): number {
  const last = x.length - 1;
  if (last < 1 || !(distance >= (x[0] ?? NaN) && distance <= (x[last] ?? NaN))) return NaN;
  let low = 0;
  let high = last;
  while (high - low > 1) {
    const middle = (low + high) >> 1;
    if ((x[middle] ?? NaN) <= distance) low = middle;
    else high = middle;
  }
  const [x0 = NaN, x1 = NaN, y0 = NaN, y1 = NaN] = [x[low], x[high], y[low], y[high]];
  return x1 > x0 ? y0 + ((y1 - y0) * (distance - x0)) / (x1 - x0) : NaN;
}

/// The farthest distance that both rays reach, m.
export function commonReach({ first, second }: Rays): number {
  return Math.min(first.x[first.x.length - 1] ?? 0, second.x[second.x.length - 1] ?? 0);
}

/// Points enough to draw a path when a pixel is `across` m wide and `down` m high: of those that lie
/// within half a pixel of the one before none, but the last.
export function drawnPoints({ x, y }: Path, across: number, down: number): { x: number; y: number }[] {
  const points: { x: number; y: number }[] = [];
  let last = { x: NaN, y: NaN };
  x.forEach((right, i) => {
    const point = { x: right, y: y[i] ?? NaN };
    const isNear = Math.abs(point.x - last.x) < across / 2 && Math.abs(point.y - last.y) < down / 2;
    if (isNear && i < x.length - 1) return;
    points.push(point);
    last = point;
  });
  return points;
}

function pathOf(x: unknown, y: unknown): Path | null {
  return isNumbers(x) && isNumbers(y) && x.length > 0 && x.length === y.length ? { x, y } : null;
}

function isNumbers(list: unknown): list is number[] {
  return Array.isArray(list) && list.every((value) => typeof value === "number");
}
