/// The ways by which the open cast leaves the page, with the questions that come first.
import { PAIR_COLUMNS, absentText, joinedText, notCarried, otherKinds } from "./carried";
import { columnsOf } from "./columns";
import { CHOSEN, ask, type Choice } from "./dialog";
import { finalName, nameFault, proposedName, type Suffix } from "./file-names";
import { formatCount } from "./format";
import { PLAIN, columnsSent, identifierOf } from "./identifiers";
import { editsLost, lostText, reopeningText, type FileForm } from "./kept";
import { occasionIn, withOccasion } from "./occasion";
import type { Outbox } from "./outbox";
import { tooManyLevels } from "./outbox-words";
import type { Profile } from "./profile";
import { Action, type ListKey } from "./protocol";
import {
  MOST_DATAGRAM_BYTES,
  datagramSize,
  pairsBody,
  saveAsvpBody,
  saveDatagramBody,
  sendBody,
} from "./protocol-output";
import { aheadText } from "./stated";
import { thinKind } from "./thinning";

const ASVP_HINT = "An .asvp file keeps depth and sound speed, with two decimals each.";
const DATAGRAM_HINT =
  "An older file of that name is kept beside it, with “_bck_” and the time in its name.";

/// What the page lends to this.
export interface OutputPage {
  open(): Profile | null;
  /// The name, as it is spelled in the profile folder, of a file that `name` would replace, or "".
  listed(name: string): Promise<string>;
  /// Whether a file has changed since the open cast was read from it or written to it.
  isChanged(name: string): boolean;
  /// When a file of the profile folder was last written; null where that is not known.
  fileDate(name: string): Promise<Date | null>;
  /// Time or position of the open cast were stated.
  stated(before: Profile, after: Profile): void;
  /// A job was asked for while the one before still waits for the list of the folder.
  waits(): void;
}

type What = "Send" | "Save";

export class Output {
  private busy = false;

  constructor(
    private readonly outbox: Outbox,
    private readonly page: OutputPage,
  ) {}

  /// Sends the open cast to the survey system.
  send(): Promise<void> {
    return this.alone(async (open) => {
      const identifier = await agreedKind(open, "Send", (kind) => sizeTexts(open, kind));
      const profile = identifier && (await this.stated(open));
      if (!profile) return;
      const remark = [joinedText(profile, identifier), aheadText(profile)].filter(Boolean).join(" ");
      const job = { way: "send", name: profile.filename, levels: profile.count, remark } as const;
      this.outbox.begin(job, Action.send, sendBody(profile, identifier, occasionIn(profile)));
    });
  }

  /// Saves the open cast as an `.asvp` file under its own name.
  save(): Promise<void> {
    return this.alone(async (profile) => {
      if (!(await isWhole(profile, "saved"))) return;
      const name = proposedName(profile.filename, ".asvp");
      await this.saveAsvp(profile, name, Action.save);
    });
  }

  /// Saves the open cast as an `.asvp` file under a name that the user gives.
  saveAs(): Promise<void> {
    return this.alone(async (profile) => {
      if (!(await isWhole(profile, "saved"))) return;
      const name = await askName(profile, ".asvp", "Save as", ASVP_HINT);
      if (name) await this.saveAsvp(profile, name, Action.saveAs);
    });
  }

  /// Saves the open cast as a datagram file.
  saveDatagram(): Promise<void> {
    return this.alone(async (open) => {
      const identifier = await agreedKind(open, "Save");
      const name = identifier && (await askName(open, ".ssp", "Save as datagram file", DATAGRAM_HINT));
      const profile = name && (await this.stated(open));
      if (!profile) return;
      const older = await this.page.listed(name);
      const kept = older ? `the older file is kept as ${older.replace(/\.ssp$/i, "")}_bck_(date)_(time).ssp.` : "";
      const remarks = [kept, tooManyLevels(profile.count), joinedText(profile, identifier), reopeningText(profile)];
      const job = this.saveJob(profile, name, { kind: identifier }, remarks);
      this.outbox.begin(job, Action.save, saveDatagramBody(profile, name, identifier, occasionIn(profile)));
    });
  }

  /// Hands the open cast to the receiver.
  toReceiver(): Promise<void> {
    return this.alone(async (profile) => {
      if (!(await isWhole(profile, "handed to the receiver"))) return;
      const job = { way: "receiver", name: profile.filename, levels: profile.count } as const;
      this.outbox.begin(job, Action.receiver, pairsBody(profile));
    });
  }

  /// Has the open cast distributed.
  distribute(): Promise<void> {
    return this.alone(async (profile) => {
      if (!(await isWhole(profile, "distributed"))) return;
      const job = { way: "distribute", name: profile.filename, levels: profile.count } as const;
      this.outbox.begin(job, Action.distribute, pairsBody(profile));
    });
  }

  /// The profile with its time and position, which the user has stated where they were missing: that
  /// is an edit of the open cast then. Null when the user does not state them.
  async stated(profile: Profile): Promise<Profile | null> {
    const stated = await withOccasion(profile, { fileDate: (name) => this.page.fileDate(name) });
    if (stated && stated !== profile) this.page.stated(profile, stated);
    return stated;
  }

  private async saveAsvp(open: Profile, name: string, action: Action): Promise<void> {
    const older = await this.page.listed(name);
    if (older && !(await mayReplace(older, this.page.isChanged(older)))) return;
    const profile = await this.stated(open);
    if (!profile) return;
    const job = this.saveJob(profile, name, "asvp", [leftOut(profile)]);
    this.outbox.begin(job, action, saveAsvpBody(profile, name, occasionIn(profile)));
  }

  private saveJob(profile: Profile, name: string, form: FileForm, remarks: readonly string[]) {
    const lost = editsLost(profile, form);
    const remark = [...remarks, aheadText(profile), lostText(lost, form)].filter(Boolean).join(" ");
    return { way: "save", name, levels: profile.count, profile, lost, remark } as const;
  }

  /// Runs one job with the open cast; another one has to wait until its questions are answered.
  private async alone(run: (profile: Profile) => Promise<void>): Promise<void> {
    const profile = this.page.open();
    if (!profile) return;
    if (this.busy) return this.page.waits();
    this.busy = true;
    try {
      await run(profile);
    } finally {
      this.busy = false;
    }
  }
}

/// The profile under a kind whose rows can be written of it, where it is thinned or fixed: its own, or
/// another one that the user has agreed to. Null where there is none. `mends` are lists in which what
/// is not there is no hindrance.
export async function writable(profile: Profile, mends: readonly ListKey[] = []): Promise<Profile | null> {
  const kind = thinKind(profile);
  const keys = identifierOf(kind) === PLAIN ? PAIR_COLUMNS : columnsSent(kind);
  const absent = absentText(profile, keys.filter((key) => !mends.includes(key)));
  if (!absent) return profile;
  const chosen = await otherKind(profile, kind, absent, "Save");
  return chosen ? { ...profile, header: { ...profile.header, hsvp_filetype: chosen } } : null;
}

/// What an .asvp file does not keep of a profile, as a sentence; "" when it keeps all.
export function leftOut(profile: Profile): string {
  const lost = columnsOf(profile).some(({ key }) => !PAIR_COLUMNS.includes(key));
  return lost ? "depth and sound speed only; a datagram file keeps the other columns too." : "";
}

/// The content identifier to write a profile with; "" when the user wants none.
async function askIdentifier(profile: Profile, what: What): Promise<string> {
  const own = identifierOf(profile.header.hsvp_filetype);
  if (own) return own;
  const type = String(profile.header.hsvp_filetype ?? "").trim();
  const answer = await ask({
    title: `${what} as ${PLAIN}?`,
    text: [
      type
        ? `The type of ${profile.filename}, “${type}”, is no content identifier of a datagram.`
        : `${profile.filename} does not state its type.`,
      `It can go out as ${PLAIN}, with depth and sound speed.`,
    ],
    confirm: `${what} as ${PLAIN}`,
  });
  return answer ? PLAIN : "";
}

/// The content identifier that a profile goes out with, once the user has agreed to all that this
/// leaves out; "" when there is none. `more` are further reasons to ask.
async function agreedKind(
  profile: Profile,
  what: What,
  more: (identifier: string) => string[] = () => [],
): Promise<string> {
  let identifier = await askIdentifier(profile, what);
  while (identifier) {
    const absent = absentText(profile, columnsSent(identifier));
    if (absent) {
      identifier = await otherKind(profile, identifier, absent, what);
      continue;
    }
    const left = notCarried(profile, identifier);
    const text = [...left, ...more(identifier)];
    if (text.length === 0) return identifier;
    const others = left.length > 0 ? choices(profile, identifier, what) : [];
    const answer = await ask({ title: `${what} anyway?`, text, confirm: `${what} anyway`, others });
    const chosen = answer?.[CHOSEN];
    if (!chosen) return answer ? identifier : "";
    identifier = chosen;
  }
  return "";
}

/// Another kind for a profile that lacks what the rows of its own need; "" when there is none.
async function otherKind(profile: Profile, identifier: string, absent: string, what: What): Promise<string> {
  const others = choices(profile, identifier, what);
  const verb = what === "Send" ? "sent" : "saved";
  const answer = await ask({
    title: `${profile.filename} cannot be ${verb} as ${identifier}`,
    text: [
      `${absent} The rows of kind ${identifier} need it, and would carry 0 instead.`,
      others.length > 0
        ? "As another kind it can go out with the sound speeds that the page shows."
        : "Type what is missing, or take these levels out.",
    ],
    others,
  });
  return answer?.[CHOSEN] ?? "";
}

function choices(profile: Profile, identifier: string, what: What): Choice[] {
  return otherKinds(profile, identifier).map((key) => ({ key, label: `${what} as ${key}` }));
}

/// Whether each level has a depth and a sound speed; where not, the user is told.
async function isWhole(profile: Profile, done: string): Promise<boolean> {
  const absent = absentText(profile, PAIR_COLUMNS);
  if (!absent) return true;
  await ask({
    title: `${profile.filename} cannot be ${done}`,
    text: [`${absent} It would go out as 0.`, "Type what is missing, or take these levels out."],
  });
  return false;
}

/// What is said of a profile that may be too large for the survey system or for one datagram.
function sizeTexts(profile: Profile, identifier: string): string[] {
  const size = datagramSize(profile, identifier);
  const text = [tooManyLevels(profile.count)];
  if (size > MOST_DATAGRAM_BYTES) {
    text.push(
      `A UDP datagram holds at most ${formatCount(MOST_DATAGRAM_BYTES)} bytes and this one would ` +
        `have about ${formatCount(size)}: it would most likely not go out, and nothing would say so.`,
    );
  }
  return text.filter(Boolean);
}

async function mayReplace(name: string, isChanged: boolean): Promise<boolean> {
  const answer = await ask({
    title: `Replace ${name}?`,
    text: [
      ...(isChanged
        ? ["It has changed on disk since it was opened here: what somebody else has written to it would be lost."]
        : []),
      `${name} is in the profile folder already. It will be replaced, and no copy of it is kept.`,
      ASVP_HINT,
    ],
    confirm: "Replace",
  });
  return answer !== null;
}

/// A file name from the user, complete with its suffix; "" when there is none.
async function askName(
  profile: Profile,
  suffix: Suffix,
  title: string,
  hint: string,
): Promise<string> {
  const proposed = proposedName(profile.filename, suffix);
  const answer = await ask({
    title,
    text: [`${profile.filename} goes into a file of the profile folder.`],
    fields: [
      {
        key: "name",
        label: "File name",
        value: proposed,
        hint: `${suffix} is added where it is missing. ${hint}`,
        selected: proposed.length - suffix.length,
        fault: nameFault,
      },
    ],
    confirm: "Save",
  });
  return answer ? finalName(answer["name"] ?? "", suffix) : "";
}
