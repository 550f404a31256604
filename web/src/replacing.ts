/// Whether a file may take the place of an older one.
import { ask } from "./dialog";

/// Asks whether `name` may be replaced, and tells what becomes of the older file.
export async function mayReplace(name: string): Promise<boolean> {
  const fate = /\.ssp$/i.test(name)
    ? "; the older file is kept beside it, with “_bck_” and the time in its name."
    : ", and no copy of it is kept.";
  const answer = await ask({
    title: `Replace ${name}?`,
    text: [`${name} is in the profile folder already. It will be replaced${fate}`],
    confirm: "Replace",
  });
  return answer !== null;
}
