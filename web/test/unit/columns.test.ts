import assert from "node:assert/strict";
import { test } from "node:test";
import { columnsOf, plotQuantities } from "../../src/columns";
import { statedBy } from "../../src/stated";
import { profileOf } from "../../src/profile";
import type { Packet } from "../../src/protocol";

const profile = (packet: Partial<Packet> = {}) =>
  profileOf({ whoami: "", svp_Depth: [0, 10], svp_Speed: [1500, 1490], svp_Temp: [0, 0], svp_Sal: [0, 0], ...packet });
const labels = (packet: Partial<Packet>) => columnsOf(profile(packet)).map(({ label }) => label);
const plotted = (packet: Partial<Packet>) => plotQuantities(columnsOf(profile(packet))).map(({ label }) => label);

test("a quantity has a column and a plot when not all of it is zero", () => {
  assert.deepEqual(labels({}), ["Depth", "Speed"]);
  assert.deepEqual(plotted({}), ["Sound speed (m/s)"]);
  assert.deepEqual(labels({ svp_Temp: [0, 3] }), ["Depth", "Speed", "Temp."]);
  const all = { svp_Temp: [12, 3], svp_Sal: [35, 35], svp_AbsCoef: [1, 2] };
  assert.deepEqual(labels(all), ["Depth", "Speed", "Temp.", "Salinity", "Absorption"]);
  assert.deepEqual(plotted(all), ["Sound speed (m/s)", "Temperature (°C)", "Salinity (PSU)", "Absorption"]);
});

test("a conductivity is not called a salinity", () => {
  const sal = { svp_Temp: [12, 3], svp_Sal: [42, 41] };
  for (const type of ["03", 3, "30", "32", "05", "14", "52"]) {
    assert.deepEqual(labels({ ...sal, hsvp_filetype: type }).slice(-1), ["Conduct."], String(type));
    assert.deepEqual(plotted({ ...sal, hsvp_filetype: type }).slice(-1), ["Conductivity"]);
  }
  for (const type of ["01", "00", "12", "20", "40", "SoundVelocity", "", "99"]) {
    assert.deepEqual(labels({ ...sal, hsvp_filetype: type }).slice(-1), ["Salinity"], type);
  }
});

test("pressures in the place of probe depths are called so", () => {
  const probed = (values: number[]) =>
    columnsOf(profile({ svp_Depth: [-0.5, 9.9, 9690], svp_Speed: [1500, 1490, 1520], svp_Depth_CTD: values }))
      .map(({ label, unit }) => `${label} ${unit}`)
      .slice(2);
  assert.deepEqual(probed([-0.005, 0.1, 100]), ["Pressure MPa"]);
  assert.deepEqual(probed([-0.5, 9.8, 9690]), ["Probe depth m"]);
  assert.deepEqual(probed([-0.5, 0.1, 9690]), ["Probe depth m"], "not all of them");
  assert.deepEqual(probed([-0.5, 9.9, 9690]), [], "the depths again");
  assert.deepEqual(labels({ svp_Depth: [0, 1], svp_Depth_CTD: [0, 0.5] }).slice(2), ["Probe depth"], "too shallow to tell");
});

test("computed values are shown with three decimals, measured ones as they are", () => {
  const decimals = (packet: Partial<Packet>) => columnsOf(profile(packet)).map((column) => column.decimals);
  assert.deepEqual(decimals({ svp_Depth: [0.396292, 10], svp_Speed: [1500.1234, 1490] }), [3, 4]);
  assert.deepEqual(decimals({ svp_Depth: [0, 10.12345] }), [3, 2]);
  assert.deepEqual(decimals({ svp_Depth: [0, 9.9], svp_Depth_CTD: [0, 0.1000625] }), [2, 2, 5]);
  assert.deepEqual(decimals({ svp_AbsCoef: [0.000001, 0] }), [2, 2, 6]);
});

test("time and position that a cast does not give are not stated", () => {
  const ms = Date.UTC(2026, 10, 15, 12, 34, 56);
  const numbers = { hsvp_filetime: ms, hsvp_filelat: -59.5, hsvp_filelon: 10.25 };
  assert.deepEqual(statedBy(profile({ filename: "a.valeport", ...numbers })), {
    time: "20261115123456", latitude: "-59.5", longitude: "10.25",
  });
  assert.deepEqual(statedBy(profile({ filename: "a.vp2", hsvp_filetime: "20261115123456" })), { time: "20261115123456" });
  assert.deepEqual(statedBy(profile({ filename: "a.csv", hsvp_filetime: "20261115123456" })), {}, "that is when it was opened");
});
