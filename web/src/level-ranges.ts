/// Levels named in a sentence.
import { formatCount } from "./format";

/// Stretches of levels that are named; more of them are counted.
const MOST_NAMED = 6;

/// "levels 1 to 3 and 9", of indices in ascending order.
export function rangesText(levels: readonly number[]): string {
  const ranges: [number, number][] = [];
  for (const level of levels) {
    const last = ranges[ranges.length - 1];
    if (last && last[1] === level - 1) last[1] = level;
    else ranges.push([level, level]);
  }
  const name = (level: number) => formatCount(level + 1);
  const words = ranges.slice(0, MOST_NAMED).map(([from, to]) => (from === to ? name(from) : `${name(from)} to ${name(to)}`));
  const rest = ranges.slice(MOST_NAMED).reduce((sum, [from, to]) => sum + to - from + 1, 0);
  if (rest > 0) words.push(`${formatCount(rest)} more`);
  const last = words.pop() ?? "";
  const text = words.length > 0 ? `${words.join(", ")} and ${last}` : last;
  return `${levels.length === 1 ? "level" : "levels"} ${text}`;
}
