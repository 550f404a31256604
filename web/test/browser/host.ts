/// The real host with the real engine, in a data folder of its own.
import { spawn, type ChildProcess } from "node:child_process";
import { access, mkdtemp, readFile, readdir, rm, utimes, writeFile } from "node:fs/promises";
import { tmpdir } from "node:os";
import { join, resolve } from "node:path";
import { createInterface } from "node:readline";
import { setTimeout as pause } from "node:timers/promises";

const START_LIMIT_MS = 20_000;
const HANG_LIMIT_MS = 10_000;
const HEARING_TRIES = 60;

const paths = {
  host: resolve(process.env["SVP_HOST"] ?? "../build/dev/bin/svp-host"),
  plugin: resolve(process.env["SVP_PLUGIN"] ?? "../build/dev/bin/libsvpwebinterface.so"),
  web: resolve(process.env["SVP_WEB"] ?? "dist"),
  samples: resolve(process.env["SVP_SAMPLES"] ?? "../examples"),
};

/// A level as a test writes it: depth (m) and sound speed (m/s), both as they stand in the file.
export type FileLevel = readonly [depth: string, speed: string];

export class Host {
  private process: ChildProcess | null = null;
  private output = "";
  /// Where the page is found, with a slash at the end.
  url = "";

  private constructor(private readonly data: string) {}

  /// `name` begins the name of its data folder.
  static async start(name = "svp-page-test-"): Promise<Host> {
    for (const path of Object.values(paths)) {
      await access(path).catch(() => {
        throw new Error(`${path} is missing: build it, or name it by SVP_HOST, SVP_PLUGIN, SVP_WEB, SVP_SAMPLES`);
      });
    }
    const host = new Host(await mkdtemp(join(tmpdir(), name)));
    await host.run("127.0.0.1:0");
    return host;
  }

  /// A host whose engine has the port for datagrams, which is one for the whole machine: another
  /// engine may hold it for its while.
  static async startHearing(): Promise<Host> {
    for (let i = 0; ; ++i) {
      const host = await Host.start();
      for (let waited = 0; waited < 2000 && !/udp port/.test(host.output); waited += 20) await pause(20);
      if (/listening for input on udp port/.test(host.output)) return host;
      await host.remove();
      if (i === HEARING_TRIES) throw host.trouble("has not got the port for datagrams");
      await pause(1000);
    }
  }

  /// The profile folder.
  get folder(): string {
    return join(this.data, "Ardentide", "qrvdata", "svp_abscoeff");
  }

  /// Writes an .asvp file into the profile folder.
  async writeCast(name: string, levels: readonly FileLevel[], header?: string): Promise<void> {
    const first =
      header ??
      `( SoundVelocity 1.0 0 20261115123456 59.5 10.25 0 0 0 source NA ${levels.length} )`;
    const lines = [first, ...levels.map(([depth, speed]) => `${depth} ${speed}`)];
    const path = join(this.folder, name);
    await writeFile(path, lines.map((line) => `${line}\r\n`).join(""));
    // A fixed date, so that the list looks the same in every picture taken of the page.
    const written = new Date(Date.UTC(2026, 10, 15, 12, 40));
    await utimes(path, written, written);
  }

  async removeCast(name: string): Promise<void> {
    await rm(join(this.folder, name));
  }

  /// Writes a cast as another program would just now.
  async rewriteCast(name: string, levels: readonly FileLevel[], written = new Date()): Promise<void> {
    await this.writeCast(name, levels);
    await utimes(join(this.folder, name), written, written);
  }

  /// Has the host hang, with all its connections open. Resolves once it does: the signal is on its way
  /// for a while, and on a busy machine requests are answered meanwhile.
  async hang(): Promise<void> {
    this.process?.kill("SIGSTOP");
    for (let waited = 0; !(await this.isHung()); waited += 5) {
      if (waited > HANG_LIMIT_MS) throw this.trouble("does not hang");
      await pause(5);
    }
  }

  /// Has a host that hangs go on.
  goOn(): void {
    this.process?.kill("SIGCONT");
  }

  /// Whether each of its threads is stopped.
  private async isHung(): Promise<boolean> {
    const tasks = `/proc/${this.process?.pid ?? ""}/task`;
    const stats = (await readdir(tasks)).map((thread) =>
      // One that has just ended leaves none.
      readFile(join(tasks, thread, "stat"), "utf8").catch(() => ""));
    // The state stands behind the name, which is in brackets and may hold any character.
    return (await Promise.all(stats)).every((stat) => stat.slice(stat.lastIndexOf(")")).startsWith(") T"));
  }

  /// Ends the host as an operator would.
  async stop(): Promise<void> {
    const { process } = this;
    this.process = null;
    if (!process || process.exitCode !== null || process.signalCode !== null) return;
    const gone = new Promise((done) => process.once("exit", done));
    process.kill("SIGTERM");
    // One that a test has left hanging would never hear of it.
    process.kill("SIGCONT");
    await gone;
  }

  /// Ends the host as a crash would, also one that hangs.
  async kill(): Promise<void> {
    const { process } = this;
    this.process = null;
    if (!process) return;
    const gone = new Promise((done) => process.once("exit", done));
    process.kill("SIGKILL");
    await gone;
  }

  /// Starts the host again where it was.
  async startAgain(): Promise<void> {
    await this.run(new URL(this.url).host);
  }

  async remove(): Promise<void> {
    await this.stop();
    await rm(this.data, { recursive: true, force: true });
  }

  private async run(listen: string): Promise<void> {
    const child = spawn(
      paths.host,
      ["--plugin", paths.plugin, "--data", this.data, "--web", paths.web,
       "--samples", paths.samples, "--listen", listen],
      { stdio: ["ignore", "pipe", "pipe"] },
    );
    this.process = child;
    child.stderr.on("data", (text: Buffer) => (this.output += text.toString()));
    this.url = await new Promise((found, failed) => {
      const late = setTimeout(() => failed(this.trouble("did not start in time")), START_LIMIT_MS);
      createInterface(child.stdout).on("line", (line) => {
        const address = /^https?:\/\/\S+$/.exec(line.trim())?.[0];
        if (!address) return;
        clearTimeout(late);
        found(address.replace(/\/?$/, "/"));
      });
      child.once("error", failed);
      child.once("exit", (code) => {
        clearTimeout(late);
        failed(this.trouble(`ended with code ${code}`));
      });
    });
  }

  private trouble(what: string): Error {
    return new Error(`the host ${what}:\n${this.output.slice(-2000)}`);
  }
}
