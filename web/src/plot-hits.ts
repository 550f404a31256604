/// What a point of the plot means: which panel, which level.
import { placeOf, type Point, type Pointed } from "./plot-overlay";
import type { Panel, Plotted } from "./plot-panels";

/// How far from a level the pointer still finds it, in CSS pixels.
const REACH_PX = 60;

/// The panel that a point is in, or nearest to.
export function panelAt(panels: readonly Panel[], { x }: Point): Panel | null {
  return panels.find(({ area }) => x <= area.right + 10) ?? panels[panels.length - 1] ?? null;
}

/// The level nearest to a point, with its panel, or null when none is within reach.
export function levelNear(panels: readonly Panel[], plotted: Plotted, at: Point): Pointed | null {
  const panel = panelAt(panels, at);
  if (!panel) return null;
  let nearest = -1;
  let least = REACH_PX * REACH_PX;
  plotted.profile.lists.svp_Depth.forEach((depth, level) => {
    // Most levels of a long cast are out of reach by their depth alone.
    const down = panel.toY(depth) - at.y;
    if (!(down * down < least)) return;
    const across = panel.toX(panel.values[level] ?? NaN) - at.x;
    const distance = across * across + down * down;
    if (distance < least && placeOf(panel, plotted, level, false)) {
      least = distance;
      nearest = level;
    }
  });
  return nearest < 0 ? null : { level: nearest, panel };
}

/// The level that is shown for a point: the nearest one, or beside the line, the one nearest in
/// depth; null outside of the panels or when none is within reach.
export function levelBeside(panels: readonly Panel[], plotted: Plotted, at: Point): Pointed | null {
  const panel = panelAt(panels, at);
  const near = levelNear(panels, plotted, at);
  if (near || !panel) return near;
  const { top, bottom, left, right } = panel.area;
  if (at.y < top || at.y > bottom || at.x < left || at.x > right) return null;
  const level = levelAtDepth(plotted, panel.fromY(at.y));
  const y = panel.toY(plotted.profile.lists.svp_Depth[level] ?? NaN);
  const isInReach = y >= top - 1 && y <= bottom + 1 && Math.abs(y - at.y) < REACH_PX;
  return isInReach ? { level, panel } : null;
}

/// The level nearest to a depth (m), -1 for none.
export function levelAtDepth({ profile }: Plotted, wanted: number): number {
  let nearest = -1;
  let least = Infinity;
  profile.lists.svp_Depth.forEach((depth, level) => {
    const distance = Math.abs(depth - wanted);
    if (!(distance < least)) return;
    least = distance;
    nearest = level;
  });
  return nearest;
}
