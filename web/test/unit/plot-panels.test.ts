import assert from "node:assert/strict";
import { test } from "node:test";
import { columnsOf, plotQuantities } from "../../src/columns";
import { joinedZones } from "../../src/plot";
import { plottedOf, viewWith } from "../../src/plot-panels";
import { plotSummary } from "../../src/plot-summary";
import type { Profile } from "../../src/profile";
import { profileWith } from "./support";

const plotted = (profile: Profile) => {
  const columns = columnsOf(profile);
  return plottedOf(profile, columns, plotQuantities(columns));
};
const probe = (filename: string, warmer = 0, filetype = "SoundVelocity") =>
  profileWith([0, 50, 100], [1500, 1490, 1480], {
    filename,
    header: { hsvp_filetype: filetype },
    lists: { svp_Temp: [12 + warmer, 10, 8], svp_Sal: [34, 35, 35.5] },
  });

test("the whole view holds what is compared with, as deep as the open cast goes", () => {
  const open = plotted(probe("a.asvp"));
  assert.equal(viewWith(open, null), open.full);
  const deeper = profileWith([0, 100, 5000], [1510, 1479, 1550], { filename: "deep.asvp" });
  const view = viewWith(open, plotted(deeper));
  assert.equal(view.depth, open.full.depth);
  const [low, high] = view.across.get("svp_Speed") ?? [0, 0];
  assert.ok(low < 1479 && high > 1510 && high < 1520, `${low} ${high}`);
  assert.deepEqual(view.across.get("svp_Temp"), open.full.across.get("svp_Temp"), "it has no temperatures");
});

test("conductivities are not laid under salinities", () => {
  const open = plotted(probe("a.asvp"));
  const salty = viewWith(open, plotted(probe("b.asvp", 5)));
  assert.ok((salty.across.get("svp_Temp")?.[1] ?? 0) > 17);
  const conductive = plotted({ ...probe("c.ssp", 0, "03"), lists: { ...probe("c").lists, svp_Sal: [4, 5, 6] } });
  assert.deepEqual(conductive.quantities.map(({ name }) => name), ["Sound speed", "Temperature", "Conductivity"]);
  assert.deepEqual(viewWith(open, conductive).across.get("svp_Sal"), open.full.across.get("svp_Sal"));
});

test("joined depths reach from the measured level beside them", () => {
  const depths = [0, 5, 10, 20, 500, 12000];
  assert.deepEqual(joinedZones(depths, new Set([0, 4, 5])), [{ from: 0, to: 5 }, { from: 20, to: 12000 }]);
  assert.deepEqual(joinedZones(depths, new Set()), []);
  assert.deepEqual(joinedZones([0, 10, 20, 30], new Set([1])), [{ from: 0, to: 20 }]);
});

test("the plot is told in words", () => {
  const open = plotted(probe("a.asvp"));
  const quantities =
    "Sound speed 1480.00 to 1500.00 m/s. Temperature 8.00 to 12.00 °C. Salinity 34.00 to 35.50 PSU.";
  assert.equal(
    plotSummary(open, new Set(), null, null),
    `3 levels of a.asvp, depth 0.00 to 100.00 m. ${quantities}`,
  );
  const zoomed = { ...open.full, depth: [10, 20] as const };
  const joined = plotted({ ...probe("a.asvp"), joined: new Set([2]) });
  assert.equal(
    plotSummary(joined, new Set([1]), probe("b.asvp"), zoomed),
    "3 levels of a.asvp, depth 0.00 to 100.00 m. Sound speed 1480.00 to 1500.00 m/s. Temperature 10.00 to 12.00 °C. " +
      "Salinity 34.00 to 35.00 PSU. 1 invalid. 1 joined, not measured. Compared with b.asvp. In view: depth 10.00 to 20.00 m.",
  );
  assert.equal(
    plotSummary(plotted(profileWith([5], [1500])), new Set(), null, null),
    "1 level of cast.asvp, depth 5.00 m. Sound speed 1500.00 m/s.",
  );
  assert.equal(plotSummary(plotted(profileWith([], [])), new Set(), null, null), "cast.asvp has no levels.");
});
