/// What the user is told about a profile that has left the editor, or has not.
import { formatCount } from "./format";
import type { Job, Way } from "./outbox";
import { NOT_KNOWN } from "./outcome";
import { LEAST_LEVELS, MOST_LEVELS, SURVEY_SYSTEM_PORT } from "./protocol-output";

/// The engine's refusal of a profile that the check does not pass.
export const CHECK_REFUSAL = "Profile contains errors and will not be sent to QRV.";

const NOT_DONE: Record<Way, string> = {
  send: "was not sent to the survey system",
  save: "was not saved",
  receiver: "was not handed to the receiver",
  distribute: "was not distributed",
};

const AGAIN: Record<Way, string> = {
  send: "send again",
  save: "save again",
  receiver: "hand it over again",
  distribute: "distribute again",
};

const AT_WORK: Record<Way, string> = {
  send: "Sending",
  save: "Saving",
  receiver: "Handing over",
  distribute: "Distributing",
};

const LOOK_FIRST: Record<Way, string> = {
  send: "Look whether the survey system shows the profile; if it does not, send again.",
  save: "Look for the file and its time in the list of casts; if it is not there, save again.",
  receiver: "Hand it over again: once more does no harm.",
  distribute: "Distribute again: once more does no harm.",
};

/// Said while an answer is waited for.
export function workText(job: Job | null): string {
  return job ? `${AT_WORK[job.way]} ${job.name}…` : "";
}

export function sentText(job: Job, svptype: string): string {
  // UDP is not acknowledged: what is known is that it went out, not that it came in.
  const text =
    `Sent to the survey system on this machine (UDP port ${SURVEY_SYSTEM_PORT}): ${job.name}, ` +
    `${levelCount(job.levels)} as ${svptype}. The survey system does not confirm receipt.`;
  return [text, job.remark].filter(Boolean).join(" ");
}

/// `missing` is what no file keeps of that which the user has changed.
export function savedText(job: Job, path: string, missing: readonly string[] = []): string {
  const text = [`${missing.length > 0 ? "Written" : "Saved"} as ${path}`, job.remark].filter(Boolean).join(" – ");
  return missing.length > 0 ? `${text} The cast still counts as not saved.` : text;
}

/// The engine's words claim more than it does, so they stand as its own.
export function handedOnText({ way, name, levels }: Job, words: string): string {
  const whom = way === "receiver" ? "the receiver" : "distribution";
  return (
    `The engine has taken note of ${name}, ${levelCount(levels)}, for ${whom}; it sends nothing itself.` +
    (words ? ` Its answer: “${words}”` : "")
  );
}

/// What failed, why, and what to do about it.
export function failedText({ way, name }: Job, reason: string): string {
  return [`${name} ${NOT_DONE[way]}.`, reason, whatNext(way, reason)].filter(Boolean).join(" ");
}

export function levelCount(levels: number): string {
  return `${formatCount(levels)} ${levels === 1 ? "level" : "levels"}`;
}

/// The sentence about a datagram with more levels than the survey system takes, or "".
export function tooManyLevels(levels: number): string {
  if (levels <= MOST_LEVELS) return "";
  const most = formatCount(MOST_LEVELS);
  return `The survey system takes at most ${most} levels; this profile has ${formatCount(levels)}.`;
}

function whatNext(way: Way, reason: string): string {
  const again = AGAIN[way];
  switch (reason) {
    case CHECK_REFUSAL:
      return `Check the profile and mend what is marked; then ${again}.`;
    case "Invalid svp.":
    case "Wrong svp input.":
      return `At least ${LEAST_LEVELS} levels are needed, each with a depth and a sound speed.`;
    case "Sample count mismatch or too small.":
    case "Stated sample count mismatch.":
      return `Open the cast again; then ${again}.`;
    case "No samples extracted.":
      return "Its type is a content identifier without columns. Save it as .asvp instead.";
    case "Memory allocation error.":
      return `The machine is short of memory. Close other programs; then ${again}.`;
    case "Error saving file.":
    case "Error writing file.":
      return `Look whether the profile folder may be written to and its disk has room; then ${again}.`;
    case "Invalid parameters.":
    case "Wrong number of input parameters.":
      return `Load the page again, so that it fits the engine; then ${again}.`;
    case "There is no connection to the host.":
      return `Wait until the page is connected; then ${again}.`;
    default:
      return reason.endsWith(NOT_KNOWN) ? LOOK_FIRST[way] : `Try once more; if it fails again, look into the host’s log.`;
  }
}
