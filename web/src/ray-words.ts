/// Why there are no rays to show, with what to do next.
import { levelCount } from "./outbox-words";
import type { Profile } from "./profile";

const LEAST_LEVELS = 6;

/// `second` is the name of the second profile.
export function raysFailedText({ filename, count }: Profile, second: string, reason: string): string {
  switch (reason) {
    case "Profiles not accepted. Please run fix.":
      return (
        `${filename} or the second profile has levels out of order, or fewer than 2 valid ones. ` +
        "Fix the cast; then look at its rays."
      );
    case "Too few points in svp.":
      return `At least ${LEAST_LEVELS} levels are needed; ${filename} has ${levelCount(count)}. Extend it; then look at its rays.`;
    case "Memory allocation error or too few points in svp2.":
      return `At least ${LEAST_LEVELS} levels are needed; the second profile, ${second}, has fewer. Choose another one.`;
    case "Beam pointing angle out of range.":
      return "The angle must lie from 0 to 90°.";
    case "Memory allocation error":
      return "The machine is short of memory. Close other programs; then try again.";
    case "Input parameter error":
      return "Load the page again, so that it fits the engine; then try again.";
    case "There is no connection to the host.":
      return `${reason} Wait until the page is connected; then try again.`;
    default:
      return reason;
  }
}
