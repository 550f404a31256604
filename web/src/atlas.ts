/// The settings of the World Ocean Atlas, which the host keeps among the survey system's tokens.

export type Quantity = "salinity" | "temperature";
export const QUANTITIES: readonly Quantity[] = ["salinity", "temperature"];

/// Larger ones the host does not take.
export const LARGEST_ATLAS_FILE = 512 * 1024 * 1024;

export interface AtlasFile {
  /// On the host's machine; "" for none.
  path: string;
  there: boolean;
  /// Bytes.
  size: number;
  /// Why it cannot be a file of the atlas, as a sentence; "" when it looks like one, or is none.
  fault: string;
}

export interface AtlasState extends Record<Quantity, AtlasFile> {
  use: boolean;
  /// Where files that are handed in are stored, and which are there.
  folder: string;
  stored: readonly { name: string; size: number }[];
}

export type AtlasResult = { state: AtlasState } | { reason: string };
export type HandedIn = { path: string; size: number } | { reason: string };

const ADDRESS = "api/atlas";

export async function readAtlas(): Promise<AtlasResult> {
  return ask({});
}

/// Writes all three settings.
export async function writeAtlas(use: boolean, files: Record<Quantity, string>): Promise<AtlasResult> {
  return ask({
    method: "PUT",
    headers: { "Content-Type": "application/json" },
    body: JSON.stringify({ use, ...files }),
  });
}

/// Hands a file to the host, and tells on the way which part of it (0 to 1) has left. Never rejects.
/// What is under way ends when `signal` says so.
export function handInAtlasFile(
  quantity: Quantity,
  file: Blob & { readonly name: string },
  progress: (part: number) => void,
  signal: AbortSignal,
): Promise<HandedIn> {
  // The one way in which a browser tells how far an upload has come.
  const request = new XMLHttpRequest();
  return new Promise((answered) => {
    request.upload.addEventListener("progress", ({ lengthComputable, loaded, total }) => {
      if (lengthComputable && total > 0) progress(loaded / total);
    });
    request.addEventListener("loadend", () => answered(handedIn(request.status, request.responseText)));
    signal.addEventListener("abort", () => request.abort());
    request.open("PUT", `${ADDRESS}/${quantity}?name=${encodeURIComponent(file.name)}`);
    request.send(file);
  });
}

/// What an answer to a file that was handed in says.
export function handedIn(status: number, text: string): HandedIn {
  if (status !== 200) return { reason: refusal(status, text) };
  const { path, size } = parsed(text);
  return typeof path === "string" && typeof size === "number" ? { path, size } : { reason: UNREADABLE };
}

/// The settings in an answer, or why there are none.
export function atlasIn(status: number, text: string): AtlasResult {
  if (status !== 200) return { reason: refusal(status, text) };
  const { use, folder, stored, ...files } = parsed(text);
  const salinity = fileIn(files["salinity"]);
  const temperature = fileIn(files["temperature"]);
  if (typeof use !== "boolean" || typeof folder !== "string" || !Array.isArray(stored)) return { reason: UNREADABLE };
  if (!salinity || !temperature) return { reason: UNREADABLE };
  return { state: { use, salinity, temperature, folder, stored: stored as AtlasState["stored"] } };
}

const UNREADABLE = "The host’s answer cannot be read. Load the page again.";

function fileIn(value: unknown): AtlasFile | null {
  const { path, there, size, fault } = (value ?? {}) as Partial<AtlasFile>;
  return typeof path === "string" && typeof there === "boolean" && typeof size === "number" && typeof fault === "string"
    ? { path, there, size, fault }
    : null;
}

function parsed(text: string): Record<string, unknown> {
  try {
    const value: unknown = JSON.parse(text);
    return typeof value === "object" && value !== null ? (value as Record<string, unknown>) : {};
  } catch {
    return {};
  }
}

function refusal(status: number, text: string): string {
  if (status === 0) return "The host cannot be reached. Look whether it is still running; then try again.";
  return text.trim() || `The host refused it (${status}).`;
}

async function ask(request: RequestInit): Promise<AtlasResult> {
  try {
    const answer = await fetch(ADDRESS, request);
    return atlasIn(answer.status, await answer.text());
  } catch {
    return { reason: refusal(0, "") };
  }
}
