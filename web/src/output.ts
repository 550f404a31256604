/// The ways by which the open cast leaves the page, with the questions that come first.
import { occasionOf } from "./occasion";
import { columnsOf } from "./columns";
import { ask } from "./dialog";
import { finalName, nameFault, proposedName, type Suffix } from "./file-names";
import { formatCount } from "./format";
import { PLAIN, identifierOf } from "./identifiers";
import type { Outbox } from "./outbox";
import { tooManyLevels } from "./outbox-words";
import { headerLabel } from "./header-fields";
import { headerLostText, notCarriedText } from "./level-words";
import type { Profile } from "./profile";
import { Action, type ListKey } from "./protocol";
import {
  MOST_DATAGRAM_BYTES,
  datagramSize,
  pairsBody,
  saveAsvpBody,
  saveDatagramBody,
  sendBody,
  type Occasion,
} from "./protocol-output";

const ASVP_HINT = "An .asvp file keeps depth and sound speed, with two decimals each.";
const DATAGRAM_HINT =
  "An older file of that name is kept beside it, with “_bck_” and the time in its name.";

export class Output {
  private busy = false;
  /// What the user has stated about a cast that does not say it itself.
  private stated: { filename: string; occasion: Partial<Occasion> } | null = null;

  /// `listed` gives the name, as it is spelled in the profile folder, of a file that `name` would
  /// replace, or "".
  constructor(
    private readonly outbox: Outbox,
    private readonly open: () => Profile | null,
    private readonly listed: (name: string) => Promise<string>,
  ) {}

  /// Sends the open cast to the survey system.
  send(): Promise<void> {
    return this.alone(async (profile) => {
      const identifier = await askIdentifier(profile, "Send");
      if (!identifier || !(await mayBeSent(profile, identifier))) return;
      const occasion = await this.occasion(profile);
      if (!occasion) return;
      const job = { way: "send", name: profile.filename, levels: profile.count } as const;
      this.outbox.begin(job, Action.send, sendBody(profile, identifier, occasion));
    });
  }

  /// Saves the open cast as an `.asvp` file under its own name.
  save(): Promise<void> {
    return this.alone(async (profile) => {
      const name = proposedName(profile.filename, ".asvp");
      await this.saveAsvp(profile, name, Action.save);
    });
  }

  /// Saves the open cast as an `.asvp` file under a name that the user gives.
  saveAs(): Promise<void> {
    return this.alone(async (profile) => {
      const name = await askName(profile, ".asvp", "Save as", ASVP_HINT);
      if (name) await this.saveAsvp(profile, name, Action.saveAs);
    });
  }

  /// Saves the open cast as a datagram file.
  saveDatagram(): Promise<void> {
    return this.alone(async (profile) => {
      const identifier = await askIdentifier(profile, "Save");
      const name = identifier && (await askName(profile, ".ssp", "Save as datagram file", DATAGRAM_HINT));
      const occasion = name && (await this.occasion(profile));
      if (!occasion) return;
      const older = await this.listed(name);
      const kept = older ? `the older file is kept as ${older.replace(/\.ssp$/i, "")}_bck_(date)_(time).ssp. ` : "";
      if (!(await mayLeaveOut(profile, identifier, "Save"))) return;
      const lost = headerLostText(profile, "datagram", headerLabel);
      const remark = [kept.trim(), tooManyLevels(profile.count), lost].filter(Boolean).join(" ");
      const job = { way: "save", name, levels: profile.count, profile, remark } as const;
      this.outbox.begin(job, Action.save, saveDatagramBody(profile, name, identifier, occasion));
    });
  }

  /// Hands the open cast to the receiver.
  toReceiver(): Promise<void> {
    return this.alone(async (profile) => {
      const job = { way: "receiver", name: profile.filename, levels: profile.count } as const;
      this.outbox.begin(job, Action.receiver, pairsBody(profile));
    });
  }

  /// Has the open cast distributed.
  distribute(): Promise<void> {
    return this.alone(async (profile) => {
      const job = { way: "distribute", name: profile.filename, levels: profile.count } as const;
      this.outbox.begin(job, Action.distribute, pairsBody(profile));
    });
  }

  private async saveAsvp(profile: Profile, name: string, action: Action): Promise<void> {
    const older = await this.listed(name);
    if (older && !(await mayReplace(older))) return;
    const occasion = await this.occasion(profile);
    if (!occasion) return;
    const remark = [leftOut(profile), headerLostText(profile, "asvp", headerLabel)].filter(Boolean).join(" ");
    const job = { way: "save", name, levels: profile.count, profile, remark } as const;
    this.outbox.begin(job, action, saveAsvpBody(profile, name, occasion));
  }

  /// Runs one job with the open cast; another one has to wait until its questions are answered.
  private async alone(run: (profile: Profile) => Promise<void>): Promise<void> {
    const profile = this.open();
    if (!profile || this.busy) return;
    this.busy = true;
    try {
      await run(profile);
    } finally {
      this.busy = false;
    }
  }

  /// Time and position of a cast, from its header or from the user; null when neither has them.
  async occasion(profile: Profile): Promise<Occasion | null> {
    const { filename } = profile;
    const earlier = this.stated?.filename === filename ? this.stated.occasion : {};
    const found = await occasionOf(profile, earlier);
    if (found) this.stated = { filename, occasion: found };
    return found;
  }

  /// Another cast was opened: what was stated of the one before is no proposal for it, be its name the
  /// same.
  forget(): void {
    this.stated = null;
  }
}

/// What an .asvp file does not keep of a profile, as a sentence; "" when it keeps all.
export function leftOut(profile: Profile): string {
  const kept: readonly ListKey[] = ["svp_Depth", "svp_Speed", "svp_Depth_CTD", "svp_Speed_CTD"];
  const lost = columnsOf(profile).some(({ key }) => !kept.includes(key));
  return lost ? "depth and sound speed only; a datagram file keeps the other columns too." : "";
}

/// The content identifier to write a profile with; "" when the user wants none.
async function askIdentifier(profile: Profile, what: "Send" | "Save"): Promise<string> {
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

/// Whether to send a profile that may be too large for the survey system or for one datagram.
async function mayBeSent(profile: Profile, identifier: string): Promise<boolean> {
  const size = datagramSize(profile, identifier);
  const text = [tooManyLevels(profile.count), notCarriedText(profile, identifier)];
  if (size > MOST_DATAGRAM_BYTES) {
    text.push(
      `A UDP datagram holds at most ${formatCount(MOST_DATAGRAM_BYTES)} bytes and this one would ` +
        `have about ${formatCount(size)}: it would most likely not go out, and nothing would say so.`,
    );
  }
  const said = text.filter(Boolean);
  if (said.length === 0) return true;
  const answer = await ask({ title: "Send anyway?", text: said, confirm: "Send anyway" });
  return answer !== null;
}

/// Whether to write a datagram without something that the user has changed.
async function mayLeaveOut(profile: Profile, identifier: string, what: string): Promise<boolean> {
  const text = notCarriedText(profile, identifier);
  return text === "" || (await ask({ title: `${what} anyway?`, text: [text], confirm: `${what} anyway` })) !== null;
}

async function mayReplace(name: string): Promise<boolean> {
  const answer = await ask({
    title: `Replace ${name}?`,
    text: [
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
