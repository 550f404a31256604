import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { test } from "node:test";
import { fieldText, kindChoices, kindFault, withHeader } from "../../src/header-edit";
import { CONTENT_IDENTIFIERS, carriesConductivity, columnsSent, contentIdentifier, identifierWords } from "../../src/identifiers";
import { headerRows } from "../../src/header-fields";
import { holdsConductivity } from "../../src/columns";
import { statedBy } from "../../src/stated";
import type { Profile } from "../../src/profile";
import { HEADER_KEYS, profileBody, type HeaderKey } from "../../src/protocol";
import { profileWith } from "./support";

const cast = (header = {}, more = {}) => profileWith([0, 10], [1500, 1490], { header, ...more });

function typed(profile: Profile, texts: Partial<Record<HeaderKey, string>>) {
  return withHeader(profile, new Map(Object.entries(texts) as [HeaderKey, string][]));
}
function taken(texts: Partial<Record<HeaderKey, string>>, profile = cast()): Profile {
  const result = typed(profile, texts);
  assert.ok("profile" in result, JSON.stringify([...("faults" in result ? result.faults : [])]));
  return result.profile;
}
function faultOf(key: HeaderKey, text: string, profile = cast()): string {
  const result = typed(profile, { [key]: text });
  return "faults" in result ? (result.faults.get(key) ?? "") : "";
}

test("the content identifiers are those of the engine, column by column", async () => {
  const source = await readFile("../datagram/contentidentifier.cpp", "latin1");
  const rows = [...source.matchAll(/^\s*\{(\d+), (true|false), (\w+), ((?:true|false)(?:, (?:true|false)){7})\},?$/gm)];
  const firsts: Record<string, string> = { byDepth: "depth", other: "other", noRows: "none" };
  const engine = rows.map(([, number, legal, first = "", flags = ""]) => {
    const [speed, temperature, salinity, absorption, , computes, conductivity, pressure] = flags.split(", ").map((flag) => flag === "true");
    assert.equal(legal, "true");
    return {
      number: Number(number), first: firsts[first], hasSpeed: speed, hasTemperature: temperature, hasSalinity: salinity,
      hasAbsorption: absorption, computesSpeed: computes, hasConductivity: conductivity, hasPressure: pressure,
    };
  });
  assert.equal(engine.length, 29);
  assert.deepEqual(CONTENT_IDENTIFIERS, engine);
});

test("identifiers are told in words, and send what they say", () => {
  const words = (identifier: string) => {
    const entry = contentIdentifier(identifier);
    return entry && identifierWords(entry);
  };
  assert.equal(words("00"), "depth and sound speed");
  assert.equal(words("1"), "depth, sound speed, temperature and salinity");
  assert.equal(words("51"), "pressure, temperature, conductivity and absorption; sound speed is computed");
  assert.equal(words("53"), "no rows: nothing can be sent as this");
  for (const none of ["08", "99", "", "x", "100", "-1"]) assert.equal(contentIdentifier(none), null, none);
  assert.deepEqual(columnsSent("13"), []);
  assert.ok(carriesConductivity("03") && carriesConductivity("7") && !carriesConductivity("01") && !carriesConductivity("13"));
});

test("times and positions are taken in the forms that people write", () => {
  assert.equal(taken({ hsvp_filetime: "2026-11-15 12:34:56 UTC" }).header.hsvp_filetime, "20261115123456");
  assert.equal(taken({ hsvp_filetime: "2026-11-15 12:34" }).header.hsvp_filetime, "20261115123400");
  assert.match(faultOf("hsvp_filetime", "2026-02-30 12:00"), /Write a time as in 2026-11-15/);
  const latitude = (text: string) => Number(taken({ hsvp_filelat: text }).header.hsvp_filelat);
  assert.equal(latitude("59 30.0 S"), -59.5);
  assert.equal(latitude("-0,5"), -0.5);
  assert.equal(latitude("0 30 S"), -0.5);
  assert.equal(Number(taken({ hsvp_filelon: "010° 15.000′ W" }).header.hsvp_filelon), -10.25);
  assert.equal(faultOf("hsvp_filelat", "59 E"), "E is for a longitude; a latitude has N or S.");
  assert.equal(faultOf("hsvp_filelat", "90.1"), "This is no latitude up to 90° N or S.");
  assert.equal(latitude("90"), 90);
  assert.match(faultOf("hsvp_filelon", "361"), /no longitude/);
});

test("what is left as it stands keeps its digits; what is emptied is gone", () => {
  const before = cast({ hsvp_filelat: "59.123456789", hsvp_filetime: 1790000000000, hsvp_filecomment: "odd, [old]" });
  const all = Object.fromEntries(HEADER_KEYS.map((key) => [key, fieldText(before, key)])) as Record<HeaderKey, string>;
  assert.equal(taken(all, before), before, "nothing was changed");
  const after = taken({ ...all, hsvp_filesource: "probe", hsvp_filetime: "" }, before);
  assert.deepEqual(after.header, { hsvp_filelat: "59.123456789", hsvp_filecomment: "odd, [old]", hsvp_filesource: "probe" });
  assert.deepEqual(after.edited, new Set(["hsvp_filetime", "hsvp_filesource"]));
  // And never goes out as an empty piece.
  assert.ok(!/\*(\*|\])/.test(profileBody(taken(Object.fromEntries(HEADER_KEYS.map((key) => [key, ""])) as never, before))));
});

test("characters that cannot be carried are refused with a sentence", () => {
  for (const key of ["hsvp_filesource", "hsvp_filehistory", "hsvp_filecomment", "hsvp_fileid"] as const) {
    for (const bad of ["*", "[", "]"]) {
      assert.equal(faultOf(key, `a${bad}b`), `“${bad}” cannot be sent with a profile. Write it in another way.`);
    }
  }
  assert.match(faultOf("hsvp_filecomment", "a,b"), /^“,” cannot/);
  assert.equal(faultOf("hsvp_filesource", "a,b"), "");
  assert.match(faultOf("hsvp_filesource", "a\u0007b"), /^A control character cannot/);
  assert.match(faultOf("hsvp_fileid", "a b"), /one word/);
  assert.equal(taken({ hsvp_filecomment: "Ærø 測 ±" }).header.hsvp_filecomment, "Ærø 測 ±");
});

test("versions and radii are numbers; a validity does not end before it begins", () => {
  assert.equal(taken({ hsvp_fileversion: "2,0" }).header.hsvp_fileversion, "2.0");
  assert.match(faultOf("hsvp_fileversion", "two"), /as in 1\.0/);
  assert.equal(taken({ hsvp_fileradii: "12,5" }).header.hsvp_fileradii, "12.5");
  assert.equal(faultOf("hsvp_fileradii", "0"), "");
  assert.match(faultOf("hsvp_fileradii", "-1"), /0 or greater/);
  const validity = { hsvp_filevalidfrom: "2026-11-15 12:00" };
  assert.equal(taken({ ...validity, hsvp_filevalidto: "2026-11-15 12:00" }).header.hsvp_filevalidto, "20261115120000");
  const wrong = typed(cast(), { ...validity, hsvp_filevalidto: "2026-11-15 11:59" });
  assert.match(("faults" in wrong && wrong.faults.get("hsvp_filevalidto")) || "", /before it begins/);
});

test("a kind is chosen among those whose values the cast has", () => {
  const full = cast({ hsvp_filetype: "01" }, { lists: { svp_Temp: [9, 8], svp_Sal: [35, 35] } });
  const choices = kindChoices(full).map(({ value }) => value);
  assert.equal(choices.length, 25, "24 that have rows, and that of .asvp");
  assert.ok(!choices.includes("13"));
  assert.equal(kindChoices(cast({ hsvp_filetype: "13" })).length, 26);
  assert.deepEqual(kindChoices(cast({ hsvp_filetype: "Speed" }))[0], { value: "Speed", words: "Speed – no content identifier" });
  assert.equal(kindFault(full, "00"), "");
  assert.equal(kindFault(full, "02"), "");
  assert.match(kindFault(full, "03"), /carry conductivities, which this cast does not have/);
  assert.match(kindFault(full, "04"), /carry pressures, which/);
  assert.match(kindFault(full, "21"), /carry absorptions, which/);
  assert.match(kindFault(cast(), "01"), /carry temperatures and salinities, which/);
  assert.match(kindFault(full, "53"), /Nothing can be sent/);
  // Conductivities stay what they are under another kind.
  const conductive = cast({ hsvp_filetype: "03" }, { lists: { svp_Temp: [9, 8], svp_Sal: [4, 4] } });
  const plain = taken({ hsvp_filetype: "00" }, conductive);
  assert.ok(holdsConductivity(plain));
  assert.match(kindFault(plain, "01"), /salinities/);
  assert.equal(kindFault(plain, "03"), "");
});

test("what the user has stated holds where the file's own would not", () => {
  const column = cast({ hsvp_filetime: "20261115123456", hsvp_filelat: "0", hsvp_filelon: "0" }, { filename: "x.col" });
  assert.deepEqual(statedBy(column), {});
  const timed = taken({ hsvp_filetime: "2026-11-15 12:00:00" }, column);
  assert.deepEqual(statedBy(timed), { time: "20261115120000" });
  const away = taken({ hsvp_filelat: "1 N", hsvp_filelon: "2 E" }, column);
  const back = taken({ hsvp_filelat: "0 N", hsvp_filelon: "0 E" }, away);
  assert.deepEqual(statedBy(back), { latitude: "0", longitude: "0" });
});

test("what the cast only seems to state is shown and edited as not given", () => {
  const shown = (profile: Profile, key: HeaderKey) =>
    [headerRows(profile.header, profile).find((each) => each.key === key)?.value, fieldText(profile, key)];
  const nowhere = cast({ hsvp_filetime: "20261115123456", hsvp_filelat: "0", hsvp_filelon: 0 }, { filename: "x.col" });
  for (const key of ["hsvp_filetime", "hsvp_filelat", "hsvp_filelon"] as const) assert.deepEqual(shown(nowhere, key), ["", ""]);
  assert.equal(taken({ hsvp_filelat: "", hsvp_filelon: "", hsvp_filetime: "" }, nowhere), nowhere, "left as it stands");
  const meant = taken({ hsvp_filelat: "0", hsvp_filelon: "0" }, nowhere);
  assert.deepEqual(shown(meant, "hsvp_filelat"), ["00° 00.000′ N", "00° 00.000′ N"]);
  assert.deepEqual(statedBy(meant), { latitude: "0", longitude: "0" });
  // On the equator, but not at 0, 0; and a kind of file that gives the time.
  const equator = cast({ hsvp_filetime: "20261115123456", hsvp_filelat: "0", hsvp_filelon: "10" }, { filename: "x.vp2" });
  assert.deepEqual(shown(equator, "hsvp_filelat")[0], "00° 00.000′ N");
  assert.deepEqual(shown(equator, "hsvp_filetime")[0], "2026-11-15 12:34:56 UTC");
});
