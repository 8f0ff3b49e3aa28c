// The memory maps of two images side by side, or one above the other if there is little space, on one
// scale and coloured by what changed.

import type { Context, View } from "./context.ts";
import { type Differences, causes } from "./differences.ts";
import { DetailPane } from "./detailPane.ts";
import { make } from "./dom.ts";
import type { Image, Place } from "./image.ts";
import { causeClass, causeTexts } from "./changesView.ts";
import { MapCanvas } from "./mapCanvas.ts";
import { MapModel } from "./mapModel.ts";
import { mapButtons } from "./mapView.ts";
import { placeHash } from "./route.ts";

export class TwoMapsView implements View {
  readonly id = "maps";
  readonly title = "Both maps";
  readonly element = make("section", { class: "view map maps" });
  private readonly detail: DetailPane;
  private isBuilt = false;

  constructor(private readonly context: Context, private readonly differences: Differences) {
    this.detail = new DetailPane(context, "Click a variable in one of the maps to see it in both.");
  }

  show(): void {
    if (!this.isBuilt) {
      this.isBuilt = true;
      this.build();
    }
  }

  private build(): void {
    const { oldImage, newImage } = this.differences;
    const before = this.canvasOf(oldImage, newImage, "old", (range) => after.show(...range, false));
    const after: MapCanvas = this.canvasOf(newImage, oldImage, "new", (range) => before.show(...range, false));
    this.select = (side, place) => this.selectInBoth(side, place, before, after);
    const legend = make("ul", { class: "legend", "aria-label": "Colours" },
      ...causes.map((cause) => make("li", {},
        make("span", { class: `swatch ${causeClass(cause)}` }), causeTexts[cause])),
      make("li", {}, make("span", { class: "swatch fill-unchanged" }), "unchanged"));
    this.element.replaceChildren(
      make("div", { class: "toolbar" }, ...mapButtons(before), legend),
      make("div", { class: "two-maps" },
        make("section", {}, make("h2", { class: "map-title" }, `Old: ${oldImage.pack.file}`), before.element),
        make("section", {}, make("h2", { class: "map-title" }, `New: ${newImage.pack.file}`), after.element)),
      this.detail.element);
  }

  private select: (side: "old" | "new", place: Place) => void = () => undefined;

  private canvasOf(
    image: Image, other: Image, side: "old" | "new", onMove: (range: [number, number]) => void,
  ): MapCanvas {
    const canvas: MapCanvas = new MapCanvas(new MapModel(image, [other]), {
      label: `Memory map of the ${side} image, ${image.pack.file}`,
      colourOf: (variable) => {
        const cause = this.differences.causeOf(side, variable);
        return cause === undefined ? "--fill-unchanged" : `--${causeClass(cause)}`;
      },
      onSelect: (place) => this.select(side, place),
      onOpen: (place) => {
        this.context.current = side === "old" ? 0 : 1;
        this.context.go(placeHash(image, place));
      },
      onMove: () => onMove(canvas.range),
    });
    return canvas;
  }

  /** Marks the variable in the other map too. */
  private selectInBoth(
    side: "old" | "new", place: Place, before: MapCanvas, after: MapCanvas,
  ): void {
    const { oldImage, newImage } = this.differences;
    const [image, other, otherCanvas] = side === "old"
      ? [oldImage, newImage, after] as const : [newImage, oldImage, before] as const;
    this.detail.show(image, place);
    const twin = other.resolve(place.path);
    if (twin !== undefined) {
      otherCanvas.mark(twin);
    }
  }
}
