/// How a filter reads a file: what becomes of each line, and the levels that come of it.
import { LineSet, fieldsOf, levelOf, type ColumnFormat, type Level } from "./column-text";
import { QUANTITIES, type Filter, type Quantity } from "./filters";

/// What becomes of a line: a level, one of those to be skipped, or one without readable depth and
/// speed, which opening passes over.
export type Fate = "level" | "skipped" | "passed";

export interface ShownLine {
  /// Counted from 1.
  number: number;
  fields: readonly string[];
  fate: Fate;
}

export interface Reading {
  /// The first lines of the file.
  lines: ShownLine[];
  /// The first levels.
  levels: Level[];
  counts: Record<Fate, number>;
  /// Smallest and largest values of all levels; null without levels.
  depths: readonly [number, number] | null;
  speeds: readonly [number, number] | null;
}

export function formatOf(filter: Filter): ColumnFormat {
  const column = (quantity: Quantity) => {
    const text = filter.columns[quantity].trim();
    return /^\d+$/.test(text) ? Number(text) : -1;
  };
  return {
    columns: Object.fromEntries(QUANTITIES.map((each) => [each, column(each)])) as Record<Quantity, number>,
    skip: filter.skip.trim(),
    depthFactor: Number(filter.depthFactor.trim() || NaN),
    speedFactor: Number(filter.speedFactor.trim() || NaN),
    separator: filter.separator,
  };
}

/// Reads all lines with a filter, and keeps the first `most` of them and `mostLevels` levels.
export function readLines(
  lines: readonly string[],
  format: ColumnFormat,
  most: number,
  mostLevels: number,
): Reading {
  const skipped = new LineSet(format.skip);
  const reading: Reading = {
    lines: [], levels: [], counts: { level: 0, skipped: 0, passed: 0 }, depths: null, speeds: null,
  };
  lines.forEach((line, i) => {
    const isShown = i < most;
    const isSkipped = skipped.has(i + 1);
    const fields = isShown || !isSkipped ? fieldsOf(line, format.separator) : [];
    const level = isSkipped ? null : levelOf(fields, format);
    const fate: Fate = isSkipped ? "skipped" : level ? "level" : "passed";
    ++reading.counts[fate];
    if (isShown) reading.lines.push({ number: i + 1, fields, fate });
    if (!level) return;
    reading.depths = widened(reading.depths, level.depth);
    reading.speeds = widened(reading.speeds, level.speed);
    if (reading.levels.length < mostLevels) reading.levels.push(level);
  });
  return reading;
}

function widened(range: readonly [number, number] | null, value: number): readonly [number, number] {
  return range ? [Math.min(range[0], value), Math.max(range[1], value)] : [value, value];
}
