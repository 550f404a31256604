/// How far rays through two profiles lie apart, as a table and a plot of the same numbers.
import { chart, type Chart, type ChartLine } from "./chart";
import { ANGLES, RANGES, differenceOf, type Comparison, type DepthPair } from "./comparison";
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

  constructor(private readonly names: ProfileNames) {
    this.plotPlace.setAttribute("aria-hidden", "true");
    this.tablePlace.tabIndex = 0;
    this.tablePlace.setAttribute("role", "group");
    this.tablePlace.setAttribute("aria-label", "Depth differences of rays, in metres");
    this.element.append(this.tablePlace, this.readout, this.plotPlace);
    new ResizeObserver(() => this.draw()).observe(this.plotPlace);
  }

  show(comparison: Comparison | null): void {
    this.shown = comparison;
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
      RANGES.forEach((range, column) => {
        const pair = comparison[row]?.[column] ?? { first: NaN, second: NaN };
        const cell = make("td", "", cellText(pair));
        cell.title = this.pairText(pair);
        cell.addEventListener("pointerenter", () =>
          this.tell(`${angle}°, ${formatCount(range)} m: ${this.pairText(pair)}`),
        );
        line.append(cell);
      });
      body.append(line);
    });
    const caption = make("caption", "unseen", `How much deeper a ray is ${this.names.second} than ${this.names.first}, by its angle below the horizontal and the horizontal range`);
    return make("table", "", caption, make("thead", "", head), body);
  }

  private tell(text: string): void {
    this.readout.textContent =
      text || "Point at a number to see both depths. “–” stands where a ray does not come.";
  }

  private pairText({ first, second }: DepthPair): string {
    return `${depthText(first)} ${this.names.first}, ${depthText(second)} ${this.names.second}`;
  }

  private draw(): void {
    const { plotPlace, shown } = this;
    const { clientWidth: width, clientHeight: height } = plotPlace;
    if (!shown || width === 0 || height === 0) return plotPlace.replaceChildren();
    const lines = ANGLES.map((angle, row) => ({
      className: "comparison-line",
      shade: row / (ANGLES.length - 1),
      label: `${angle}°`,
      marks: true,
      points: RANGES.map((range, column) => ({
        x: range as number,
        y: differenceOf(shown[row]?.[column] ?? { first: NaN, second: NaN }),
      })).filter(({ y }) => !Number.isNaN(y)),
    })).filter(({ points }) => points.length > 0);
    const values = lines.flatMap(({ points }) => points.map(({ y }) => y));
    const low = Math.min(0, ...values);
    const high = Math.max(0, ...values);
    const room = Math.max((high - low) * 0.08, 0.01);
    const options = {
      x: { label: "Horizontal range (m)", span: [8, 12_500] as const, isLog: true, ticks: [10, 50, 200, 1000, 5000, 10_000] },
      y: { label: "Difference (m)", span: [high + room, low - room] as const },
      width,
      height,
      room: 70,
    };
    plotPlace.replaceChildren(chart({ lines: labelled(lines, chart({ lines: [], ...options })), ...options }).svg);
  }
}

/// The lines with their labels, those together whose ends lie too close for two.
function labelled(lines: readonly ChartLine[], { toX, toY }: Chart): ChartLine[] {
  const ends: { x: number; y: number; line: ChartLine }[] = [];
  return lines.map((line) => {
    const last = line.points[line.points.length - 1];
    if (!last) return line;
    const end = { x: toX(last.x), y: toY(last.y), line: { ...line } };
    const near = ends.find(({ x, y }) => Math.abs(x - end.x) < LABEL.width && Math.abs(y - end.y) < LABEL.height);
    if (near) {
      near.line.label = `${near.line.label} ${line.label}`;
      delete end.line.label;
    } else {
      ends.push(end);
    }
    return end.line;
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
