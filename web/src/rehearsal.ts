/// A cast that nobody sees, drawn while the page is idle. Browsers translate code when it first runs,
/// which would otherwise double the time that the first cast takes to appear.
import { columnsOf, plotQuantities } from "./columns";
import { make } from "./dom";
import { LevelTable } from "./level-table";
import { drawPanels, plottedOf } from "./plot-panels";
import { LIST_KEYS, type ListKey } from "./protocol";
import type { Profile } from "./profile";

const LEVELS = 40;

/// Draws it as soon as the browser has nothing else to do, and takes it away again.
export function rehearse(): void {
  const whenIdle = window.requestIdleCallback ?? ((act: () => void) => setTimeout(act, 200));
  whenIdle(() => void draw());
}

async function draw(): Promise<void> {
  const profile = made();
  const columns = columnsOf(profile);
  const quantities = plotQuantities(columns);
  const plotted = plottedOf(profile, columns, quantities);
  drawPanels({ plotted, view: plotted.full, invalid: [], over: [], under: null, width: 500, height: 400 });

  // Closed to the rest of the page, which looks for rows of the one table that it has.
  const room = make("div", "unseen");
  room.inert = true;
  document.body.append(room);
  const stage = make("div", "");
  room.attachShadow({ mode: "closed" }).append(stage);
  const nothing = () => undefined;
  const table = new LevelTable(stage, "", {
    select: nothing, untouchable: () => "", typed: () => false, mended: nothing, remove: nothing, insert: nothing,
  });
  table.show(profile, columns);
  await table.markSelected(0);
  table.remove();
  room.remove();
}

function made(): Profile {
  const values = (of: (level: number) => number) => Array.from({ length: LEVELS }, (_, level) => of(level));
  const lists = Object.fromEntries(LIST_KEYS.map((key) => [key, values(() => NaN)])) as Record<ListKey, number[]>;
  lists.svp_Depth = lists.svp_Depth_CTD = values((level) => level);
  lists.svp_Speed = lists.svp_Speed_CTD = values((level) => 1500 - level / 10);
  lists.svp_Temp = values((level) => 12 - level / 100);
  lists.svp_Sal = values(() => 35);
  return { filename: "", header: {}, lists, count: LEVELS };
}
