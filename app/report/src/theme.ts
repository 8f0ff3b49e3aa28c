// Dark and light: as in the system, or as the user chose for this page.

import { make } from "./dom.ts";

const key = "brindle-report-theme";
const themes = [["auto", "System"], ["light", "Light"], ["dark", "Dark"]] as const;

/** Local pages may have no storage; then the choice lasts as long as the page. */
function stored(): string {
  try {
    return localStorage.getItem(key) ?? "auto";
  } catch {
    return "auto";
  }
}

function apply(theme: string): void {
  if (theme === "auto") {
    delete document.documentElement.dataset["theme"];
  } else {
    document.documentElement.dataset["theme"] = theme;
  }
  dispatchEvent(new Event("themechange"));
}

/** Calls a function at once whenever the colours are others: paper has light ones whatever the screen
 * has, and takes what is drawn when printing begins. */
export function onColourChange(redraw: () => void): void {
  for (const query of ["(prefers-color-scheme: dark)", "print"]) {
    matchMedia(query).addEventListener("change", redraw);
  }
  addEventListener("themechange", redraw);
}

export function themeSwitch(): HTMLElement {
  const select = make("select", { "aria-label": "Colours" },
    ...themes.map(([value, title]) => make("option", { value }, title)));
  select.value = stored();
  apply(select.value);
  select.addEventListener("change", () => {
    apply(select.value);
    try {
      localStorage.setItem(key, select.value);
    } catch {
      // It lasts as long as the page.
    }
  });
  return select;
}
