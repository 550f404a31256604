/// What a compared profile has at the depths of the open one.
import { differenceText } from "./format";
import type { Column } from "./columns";
import { underlay, type Plotted } from "./plot-panels";

export interface ComparedValue {
  column: Column;
  /// The other profile's value with its unit, and how far the open one's lies above it.
  text: string;
}

/// What lies on the line of the other profile at a level of the open one, for each quantity that is
/// plotted of both; none where the other does not reach that depth.
export function comparedValues(plotted: Plotted, under: Plotted, level: number): ComparedValue[] {
  const depth = plotted.profile.lists.svp_Depth[level] ?? NaN;
  return plotted.quantities.flatMap((quantity) => {
    const line = underlay(under, quantity);
    const column = plotted.columns.find(({ key }) => key === quantity.key);
    const other = line ? valueAtDepth(line.depths, line.values, depth) : NaN;
    if (!column || Number.isNaN(other)) return [];
    const own = plotted.values.get(quantity.key)?.[level] ?? NaN;
    const unit = column.unit ? ` ${column.unit}` : "";
    const difference = Number.isNaN(own) ? "" : ` (${differenceText(own - other, column.decimals)})`;
    return [{ column, text: `${other.toFixed(column.decimals)}${unit}${difference}` }];
  });
}

/// The value of a line at a depth, on the first stretch that covers it; NaN where none does.
export function valueAtDepth(depths: readonly number[], values: readonly number[], depth: number): number {
  for (let i = 0; i < depths.length; ++i) {
    const [above, below] = [depths[i - 1] ?? NaN, depths[i] ?? NaN];
    const value = values[i] ?? NaN;
    if (below === depth && !Number.isNaN(value)) return value;
    if (!((above < depth && depth < below) || (below < depth && depth < above))) continue;
    const before = values[i - 1] ?? NaN;
    const between = before + ((value - before) * (depth - above)) / (below - above);
    if (!Number.isNaN(between)) return between;
  }
  return NaN;
}
