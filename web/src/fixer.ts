/// Has the engine fix a profile, and reads what it has written.
import type { Asker } from "./asker";
import { comparisonOf, isComparison, type Comparison } from "./comparison";
import type { Connection } from "./connection";
import { fixBody, fixedName } from "./fixing";
import { baseName, profileOf, sameFile, type Profile } from "./profile";
import { Action, SUCCESS, openBody, type Packet } from "./protocol";
import type { Occasion } from "./protocol-output";

/// A file that a fix has written.
export interface FixedFile {
  name: string;
  path: string;
}

export interface Fixed {
  file: FixedFile;
  /// What the file holds, or why it could not be read back.
  read: { profile: Profile } | { reason: string };
  /// How rays through the profile as it came in and through the fixed one differ, or why that is
  /// not known.
  compared: { comparison: Comparison } | { reason: string };
}

const NOT_COMPARED = "The engine did not compare them.";

/// A fix of this or another page, and what was said of it behind its answer.
interface Heard {
  comparison: Packet | null;
}

export class Fixer {
  private heard: Heard | null = null;
  /// Name of the file that is being read back, "" for none.
  private reading = "";

  constructor(
    private readonly asker: Asker,
    connection: Connection,
  ) {
    connection.on(Action.fix, ({ result }) => {
      if (result === SUCCESS) this.heard = { comparison: null };
    });
    connection.on(Action.thin, (packet) => {
      if (this.heard && isComparison(packet)) this.heard.comparison ??= packet;
    });
  }

  /// Whether this page is reading back what a fix has written to a file of this name.
  isReading(name: string): boolean {
    return this.reading !== "" && sameFile(this.reading, name);
  }

  /// Fixes a profile, and reads the file that was written. `late` is told of a file that was written
  /// although another page's failure had been taken for the answer.
  async fix(
    profile: Profile,
    tolerance: number,
    occasion: Occasion,
    late: (file: FixedFile) => void,
  ): Promise<Fixed | { reason: string }> {
    const expected = fixedName(profile);
    const answer = await this.asker.ask(
      Action.fix,
      fixBody(profile, occasion, tolerance),
      ({ file }) => file !== undefined && sameFile(file, expected),
      (packet) => late(fileOf(packet)),
    );
    if ("reason" in answer) return answer;
    // Still the one of this answer: nothing else has come in since.
    const { heard } = this;
    const file = fileOf(answer.packet);
    const read = await this.readBack(file.name);
    // The engine sends the comparison right behind its answer, so it has come before the file.
    return { file, read, compared: comparedIn(heard?.comparison ?? null) };
  }

  private async readBack(name: string): Promise<Fixed["read"]> {
    this.reading = name;
    try {
      const answer = await this.asker.ask(
        Action.open,
        openBody(name) ?? "",
        ({ filename }) => filename !== undefined && sameFile(filename, name),
      );
      return "reason" in answer ? answer : { profile: profileOf(answer.packet) };
    } finally {
      this.reading = "";
    }
  }
}

function comparedIn(packet: Packet | null): Fixed["compared"] {
  const comparison = packet && comparisonOf(packet);
  return comparison ? { comparison } : { reason: packet?.reason || NOT_COMPARED };
}

function fileOf({ file = "", fullname = "" }: Packet): FixedFile {
  return { name: baseName(file), path: fullname || file };
}
