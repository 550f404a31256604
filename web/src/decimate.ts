/// Fewer points for the same picture: what a long profile is thinned to before it is drawn. Only
/// the drawing is thinned; hovering, selecting and the table work on all levels.

/// Indices, ascending, of the levels that the line through all levels needs.
///
/// Consecutive levels on one pixel row become at most four: the first, the last, and the two with
/// the lowest and the highest `x`. The line through these covers the same pixels. Of consecutive
/// levels without a position (NaN row or x) the first is kept, so that the line still breaks there.
///
/// `rowOf` gives a level's pixel row as a whole number or NaN; to drop what lies outside the view
/// it should give one and the same row to everything above, and another to everything below.
export function thinLine(x: readonly number[], rowOf: (index: number) => number): number[] {
  const kept: number[] = [];
  let first = -1;
  let last = -1;
  let lowest = -1;
  let highest = -1;
  let row = NaN;
  let isBroken = false;

  const flush = () => {
    if (first < 0) return;
    const group = [first, lowest, highest, last].sort((a, b) => a - b);
    group.forEach((index, i) => {
      if (index !== group[i - 1]) kept.push(index);
    });
    first = -1;
  };

  x.forEach((value, index) => {
    const here = rowOf(index);
    if (Number.isNaN(here) || Number.isNaN(value)) {
      flush();
      if (!isBroken) kept.push(index);
      isBroken = true;
      return;
    }
    isBroken = false;
    if (first >= 0 && here === row) {
      if (value < (x[lowest] ?? NaN)) lowest = index;
      if (value > (x[highest] ?? NaN)) highest = index;
    } else {
      flush();
      first = lowest = highest = index;
      row = here;
    }
    last = index;
  });
  flush();
  return kept;
}

/// The first of `indices` on each pixel: marks on top of each other look like one.
export function thinMarks(
  indices: readonly number[],
  pixelOf: (index: number) => readonly [number, number],
): number[] {
  const taken = new Set<string>();
  return indices.filter((index) => {
    const [x, y] = pixelOf(index);
    const pixel = `${Math.round(x)},${Math.round(y)}`;
    if (taken.has(pixel)) return false;
    taken.add(pixel);
    return true;
  });
}
