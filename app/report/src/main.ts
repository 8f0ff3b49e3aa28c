// Builds the page of a report from the data within it.

import { ChangesView } from "./changesView.ts";
import type { Context, View } from "./context.ts";
import { Differences } from "./differences.ts";
import { button, make } from "./dom.ts";
import { bytes, count, machineName } from "./format.ts";
import { Image } from "./image.ts";
import { MapView } from "./mapView.ts";
import type { PackedReport } from "./pack.ts";
import { RoomView } from "./roomView.ts";
import { parseRoute, placeOfRoute, viewHash } from "./route.ts";
import { Search } from "./search.ts";
import { themeSwitch } from "./theme.ts";
import { TwoMapsView } from "./twoMapsView.ts";
import { TypesView } from "./typesView.ts";
import { VariablesView } from "./variablesView.ts";

class Page implements Context {
  readonly images: Image[];
  readonly differences: Differences | undefined;
  current: number;
  private readonly searches: (Search | undefined)[] = [];
  private readonly variables: VariablesView;
  private readonly views: View[];
  private readonly tabs = new Map<string, HTMLAnchorElement>();
  private readonly main = make("main", { id: "main", tabindex: -1 });
  private readonly message = make("p", { class: "toast", role: "status" });
  private readonly imageChoice = make("div", { class: "segments", role: "group", "aria-label": "Shown image" });
  private messageTimer = 0;

  constructor(report: PackedReport) {
    this.images = report.images.map((image) => new Image(image));
    this.current = this.images.length - 1;
    const [oldImage, newImage] = this.images;
    this.differences = report.differences && oldImage && newImage
      ? new Differences(report.differences, oldImage, newImage) : undefined;
    this.variables = new VariablesView(this);
    this.views = [
      ...(this.differences === undefined
        ? [new MapView(this)]
        : [new ChangesView(this, this.differences), new TwoMapsView(this, this.differences), new MapView(this)]),
      new RoomView(this), this.variables, new TypesView(this),
    ];
    this.build(report);
    addEventListener("hashchange", () => this.follow());
    addEventListener("keydown", (event) => this.onKey(event));
    this.follow();
  }

  search(image: number): Search {
    return (this.searches[image] ??= new Search(this.images[image]!));
  }

  go(hash: string): void {
    if (location.hash === hash) {
      this.follow();
    } else {
      location.hash = hash;
    }
  }

  say(message: string): void {
    this.message.textContent = message;
    this.message.classList.add("is-shown");
    clearTimeout(this.messageTimer);
    this.messageTimer = window.setTimeout(() => this.message.classList.remove("is-shown"), 2500);
  }

  private build(report: PackedReport): void {
    const names = this.images.map((image) => image.pack.file);
    document.title = `${names.join(" → ")} – Brindle report`;
    const nav = make("nav", { "aria-label": "Views", class: "tabs" });
    for (const view of this.views) {
      const tab = make("a", { href: viewHash(view.id), class: "tab" }, view.title);
      this.tabs.set(view.id, tab);
      nav.append(tab);
      view.element.hidden = true;
      this.main.append(view.element);
    }
    this.buildImageChoice();
    document.body.prepend(
      make("a", { href: "#main", class: "skip", click: (event: Event) => {
        event.preventDefault();
        this.main.focus();
      } }, "Skip to the contents"),
      make("header", {},
        make("div", { class: "headline" },
          make("h1", {}, names.join(" → ")),
          make("div", { class: "headline-tools" }, this.imageChoice, themeSwitch(), this.about(report))),
        this.facts(),
        ...this.warnings(),
        nav),
      this.main, this.message);
  }

  private facts(): HTMLElement {
    const lines = this.images.map((image) => {
      const { pack } = image;
      const facts = [
        pack.container,
        machineName(pack.container, pack.machine),
        pack.addressSize === undefined ? "" : `${pack.addressSize * 8} bit`,
        pack.byteOrder === undefined ? "" : `${pack.byteOrder} endian`,
        pack.fileSize === undefined ? "" : bytes(pack.fileSize),
        pack.isLinked === false ? "not linked: addresses count from the starts of sections" : "",
        pack.isWordAddressed === true ? "memory of 16-bit words, addresses in bytes" : "",
        count(image.variableCount, "variable"),
        image.sections.length > 0 ? count(image.sections.length, "section") : "",
      ].filter((fact) => fact !== "").join(" · ");
      return make("p", { class: "facts-line" },
        this.images.length > 1 ? make("strong", {}, pack.file + ": ") : "", facts);
    });
    return make("div", { class: "image-facts" }, ...lines);
  }

  private warnings(): HTMLElement[] {
    return this.images.filter((image) => !image.pack.isComplete).map((image) =>
      make("p", { class: "warning", role: "alert" },
        `${image.pack.file} could not be read to its end, so things are missing here. ${image.pack.error}`));
  }

  private buildImageChoice(): void {
    this.imageChoice.hidden = this.images.length < 2;
    for (const [index, label] of ["Old", "New"].entries()) {
      this.imageChoice.append(button(label, () => this.choose(index), {
        "aria-pressed": String(index === this.current),
        title: "Image shown in map, room, variables and types",
      }));
    }
  }

  private choose(index: number): void {
    this.current = index;
    this.follow();
  }

  private about(report: PackedReport): HTMLElement {
    const licences = document.querySelector<HTMLTemplateElement>("#licences");
    const dialog = make("dialog", { class: "about", "aria-label": "About this report" },
      make("h2", {}, "About this report"),
      make("p", {}, `Written by brindle ${report.version}. The page is one file and loads nothing.`),
      make("h3", {}, "Keys"),
      make("ul", {},
        ...[["/", "search"], ["↑ ↓", "move in a table"], ["→ ←", "open and close a row"],
            ["+ −", "zoom in the map"], ["N P", "next and previous variable in the map"],
            ["1 to 6", "go to a view"]].map(([key, text]) =>
          make("li", {}, make("kbd", {}, key!), " " + text!))),
      make("h3", {}, "Licences of the libraries in this page"),
      make("pre", { tabindex: 0 }, licences?.content.textContent ?? ""),
      make("form", { method: "dialog" }, make("button", {}, "Close")));
    document.body.append(dialog);
    return button("About", () => dialog.showModal());
  }

  private follow(): void {
    const { view, argument } = parseRoute(location.hash);
    if (view === "place") {
      this.showPlace(argument);
      return;
    }
    const found = this.views.find(({ id }) => id === view) ?? this.views[0]!;
    this.show(found);
    found.show(argument);
  }

  private showPlace(argument: string): void {
    let place = placeOfRoute(this.images[this.current]!, argument);
    if (place === undefined && this.images.length > 1) {
      const other = 1 - this.current;
      place = placeOfRoute(this.images[other]!, argument);
      this.current = place === undefined ? this.current : other;
    }
    this.show(this.variables);
    if (place === undefined) {
      this.say(`Nothing is named ${argument}`);
      this.variables.show(argument);
    } else {
      this.variables.show("");
      this.variables.reveal(place);
    }
  }

  private show(shown: View): void {
    for (const view of this.views) {
      view.element.hidden = view !== shown;
      const tab = this.tabs.get(view.id)!;
      if (view === shown) {
        tab.setAttribute("aria-current", "page");
      } else {
        tab.removeAttribute("aria-current");
      }
    }
    document.body.dataset["view"] = shown.id;
    this.imageChoice.hidden =
      this.images.length < 2 || shown.id === "changes" || shown.id === "maps";
    for (const [index, choice] of [...this.imageChoice.children].entries()) {
      choice.setAttribute("aria-pressed", String(index === this.current));
    }
  }

  private onKey(event: KeyboardEvent): void {
    const target = event.target as HTMLElement;
    const isTyping = target.matches("input, textarea, select");
    if (isTyping || event.ctrlKey || event.metaKey || event.altKey) {
      return;
    }
    const view = this.views[Number(event.key) - 1];
    if (event.key === "/") {
      event.preventDefault();
      const shown = this.views.find(({ element }) => !element.hidden) as
        View & { focusSearch?(): void };
      if (shown.focusSearch === undefined) {
        this.go(viewHash("variables"));
        requestAnimationFrame(() => this.variables.focusSearch());
      } else {
        shown.focusSearch();
      }
    } else if (view !== undefined) {
      this.go(viewHash(view.id));
    }
  }
}

new Page(JSON.parse(document.querySelector("#data")!.textContent!) as PackedReport);
