/// Numbers that users type.

/// The number in a text, with a point or a decimal comma; null when it is none, or may be one of two.
export function typedNumber(text: string): number | null {
  if (isAmbiguous(text)) return null;
  const plain = text.trim().replace(/,/g, ".").replace(/^−/, "-");
  return /^[+-]?(\d+\.?\d*|\.\d+)$/.test(plain) ? Number(plain) : null;
}

/// Why a text is no number, as a sentence.
export function noNumberText(text: string): string {
  const plain = text.trim();
  if (!isAmbiguous(plain)) return `“${plain}” is no number.`;
  const [point, none] = [plain.replace(",", "."), plain.replace(",", "")];
  return `“${plain}” can mean ${point} or ${none}: write ${point} for the first, ${none} for the second.`;
}

/// Whether a comma may stand for the decimals or between thousands, as in "1,200": three digits
/// behind it, and before it one to three that do not begin with 0.
function isAmbiguous(text: string): boolean {
  return /^[+−-]?[1-9]\d{0,2},\d{3}$/.test(text.trim());
}

/// What is wrong with a number that has to lie in a range, bounds included; "" when nothing is.
/// `what` begins the sentences, as in "The temperature".
export function rangeFault(text: string, what: string, low: number, high: number, unit: string): string {
  const bounds = `${low} to ${high}${unit && ` ${unit}`}`.replace("-", "−");
  if (text.trim() === "") return `State ${what.replace(/^The/, "the")}, ${bounds}.`;
  const value = typedNumber(text);
  if (value === null) return isAmbiguous(text) ? noNumberText(text) : `${what} is no number.`;
  return value >= low && value <= high ? "" : `${what} must lie from ${bounds}.`;
}
