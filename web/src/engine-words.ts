/// What the user is told when the engine or the host refuses something or stays silent: why, and what
/// to do next.
import { NO_FILTER, openReason } from "./open-words";
import type { Profile } from "./profile";

export const SILENT =
  "The engine does not answer. Wait a while, then load the page again; if that does not help, start the host again.";

/// What leaves the editor is asked for one after the other.
export const OUTPUT_WAITS =
  "The command before is still waiting for the list of casts, so this one was not done. " +
  "Try again when that is here; if it does not come, look whether the host is still running.";

/// A check that came to no verdict.
export function checkFailedText(name: string, reason: string): string {
  return [`${name} could not be checked.`, reason, checkNext(reason)].filter(Boolean).join(" ");
}

function checkNext(reason: string): string {
  switch (reason) {
    case "Too few samples in profile.":
      return "At least two levels are needed, each with a depth and a sound speed: put levels in, or open the cast again.";
    case "The connection was lost before the answer came.":
      return "Wait until the page is connected; then check again.";
    default:
      return reason.startsWith("No answer")
        ? "Look whether the host is still running; then check again."
        : "Open the cast again; then check again.";
  }
}

/// A frame of this page that the host did not take.
export function refusedText(reason: string): string {
  return `The host refused a request. ${reason} Load the page again, so that it fits the host; unsaved edits stay.`;
}

/// A file that somebody else had opened, whose name is not told.
export function elsewhereFailedText(reason: string): string {
  const start = "A file that another page or program asked for could not be opened.";
  if (reason === NO_FILTER) return `${start} No import filter fits it. Describe its columns in Import filters…`;
  const why = openReason("", reason) || "The engine gives no reason.";
  return `${start} ${why} Look there which file it was, and whether it is in the profile folder.`;
}

/// A dialog was left with a result for a cast that is not on the page any more.
export function notOpenText({ filename }: Profile): string {
  return `Nothing was applied: it was for ${filename} as it was on the page before. Open that and do it again.`;
}
