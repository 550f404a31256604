/// A socket and a clock that tests drive by hand.
import type { Socket, Surroundings } from "../../src/connection";
import type { Profile } from "../../src/profile";

export class FakeSocket implements Socket {
  sent: string[] = [];
  onopen: (() => void) | null = null;
  onclose: (() => void) | null = null;
  onmessage: ((event: { data: unknown }) => void) | null = null;

  send(text: string): void {
    this.sent.push(text);
  }

  close(): void {
    this.onclose?.();
  }

  receive(packet: object): void {
    this.onmessage?.({ data: JSON.stringify({ target: "SVP_WebInterface", packet }) });
  }

  /// The data texts of all requests for an action that went out on this socket.
  bodies(action: string): string[] {
    const mark = `page,ACTION=SVP_WebInterface/${action},`;
    return this.sent
      .map((text) => (JSON.parse(text) as { data: string }).data)
      .filter((data) => data.startsWith(mark))
      .map((data) => data.slice(mark.length));
  }
}

export class FakeSurroundings implements Surroundings {
  sockets: FakeSocket[] = [];
  waits: number[] = [];
  private delayed: (() => void)[] = [];

  openSocket(): Socket {
    const socket = new FakeSocket();
    this.sockets.push(socket);
    return socket;
  }

  later(run: () => void, ms: number): void {
    this.waits.push(ms);
    this.delayed.push(run);
  }

  /// Runs what was put off.
  pass(): void {
    const due = this.delayed;
    this.delayed = [];
    for (const run of due) run();
  }

  get socket(): FakeSocket {
    const last = this.sockets.at(-1);
    if (!last) throw new Error("no socket was opened");
    return last;
  }
}

/// A profile with all lists, of a kind that an `.asvp` file gives unless more is stated.
export function profileWith(
  depths: readonly number[],
  speeds: readonly number[],
  more: Partial<Omit<Profile, "lists">> & { lists?: Partial<Profile["lists"]> } = {},
): Profile {
  const zeros = depths.map(() => 0);
  const lists = {
    svp_Speed: speeds,
    svp_Depth: depths,
    svp_Depth_CTD: depths,
    svp_Speed_CTD: speeds,
    svp_Temp: zeros,
    svp_Sal: zeros,
    svp_AbsCoef: zeros,
    ...more.lists,
  };
  const header = { hsvp_filetype: "SoundVelocity", hsvp_fileversion: "1.0" };
  return { filename: "cast.asvp", header, count: depths.length, ...more, lists };
}
