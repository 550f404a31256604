/// Pictures as a browser takes them: looked into, and packed closer than it does.
import assert from "node:assert/strict";
import { deflateSync, inflateSync } from "node:zlib";

const SIGNATURE = Buffer.from([0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a]);
/// Bytes of a pixel by the kind of colours: red, green and blue; with what shines through.
const CHANNELS: Readonly<Record<number, number>> = { 2: 3, 6: 4 };
const MOST_COLOURS = 256;

export interface Picture {
  width: number;
  height: number;
  /// Each pixel as red, green and blue in one number, row by row.
  pixels: Uint32Array;
}

/// Width and height of a PNG.
export function sizeOf(png: Buffer): { width: number; height: number } {
  assert.deepEqual(png.subarray(0, 8), SIGNATURE);
  return { width: png.readUInt32BE(16), height: png.readUInt32BE(20) };
}

/// The pixels of a PNG as the browser writes it: eight bits a channel, no palette.
export function decoded(png: Buffer): Picture {
  const { width, height } = sizeOf(png);
  const channels = CHANNELS[png[25] ?? -1] ?? 0;
  assert.ok(png[24] === 8 && channels > 0 && png[28] === 0, "a PNG of another kind");
  const parts: Buffer[] = [];
  for (let at = 8; at < png.length; ) {
    const length = png.readUInt32BE(at);
    if (png.toString("latin1", at + 4, at + 8) === "IDAT") parts.push(png.subarray(at + 8, at + 8 + length));
    at += length + 12;
  }
  const bytes = unfiltered(inflateSync(Buffer.concat(parts)), width * channels, height, channels);
  const pixels = new Uint32Array(width * height);
  for (let i = 0, at = 0; i < pixels.length; ++i, at += channels) {
    pixels[i] = ((bytes[at] ?? 0) << 16) | ((bytes[at + 1] ?? 0) << 8) | (bytes[at + 2] ?? 0);
  }
  return { width, height, pixels };
}

/// Share of the pixels, 0 to 1, that have the colour which most have.
export function commonest({ pixels }: Picture): number {
  const counts = countsOf(pixels);
  return Math.max(0, ...counts.values()) / pixels.length;
}

/// A PNG of nearly the same pixels in a small part of the bytes: the shades at the edges of letters
/// become the nearest of some hundred colours that stay.
export function packed({ width, height, pixels }: Picture): Buffer {
  const palette = paletteOf(pixels);
  const places = new Map(palette.map((colour, i) => [colour, i]));
  const placeOf = (colour: number): number => {
    const known = places.get(colour);
    if (known !== undefined) return known;
    const place = nearest(palette, colour);
    places.set(colour, place);
    return place;
  };
  const rows = Buffer.alloc((width + 1) * height);
  for (let y = 0, at = 0; y < height; ++y) {
    for (let x = 0; x < width; ++x) rows[y * (width + 1) + 1 + x] = placeOf(pixels[at++] ?? 0);
  }
  const head = Buffer.alloc(13);
  head.writeUInt32BE(width, 0);
  head.writeUInt32BE(height, 4);
  head.set([8, 3], 8);
  const colours = Buffer.from(palette.flatMap((colour) => [colour >> 16, (colour >> 8) & 255, colour & 255]));
  return Buffer.concat([
    SIGNATURE, chunk("IHDR", head), chunk("PLTE", colours), chunk("IDAT", deflateSync(rows, { level: 9, memLevel: 9 })),
    chunk("IEND", Buffer.alloc(0)),
  ]);
}

/// The commonest colour of each kind, so that a small mark keeps its own, and then the commonest of
/// all.
function paletteOf(pixels: Uint32Array): number[] {
  const counts = countsOf(pixels);
  const colours = [...counts.keys()].sort((a, b) => (counts.get(b) ?? 0) - (counts.get(a) ?? 0));
  const kinds = new Map<number, number>();
  for (const colour of colours) {
    const kind = colour & 0xe0e0e0;
    if (!kinds.has(kind)) kinds.set(kind, colour);
  }
  return [...new Set([...[...kinds.values()].slice(0, MOST_COLOURS / 2), ...colours])].slice(0, MOST_COLOURS);
}

function countsOf(pixels: Uint32Array): Map<number, number> {
  const counts = new Map<number, number>();
  // Neighbours mostly have the same colour: a run is counted at once.
  for (let from = 0, to = 0; from < pixels.length; from = to) {
    const colour = pixels[from] ?? 0;
    while (to < pixels.length && pixels[to] === colour) ++to;
    counts.set(colour, (counts.get(colour) ?? 0) + to - from);
  }
  return counts;
}

function nearest(palette: readonly number[], colour: number): number {
  let [best, least] = [0, Infinity];
  palette.forEach((each, i) => {
    const part = (shift: number) => ((each >> shift) & 255) - ((colour >> shift) & 255);
    const distance = part(16) ** 2 + part(8) ** 2 + part(0) ** 2;
    if (distance < least) [best, least] = [i, distance];
  });
  return best;
}

function chunk(kind: string, data: Buffer): Buffer {
  const body = Buffer.concat([Buffer.from(kind, "latin1"), data]);
  const [length, sum] = [Buffer.alloc(4), Buffer.alloc(4)];
  length.writeUInt32BE(data.length);
  sum.writeUInt32BE(crc32(body));
  return Buffer.concat([length, body, sum]);
}

/// The sum that ends each part of a PNG, by its polynomial.
function crc32(bytes: Buffer): number {
  let sum = 0xffffffff;
  for (const byte of bytes) {
    sum ^= byte;
    for (let bit = 0; bit < 8; ++bit) sum = sum & 1 ? (sum >>> 1) ^ 0xedb88320 : sum >>> 1;
  }
  return (sum ^ 0xffffffff) >>> 0;
}

/// Rows of bytes, each of which is stored as what differs from those to the left of and above it.
function unfiltered(raw: Uint8Array, stride: number, height: number, channels: number): Uint8Array {
  assert.equal(raw.length, (stride + 1) * height);
  const rows = new Uint8Array(stride * height);
  let above = new Uint8Array(stride);
  for (let y = 0; y < height; ++y) {
    const from = raw.subarray(y * (stride + 1) + 1, (y + 1) * (stride + 1));
    const row = rows.subarray(y * stride, (y + 1) * stride);
    const filter = raw[y * (stride + 1)];
    for (let x = 0; x < stride; ++x) {
      const left = x < channels ? 0 : (row[x - channels] as number);
      const up = above[x] as number;
      let expected = 0;
      if (filter === 1) expected = left;
      else if (filter === 2) expected = up;
      else if (filter === 3) expected = (left + up) >> 1;
      else if (filter === 4) expected = paeth(left, up, x < channels ? 0 : (above[x - channels] as number));
      row[x] = (from[x] as number) + expected;
    }
    above = row;
  }
  return rows;
}

/// Of the three, the one nearest to what a slanted plane through them would have here.
function paeth(left: number, up: number, corner: number): number {
  const a = Math.abs(up - corner);
  const b = Math.abs(left - corner);
  const c = Math.abs(left + up - 2 * corner);
  if (a <= b && a <= c) return left;
  return b <= c ? up : corner;
}
