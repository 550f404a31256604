import assert from "node:assert/strict";
import { test } from "node:test";
import { profileOf } from "../../src/profile";
import {
  Action,
  openBody,
  packetOf,
  profileBody,
  requestFrame,
  shortestDecimal,
  type Packet,
} from "../../src/protocol";

const f = Math.fround;

test("a request frame names the engine and the action", () => {
  assert.deepEqual(JSON.parse(requestFrame(Action.open, "[a,b.asvp,asvp]")), {
    name: "SVP_WebInterface",
    data: "page,ACTION=SVP_WebInterface/SVP_OpenSVP,[a,b.asvp,asvp]",
  });
});

test("only a frame with a packet that says who it is is taken", () => {
  const packet = { whoami: "SVPAlert", alert: "x" };
  assert.deepEqual(packetOf(JSON.stringify({ target: "SVP_WebInterface", packet })), packet);
  for (const text of ["", "no json", "1", "null", "{}", '{"packet":null}', '{"packet":{}}',
                      '{"packet":{"whoami":3}}', "[]"]) {
    assert.equal(packetOf(text), null, text);
  }
});

test("an Open request names the file and its kind", () => {
  assert.equal(openBody("cast.asvp"), "[cast.asvp,asvp]");
  assert.equal(openBody("cast.SSP"), "[cast.SSP,ssp]");
  assert.equal(openBody("cast.vp2"), "[cast.vp2,asvp]");
  assert.equal(openBody("a,b*c.asvp"), "[a,b*c.asvp,asvp]");
});

test("a name that the engine would read as another is not sent", () => {
  for (const name of ["", "a[1].asvp", "a].asvp", "[a.asvp", "a\nb.asvp"]) {
    assert.equal(openBody(name), null, name);
  }
});

const floats: [number, string][] = [
  [f(0.1), "0.1"],
  [f(1487.32), "1487.32"],
  [f(11999.99), "11999.99"],
  [f(1487.3217), "1487.3217"],
  [f(-1.5), "-1.5"],
  [0, "0"],
  [12000, "12000"],
  [16777216, "16777216"],
  [0.1, "0.1"],
  [1 / 3, "0.3333333333333333"],
];
for (const [value, text] of floats) {
  test(`shortest decimal of ${value} is ${text}`, () => {
    assert.equal(shortestDecimal(value), text);
  });
}

test("every shortest decimal reads back as the same float", () => {
  for (let i = 1; i < 5000; ++i) {
    const value = f(1400 + 300 * Math.abs(Math.sin(i)));
    assert.equal(f(Number(shortestDecimal(value))), value);
  }
});

function pieces(packet: Partial<Packet>): string[] {
  const body = profileBody(profileOf({ whoami: Action.open, ...packet }));
  assert.match(body, /^\[[^[\]]*\]$/, "brackets only around the block");
  return body.slice(1, -1).split("*");
}

const LEVELS = { svp_Speed: [f(1500.1), 1490], svp_Depth: [0, f(10.25)] };

test("the block has 15 pieces in their places", () => {
  const block = pieces({
    ...LEVELS,
    svp_Depth_CTD: [0, 10],
    svp_Speed_CTD: [1500, 1490],
    svp_Temp: [f(12.3), 11],
    svp_Sal: [35, 35],
    svp_AbsCoef: [1, 2],
    filename: "cast.asvp",
    hsvp_filetype: "SoundVelocity",
    hsvp_fileversion: 1,
    hsvp_fileid: 7,
    hsvp_filetime: "20261115123456",
    hsvp_filelat: "59.5",
    hsvp_filelon: 10.25,
    hsvp_fileradii: 5,
    hsvp_filevalidfrom: 1700000000000,
    hsvp_filevalidto: "0",
    hsvp_filesource: "probe",
    hsvp_filehistory: "P",
    hsvp_filesamp: 2,
    hsvp_filecomment: "calm sea",
  });
  assert.deepEqual(block, [
    "1500.1,1490;0,10.25;0,10;1500,1490;12.3,11;35,35;1,2",
    "cast.asvp", "SoundVelocity", "1", "7", "20261115123456", "59.5", "10.25", "5",
    "1700000000000", "0", "probe", "P", "2", "calm sea",
  ]);
});

test("what is missing goes out as NA or 0, never as nothing", () => {
  const block = pieces({ ...LEVELS, hsvp_filecomment: "  ", hsvp_filesource: "", hsvp_filelat: "" });
  assert.equal(block.length, 15);
  assert.ok(block.every((piece) => piece !== ""));
  assert.deepEqual(block.slice(1), [
    "NA", "NA", "0", "0", "0", "0", "0", "0", "0", "0", "NA", "NA", "0", "NA",
  ]);
  assert.equal(block[0], "1500.1,1490;0,10.25;0,0;0,0;0,0;0,0;0,0");
});

test("the block's own marks inside a text are replaced", () => {
  const block = pieces({
    ...LEVELS,
    filename: "a*b[1],c.asvp",
    hsvp_filecomment: "**[]",
    hsvp_filesource: "line\r\nbreak",
    hsvp_filelat: "[59]",
  });
  assert.equal(block.length, 15);
  assert.equal(block[1], "a_b_1_,c.asvp");
  assert.equal(block[14], "____");
  assert.equal(block[11], "line break");
  assert.equal(block[6], "_59_");
});

test("lists of unequal length and values that are no numbers still make equal lists", () => {
  const block = pieces({ svp_Speed: [1500], svp_Depth: [0, null, 20], svp_Temp: [1, 2, 3, 4] });
  assert.equal(block[0], "1500,0,0;0,0,20;0,0,0;0,0,0;1,2,3;0,0,0;0,0,0");
});
