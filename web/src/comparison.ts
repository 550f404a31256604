/// How far rays through two profiles lie apart: the object that follows a fix.
import { Action, SUCCESS, type Packet } from "./protocol";

/// Angles below the horizontal (degrees) of the rays, in the engine's order.
export const ANGLES = [90, 80, 70, 60, 50, 40, 30, 20, 10] as const;
/// Horizontal ranges, m.
export const RANGES = [10, 20, 50, 100, 200, 500, 1000, 2000, 5000, 7000, 10_000] as const;

/// Depths (m) that the rays through the first and the second profile have at a range; NaN for one
/// that does not reach it.
export interface DepthPair {
  first: number;
  second: number;
}

/// One row for each of the angles, one pair in it for each of the ranges.
export type Comparison = readonly (readonly DepthPair[])[];

export interface LargestDifference {
  /// m; positive where the second ray is the deeper one.
  difference: number;
  angle: number;
  range: number;
  pair: DepthPair;
}

/// Whether a packet is a comparison. It comes under the name of thinning, with an empty file name.
export function isComparison({ whoami, file }: Packet): boolean {
  return whoami === Action.thin && file === "";
}

/// The comparison in a packet; null when it holds none, or not the whole of it.
export function comparisonOf(packet: Packet): Comparison | null {
  if (packet.result !== SUCCESS) return null;
  const columns = RANGES.map((range) => pairsOf((packet as unknown as Record<string, unknown>)[`err${range}`]));
  if (columns.includes(null)) return null;
  return ANGLES.map((_, row) => columns.map((pairs) => pairs?.[row] ?? { first: NaN, second: NaN }));
}

/// How much deeper the second ray is, m; NaN where one of them does not come.
export function differenceOf({ first, second }: DepthPair): number {
  // Both have two decimals, and so has what lies between them.
  return Math.round((second - first) * 100) / 100;
}

/// Where the two rays lie farthest apart, the nearer range where several are equal; null where no
/// pair is whole.
export function largestOf(comparison: Comparison): LargestDifference | null {
  let largest: LargestDifference | null = null;
  RANGES.forEach((range, column) => {
    ANGLES.forEach((angle, row) => {
      const pair = comparison[row]?.[column];
      if (!pair) return;
      const difference = differenceOf(pair);
      if (Number.isNaN(difference)) return;
      if (largest && Math.abs(difference) <= Math.abs(largest.difference)) return;
      largest = { difference, angle, range, pair };
    });
  });
  return largest;
}

function pairsOf(list: unknown): DepthPair[] | null {
  if (!Array.isArray(list) || list.length !== ANGLES.length) return null;
  const pairs = list.map((pair: unknown) => {
    if (!Array.isArray(pair) || pair.length !== 2) return null;
    const [first, second] = pair.map(depthOf);
    return first === undefined || second === undefined ? null : { first, second };
  });
  return pairs.every((pair) => pair !== null) ? (pairs as DepthPair[]) : null;
}

function depthOf(text: unknown): number | undefined {
  if (text === "nan") return NaN;
  return typeof text === "string" && /^-?\d+\.\d\d$/.test(text) ? Number(text) : undefined;
}

/// The angles of some rows, ascending, in words: "80° 60°", or "80°–60°" for three or more that follow
/// upon each other.
export function anglesText(rows: readonly number[]): string {
  const [first = 0] = rows;
  const last = rows[rows.length - 1] ?? first;
  const isRow = rows.length > 2 && last - first === rows.length - 1;
  return (isRow ? [first, last] : rows).map((row) => `${ANGLES[row]}°`).join(isRow ? "–" : " ");
}
