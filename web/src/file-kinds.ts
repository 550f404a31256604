/// The kinds of file that the engine reads, told by the ends of their names.

/// What a file of a built-in kind is, by the end of its name.
const BUILT_IN: Readonly<Record<string, string>> = {
  ".asvp": "sound velocity file",
  ".ssp": "datagram file",
  ".vp2": "Valeport instrument file",
  ".aml": "AML instrument file",
  ".amlx": "AML instrument file",
  ".valeport": "Valeport text file",
};

/// The suffix of a file's name with its dot, as it is spelled there; "" when there is none.
export function suffixOf(name: string): string {
  return /\.[^./\\]*$/.exec(name)?.[0] ?? "";
}

/// Whether the engine reads files of this name by itself, without a filter of the user.
export function isBuiltIn(name: string): boolean {
  return builtInEnd(name) !== "";
}

/// The built-in suffix with which a name or another suffix ends, or "".
export function builtInEnd(name: string): string {
  const lower = name.toLowerCase();
  return Object.keys(BUILT_IN).find((suffix) => lower.endsWith(suffix)) ?? "";
}

/// What a file is, as in "a Valeport instrument file (.vp2)", without the article.
export function kindWords(name: string): string {
  const suffix = builtInEnd(name);
  if (suffix) return `${BUILT_IN[suffix]} (${suffix})`;
  const own = suffixOf(name);
  return `column file${own ? ` (${own})` : ""}, read with an import filter`;
}
