import assert from "node:assert/strict";
import { test } from "node:test";
import { timeDigits } from "../../src/format";
import { isInFuture, readMoment } from "../../src/typed-moment";

const EXAMPLE = "Write a time as in 2026-11-15 12:34:56 UTC.";

const taken: [string, string][] = [
  ["2026-11-15 12:34:56 UTC", "20261115123456"],
  ["2026-11-15 12:34", "20261115123400"],
  ["2026-11-15T12:34:56Z", "20261115123456"],
  ["20261115 1234", "20261115123400"],
  ["20261115123456", "20261115123456"],
  ["15.11.2026 12:34", "20261115123400"],
  ["5.1.2026 9:05:07", "20260105090507"],
  ["2026/11/15 12:34", "20261115123400"],
  ["2026-11-15 9:05", "20261115090500"],
  ["2026-2-3 9:05", "20260203090500"],
  [" 2026-11-15 12:34:56.7 ", "20261115123456"],
  ["2024-02-29 00:00", "20240229000000"],
];
for (const [text, digits] of taken) {
  test(`"${text}" is a time`, () => {
    const read = readMoment(text);
    assert.equal("moment" in read ? timeDigits(read.moment) : read.fault, digits);
  });
}

const refused: [string, string][] = [
  ["", EXAMPLE],
  ["soon", EXAMPLE],
  ["2026-02-30 10:00", `That month has no day 30. ${EXAMPLE}`],
  ["29.02.2026 10:00", `That month has no day 29. ${EXAMPLE}`],
  ["2026-04-00 10:00", `That month has no day 0. ${EXAMPLE}`],
  ["2026-13-01 10:00", `There is no month 13. ${EXAMPLE}`],
  ["2026-11-15 24:00", `There is no such time of day. ${EXAMPLE}`],
  ["2026-11-15 12:60", `There is no such time of day. ${EXAMPLE}`],
  ["1899-11-15 12:00", `No cast is as old as the year 1899. ${EXAMPLE}`],
  ["15/11/2026 12:34", `Which of the first two is the day and which the month is not clear. ${EXAMPLE}`],
  ["11-15-2026 12:34", `Which of the first two is the day and which the month is not clear. ${EXAMPLE}`],
  ["2026-11-15", `The time of day is missing. ${EXAMPLE}`],
  ["15.11.2026", `The time of day is missing. ${EXAMPLE}`],
  ["2026-11-15 12:34 +01:00", `Times are in UTC here, without an offset. ${EXAMPLE}`],
  ["2026-11/15 12:34", EXAMPLE],
];
for (const [text, fault] of refused) {
  test(`"${text}" is no time, and it is said why`, () => assert.deepEqual(readMoment(text), { fault }));
}

test("a time more than a day ahead lies in the future", () => {
  const now = new Date(Date.UTC(2026, 10, 15, 12, 0, 0));
  assert.ok(!isInFuture(new Date(Date.UTC(2026, 10, 16, 12, 0, 0)), now));
  assert.ok(isInFuture(new Date(Date.UTC(2026, 10, 16, 12, 0, 1)), now));
});
