// The memory map of an image, with lists of what the picture shows: regions, sections, holes and
// overlaps.

import type { Context, View } from "./context.ts";
import { DetailPane } from "./detailPane.ts";
import { button, make } from "./dom.ts";
import { bytes, count, familyNames, number } from "./format.ts";
import type { Image, Place } from "./image.ts";
import { MapCanvas, placeAtAddress } from "./mapCanvas.ts";
import { MapModel } from "./mapModel.ts";
import { placeHash } from "./route.ts";

const mostRows = 40;

export class MapView implements View {
  readonly id = "map";
  readonly title = "Memory map";
  readonly element = make("section", { class: "view map" });
  private readonly detail: DetailPane;
  private canvas: MapCanvas | undefined;
  private model: MapModel | undefined;
  private shownImage = -1;

  constructor(private readonly context: Context) {
    this.detail = new DetailPane(context, "Click a variable in the map to see everything about it.");
  }

  /** @param argument an address to show */
  show(argument: string): void {
    if (this.shownImage !== this.context.current) {
      this.shownImage = this.context.current;
      this.build();
    }
    if (/^0x[0-9a-f]+$/i.test(argument)) {
      this.showAddress(BigInt(argument));
    }
  }

  private get image(): Image {
    return this.context.images[this.context.current]!;
  }

  private build(): void {
    const { image } = this;
    const model = new MapModel(image);
    const canvas = new MapCanvas(model, {
      label: `Memory map of ${image.pack.file}`,
      onSelect: (place: Place) => this.detail.show(image, place),
      onOpen: (place: Place) => this.context.go(placeHash(image, place)),
    });
    this.model = model;
    this.canvas = canvas;
    this.detail.clear();
    const isEmpty = model.regions.length === 0;
    this.element.replaceChildren(
      make("div", { class: "toolbar" }, ...mapButtons(canvas), legend(image)),
      isEmpty ? make("p", { class: "muted" }, "Nothing in this image has an address and a size.")
              : canvas.element,
      make("div", { class: "split map-split" },
        make("div", { class: "cards" },
          this.sectionCard(), this.regionCard(model), this.holeCard(model), this.overlapCard(model)),
        this.detail.element),
    );
  }

  private showAddress(address: bigint): void {
    const place = placeAtAddress(this.image, this.model!, address);
    if (place !== undefined) {
      this.canvas!.select(place);
    } else {
      const x = this.model!.xOf(address);
      this.canvas!.show(x - 128, x + 128);
    }
  }

  private showRange(start: bigint, size: number): void {
    const { model, canvas } = this;
    const from = model!.xOf(start);
    const to = model!.xOf(start + BigInt(Math.max(1, Math.trunc(size))));
    const margin = (to - from) * 0.15;
    canvas!.show(from - margin, to + margin);
    canvas!.element.scrollIntoView({ block: "nearest" });
  }

  private sectionCard(): HTMLElement {
    const { image } = this;
    const used = usedBySection(image);
    return card("Sections", ["Name", "Holds", "Address", "Size", "Used"],
      image.sections.map((section, index) => {
        const size = Number(section.size);
        const share = size === 0 || section.kind === "code"
          ? "" : `${Math.round((100 * Math.min(used[index]!, size)) / size)} %`;
        return [
          this.rangeButton(section.name || "(no name)", section.address, size),
          make("span", {}, make("span", { class: `swatch section-${section.kind}`, "aria-hidden": "true" }), section.kind),
          image.formatAddress(section.address), bytes(size), share];
      }),
      "The file names no sections with addresses.");
  }

  private regionCard(model: MapModel): HTMLElement {
    return card("Regions", ["From", "To", "Size"], model.regions.map(({ start, size }) => [
      this.rangeButton(this.image.formatAddress(start), start, size),
      this.image.formatAddress(start + BigInt(Math.max(0, Math.trunc(size) - 1))), bytes(size)]),
      "Nothing in this image has an address.");
  }

  private holeCard(model: MapModel): HTMLElement {
    const sum = model.holes.reduce((total, { size }) => total + size, 0);
    return card(
      model.holes.length === 0 ? "Holes" : `Holes: ${number(model.holes.length)}, ${bytes(sum)}`,
      ["From", "Size", "Section"],
      model.holes.map(({ start, size, section }) => [
        this.rangeButton(this.image.formatAddress(start), start, size), count(size, "byte"), section]),
      "No data section has unused space.");
  }

  private overlapCard(model: MapModel): HTMLElement {
    return card(
      model.overlaps.length === 0 ? "Overlaps" : `Overlaps: ${number(model.overlaps.length)}`,
      ["Variable", "Overlaps with", "From", "Shared"],
      model.overlaps.map(({ first, second, start, size }) => [
        this.variableLink(second), this.variableLink(first),
        this.rangeButton(this.image.formatAddress(start), start, size), count(size, "byte")]),
      "No two variables overlap.");
  }

  private variableLink(variable: number): Node {
    const place = this.image.placeOf(variable);
    return make("a", { href: placeHash(this.image, place) }, place.path);
  }

  private rangeButton(text: string, start: bigint, size: number): Node {
    return button(text, () => this.showRange(start, size), { class: "link", title: "Show in the map" });
  }
}

export function mapButtons(canvas: MapCanvas): HTMLElement[] {
  return [
    button("−", () => canvas.zoom(2), { "aria-label": "Zoom out", class: "square" }),
    button("+", () => canvas.zoom(0.5), { "aria-label": "Zoom in", class: "square" }),
    button("All", () => canvas.showAll(), { title: "Show the whole map" }),
    button("Previous", () => canvas.step(-1), { title: "Previous variable" }),
    button("Next", () => canvas.step(1), { title: "Next variable" }),
  ];
}

function legend(image: Image): HTMLElement {
  const list = make("ul", { class: "legend", "aria-label": "Colours" });
  if (image.sections.length > 0) {
    for (const kind of ["code", "constants", "data", "zero"]) {
      list.append(make("li", {}, make("span", { class: `swatch section-${kind}` }), kind));
    }
  }
  for (const [family, name] of Object.entries(familyNames)) {
    list.append(make("li", {}, make("span", { class: `swatch fill-${family}` }), name));
  }
  list.append(make("li", {}, make("span", { class: "swatch hatched" }), "hole"));
  return list;
}

/** Bytes of variables in each section. */
function usedBySection(image: Image): number[] {
  const used = image.sections.map(() => 0);
  for (let variable = 0; variable < image.variableCount; ++variable) {
    const section = image.sectionAt(image.addresses[variable]!);
    if (section !== undefined) {
      used[image.sections.indexOf(section)]! += image.sizes[variable]!;
    }
  }
  return used;
}

export function card(
  title: string, head: string[], rows: (Node | string)[][], emptyText: string,
): HTMLElement {
  const body = make("tbody");
  const fill = (limit: number) => {
    body.replaceChildren(...rows.slice(0, limit).map((cells) =>
      make("tr", {}, ...cells.map((cell) => make("td", {}, cell)))));
  };
  fill(mostRows);
  const result = make("section", { class: "card" }, make("h2", {}, title));
  if (rows.length === 0) {
    result.append(make("p", { class: "muted" }, emptyText));
    return result;
  }
  result.append(make("div", { class: "table-frame", role: "region", tabindex: 0, "aria-label": title }, make("table", { class: "plain" },
    make("thead", {}, make("tr", {}, ...head.map((text) => make("th", { scope: "col" }, text)))), body)));
  if (rows.length > mostRows) {
    const more = button(`Show all ${number(rows.length)}`, () => {
      fill(5000);
      more.remove();
    });
    result.append(more);
  }
  return result;
}
