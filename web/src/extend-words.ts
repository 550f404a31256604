/// What the user is told about extending and thinning a cast: what was done, and why something was
/// not, with what to do next.
import { OTHER_ROWS } from "./extender";
import type { Extended } from "./extension";
import type { ExtendWay } from "./extender";
import { formatCount, formatValue } from "./format";
import { levelCount, tooManyLevels } from "./outbox-words";
import type { Profile } from "./profile";
import { DISTURBED, type ThinnedFile } from "./thinner";
import type { Difference } from "./thinning";

const LEAST_LEVELS: Record<ExtendWay["kind"], number> = { default: 3, water: 4, file: 1 };

/// A depth in m, without the noise of 32-bit floats.
export function metres(depth: number): string {
  return `${formatValue(depth)} m`;
}

/// Whether a reason asks for the check.
export function isAboutOrder(reason: string): boolean {
  return reason.startsWith("Depths are not sorted.") || reason === "Depths not sorted.";
}

/// By what a cast was extended.
export function wayWords(way: ExtendWay): string {
  switch (way.kind) {
    case "default":
      return "the default rows";
    case "water": {
      const { temperature, salinity, latitude } = way.water;
      return `${temperature} °C, salinity ${salinity} and latitude ${latitude}°`.replace(/-/g, "−");
    }
    case "file":
      return way.file.file.name;
  }
}

export function extendedText(before: Profile, way: ExtendWay, { joined, from, to, surface }: Extended): string {
  const sentences: string[] = [];
  if (joined === 0) {
    const deepest = before.lists.svp_Depth[before.count - 1] ?? NaN;
    sentences.push(`${before.filename}: no level was joined, since none lies below ${metres(deepest)}.`);
  } else {
    const span = joined === 1 ? `at ${metres(to)}` : `from ${metres(from)} to ${metres(to)}`;
    sentences.push(`${before.filename} extended with ${wayWords(way)}: ${levelCount(joined)} joined, ${span}.`);
  }
  sentences.push(
    surface
      ? "A level at 0 m was put in front, with the sound speed of the first level."
      : "No surface level was added.",
  );
  if (joined > 0 || surface) sentences.push("It is not saved yet.");
  return sentences.join(" ");
}

/// Why a cast was not extended.
export function extendFailedText(profile: Profile, kind: ExtendWay["kind"], reason: string): string {
  return `${profile.filename} was not extended. ${extendReason(profile, kind, reason)}`.trim();
}

function extendReason({ count }: Profile, kind: ExtendWay["kind"], reason: string): string {
  if (isAboutOrder(reason)) return `${lines(reason)} Check the cast and mend what is marked; then extend it again.`;
  switch (reason) {
    case "Invalid svp.":
      return count < LEAST_LEVELS[kind]
        ? `At least ${LEAST_LEVELS[kind]} levels are needed; this cast has ${count}.`
        : "The engine does not take its levels. Check the cast; then extend it again.";
    case "Failed to extend svp.":
      return (
        "No sea was found near this temperature and salinity whose sound speed comes within 1.0 m/s " +
        "of the deepest level’s. State what was measured there, try one a little warmer or colder, " +
        "or extend with the default rows."
      );
    case "Error extending.":
      return "The rows could not be joined. Try one of the other ways.";
    case "Cannot open extention svp.":
      return (
        "The file was handed in, but cannot be read from the profile folder. Look whether the folder " +
        "may be read and written; then extend again."
      );
    case "Error in file.":
      return "The file needs at least 2 rows, all others deeper than the first one. Mend it; then extend again.";
    case "Error saving file.":
      return (
        "The file could not be stored. Look whether the profile folder may be written to and its disk " +
        "has room; then extend again."
      );
    case OTHER_ROWS:
      return `${reason} Another page may have handed in its own meanwhile. Extend again.`;
    default:
      return otherReason(reason, "extend");
  }
}

export function thinnedText(before: Profile, { path }: ThinnedFile, kept: number, remarks: readonly string[]): string {
  return [
    `${before.filename} thinned from ${levelCount(before.count)} to ${levelCount(kept)}, written as ${path}.`,
    ...remarks,
    tooManyLevels(kept),
  ].filter(Boolean).join(" ");
}

/// What a preview of thinning shows, one line each.
export function previewLines(before: Profile, kept: number, { speed, depth }: Difference): string[] {
  const difference = speed < 0.0005
    ? "No level is off the thinned line by 0.001 m/s or more."
    : `Largest difference ${speed.toFixed(3)} m/s, at ${metres(depth)}.`;
  return [`${formatCount(kept)} of ${levelCount(before.count)} remain.`, difference, tooManyLevels(kept)].filter(Boolean);
}

/// Why a profile has to be extended before it is thinned; "" when it need not be.
export function notWholeText({ lists, count, filename }: Profile, fullDepth: number): string {
  const first = lists.svp_Depth[0] ?? NaN;
  const last = lists.svp_Depth[count - 1] ?? NaN;
  if (first === 0 && last === fullDepth) return "";
  return (
    `A cast must be extended first, to go from exactly 0 m to exactly ${fullDepth} m: ` +
    `${filename} goes from ${metres(first)} to ${metres(last)}.`
  );
}

/// Why a profile was not thinned.
export function thinFailedText({ filename, count }: Profile, reason: string): string {
  return `${filename} was not thinned. ${thinReason(count, reason)}`.trim();
}

function thinReason(count: number, reason: string): string {
  if (isAboutOrder(reason)) {
    return "Its depths are not sorted. Check the cast and mend what is marked; then thin it again.";
  }
  const unsupported = /^Unsupported SSP type S(.*)$/.exec(reason);
  if (unsupported) return `Its type, ${unsupported[1]}, cannot be written. Save it as .asvp, open that and thin it.`;
  switch (reason) {
    case "Wrong svp input.":
      return `At least 6 levels are needed, each with a depth and a sound speed; this cast has ${count}.`;
    case "Profile not extended.":
      return "It must go from exactly 0 m to exactly 12000 m. Extend it first.";
    case "Input parameter error":
      return "The tolerance must lie from 0.01 to 1.0.";
    case "Thinning error":
      return "No profile came of it. Check the cast; then thin it again.";
    case "Error saving file.":
    case "Error writing file.":
      return (
        "The file could not be written. Look whether the profile folder may be written to and its disk " +
        "has room; then thin again."
      );
    case DISTURBED:
      return `${reason} Another page may be thinning as well. Try again.`;
    default:
      return otherReason(reason, "thin");
  }
}

function otherReason(reason: string, again: string): string {
  switch (reason) {
    case "Memory allocation error":
      return `The machine is short of memory. Close other programs; then ${again} again.`;
    case "Invalid input parameters.":
    case "Wrong number of input parameters.":
      return `Load the page again, so that it fits the engine; then ${again} again.`;
    case "There is no connection to the host.":
      return `${reason} Wait until the page is connected; then ${again} again.`;
    default:
      return `${reason} Try to ${again} it once more; if that fails too, look into the host’s log.`.trim();
  }
}

function lines(text: string): string {
  return text.split("\n").map((line) => line.trim()).filter(Boolean).join(" ");
}
