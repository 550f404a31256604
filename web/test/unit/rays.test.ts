/// Rays: what is asked, what comes back, and whether it is what was asked for.
import assert from "node:assert/strict";
import { test } from "node:test";
import { Latest } from "../../src/latest";
import { apartText, metres } from "../../src/ray-plot";
import { raysFailedText } from "../../src/ray-words";
import { commonReach, depthAt, drawnPoints, fits, isTraceable, raysBody, raysOf, reference, samplesOf } from "../../src/rays";
import { SeenCasts } from "../../src/seen-casts";
import { profileWith } from "./support";

const EVEN = { depths: [0, 100, 200, 300, 400, 12000], speeds: [1500, 1500, 1500, 1500, 1500, 1500] };
/// 0.5 m/s faster with each metre.
const STEEP = { depths: [10, 110, 200, 300, 400, 500], speeds: [1500, 1550, 1550, 1550, 1550, 1550] };

test("a request has the angle and both profiles' speeds and depths", () => {
  const first = samplesOf(profileWith([0, Math.fround(0.1), NaN], [1500, 1501, 1502]));
  assert.equal(raysBody(45.5, first, reference(1490)), "[45.5*1500,1501,1502*0,0.1,0*1490*0]");
});

test("an answer has two paths, each of as many distances as depths", () => {
  const packet = { whoami: "ShowRaypath", svp1X: [0, 1], svp1Y: [0, 2], svp2X: [0], svp2Y: [5] };
  assert.deepEqual(raysOf(packet), { first: { x: [0, 1], y: [0, 2] }, second: { x: [0], y: [5] } });
  for (const broken of [{ svp1X: undefined }, { svp1X: [0] }, { svp2Y: ["5"] }, { svp2X: [], svp2Y: [] }]) {
    assert.equal(raysOf({ ...packet, ...broken }), null);
  }
});

/// The end of the first arc, by small steps of Snell's law.
function traced(angle: number, { depths: [top = 0], speeds: [speed = 0] }: typeof STEEP, gradient: number, travel: number) {
  let slope = (angle * Math.PI) / 180;
  let x = 0;
  let y = top;
  const step = 0.001;
  for (let way = 0; way < travel; way += step) {
    const c = speed + gradient * (y - top);
    // A ray bends towards the slower water: by the gradient across it over the speed.
    slope -= ((gradient * Math.cos(slope)) / c) * step;
    x += Math.cos(slope) * step;
    y += Math.sin(slope) * step;
  }
  return { x: [0, x], y: [top, y] };
}

test("a ray is known by the direction of its first piece", () => {
  const at = (angle: number) => ({ x: [0, Math.cos((angle * Math.PI) / 180)], y: [0, Math.sin((angle * Math.PI) / 180)] });
  for (const angle of [0, 0.1, 10, 45, 89.9, 90]) {
    assert.ok(fits(at(angle), angle, EVEN), `${angle}`);
    assert.ok(!fits(at(angle), angle === 90 ? 89.5 : angle + 0.5, EVEN), `${angle} and a half more`);
  }
  assert.ok(!fits({ x: [0, 1], y: [1, 2] }, 45, EVEN), "it sets out elsewhere");
  assert.ok(!fits({ x: [3, 4], y: [0, 1] }, 45, EVEN), "it sets out elsewhere");
  assert.ok(fits({ x: [0], y: [0] }, 0, EVEN), "it has its start alone");
  assert.ok(fits({ x: [0, 1000], y: [0, 1000] }, 45, reference(1500)));
});

test("a ray that bends is known by the mean of its directions, also behind its turn", () => {
  for (const [angle, travel] of [[5, 100], [5, 400], [20, 200], [60, 100], [88, 50]] as const) {
    const path = traced(angle, STEEP, 0.5, travel);
    assert.ok(fits(path, angle, STEEP), `${angle}° after ${travel} m`);
    assert.ok(!fits(path, angle + 1, STEEP), `${angle}° and one more after ${travel} m`);
  }
});

test("a depth at a distance lies between the points; a turning path is followed", () => {
  const path = { x: [0, 100, 300, 300, 400], y: [10, 110, 110, 120, 20] };
  assert.deepEqual([-1, 0, 50, 100, 200, 350, 400, 401].map((x) => depthAt(path, x)), [NaN, 10, 60, 110, 110, 70, 20, NaN]);
  assert.ok(Number.isNaN(depthAt({ x: [0, 0], y: [0, 500] }, 0)), "a vertical one has no single depth");
  const rays = { first: path, second: { x: [0, 200], y: [10, 112.5] } };
  assert.equal(commonReach(rays), 200);
  assert.equal(apartText(rays), "Both rays reach 200.0 m; there the second one is 2.5 m deeper.");
  assert.equal(apartText({ first: path, second: path }), "Both rays reach 400.0 m, and are less than 0.1 m apart there.");
  assert.equal(apartText({ first: { x: [0, 0], y: [0, 9] }, second: path }), "");
  assert.equal(metres(-1.5), "−1.5 m");
});

test("points closer than half a pixel are not drawn, turns and ends are", () => {
  const x = Array.from({ length: 10_001 }, (_, i) => i / 100);
  const path = { x, y: x.map((each) => 50 - Math.abs(each - 50)) };
  const points = drawnPoints(path, 1, 1);
  assert.ok(points.length <= 202, String(points.length));
  assert.deepEqual(points[0], { x: 0, y: 0 });
  assert.deepEqual(points[points.length - 1], { x: 100, y: 0 });
  assert.ok(points.some(({ y }) => y >= 49.5));
});

test("of angles that come while one is asked for only the newest is", async () => {
  const begun: number[] = [];
  const ends: (() => void)[] = [];
  const latest = new Latest<number>((angle) => {
    begun.push(angle);
    return new Promise((done) => ends.push(done));
  });
  const end = async () => {
    ends.shift()?.();
    await new Promise(setImmediate);
  };
  for (const angle of [1, 2, 3]) latest.ask(angle);
  assert.deepEqual(begun, [1]);
  await end();
  assert.deepEqual(begun, [1, 3]);
  latest.ask(4);
  latest.clear();
  await end();
  assert.deepEqual(begun, [1, 3]);
  assert.ok(!latest.isBusy);
  latest.ask(5);
  assert.deepEqual(begun, [1, 3, 5]);
});

test("beside a cast lie what it was before, and the others that were opened", () => {
  const [a, b, extended, thinned] = ["a", "b", "a", "a_thinned"].map((name) => profileWith([0], [1500], { filename: `${name}.asvp` }));
  assert.ok(a && b && extended && thinned);
  const seen = new SeenCasts();
  const labels = (profile: typeof a) => seen.beside(profile, null).map(({ label, profile: { filename } }) => `${label}|${filename}`);
  seen.open(a);
  assert.deepEqual(labels(a), []);
  seen.open(b);
  assert.deepEqual(labels(b), ["a.asvp|a.asvp"]);
  seen.open(a);
  seen.change(a, extended);
  seen.change(extended, thinned);
  assert.deepEqual(seen.beside(thinned, extended), [
    { label: "a.asvp before the last change", profile: extended }, { label: "b.asvp", profile: b },
  ]);
  assert.deepEqual(labels(b), ["a_thinned.asvp|a_thinned.asvp"]);
  seen.change(thinned, a);
  assert.deepEqual(labels(a), ["b.asvp|b.asvp"], "after the steps back");
});

test("every refusal of rays is told in words, with what to do next", () => {
  const cast = profileWith([0, 1], [1500, 1500]);
  assert.match(raysFailedText(cast, "b", "Profiles not accepted. Please run fix."), /Fix the cast/);
  assert.match(raysFailedText(cast, "b", "Too few points in svp."), /At least 6 levels.*cast\.asvp has 2 levels/);
  assert.match(raysFailedText(cast, "b.asvp", "Memory allocation error or too few points in svp2."), /b\.asvp, has fewer/);
  assert.match(raysFailedText(cast, "b", "Input parameter error"), /Load the page again/);
  assert.equal(raysFailedText(cast, "b", "Another."), "Another.");
});

test("what is out of order or too short is no profile to begin with", () => {
  const of = (...depths: number[]) => isTraceable({ depths, speeds: depths.map(() => 1500) });
  assert.ok(of(0, 1, 2, 3, 4, 12000));
  assert.ok(!of(0, 1, 2, 3, 12000), "five levels");
  assert.ok(!of(0, 1, 2, 2, 4, 12000));
  assert.ok(!of(0, 1, 2, 2.004, 4, 12000), "closer than the engine tells apart");
  assert.ok(of(0, 1, 2, 2.006, 4, 12000));
  assert.ok(!of());
});
