/// Comparisons as the engine sends them.
import { ANGLES, RANGES } from "../../src/comparison";
import type { Packet } from "../../src/protocol";

export function comparisonPacket(depths: (range: number, angle: number) => readonly [string, string]): Packet {
  const columns = RANGES.map((range) => [`err${range}`, ANGLES.map((angle) => [...depths(range, angle)])]);
  return { whoami: "Thin", file: "", result: "SUCCESS", ...Object.fromEntries(columns) } as Packet;
}
