/// Has the engine continue a profile to full ocean depth.
import type { Answer, Asker } from "./asker";
import {
  extendDefaultBody,
  extendFileBody,
  extendWaterBody,
  extended,
  type Extended,
  type WaterMass,
} from "./extension";
import { rowsBelow, type ExtensionRow } from "./extension-file";
import type { PostAnswer } from "./post-file";
import type { Profile } from "./profile";
import { Action, ENGINE } from "./protocol";

/// A file whose rows continue a profile.
export interface ExtensionFile {
  file: Blob & { readonly name: string };
  rows: readonly ExtensionRow[];
}

/// By what a profile is continued.
export type ExtendWay =
  | { kind: "default" }
  | { kind: "water"; water: WaterMass }
  | { kind: "file"; file: ExtensionFile };

export type ExtendResult = { extended: Extended } | { reason: string };

type Post = (url: string, file: Blob, name: string, progress: (part: number) => void) => Promise<PostAnswer>;

/// The engine's answer to a file that it could not put into the profile folder.
const NOT_STORED = "Error saving file.";

/// What came back are not the rows of the file that was handed in.
export const OTHER_ROWS = "Other rows were joined than those of the file.";

export class Extender {
  constructor(
    private readonly asker: Asker,
    private readonly post: Post,
  ) {}

  extend(profile: Profile, way: ExtendWay): Promise<ExtendResult> {
    switch (way.kind) {
      case "default":
        return this.ask(profile, Action.extendDefault, extendDefaultBody(profile));
      case "water":
        return this.ask(profile, Action.extendTempSal, extendWaterBody(profile, way.water));
      case "file":
        return this.withFile(profile, way.file);
    }
  }

  private async ask(profile: Profile, action: Action, body: string): Promise<ExtendResult> {
    let found: Extended | null = null;
    const answer: Answer = await this.asker.ask(action, body, (packet) => {
      found = extended(profile, packet);
      return found !== null;
    });
    if ("reason" in answer) return answer;
    return found ? { extended: found } : { reason: "" };
  }

  private async withFile(profile: Profile, { file, rows }: ExtensionFile): Promise<ExtendResult> {
    const named = await this.asker.ask(Action.extensionName, "", () => true);
    if ("reason" in named) return named;
    const name = named.packet.extentionfile || "extentionfile.asvp";
    const posted = await this.post(ENGINE, file, name, () => undefined);
    const refusal = postRefusal(posted);
    if (refusal) return { reason: refusal };
    const result = await this.ask(profile, Action.extendFile, extendFileBody(profile, name));
    // The file's name is the same for all pages: another one may have handed in its own meanwhile.
    return "reason" in result || holdsRows(result.extended, profile, rows) ? result : { reason: OTHER_ROWS };
  }
}

/// Why a file was not stored; "" when it was. The engine stores what it is handed and then tries to
/// open it as a cast. An extension file is none, so that a refusal to open it says that it is there.
function postRefusal({ status, text }: PostAnswer): string {
  if (status === 200) return "";
  if (status === 500) return text === NOT_STORED || text === "Memory allocation error" ? text : "";
  if (status === 0) return "The file could not be handed to the host.";
  return text || `The host refused the file (${status}).`;
}

function holdsRows({ profile, joined }: Extended, before: Profile, rows: readonly ExtensionRow[]): boolean {
  const expected = rowsBelow(rows, before.lists.svp_Depth[before.count - 1] ?? NaN);
  const first = profile.count - joined;
  return (
    expected.length === joined &&
    expected.every(
      ({ depth, speed }, i) =>
        depth === profile.lists.svp_Depth[first + i] && speed === profile.lists.svp_Speed[first + i],
    )
  );
}
