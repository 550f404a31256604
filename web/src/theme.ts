/// The page's colours: for the night, for the day, for eyes or sunlight that need contrast, and red
/// for eyes that must stay used to the dark. Night comes first: a bright page on a dark bridge
/// blinds the watch.
import { Menu } from "./menu";

export const THEMES = ["dark", "light", "contrast", "red"] as const;
export type Theme = (typeof THEMES)[number];

const WORDS: Record<Theme, { label: string; detail: string }> = {
  dark: { label: "Night", detail: "Dark, nothing brighter than needed" },
  light: { label: "Day", detail: "Dark on light" },
  contrast: { label: "High contrast", detail: "White and strong colours on black" },
  red: { label: "Red", detail: "Red on black; eyes stay used to the dark" },
};

const STORED_AS = "svp-editor-theme";

/// The theme to begin with: what was chosen before, or what the system asks for.
export function firstTheme(stored: string | null, wantsContrast: boolean): Theme {
  const chosen = THEMES.find((each) => each === stored);
  return chosen ?? (wantsContrast ? "contrast" : "dark");
}

/// The theme after another; the last one is followed by the first.
export function themeAfter(theme: Theme): Theme {
  return THEMES[(THEMES.indexOf(theme) + 1) % THEMES.length] ?? "dark";
}

export class ThemeSwitch {
  private theme = firstTheme(stored(), matchMedia("(prefers-contrast: more)").matches);

  /// `control` becomes the button of a menu.
  constructor(control: HTMLButtonElement) {
    new Menu(control, THEMES.map((theme) => ({
      ...WORDS[theme],
      run: () => this.choose(theme),
      isChosen: () => this.theme === theme,
    })));
    this.apply();
  }

  next(): void {
    this.choose(themeAfter(this.theme));
  }

  private choose(theme: Theme): void {
    this.theme = theme;
    try {
      localStorage.setItem(STORED_AS, theme);
    } catch {
      // A browser without storage still switches; it only forgets.
    }
    this.apply();
  }

  private apply(): void {
    document.documentElement.dataset["theme"] = this.theme;
  }
}

function stored(): string | null {
  try {
    return localStorage.getItem(STORED_AS);
  } catch {
    return null;
  }
}
