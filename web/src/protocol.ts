/// The words that the page and the engine share, spelled once: actions, reply keys, and the text
/// forms of requests. Only protocol-output.ts, for what leaves the editor, writes wire text too.

/// Name under which the engine takes messages and to which its packets are addressed.
export const ENGINE = "SVP_WebInterface";

/// Name under which the host itself answers a frame that it cannot pass on.
export const HOST = "host";

/// Actions of the engine that this page uses, as they come back in "whoami".
export const Action = {
  ready: "SVPReadyConnected",
  open: "SVP_OpenSVP",
  check: "CheckProfile",
  send: "SendSVPtoQRV",
  /// Also the name under which "save as" is answered.
  save: "SVP_Save",
  saveAs: "SVP_SaveAs",
  receiver: "RVT300",
  distribute: "Distribute",
  filters: "GetAllFilters",
  saveFilter: "SaveFilter",
  deleteFilter: "DeleteFilter",
  extendDefault: "ExtendDefault",
  extendTempSal: "ExtendTempSal",
  extendFile: "ExtendWithFile",
  /// The engine spells it so.
  extensionName: "SelectExtentionFile",
  /// Also the name under which the comparison that follows a fix comes.
  thin: "Thin",
  fix: "FixProfile",
  rays: "ShowRaypath",
  alert: "SVPAlert",
} as const;
export type Action = (typeof Action)[keyof typeof Action];

export const SUCCESS = "SUCCESS";

/// Header keys of a profile, in the order in which the page lists them.
export const HEADER_KEYS = [
  "hsvp_filetime",
  "hsvp_filelat",
  "hsvp_filelon",
  "hsvp_filevalidfrom",
  "hsvp_filevalidto",
  "hsvp_filetype",
  "hsvp_fileversion",
  "hsvp_fileid",
  "hsvp_fileradii",
  "hsvp_filesource",
  "hsvp_filesamp",
  "hsvp_filehistory",
  "hsvp_filecomment",
] as const;
export type HeaderKey = (typeof HEADER_KEYS)[number];

/// Header as received. Any field may be missing, and each may be text or a number.
export type Header = Partial<Record<HeaderKey, string | number>>;

/// The seven value lists of a profile, in the order in which the request block carries them.
export const LIST_KEYS = [
  "svp_Speed",
  "svp_Depth",
  "svp_Depth_CTD",
  "svp_Speed_CTD",
  "svp_Temp",
  "svp_Sal",
  "svp_AbsCoef",
] as const;
export type ListKey = (typeof LIST_KEYS)[number];

/// One packet of the engine or the host. Everything but "whoami" depends on the action.
export interface Packet extends Header, Partial<Record<ListKey, unknown>> {
  whoami: string;
  result?: string;
  reason?: string;
  /// Open: the file's name, in the form in which it was asked for.
  filename?: string;
  /// Alert: the text to show.
  alert?: string;
  /// Check: sound speeds (m/s) and depths (m) of the invalid samples, in sample order. Extend: those
  /// of the extended profile.
  svpX?: unknown;
  svpY?: unknown;
  /// Check: the verdict, its lines separated by line feeds.
  tofix?: string;
  /// Send: the file's name as it was sent, and "S" with the datagram's content identifier. Thin, fix:
  /// the name of the file written; "" marks the comparison that follows a fix.
  file?: string;
  svptype?: string;
  /// Save, Thin, fix: full path of the file written.
  fullname?: string;
  /// Rays: horizontal distances and depths (m) of the points of both paths.
  svp1X?: unknown;
  svp1Y?: unknown;
  svp2X?: unknown;
  svp2Y?: unknown;
  /// Filters: the rows of the user's table, with "|" between them.
  filters?: string;
  /// Name under which an extension file is to be handed in.
  extentionfile?: string;
}

/// Values of one profile as the request block wants them.
export interface ProfileBlock {
  lists: Record<ListKey, readonly number[]>;
  filename: string;
  header: Header;
}

/// The text frame that asks the engine for `action`.
export function requestFrame(action: Action, body: string): string {
  return JSON.stringify({ name: ENGINE, data: `page,ACTION=${ENGINE}/${action},${body}` });
}

/// The packet in a text frame from the host, or null when the text is no such frame.
export function packetOf(text: string): Packet | null {
  let frame: unknown;
  try {
    frame = JSON.parse(text);
  } catch {
    return null;
  }
  if (typeof frame !== "object" || frame === null || !("packet" in frame)) return null;
  const packet: unknown = frame.packet;
  if (typeof packet !== "object" || packet === null) return null;
  return typeof (packet as Packet).whoami === "string" ? (packet as Packet) : null;
}

/// Body of an Open request, or null when the name cannot be put into one: the engine drops every
/// bracket, and would look for a file of another name.
export function openBody(name: string): string | null {
  if (name === "" || /[[\]\r\n]/.test(name)) return null;
  // The kind only tells datagram files from all others; the engine goes by the suffix.
  const kind = /\.ssp$/i.test(name) ? "ssp" : "asvp";
  return `[${name},${kind}]`;
}

/// Body of a request that carries a whole profile in 15 pieces.
///
/// No piece is ever empty and none holds one of the block's own marks: the engine drops empty
/// pieces and removes brackets, and would then count or read the others wrongly.
export function profileBody(block: ProfileBlock): string {
  const { lists, header } = block;
  const pieces = [
    valueLists(lists),
    textPiece(block.filename),
    textPiece(header.hsvp_filetype),
    numberPiece(header.hsvp_fileversion),
    numberPiece(header.hsvp_fileid),
    numberPiece(header.hsvp_filetime),
    numberPiece(header.hsvp_filelat),
    numberPiece(header.hsvp_filelon),
    numberPiece(header.hsvp_fileradii),
    numberPiece(header.hsvp_filevalidfrom),
    numberPiece(header.hsvp_filevalidto),
    textPiece(header.hsvp_filesource),
    textPiece(header.hsvp_filehistory),
    numberPiece(header.hsvp_filesamp),
    textPiece(header.hsvp_filecomment),
  ];
  return `[${pieces.join("*")}]`;
}

/// The shortest decimal text that reads back as the same 32-bit float. The engine keeps 32-bit
/// floats and sends them widened, so 0.1 arrives as 0.10000000149011612; a number that is no
/// widened float keeps all its digits.
export function shortestDecimal(value: number): string {
  if (Math.fround(value) !== value) return String(value);
  for (let digits = 6; digits < 9; ++digits) {
    const rounded = Number(value.toPrecision(digits));
    if (Math.fround(rounded) === value) return String(rounded);
  }
  return String(Number(value.toPrecision(9)));
}

/// The seven lists of a profile as one piece.
export function valueLists(lists: ProfileBlock["lists"]): string {
  const count = lists.svp_Depth.length;
  return LIST_KEYS.map((key) => valueList(lists[key], count)).join(";");
}

/// One value of a list; what is missing or not finite goes out as 0.
export function valueItem(value: number | undefined): string {
  return value !== undefined && Number.isFinite(value) ? shortestDecimal(value) : "0";
}

function valueList(values: readonly number[], count: number): string {
  return Array.from({ length: count }, (_, i) => valueItem(values[i])).join(",");
}

/// A text as a piece; "NA" when it is missing.
export function textPiece(value: string | number | undefined): string {
  return cleanPiece(value) || "NA";
}

/// A number as a piece; "0" when it is missing.
export function numberPiece(value: string | number | undefined): string {
  if (typeof value === "number" && !Number.isFinite(value)) return "0";
  return cleanPiece(value) || "0";
}

/// A value without what would break a block: its own marks, and control characters.
export function cleanPiece(value: string | number | undefined): string {
  return String(value ?? "")
    .replace(/[*[\]]/g, "_")
    .replace(/[\u0000-\u001f\u007f]+/g, " ")
    .trim();
}
