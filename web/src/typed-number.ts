/// Numbers that users type.

/// The number in a text, with a point or a decimal comma; null when it is none.
export function typedNumber(text: string): number | null {
  const plain = text.trim().replace(/,/g, ".").replace(/^−/, "-");
  return /^[+-]?(\d+\.?\d*|\.\d+)$/.test(plain) ? Number(plain) : null;
}

/// What is wrong with a number that has to lie in a range, bounds included; "" when nothing is.
/// `what` begins the sentences, as in "The temperature".
export function rangeFault(text: string, what: string, low: number, high: number, unit: string): string {
  const bounds = `${low} to ${high}${unit && ` ${unit}`}`.replace("-", "−");
  if (text.trim() === "") return `State ${what.replace(/^The/, "the")}, ${bounds}.`;
  const value = typedNumber(text);
  if (value === null) return `${what} is no number.`;
  return value >= low && value <= high ? "" : `${what} must lie from ${bounds}.`;
}
