/// The dialog in which the user sends a ray through the open cast and another profile.
import type { Asker } from "./asker";
import { onClosed } from "./dialog";
import { button, dialogForm, make, makeSvg } from "./dom";
import { Latest } from "./latest";
import { NumberField } from "./number-field";
import { levelCount } from "./outbox-words";
import type { Profile } from "./profile";
import { Action } from "./protocol";
import { raysFailedText } from "./ray-words";
import { RayPlot, apartText } from "./ray-plot";
import {
  ANGLE_RANGE,
  REFERENCE_RANGE,
  REFERENCE_SPEED,
  fits,
  raysBody,
  raysOf,
  isTraceable,
  reference,
  samplesOf,
  type Rays,
  type Samples,
} from "./rays";
import type { SeenCast } from "./seen-casts";
import { rangeFault, typedNumber } from "./typed-number";

export interface RayDialogEvents {
  /// What can be laid beside a cast.
  beside(profile: Profile): SeenCast[];
  fix(): void;
}

interface Wanted {
  angle: number;
  profile: Profile;
  second: Samples;
  names: { first: string; second: string };
}

const FIRST_ANGLE = "45";
const REFERENCE = "reference";

export class RayDialog {
  private readonly dialog = make("dialog", "thin rays");
  private readonly angle = new NumberField(
    "angle",
    "Angle below the horizontal, °",
    "0 to 90; 90 is straight down. It can be dragged in the plot.",
    (text) => rangeFault(text, "The angle", ...ANGLE_RANGE, "°"),
    () => this.typed(),
  );
  private readonly slider = make("input");
  private readonly choice = make("select");
  private readonly speed = new NumberField(
    "reference-speed",
    "Sound speed at the surface, m/s",
    `From 1000 m down the reference has ${REFERENCE_SPEED} m/s.`,
    (text) => rangeFault(text, "The sound speed", ...REFERENCE_RANGE, "m/s"),
    () => this.trace(),
  );
  private readonly facts = make("div", "thin-facts");
  private readonly status = make("p", "dialog-status");
  private readonly fixButton = button("", "Fix…", () => {
    this.dialog.close();
    this.events.fix();
  });
  private readonly legend = make("div", "legend ray-legend");
  private readonly plot = new RayPlot({ turned: (angle) => this.turn(angle) });
  private readonly latest = new Latest<Wanted>((wanted) => this.ask(wanted));
  private profile: Profile | null = null;
  private seen: SeenCast[] = [];
  /// What the rays on show, or the next ones, were asked for.
  private asked: Wanted | null = null;

  constructor(
    private readonly asker: Asker,
    private readonly events: RayDialogEvents,
  ) {
    this.build();
  }

  show(profile: Profile): void {
    if (this.dialog.open) return;
    this.left();
    this.profile = profile;
    this.seen = this.events.beside(profile);
    this.choice.replaceChildren(
      ...this.seen.map(({ label, profile: { count } }, i) => new Option(`${label}, ${levelCount(count)}`, String(i))),
      new Option(`A reference of ${REFERENCE_SPEED} m/s`, REFERENCE),
    );
    // A cast that was just fixed lies beside one that cannot be traced.
    const traceable = this.seen.findIndex((seen) => isTraceable(samplesOf(seen.profile)));
    this.choice.selectedIndex = traceable < 0 ? this.seen.length : traceable;
    this.angle.value = this.angle.input.value || FIRST_ANGLE;
    this.speed.value = this.speed.input.value || String(REFERENCE_SPEED);
    this.typed();
    this.dialog.showModal();
    this.angle.focus();
  }

  /// The host is connected, for the first time or again: what was asked for before is lost.
  connected(): void {
    this.trace();
  }

  private build(): void {
    const { dialog, slider, choice, status, facts } = this;
    const title = make("h2", "", "Ray paths");
    title.id = "rays-title";
    dialog.setAttribute("aria-labelledby", title.id);
    status.setAttribute("role", "status");
    facts.setAttribute("role", "status");
    slider.type = "range";
    slider.className = "thin-slider";
    [slider.min, slider.max] = ANGLE_RANGE.map(String) as [string, string];
    slider.step = "0.5";
    slider.setAttribute("aria-label", "Angle below the horizontal");
    slider.addEventListener("input", () => this.turn(Number(slider.value)));
    choice.id = "rays-second";
    choice.className = "rays-second";
    choice.addEventListener("change", () => this.trace());
    const name = make("label", "", "Second profile");
    name.htmlFor = choice.id;
    const form = dialogForm("thin-side", () => this.trace(),
      make("p", "", "The same ray through the open cast and through a second profile, from the first level of each."),
      this.angle.element, slider,
      make("div", "number-field", name, choice), this.speed.element, facts, status,
      make("div", "thin-actions", this.fixButton, button("", "Close", () => dialog.close())));
    dialog.append(
      make("div", "panel-head", title),
      make("div", "thin-parts", form, make("div", "thin-main", this.legend, this.plot.element)),
    );
    onClosed(dialog, () => this.left());
    document.body.append(dialog);
  }

  private left(): void {
    this.latest.clear();
    this.profile = null;
    this.asked = null;
    this.plot.show(null, 0, { first: "", second: "" });
  }

  private typed(): void {
    const value = typedNumber(this.angle.input.value);
    if (value !== null) this.slider.value = String(value);
    this.trace();
  }

  private turn(angle: number): void {
    this.angle.value = String(angle);
    this.slider.value = String(angle);
    this.trace();
  }

  /// Asks for the rays of what is filled in. While one is under way, only the newest waits.
  private trace(): void {
    const { profile } = this;
    const isReference = this.choice.value === REFERENCE;
    this.speed.element.hidden = !isReference;
    if (!profile) return;
    const other = isReference ? null : this.seen[Number(this.choice.value)];
    const angle = this.angle.take();
    const speed = isReference ? this.speed.take() : REFERENCE_SPEED;
    if (angle === null || speed === null) return this.latest.clear();
    const names = { first: profile.filename, second: other ? other.label : "Reference" };
    this.latest.ask({ angle, profile, names, second: other ? samplesOf(other.profile) : reference(speed) });
  }

  private async ask(wanted: Wanted): Promise<void> {
    const { angle, profile, second } = wanted;
    const first = samplesOf(profile);
    let rays: Rays | null = null;
    this.asked = wanted;
    const answer = await this.asker.ask(
      Action.rays,
      raysBody(angle, first, second),
      (packet) => {
        const found = raysOf(packet);
        // The other pages' rays come here as well.
        if (!found || !fits(found.first, angle, first) || !fits(found.second, angle, second)) return false;
        rays = found;
        return true;
      },
      () => this.showRays(wanted, rays, ""),
    );
    this.showRays(wanted, rays, "reason" in answer ? answer.reason : "");
  }

  private showRays(wanted: Wanted, rays: Rays | null, reason: string): void {
    const { angle, profile, names } = wanted;
    if (profile !== this.profile || wanted !== this.asked) return;
    this.plot.show(rays, angle, names);
    this.legend.replaceChildren(
      ...(rays ? [legendEntry("ray-first", names.first), legendEntry("ray-second", names.second)] : []),
    );
    this.facts.replaceChildren(...(rays ? [make("p", "", `Ray of ${angle}°.`), make("p", "", apartText(rays))] : []));
    this.tell(reason ? raysFailedText(profile, names.second, reason) : "");
    this.fixButton.hidden = reason !== "Profiles not accepted. Please run fix.";
  }

  private tell(text: string): void {
    const { status } = this;
    status.textContent = text;
    status.hidden = text === "";
    status.setAttribute("role", text ? "alert" : "status");
    status.classList.toggle("field-fault", text !== "");
  }
}

function legendEntry(className: string, label: string): HTMLElement {
  const svg = makeSvg("svg", `swatch ${className}`);
  svg.setAttribute("viewBox", "0 0 34 12");
  svg.setAttribute("aria-hidden", "true");
  const line = makeSvg("path", "swatch-line");
  line.setAttribute("d", "M0,6H34");
  svg.append(line);
  return make("span", "legend-entry", svg, label);
}
