import assert from "node:assert/strict";
import { test } from "node:test";
import type { PostAnswer } from "../../src/post-file";
import { profileOf } from "../../src/profile";
import { Uploads, type PickedFile } from "../../src/uploads";

const picked = (name: string, text = "1 1500") => Object.assign(new Blob([text]), { name }) as PickedFile;
const OK: PostAnswer = { status: 200, text: "" };

/// Uploads whose POSTs are answered in turn; what happens is written down.
function made(answers: PostAnswer[], listed: string[] = [], isShown = true) {
  const told: string[] = [];
  let finished: () => void = () => undefined;
  const all = new Promise<void>((resolve) => (finished = resolve));
  const uploads: Uploads = new Uploads(
    {
      beginUpload: (name) => {
        told.push(`begin ${name}`);
        return {
          failed: () => void told.push(`drop ${name}`),
          done: () => Promise.resolve(isShown ? profileOf({ whoami: "", filename: name, svp_Depth: [0, 1] }) : null),
        };
      },
      post: (url, file, name, progress) => {
        told.push(`post ${url} ${name} ${file.size}`);
        progress(0.5);
        assert.deepEqual(uploads.current, { name, part: 0.5 });
        return Promise.resolve(answers.shift() ?? OK);
      },
      listed: (name) => (listed.includes(name) ? name : ""),
    },
    {
      stored: (text) => told.push(`stored ${text}`),
      failed: (text, name, file) => told.push(`failed ${name} ${file ? "filter" : "-"} ${text}`),
      folderChanged: () => told.push("folder"),
      waiting: () => {
        if (uploads.current === null) setImmediate(finished);
      },
    },
  );
  return { uploads, told, all };
}

test("files are handed in one after the other", async () => {
  const { uploads, told, all } = made([]);
  uploads.add([picked("a.vp2"), picked("b.csv", "12")]);
  await all;
  assert.deepEqual(told.map((each) => each.split(" ").slice(0, 3).join(" ")), [
    "begin a.vp2", "post SVP_WebInterface a.vp2", "stored a.vp2 opened:", "folder",
    "begin b.csv", "post SVP_WebInterface b.csv", "stored b.csv opened:", "folder",
  ]);
  assert.equal(uploads.current, null);
});

test("an empty file is not handed in: it would open an older one of its name", async () => {
  const { uploads, told, all } = made([]);
  uploads.add([picked("a.vp2", "")]);
  await all;
  assert.deepEqual(told, ["failed a.vp2 - a.vp2 is empty (0 bytes). Look whether it was copied whole; nothing was stored."]);
});

test("a name too long is refused, and the next file goes on", async () => {
  const { uploads, told, all } = made([]);
  uploads.add([picked(`${"n".repeat(200)}.vp2`), picked("b.vp2")]);
  await all;
  assert.match(told[0] ?? "", /too long/);
  assert.ok(told.includes("begin b.vp2"));
});

test("what cannot be read is refused in words", async () => {
  const { uploads, told, all } = made([]);
  const gone = Object.assign(picked("folder"), { slice: () => ({ arrayBuffer: () => Promise.reject(new Error("gone")) }) });
  uploads.add([gone as unknown as PickedFile]);
  await all;
  assert.match(told.join(), /^failed folder - folder \(6 B\) cannot be read\. Open files, not folders/);
});

test("a name that was changed and a file that was replaced are told", async () => {
  const { uploads, told, all } = made([], ["a_1_.vp2"]);
  uploads.add([picked("a[1].vp2")]);
  await all;
  assert.match(told.join(), /It is called a_1_\.vp2 there\. The older a_1_\.vp2 is kept beside it, with “_bck_”/);
});

test("a missing filter hands the file on, and the folder is read again", async () => {
  const { uploads, told, all } = made([{ status: 500, text: "Filter not found." }]);
  uploads.add([picked("a.xyz")]);
  await all;
  assert.match(told[2] ?? "", /^drop a\.xyz/);
  assert.match(told[3] ?? "", /^failed a\.xyz filter .*No import filter fits files ending in \.xyz/);
  assert.equal(told[4], "folder");
});

test("other failures offer no filter", async () => {
  const { uploads, told, all } = made([{ status: 413, text: "Filter not found." }]);
  uploads.add([picked("a.xyz")]);
  await all;
  assert.match(told[3] ?? "", /^failed a\.xyz - a\.xyz is too large/);
});

test("a file that came while the user opened another is said to be stored", async () => {
  const { uploads, told, all } = made([], [], false);
  uploads.add([picked("a.vp2")]);
  await all;
  assert.ok(told.includes("stored a.vp2 is stored in the profile folder."));
});
