import assert from "node:assert/strict";
import { test } from "node:test";
import { columnsSent, identifierOf } from "../../src/identifiers";
import { statedIn } from "../../src/stated";
import { profileOf } from "../../src/profile";
import type { Packet } from "../../src/protocol";
import {
  datagramSize,
  nameSent,
  pairsBody,
  saveAsvpBody,
  saveDatagramBody,
  sendBody,
} from "../../src/protocol-output";

const f = Math.fround;

const WHOLE: Packet = {
  whoami: "SVP_OpenSVP",
  svp_Speed: [f(1500.1), 1490, 1485.5],
  svp_Depth: [0, f(10.13), 12000],
  svp_Depth_CTD: [0, 10, 12100],
  svp_Speed_CTD: [1500, 1490, 1485],
  svp_Temp: [f(12.3), 11, -1],
  svp_Sal: [35, 35, 34.5],
  svp_AbsCoef: [1, 2, 3],
  filename: "cast.asvp",
  hsvp_filetype: "SoundVelocity",
  hsvp_fileversion: "1.0",
  hsvp_fileid: 7,
  hsvp_filetime: "20261115123456",
  hsvp_filelat: "-59.5",
  hsvp_filelon: 10.25,
  hsvp_fileradii: 5,
  hsvp_filevalidfrom: 1763210096000,
  hsvp_filevalidto: "0",
  hsvp_filesource: "probe 7",
  hsvp_filehistory: "P",
  hsvp_filesamp: 99,
  hsvp_filecomment: "calm sea",
};
const LISTS =
  "1500.1,1490,1485.5;0,10.13,12000;0,10,12100;1500,1490,1485;12.3,11,-1;35,35,34.5;1,2,3";
const OCCASION = { time: "20261115123456", latitude: "-59.5", longitude: "10.25" };

const profile = (more: Partial<Packet> = {}) => profileOf({ ...WHOLE, ...more });
/// Only levels: every part of the header has to come from elsewhere.
const bare = profileOf({ whoami: "SVP_OpenSVP", svp_Speed: [1500, 1490, 1480], svp_Depth: [0, 10, null] });

test("sending: sixteen pieces, the levels counted and not as the header states them", () => {
  assert.equal(
    sendBody(profile(), "00", OCCASION),
    `[0*cast.asvp*${LISTS}*00*1.0*7*20261115123456*-59.5*10.25*5*20251115123456*0*probe 7*P*3*calm sea]`,
  );
  assert.equal(
    sendBody(profile(), "03", OCCASION),
    `[3*cast.asvp*${LISTS}*03*1.0*7*20261115123456*-59.5*10.25*5*20251115123456*0*probe 7*P*3*calm sea]`,
  );
});

test("sending: what the header lacks goes out as NA or 0", () => {
  assert.equal(
    sendBody(bare, "00", { time: "20260101000000", latitude: "1", longitude: "2" }),
    "[0*NA*1500,1490,1480;0,10,0;0,0,0;0,0,0;0,0,0;0,0,0;0,0,0*00*0*0*20260101000000*1*2*0*0*0*NA*NA*3*NA]",
  );
});

test("saving a datagram: fifteen pieces", () => {
  assert.equal(
    saveDatagramBody(profile(), "new.ssp", "00", OCCASION),
    `[${LISTS}*new.ssp*00*1.0*7*20261115123456*-59.5*10.25*5*20251115123456*0*probe 7*P*3*calm sea]`,
  );
  assert.equal(
    saveDatagramBody(bare, "b.ssp", "12", OCCASION),
    "[1500,1490,1480;0,10,0;0,0,0;0,0,0;0,0,0;0,0,0;0,0,0*b.ssp*12*0*0*20261115123456*-59.5*10.25*0*0*0*NA*NA*3*NA]",
  );
});

test("saving .asvp: fifteen pieces, one flat list and the hemispheres", () => {
  assert.equal(
    saveAsvpBody(profile(), "new.asvp", OCCASION),
    "[0,1500.1,10.13,1490,12000,1485.5*new.asvp*SoundVelocity*1.0*7*20261115123456*-59.5*S*10.25*E*5*20251115123456*0*probe 7*P]",
  );
  assert.equal(
    saveAsvpBody(bare, "b.asvp", { time: "20260101000000", latitude: "0", longitude: "-0.5" }),
    "[0,1500,10,1490,0,1480*b.asvp*SoundVelocity*0*0*20260101000000*0*N*-0.5*W*0*0*0*NA*NA]",
  );
});

test("receiver and distribution: the flat list alone", () => {
  assert.equal(pairsBody(profile()), "[0,1500.1,10.13,1490,12000,1485.5]");
});

test("no piece is empty or holds a mark of the block", () => {
  const odd = profile({
    filename: "a*b[1].asvp", hsvp_filecomment: "*[]\r\n*", hsvp_filesource: " ", hsvp_filehistory: "",
    hsvp_fileversion: "", hsvp_fileid: "[7]", hsvp_fileradii: "", hsvp_filevalidfrom: "never*",
  });
  for (const [body, count] of [
    [sendBody(odd, "00", OCCASION), 16],
    [saveDatagramBody(odd, "x.ssp", "00", OCCASION), 15],
    [saveAsvpBody(odd, "x.asvp", OCCASION), 15],
  ] as const) {
    const pieces = body.slice(1, -1).split("*");
    assert.equal(pieces.length, count);
    assert.ok(pieces.every((piece) => piece !== "" && !/[[\]\r\n]/.test(piece)), body);
  }
  assert.equal(nameSent("a*b[1].asvp"), "a_b_1_.asvp");
});

test("the content identifier comes from the profile's type, if it is a legal one", () => {
  const cases: [string | number | undefined, string][] = [
    ["SoundVelocity", "00"], ["00", "00"], ["01", "01"], ["3", "03"], [7, "07"], ["53", "53"],
    ["08", ""], ["9", ""], ["15", ""], ["54", ""], ["001", ""], ["-1", ""], ["", ""],
    ["NA", ""], [undefined, ""], ["Soundvelocity", ""],
  ];
  for (const [type, identifier] of cases) assert.equal(identifierOf(type), identifier, String(type));
});

test("the columns of an identifier are those that it carries", () => {
  assert.deepEqual(columnsSent("00"), ["svp_Depth", "svp_Speed"]);
  assert.deepEqual(columnsSent("01"), ["svp_Depth", "svp_Speed", "svp_Temp", "svp_Sal"]);
  assert.deepEqual(columnsSent("04"), ["svp_Depth_CTD", "svp_Temp", "svp_Sal"]);
  assert.deepEqual(columnsSent("11"), ["svp_Depth", "svp_Speed", "svp_AbsCoef"]);
  assert.deepEqual(columnsSent("51"), ["svp_Depth_CTD", "svp_Temp", "svp_Sal", "svp_AbsCoef"]);
});

test("the size of a datagram is estimated closely", () => {
  const datagram =
    "$QZS00,00000,3,123456,15,11,2026,0.00,1500.10,,,\r\n10.13,1490.00,,,\r\n12000.00,1485.50,,,\r\n" +
    "5930.000000,S,1015.000000,E,,,calm sea*52\\\r\n";
  const size = datagramSize(profile(), "00");
  assert.ok(size >= datagram.length && size < datagram.length + 20, `${size} for ${datagram.length}`);
});

test("time and position are stated only where the header has them", () => {
  assert.deepEqual(statedIn(profile().header), OCCASION);
  assert.deepEqual(statedIn({}), {});
  assert.deepEqual(statedIn({ hsvp_filetime: 1763210096000 }), { time: "20251115123456" });
  assert.deepEqual(statedIn({ hsvp_filetime: "202611151234" }), { time: "20261115123400" });
  for (const time of ["0", "NA", "", "20261399000000", "yesterday"]) {
    assert.deepEqual(statedIn({ hsvp_filetime: time }), {}, time);
  }
  assert.deepEqual(statedIn({ hsvp_filelat: "0", hsvp_filelon: "0.000" }), {}, "0, 0 is how files say nothing");
  assert.deepEqual(statedIn({ hsvp_filelat: "0", hsvp_filelon: "5" }), { latitude: "0", longitude: "5" });
  assert.deepEqual(statedIn({ hsvp_filelat: "91", hsvp_filelon: "361" }), {});
  assert.deepEqual(statedIn({ hsvp_filelon: "350.5" }), { longitude: "-9.5" });
  assert.deepEqual(statedIn({ hsvp_filelat: "NA", hsvp_filelon: "" }), {});
});
