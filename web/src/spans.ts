/// Intervals of an axis: what is in view, and how zooming changes it.

/// An interval, lower end first.
export type Span = readonly [number, number];

/// The interval that holds all wanted values of these lists, with a little room around them: a share
/// of its length on both sides, and at least `least` in all.
export function spanOf(
  lists: readonly (readonly number[])[],
  share: number,
  least: number,
  wanted?: (index: number) => boolean,
): Span {
  const [low, high] = extent(lists, wanted) ?? [0, 1];
  const length = high - low;
  const room = Math.max(length * share, (least - length) / 2);
  return [low - room, high + room];
}

/// Lowest and highest of the values in these lists, or null when they hold none.
export function extent(
  lists: readonly (readonly number[])[],
  wanted: (index: number) => boolean = () => true,
): Span | null {
  let low = Infinity;
  let high = -Infinity;
  for (const values of lists) {
    values.forEach((value, index) => {
      if (Number.isNaN(value) || !wanted(index)) return;
      if (value < low) low = value;
      if (value > high) high = value;
    });
  }
  return low <= high ? [low, high] : null;
}

/// The span moved just so that it holds `value`; the span itself when it already does.
export function movedTo(span: Span, value: number): Span {
  if (Number.isNaN(value) || (value >= span[0] && value <= span[1])) return span;
  const half = (span[1] - span[0]) / 2;
  return [value - half, value + half];
}

/// The span scaled around `centre` (its middle when that is NaN), within `limits`.
export function scaled(span: Span, factor: number, centre: number, limits: Span): Span {
  const middle = Number.isNaN(centre) ? (span[0] + span[1]) / 2 : centre;
  const low = middle - (middle - span[0]) * factor;
  const high = middle + (span[1] - middle) * factor;
  return [Math.max(low, limits[0]), Math.min(high, limits[1])];
}

/// The span widened around its middle where it is shorter than `length`.
export function atLeast(span: Span, length: number): Span {
  if (span[1] - span[0] >= length) return span;
  const middle = (span[0] + span[1]) / 2;
  return [middle - length / 2, middle + length / 2];
}

export function sameSpan(a: Span, b: Span): boolean {
  return a[0] === b[0] && a[1] === b[1];
}

/// Round values within a span for the ticks of an axis: steps of 1, 2 or 5 times a power of ten,
/// about `count` of them.
export function roundValues([low, high]: Span, count: number): number[] {
  const length = high - low;
  if (!(length > 0) || !Number.isFinite(length)) return [];
  const rough = length / Math.max(count, 1);
  const power = Math.floor(Math.log10(rough));
  const part = rough / 10 ** power;
  // The nearest of them on a logarithmic scale.
  const factor = part >= Math.sqrt(50) ? 10 : part >= Math.sqrt(10) ? 5 : part >= Math.SQRT2 ? 2 : 1;
  // Whole multiples of the step, or whole fractions of it: 0.1 itself has no exact value to add up.
  const exponent = factor === 10 ? power + 1 : power;
  const digit = factor === 10 ? 1 : factor;
  const valueOf = (i: number) => (exponent < 0 ? (i * digit) / 10 ** -exponent : i * digit * 10 ** exponent);
  const step = digit * 10 ** exponent;
  const values: number[] = [];
  for (let i = Math.ceil(low / step); valueOf(i) <= high && values.length < 100; ++i) values.push(valueOf(i));
  return values;
}
