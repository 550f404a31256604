/// Datagram files that the engine would not read again.
import assert from "node:assert/strict";
import { test } from "node:test";
import { reopeningText } from "../../src/kept";
import { profileOf } from "../../src/profile";
import type { Packet } from "../../src/protocol";

const textOf = (svp_Depth: number[]) =>
  reopeningText(profileOf({ whoami: "", svp_Depth, svp_Speed: svp_Depth.map(() => 1500) } as Packet));

test("a whole profile opens again, to the edges of what is whole", () => {
  for (const depths of [[0, 12_000], [5, 11_900], [0, 0.01, 11_900]]) assert.equal(textOf(depths), "");
  assert.equal(textOf([...Array.from({ length: 999 }, (_, i) => i), 12_000]), "");
});

test("why a file would not open again is said with what to do", () => {
  for (const [depths, why] of [
    [[-0.01, 12_000], "it begins above the surface; drop the levels in air first"],
    [[0, 0.009, 12_000], "not each of its levels lies a centimetre below the one before; check and mend the cast first"],
    [[0, 20, 10, 12_000], "not each of its levels lies a centimetre below the one before; check and mend the cast first"],
    [[0, 12_000.5], "it goes below 12\u202f000 m"],
    [[0, 11_899], "it ends above 11\u202f900 m; extend the cast first"],
    [[...Array.from({ length: 1000 }, (_, i) => i), 12_000], "it has more than 1\u202f000 levels; thin the cast first"],
  ] as const) {
    assert.equal(textOf([...depths]), `This file will not open again as it stands: ${why}.`);
  }
});
