/// Files of the profile folder that the page itself has written on its way to something else. They
/// are no casts of the user's: lists leave them out, and nobody is told of their opening.

import { baseName } from "./profile";

/// The name that a preview of thinning is asked for under.
export const PREVIEW_NAME = "svp-preview.asvp";
/// The file that the engine writes for it, over and over.
export const PREVIEW_FILE = "svp-preview_thinned.asvp";

const EXTENSION_FILE = /^extentionfile(_bck_\d{8}_\d{6}(_\d+)?)?\.asvp$/i;

/// Whether a file is one of these. A path before its name is ignored.
export function isOwnFile(path: string): boolean {
  const name = baseName(path);
  return name.toLowerCase() === PREVIEW_FILE || EXTENSION_FILE.test(name);
}
