/// Night and day colours. Night is the default: a bright page on a dark bridge blinds the watch.
export type Theme = "dark" | "light";

const STORED_AS = "svp-editor-theme";

export class ThemeSwitch {
  private theme: Theme = stored();

  constructor(private readonly control: HTMLButtonElement) {
    control.addEventListener("click", () => this.toggle());
    this.apply();
  }

  toggle(): void {
    this.theme = this.theme === "dark" ? "light" : "dark";
    try {
      localStorage.setItem(STORED_AS, this.theme);
    } catch {
      // A browser without storage still switches; it only forgets.
    }
    this.apply();
  }

  private apply(): void {
    document.documentElement.dataset["theme"] = this.theme;
    this.control.textContent = this.theme === "dark" ? "Light theme" : "Dark theme";
  }
}

function stored(): Theme {
  try {
    return localStorage.getItem(STORED_AS) === "light" ? "light" : "dark";
  } catch {
    return "dark";
  }
}
