/// Work of which only the newest matters: one piece at a time, and after it the newest that has been
/// asked for meanwhile.
export class Latest<Wanted> {
  private waiting: { wanted: Wanted } | null = null;
  private busy = false;

  constructor(private readonly work: (wanted: Wanted) => Promise<void>) {}

  get isBusy(): boolean {
    return this.busy;
  }

  ask(wanted: Wanted): void {
    this.waiting = { wanted };
    if (!this.busy) void this.run();
  }

  /// Forgets what has not begun.
  clear(): void {
    this.waiting = null;
  }

  private async run(): Promise<void> {
    this.busy = true;
    try {
      while (this.waiting) {
        const { wanted } = this.waiting;
        this.waiting = null;
        await this.work(wanted);
      }
    } finally {
      this.busy = false;
    }
  }
}
