/// How far rays through two profiles lie apart, as a table and a plot of the same numbers.
import { chart, type Chart, type ChartLine } from "./chart";
import { ANGLES, RANGES, anglesText, differenceOf, type Comparison, type DepthPair } from "./comparison";
import { make } from "./dom";
import { ABSENT, formatCount } from "./format";

/// What the two profiles are called under a pointer.
export interface ProfileNames {
  first: string;
  second: string;
}

export class ComparisonView {
  readonly element = make("div", "comparison");
  private readonly plotPlace = make("div", "plot comparison-plot");
  private readonly readout = make("p", "comparison-readout field-hint");
  private readonly tablePlace = make("div", "comparison-table");
  private shown: Comparison | null = null;
  /// The cell that the keyboard is at.
  private at = { row: 0, column: 0 };

  constructor(private readonly names: ProfileNames) {
    this.plotPlace.setAttribute("aria-hidden", "true");
    this.tablePlace.tabIndex = 0;
    this.tablePlace.setAttribute("role", "group");
    this.tablePlace.setAttribute("aria-label", "Depth differences of rays, in metres");
    this.tablePlace.setAttribute("aria-describedby", "comparison-keys");
    const keys = make("p", "unseen", "The arrow keys go from number to number and tell both depths.");
    keys.id = "comparison-keys";
    this.readout.setAttribute("role", "status");
    this.tablePlace.addEventListener("keydown", (event) => this.key(event));
    this.tablePlace.addEventListener("blur", () => this.mark(null));
    this.element.append(keys, this.tablePlace, this.readout, this.plotPlace);
    new ResizeObserver(() => this.draw()).observe(this.plotPlace);
  }

  show(comparison: Comparison | null): void {
    this.shown = comparison;
    this.at = { row: 0, column: 0 };
    this.element.hidden = comparison === null;
    this.tell("");
    this.tablePlace.replaceChildren(...(comparison ? [this.table(comparison)] : []));
    this.draw();
  }

  private table(comparison: Comparison): HTMLTableElement {
    const corner = make("th", "", "Angle");
    corner.scope = "col";
    const head = make("tr", "", corner);
    for (const range of RANGES) {
      const cell = make("th", "", `${formatCount(range)} m`);
      cell.scope = "col";
      head.append(cell);
    }
    const body = make("tbody");
    ANGLES.forEach((angle, row) => {
      const name = make("th", "", `${angle}°`);
      name.scope = "row";
      const line = make("tr", "", name);
      RANGES.forEach((_, column) => {
        const pair = comparison[row]?.[column] ?? { first: NaN, second: NaN };
        const cell = make("td", "", cellText(pair));
        cell.title = this.pairText(pair);
        cell.addEventListener("pointerenter", () => this.tell(this.cellTold(row, column)));
        line.append(cell);
      });
      body.append(line);
    });
    const caption = make("caption", "unseen", `How much deeper a ray is ${this.names.second} than ${this.names.first}, by its angle below the horizontal and the horizontal range`);
    return make("table", "", caption, make("thead", "", head), body);
  }

  /// Goes on to the number beside, and tells of it.
  private key(event: KeyboardEvent): void {
    const step = {
      ArrowDown: [1, 0], ArrowUp: [-1, 0], ArrowRight: [0, 1], ArrowLeft: [0, -1],
    }[event.key];
    if (!step || !this.shown) return;
    event.preventDefault();
    const within = (value: number, count: number) => Math.min(Math.max(value, 0), count - 1);
    const isMarked = this.tablePlace.querySelector("td.at") !== null;
    const { row, column } = this.at;
    // The first press goes to where the keyboard was.
    if (isMarked) {
      this.at = { row: within(row + (step[0] ?? 0), ANGLES.length), column: within(column + (step[1] ?? 0), RANGES.length) };
    }
    this.mark(this.at);
    this.tell(this.cellTold(this.at.row, this.at.column));
  }

  private mark(at: { row: number; column: number } | null): void {
    this.tablePlace.querySelector("td.at")?.classList.remove("at");
    const cell = at && this.tablePlace.querySelectorAll("tbody tr")[at.row]?.querySelectorAll("td")[at.column];
    cell?.classList.add("at");
    cell?.scrollIntoView({ block: "nearest", inline: "nearest" });
  }

  private cellTold(row: number, column: number): string {
    const pair = this.shown?.[row]?.[column] ?? { first: NaN, second: NaN };
    return `${ANGLES[row]}°, ${formatCount(RANGES[column] ?? NaN)} m: ${this.pairText(pair)}`;
  }

  private tell(text: string): void {
    this.readout.textContent =
      text || "Point at a number, or go to it with the arrow keys, to see both depths. “–” stands where a ray does not come.";
  }

  private pairText({ first, second }: DepthPair): string {
    return `${depthText(first)} ${this.names.first}, ${depthText(second)} ${this.names.second}`;
  }

  private draw(): void {
    const { plotPlace, shown } = this;
    const { clientWidth: width, clientHeight: height } = plotPlace;
    if (!shown || width === 0 || height === 0) return plotPlace.replaceChildren();
    const lines = ANGLES.map((_, row) => ({
      className: "comparison-line",
      shade: row / (ANGLES.length - 1),
      marks: true,
      points: RANGES.map((range, column) => ({
        x: range as number,
        y: differenceOf(shown[row]?.[column] ?? { first: NaN, second: NaN }),
      })).filter(({ y }) => !Number.isNaN(y)),
    }));
    const values = lines.flatMap(({ points }) => points.map(({ y }) => y));
    const low = Math.min(0, ...values);
    const high = Math.max(0, ...values);
    const room = Math.max((high - low) * 0.08, 0.01);
    const options = {
      x: { label: "Horizontal range (m)", span: [8, 12_500] as const, isLog: true, ticks: [10, 50, 200, 1000, 5000, 10_000] },
      y: { label: "Difference (m)", span: [high + room, low - room] as const, finest: 0.01 },
      width,
      height,
      room: 70,
    };
    plotPlace.replaceChildren(chart({ lines: labelled(lines, chart({ lines: [], ...options })), ...options }).svg);
  }
}

/// The lines with their labels, those together whose ends lie too close for two.
function labelled(lines: readonly ChartLine[], { toX, toY }: Chart): ChartLine[] {
  const ends: { x: number; y: number; rows: number[] }[] = [];
  lines.forEach(({ points }, row) => {
    const last = points[points.length - 1];
    if (!last) return;
    const [x, y] = [toX(last.x), toY(last.y)];
    const near = ends.find((end) => Math.abs(x - end.x) < LABEL.width && Math.abs(y - end.y) < LABEL.height);
    if (near) near.rows.push(row);
    else ends.push({ x, y, rows: [row] });
  });
  return lines.map((line, row) => {
    const end = ends.find(({ rows }) => rows[0] === row);
    return end ? { ...line, label: anglesText(end.rows) } : line;
  });
}

/// Pixels that a label takes.
const LABEL = { width: 30, height: 12 };

function cellText(pair: DepthPair): string {
  const difference = differenceOf(pair);
  if (Number.isNaN(difference)) return ABSENT;
  return difference === 0 ? "0.00" : difference.toFixed(2).replace("-", "\u2212");
}

function depthText(depth: number): string {
  return Number.isNaN(depth) ? "no ray" : `${depth.toFixed(2)} m`;
}
