/// What the user is told about a file that was handed in, or could not be opened: why, and what to
/// do next.
import { isBuiltIn, kindWords, suffixOf } from "./file-kinds";
import { formatSize } from "./format";
import { levelCount } from "./outbox-words";
import type { PostAnswer } from "./post-file";

/// The engine's reasons that the page answers with more than words.
export const NO_FILTER = "Filter not found.";
export const TOO_FEW = "Too few points in file.";

/// Whether describing the file's columns may help against this reason.
export function isAboutFilter(name: string, reason: string): boolean {
  return reason === NO_FILTER || (reason === TOO_FEW && !isBuiltIn(name));
}

/// A file of the profile folder that the engine could not open.
export function openFailedText(name: string, reason: string): string {
  return `${name} could not be opened. ${openReason(name, reason)}`;
}

/// Why a file could not be opened, in the words of somebody who has to mend it.
export function openReason(name: string, reason: string): string {
  const suffix = suffixOf(name);
  const unsupported = /^Unsupported SSP type S(.*)$/.exec(reason);
  if (unsupported) {
    return (
      `Its datagram has the content identifier ${unsupported[1]}, which is not read here. ` +
      "Have it written with another identifier, 00 for depth and sound speed."
    );
  }
  switch (reason) {
    case NO_FILTER:
      return (
        (suffix
          ? `No import filter fits files ending in ${suffix}. `
          : "Its name has no suffix, by which an import filter could be found. Add one to it, or ") +
        (suffix ? "Describe its columns in Import filters…" : "choose another file.")
      );
    case TOO_FEW:
      // For a datagram the engine means more by this than it says.
      if (/\.ssp$/i.test(name)) {
        return (
          "Its profile is not accepted as it stands; the alert that comes with this says why. " +
          "Open the cast that it was written from, mend or extend that, and write it again."
        );
      }
      return isBuiltIn(name)
        ? "Fewer than two levels could be read from it. Look whether the file is whole and holds a cast."
        : "Fewer than two levels could be read with its import filter. Compare the two in Import filters…";
    case "Header not correct in file.":
      return /\.ssp$/i.test(name)
        ? "It does not begin with a sound speed profile datagram. Look whether it is whole and of this kind."
        : "Its first line is no .asvp header, which has twelve words between round brackets. " +
            "Mend that line, or have the file written again.";
    case "Valeport vp2 decode problem.":
      return (
        "It is not laid out as a Valeport .vp2 file: its sections, or its depth and speed columns, " +
        "are missing. Look whether it is whole, and have it written again by the instrument’s program."
      );
    case "AML aml format decode problem.":
      return (
        "It is not laid out as an AML file: its sections, or its depth and speed columns, are " +
        "missing. Look whether it is whole, and have it written again by the instrument’s program."
      );
    case "File does not exist or cannot be opened for reading":
      return `${reason}. Read the list of casts again, and look whether it may be read.`;
    case "Error saving file.":
      return (
        "It could not be stored. Look whether the profile folder may be written to and its disk " +
        "has room; then open it again."
      );
    case "Memory allocation error":
    case "Memory allocation error.":
      return "The machine is short of memory. Close other programs; then open it again.";
    case "The connection was lost before the answer came.":
      return `${reason} Wait until the page is connected; then open it again.`;
    default:
      return reason.startsWith("No answer")
        ? `${reason} Look whether the host is still running; then open it again.`
        : reason;
  }
}

/// Files that were dropped while a dialog was open.
export function refusedDropText(files: readonly { name: string }[]): string {
  const isOne = files.length === 1;
  return (
    `${files.map(({ name }) => name).join(", ")} ${isOne ? "was" : "were"} not opened: a dialog is open. ` +
    `Close the dialog first, then drop the ${isOne ? "file" : "files"} again.`
  );
}

/// An upload that was not answered with success.
export function uploadFailedText(name: string, size: number, { status, text }: PostAnswer): string {
  const start = `${name} could not be opened.`;
  switch (status) {
    case 0:
      return (
        `${name} (${formatSize(size)}) could not be handed to the host: the connection broke, or ` +
        "the file was changed or removed meanwhile. Wait until the page is connected; then open it again."
      );
    case 413: {
      const most = /at most (\d+ MiB)/.exec(text)?.[1];
      return (
        `${name} is too large: it has ${formatSize(size)}, and the host takes ` +
        `${most ? `at most ${most}` : "less"} at once. Cut it into casts, or leave out what is no cast.`
      );
    }
    case 500:
      return text === "Error saving file." || text.startsWith("File does not exist")
        ? `${start} ${openReason(name, "Error saving file.")}`
        : `${start} ${openReason(name, text || "The engine gives no reason.")} ` +
            "The file itself is stored in the profile folder.";
    case 503:
      return `${start} The host has too many connections. Close some pages; then open it again.`;
    case 504:
      return `${start} The engine did not answer in time. Read the list of casts again in a while.`;
    default:
      return `${start} The host refused it (${status}). ${text}`.trim();
  }
}

/// An upload that is open now.
export function uploadedText(name: string, levels: number, remarks: readonly string[]): string {
  const facts = `${name} opened: ${levelCount(levels)}, ${kindWords(name)}.`;
  const noTime = isBuiltIn(name) ? [] : ["Its time is that of opening, since column files give none."];
  return [facts, "It is stored in the profile folder.", ...noTime, ...remarks].join(" ");
}
