/// Names of the files that the page hands in or has written.

import { isOwnFile, PREVIEW_NAME } from "./own-files";

export type Suffix = ".asvp" | ".ssp";

/// Bytes of a file name that every file system takes, a backup's date and time included.
const LONGEST = 200;

/// A name for saving a cast, made from that of its file.
export function proposedName(filename: string, suffix: Suffix): string {
  const base = filename.slice(Math.max(filename.lastIndexOf("/"), filename.lastIndexOf("\\")) + 1);
  const stem = base.replace(/\.[^.]*$/, "") || "cast";
  return finalName(stem.replace(/[*[\]:\u0000-\u001f\u007f]/g, "_"), suffix);
}

/// The name under which the engine will write a file that the user has called `name`.
export function finalName(name: string, suffix: Suffix): string {
  const stem = name.trim().replace(suffix === ".asvp" ? /\.asvp$/i : /\.ssp$/i, "");
  // The engine takes these for the suffix of a probe's file, wherever they stand.
  const plain = suffix === ".ssp" ? stem.replace(/\.(?=vp2|aml)/g, "_") : stem;
  return plain + suffix;
}

/// The name under which a file of the user's is handed in: without what a request cannot carry or
/// the list could not open again.
export function uploadName(name: string): string {
  return name.replace(/["*[\]:/\\\u0000-\u001f\u007f]/g, "_").replace(/^\./, "_");
}

/// What is wrong with a name, as a sentence for the user; "" when nothing is.
export function nameFault(name: string): string {
  if (name === "" || /^\.(asvp|ssp)$/i.test(name)) return "Give the file a name.";
  if (/[/\\:]/.test(name)) return "A name only, without a folder: no slash, backslash or colon.";
  if (/[*[\]\u0000-\u001f\u007f]/.test(name)) return "No star and no square brackets in the name.";
  if (isOwnName(name)) return "The page uses this name itself. Choose another one.";
  if (name.startsWith(".")) return "A name that begins with a full stop would not be listed.";
  return lengthFault(name);
}

/// Whether a file of this name, its suffix added or not, would not be listed, or be overwritten.
export function isOwnName(name: string): boolean {
  return [name, `${name}.asvp`].some((each) => isOwnFile(each) || each.toLowerCase() === PREVIEW_NAME);
}

/// What is wrong with a name's length, as a sentence; "" when nothing is.
export function lengthFault(name: string): string {
  return new TextEncoder().encode(name).length > LONGEST ? "The name is too long." : "";
}
