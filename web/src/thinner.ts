/// Has the engine thin a profile: on trial, and for good.
import type { Asker } from "./asker";
import type { Connection } from "./connection";
import { PREVIEW_FILE, PREVIEW_NAME } from "./own-files";
import { baseName, profileOf, sameFile, type Profile } from "./profile";
import { Action, SUCCESS, openBody, type Packet } from "./protocol";
import type { Occasion } from "./protocol-output";
import { keptLevels, previewBody, thinBody, thinKind, thinnedName } from "./thinning";

/// Other pages preview under the same name; one of them may come in between.
const TRIES = 3;

export const DISTURBED = "What was read back is not this profile.";

/// A file that thinning has written.
export interface ThinnedFile {
  name: string;
  path: string;
}

export class Thinner {
  /// Number of previews written by this page and all others, as far as known.
  private previews = 0;

  constructor(
    private readonly asker: Asker,
    connection: Connection,
  ) {
    connection.on(Action.thin, (packet) => {
      if (isPreview(packet)) this.previews += 1;
    });
  }

  /// The levels that thinning would keep, as indices, or why there are none to tell. The engine
  /// answers with a file alone; so one is written under a name of its own, and read back.
  async preview(profile: Profile, tolerance: number): Promise<{ kept: number[] } | { reason: string }> {
    let reason = DISTURBED;
    for (let i = 0; i < TRIES; ++i) {
      const written = await this.asker.ask(Action.thin, previewBody(profile, PREVIEW_NAME, tolerance), isPreview);
      if ("reason" in written) return written;
      const { previews } = this;
      const read = await this.asker.ask(Action.open, openBody(PREVIEW_FILE) ?? "", isPreviewOpened);
      if ("reason" in read) {
        reason = read.reason;
        continue;
      }
      const kept = keptLevels(profile, profileOf(read.packet));
      // Whose file was read is certain only when none was written since.
      if (kept && previews === this.previews) return { kept };
      reason = DISTURBED;
    }
    return { reason };
  }

  /// Writes a thinned profile under its own name and kind. `late` is told of a file that was written
  /// although another page's failure had been taken for the answer.
  async keep(
    profile: Profile,
    tolerance: number,
    occasion: Occasion,
    late: (file: ThinnedFile) => void,
  ): Promise<ThinnedFile | { reason: string }> {
    const kind = thinKind(profile);
    const expected = thinnedName(profile.filename, kind);
    const answer = await this.asker.ask(
      Action.thin,
      thinBody(profile, profile.filename, kind, occasion, tolerance),
      ({ file }) => file !== undefined && sameFile(file, expected),
      (packet) => late(fileOf(packet)),
    );
    return "reason" in answer ? answer : fileOf(answer.packet);
  }
}

function fileOf({ file = "", fullname = "" }: Packet): ThinnedFile {
  return { name: baseName(file), path: fullname || file };
}

function isPreview({ result, file }: Packet): boolean {
  return result === SUCCESS && file !== undefined && sameFile(file, PREVIEW_FILE);
}

function isPreviewOpened({ filename }: Packet): boolean {
  return filename !== undefined && sameFile(filename, PREVIEW_FILE);
}
