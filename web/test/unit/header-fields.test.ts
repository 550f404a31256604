import assert from "node:assert/strict";
import { test } from "node:test";
import { headerRows } from "../../src/header-fields";
import { HEADER_KEYS } from "../../src/protocol";

test("all thirteen fields have a row, given or not", () => {
  const rows = headerRows({});
  assert.equal(rows.length, 13);
  assert.deepEqual(rows.map((row) => row.key), [...HEADER_KEYS]);
  assert.ok(rows.every((row) => row.value === "" && row.label !== ""));
  assert.equal(new Set(rows.map((row) => row.label)).size, 13);
});

test("fields are read whether they come as text or as numbers", () => {
  const value = (header: object, key: string) =>
    headerRows(header).find((row) => row.key === key)?.value;
  assert.equal(value({ hsvp_filelat: "59.5" }, "hsvp_filelat"), "59° 30.000′ N");
  assert.equal(value({ hsvp_filelat: 59.5 }, "hsvp_filelat"), "59° 30.000′ N");
  assert.equal(value({ hsvp_filetype: "SoundVelocity" }, "hsvp_filetype"), "Sound velocity");
  assert.equal(value({ hsvp_filetype: "01" }, "hsvp_filetype"), "01 – depth, sound speed, temperature and salinity");
  assert.equal(value({ hsvp_filetype: "99" }, "hsvp_filetype"), "99");
  assert.equal(value({ hsvp_fileversion: 1 }, "hsvp_fileversion"), "1");
  assert.equal(value({ hsvp_fileradii: -1 }, "hsvp_fileradii"), "");
  assert.equal(value({ hsvp_fileradii: "10" }, "hsvp_fileradii"), "10");
  assert.equal(value({ hsvp_filehistory: "NA" }, "hsvp_filehistory"), "");
  assert.equal(value({ hsvp_filesamp: 0 }, "hsvp_filesamp"), "0");
});

test("what the file said stays at hand where reading changed it", () => {
  const rows = headerRows({ hsvp_filelat: "59.5", hsvp_filesource: "probe" });
  assert.equal(rows.find((row) => row.key === "hsvp_filelat")?.raw, "59.5");
  assert.equal(rows.find((row) => row.key === "hsvp_filesource")?.raw, "");
});
