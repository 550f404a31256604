import assert from "node:assert/strict";
import { test } from "node:test";
import { finalName, lengthFault, nameFault, proposedName, uploadName } from "../../src/file-names";

test("a name is proposed with the suffix in place of the cast's own", () => {
  assert.equal(proposedName("cast.asvp", ".ssp"), "cast.ssp");
  assert.equal(proposedName("cast.vp2", ".asvp"), "cast.asvp");
  assert.equal(proposedName("cast.vp2", ".ssp"), "cast.ssp");
  assert.equal(proposedName("st.3.ASVP", ".asvp"), "st.3.asvp");
  assert.equal(proposedName("north/cast.asvp", ".ssp"), "cast.ssp");
  assert.equal(proposedName("odd*[1].asvp", ".asvp"), "odd__1_.asvp");
  assert.equal(proposedName("", ".ssp"), "cast.ssp");
});

test("the final name is the one that the engine writes", () => {
  assert.equal(finalName("a", ".asvp"), "a.asvp");
  assert.equal(finalName(" a.asvp ", ".asvp"), "a.asvp");
  assert.equal(finalName("a.ASVP", ".asvp"), "a.asvp");
  assert.equal(finalName("a.asvp.old", ".asvp"), "a.asvp.old.asvp");
  assert.equal(finalName("a.SSP", ".ssp"), "a.ssp");
  assert.equal(finalName("a.txt", ".ssp"), "a.txt.ssp");
  assert.equal(finalName("a.vp2", ".ssp"), "a_vp2.ssp");
  assert.equal(finalName("a.amlx.ssp", ".ssp"), "a_amlx.ssp");
});

test("names that lead elsewhere, break a request or would not be listed are refused", () => {
  for (const name of ["a.asvp", "a b.ssp", "a,b", "å.asvp", "x".repeat(200)]) {
    assert.equal(nameFault(name), "", name);
  }
  const faulty = ["", ".asvp", ".ssp", "a/b", "..\\a", "C:a", "a*", "a[1]", "a\u0007", ".hidden", "å".repeat(101)];
  for (const name of faulty) assert.notEqual(nameFault(name), "", name);
});

test("every proposed name may be taken as it is", () => {
  for (const name of ["a*b.asvp", "C:x.asvp", ".x.asvp", "north\\x.asvp", "a[1].vp2"]) {
    assert.equal(nameFault(proposedName(name, ".asvp").replace(/^\.+/, "")), "", name);
  }
});

const handedIn: [string, string][] = [
  ["cast.vp2", "cast.vp2"],
  ["Mælström Ωδ 深度.csv", "Mælström Ωδ 深度.csv"],
  ["with, comma & 100%.vp2", "with, comma & 100%.vp2"],
  ['say "hello".vp2', "say _hello_.vp2"],
  ["a[1]*.vp2", "a_1__.vp2"],
  ["a\\b/c:d.vp2", "a_b_c_d.vp2"],
  ["line\nbreak.vp2", "line_break.vp2"],
  [".hidden.vp2", "_hidden.vp2"],
];
for (const [name, stored] of handedIn) {
  test(`${JSON.stringify(name)} is handed in as ${JSON.stringify(stored)}`, () => {
    assert.equal(uploadName(name), stored);
  });
}

test("a name may have 200 bytes, whatever its letters", () => {
  assert.equal(lengthFault("n".repeat(200)), "");
  assert.notEqual(lengthFault("n".repeat(201)), "");
  assert.equal(lengthFault("ö".repeat(100)), "");
  assert.notEqual(lengthFault("ö".repeat(101)), "");
});
