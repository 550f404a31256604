import assert from "node:assert/strict";
import { test } from "node:test";
import { finalName, nameFault, proposedName } from "../../src/file-names";

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
