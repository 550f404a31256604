/// Files that a test hands to the page, as a user would.
import type { Page } from "playwright-core";

export interface HeldFile {
  name: string;
  mimeType: string;
  buffer: Buffer;
}

export function held(name: string, text: string | Buffer): HeldFile {
  return { name, mimeType: "text/plain", buffer: Buffer.from(text) };
}

/// Picks files through the button.
export async function pick(page: Page, ...files: HeldFile[]): Promise<void> {
  const chooser = page.waitForEvent("filechooser");
  await page.getByRole("button", { name: "Open file…" }).click();
  await (await chooser).setFiles(files);
}

/// What a user who drags files over the page makes the browser tell it.
export async function drag(page: Page, type: "dragenter" | "dragover" | "dragleave" | "drop", ...files: HeldFile[]): Promise<boolean> {
  const parts = files.map(({ name, buffer }) => ({ name, text: buffer.toString("latin1") }));
  return page.evaluate(
    ([event, given]) => {
      const data = new DataTransfer();
      for (const { name, text } of given) data.items.add(new File([text], name));
      const target = document.querySelector("dialog[open]") ?? document.querySelector("main") ?? document.body;
      const isLeft = target.dispatchEvent(
        new DragEvent(event, { dataTransfer: data, bubbles: true, cancelable: true }),
      );
      return !isLeft;
    },
    [type, parts] as const,
  );
}
