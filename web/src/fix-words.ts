/// What the user is told about fixing a cast: what was done, why something was not, and how far the
/// rays through both lie apart.
import { joinedText } from "./carried";
import { largestOf, type Comparison } from "./comparison";
import { metres } from "./extend-words";
import type { FixFacts } from "./fixing";
import type { FixedFile } from "./fixer";
import { formatCount } from "./format";
import { identifierOf } from "./identifiers";
import { levelCount, tooManyLevels } from "./outbox-words";
import type { Profile } from "./profile";
import { MOST_LEVELS } from "./protocol-output";

/// Of a cast that is written as an `.asvp` file.
const LEAST_LEVELS = 6;

/// What is left to do when it is not known what went wrong, or how far it came.
const LOOK_AND_REPEAT = "Look for the file in the list of casts; if it is not there, fix it again.";

/// Whether a reason asks for the atlas settings.
export function isAboutAtlas(reason: string): boolean {
  return reason === "Error generating WOA extension file.";
}

/// Whether a reason asks for the check.
export function isAboutLevels(reason: string): boolean {
  return reason.startsWith("Error cleaning");
}

/// What a fix has done, one sentence each.
export function fixedLines(before: Profile, after: Profile, facts: FixFacts, { path }: FixedFile): string[] {
  const { invalid, from } = facts;
  const deepest = after.lists.svp_Depth[after.count - 1] ?? NaN;
  return [
    invalid === 0
      ? "No level was invalid."
      : `${formatCount(invalid)} of ${levelCount(before.count)} ${invalid === 1 ? "was" : "were"} invalid and left out.`,
    Number.isNaN(from) ? "It was deep enough, and not continued." : `Continued from ${metres(from)} to ${metres(deepest)}.`,
    `Thinned, ${levelCount(after.count)} remain.`,
    `Written as ${path}.`,
    tooManyLevels(after.count),
    joinedText(after, identifierOf(after.header.hsvp_filetype)),
  ].filter(Boolean);
}

/// How far rays lie apart at most, in a sentence. `first` and `second` say what the two profiles are.
export function largestText(comparison: Comparison, first: string, second: string): string {
  const largest = largestOf(comparison);
  if (!largest) return "None of the rays comes to one of the ranges in both of them.";
  const { difference, angle, range, pair } = largest;
  if (difference === 0) return "Wherever rays come through both of them, their depths agree to 0.01 m.";
  return (
    `The largest difference is ${Math.abs(difference).toFixed(2)} m, at ${formatCount(range)} m of the ray of ${angle}°: ` +
    `${pair.first.toFixed(2)} m ${first}, ${pair.second.toFixed(2)} m ${second}.`
  );
}

/// A file that a fix has written and the engine does not open: what is the matter and what to do.
export function unreadableText({ filename, count }: Profile, { name, path }: FixedFile, reason: string): string {
  const begin = `${filename} was not replaced: the fix was written as ${path}, but that file cannot be opened again.`;
  if (!/\.ssp$/i.test(name)) return `${begin} ${reason} Try once more, with another tolerance.`.replace(/ +/g, " ");
  if (count > MOST_LEVELS) {
    return (
      `${begin} A datagram is read with at most ${formatCount(MOST_LEVELS)} levels, and after thinning it most likely ` +
      "has more. Take a larger tolerance and fix again; or choose the type “Sound velocity” in the header first: " +
      "an .asvp file may have more levels."
    );
  }
  return (
    `${begin} Its rows are not accepted: the alert that comes with this says why. Choose the type “Sound velocity” ` +
    "in the header, or another one that the cast has all values for; then fix again."
  );
}

/// Why a cast was not fixed.
export function fixFailedText({ filename, count }: Profile, reason: string): string {
  return `${filename} was not fixed. ${fixReason(count, reason)}`.trim();
}

function fixReason(count: number, reason: string): string {
  const unsupported = /^Unsupported SSP type S(.*)$/.exec(reason);
  if (unsupported) return `Its type, ${unsupported[1]}, cannot be written. Save it as .asvp, open that and fix it.`;
  if (reason.startsWith("Invalid thin factor:")) return "The tolerance must lie from 0.01 to 1.0.";
  const notWritten = /^Error writing file: (.*)$/.exec(reason);
  if (notWritten || reason === "Error saving file.") {
    return (
      `${notWritten ? `${notWritten[1]} could` : "The file could"} not be written. Look whether the profile ` +
      "folder may be written to and its disk has room; then fix again. A file has 3 levels at least."
    );
  }
  switch (reason) {
    case "Error generating WOA extension file.":
      return (
        "The World Ocean Atlas has no profile for it: one of its two files cannot be read, or has no " +
        "data at the cast’s position, which may be on land. Look at the atlas settings and at the " +
        "position; or switch the atlas off, then the extension rows are taken."
      );
    case "Error cleaning. Too few samples left.":
    case "Error cleaning profile.":
      return (
        `Fewer than 2 of its ${levelCount(count)} are valid, with a sound speed from 1400 to 1700 m/s and ` +
        "each deeper than the one above. Check the cast and mend what is marked; then fix it again."
      );
    case "Error extending file downwards during profile fix.":
    case "Error writing file.":
      return "It could not be continued downward. Extend it yourself, then thin it.";
    case "Error thinning profile.":
      return (
        "With the rows that continue it, it cannot be thinned: they are not in the order of their depths, " +
        "or do not come below 11500 m. Look at the extension file, or at the atlas; then fix it again."
      );
    case "Sample count mismatch or too small.":
      return "At least 3 levels are needed, and columns of equal length. Open the file again; then fix it again.";
    case "Invalid svp.":
      return (
        `At least ${LEAST_LEVELS} levels are needed, each with a depth and a sound speed; this cast has ` +
        `${levelCount(count)}. Add some, or extend it; then fix it again.`
      );
    case "Thinning error: element sizes are different":
      return "Its columns are not of equal length. Open the file again; then fix it again.";
    case "No SSP datagram header generated.":
    case "No samples extracted.":
    case "No SSP datagram tail generated.":
      return "No datagram could be made of it. Save it as .asvp, open that and fix it.";
    case "Memory allocation error":
      return "The machine is short of memory. Close other programs; then fix it again.";
    case "Invalid parameters.":
    case "Stated sample count mismatch.":
      return "Load the page again, so that it fits the engine; then fix it again.";
    case "There is no connection to the host.":
      return `${reason} Wait until the page is connected; then fix it again.`;
    default:
      return `${reason} ${LOOK_AND_REPEAT}`.trim();
  }
}
