/// Files of the user's on their way to the engine: one after the other, each opened as it arrives.
import type { Upload } from "./engine";
import { isOwnName, lengthFault, uploadName } from "./file-names";
import { formatSize } from "./format";
import { isAboutFilter, uploadFailedText, uploadedText } from "./open-words";
import type { PostAnswer } from "./post-file";
import { ENGINE } from "./protocol";

/// The part of the browser's File that is used here.
export type PickedFile = Blob & { readonly name: string };

export interface UploadEvents {
  /// A file is in the profile folder and open. In words for the user.
  stored(text: string): void;
  /// In words for the user. `filterFile` is the file when a filter for it is what is missing, and
  /// `name` what it is called in the profile folder.
  failed(text: string, name: string, filterFile: PickedFile | null): void;
  /// The folder may hold more than before.
  folderChanged(): void;
  /// `current` has changed.
  waiting(): void;
}

export interface UploadMeans {
  beginUpload(name: string): Upload;
  post(url: string, file: Blob, name: string, progress: (part: number) => void): Promise<PostAnswer>;
  /// The name in the profile folder of a file that `name` would replace, or "".
  listed(name: string): string;
}

export class Uploads {
  private readonly queue: PickedFile[] = [];
  private busy = false;
  /// The file on its way, and which part of it (0 to 1) has left; null when there is none.
  current: { name: string; part: number } | null = null;

  constructor(
    private readonly means: UploadMeans,
    private readonly events: UploadEvents,
  ) {}

  /// Hands files in, behind those that are waiting. The last one is what the page shows in the end.
  add(files: Iterable<PickedFile>): void {
    this.queue.push(...files);
    if (!this.busy) void this.work();
  }

  private async work(): Promise<void> {
    this.busy = true;
    for (let file = this.queue.shift(); file; file = this.queue.shift()) {
      await this.handIn(file).catch((error: unknown) =>
        this.events.failed(`${file?.name} could not be opened. ${String(error)}`, "", null),
      );
      this.show(null);
    }
    this.busy = false;
  }

  private async handIn(file: PickedFile): Promise<void> {
    const name = uploadName(file.name);
    const fault = await this.faultOf(file, name);
    if (fault) return this.events.failed(fault, name, null);
    const older = this.means.listed(name);
    const upload = this.means.beginUpload(name);
    this.show({ name, part: 0 });
    const progress = (part: number) => this.show({ name, part });
    const answer = await this.means.post(ENGINE, file, name, progress);
    if (answer.status !== 200) {
      upload.failed();
      const aboutFilter = answer.status === 500 && isAboutFilter(name, answer.text);
      this.events.failed(uploadFailedText(name, file.size, answer), name, aboutFilter ? file : null);
    } else {
      this.show({ name, part: 1 });
      const profile = await upload.done();
      const remarks = [
        ...(name === file.name ? [] : [`It is called ${name} there.`]),
        ...(older ? [`The older ${older} is kept beside it, with “_bck_” and the time in its name.`] : []),
      ];
      if (profile) this.events.stored(uploadedText(name, profile.count, remarks));
      else this.events.stored([`${name} is stored in the profile folder.`, ...remarks].join(" "));
    }
    this.events.folderChanged();
  }

  /// What stands against handing a file in, as a sentence; "" when nothing does.
  private async faultOf(file: PickedFile, name: string): Promise<string> {
    // A file without content would be taken for a request to open one that is there already.
    if (file.size === 0) {
      return `${file.name} is empty (0 bytes). Look whether it was copied whole; nothing was stored.`;
    }
    if (isOwnName(name)) {
      return (
        `${file.name} was not handed in: the page uses this name itself. Give the file another one, ` +
        "or choose it in Extend… when it is an extension file."
      );
    }
    if (lengthFault(name)) {
      return `${file.name} could not be handed in. Its name is too long. Give the file a shorter one.`;
    }
    // A folder may come as a file of some bytes, and a file may be gone or locked.
    const readable = await file.slice(0, 1).arrayBuffer().then(() => true, () => false);
    return readable
      ? ""
      : `${file.name} (${formatSize(file.size)}) cannot be read. Open files, not folders, that are still where they were.`;
  }

  private show(current: Uploads["current"]): void {
    this.current = current;
    this.events.waiting();
  }
}
