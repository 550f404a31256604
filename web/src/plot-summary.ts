/// What a plot shows, in words: for those who cannot see it.
import type { Column } from "./columns";
import { formatCount, formatValue } from "./format";
import type { LinkedView, Plotted } from "./plot-panels";
import type { Profile } from "./profile";
import { extent, type Span } from "./spans";

/// A few sentences: each quantity with its lowest and highest value, the depths, and what is marked.
/// `zoomed` is what is in view where that is not all.
export function plotSummary(
  { profile, columns, quantities, values }: Plotted,
  invalid: ReadonlySet<number>,
  under: Profile | null,
  zoomed: LinkedView | null,
): string {
  const { count, joined, filename } = profile;
  if (count === 0) return `${filename} has no levels.`;
  const depth = columns.find(({ key }) => key === "svp_Depth");
  const ranges = quantities.map(({ key, name }) => {
    const column = columns.find((each) => each.key === key);
    return `${name} ${rangeText(extent([values.get(key) ?? []]), column)}`;
  });
  const sentences = [
    `${formatCount(count)} ${count === 1 ? "level" : "levels"} of ${filename}, depth ${
      rangeText(extent([profile.lists.svp_Depth]), depth)}.`,
    ...ranges.map((range) => `${range}.`),
  ];
  if (invalid.size > 0) sentences.push(`${formatCount(invalid.size)} invalid.`);
  if (joined && joined.size > 0) sentences.push(`${formatCount(joined.size)} joined, not measured.`);
  if (under) sentences.push(`Compared with ${under.filename}.`);
  if (zoomed) sentences.push(`In view: depth ${rangeText(zoomed.depth, depth)}.`);
  return sentences.join(" ");
}

function rangeText(span: Span | null, column: Column | undefined): string {
  if (!span) return "not given";
  const decimals = column?.decimals ?? 2;
  const unit = column?.unit ? ` ${column.unit}` : "";
  const [low, high] = span.map((value) => formatValue(value, decimals)) as [string, string];
  return low === high ? `${low}${unit}` : `${low} to ${high}${unit}`;
}
