// The pane with everything about one place, with its links and what can be copied.

import type { Context } from "./context.ts";
import { copyText, csvHeader, csvRow } from "./csv.ts";
import { button, make } from "./dom.ts";
import { bitRange, bytes, count, number } from "./format.ts";
import type { Image, Place } from "./image.ts";
import { placeHash, viewHash } from "./route.ts";
import { valueText } from "./values.ts";

const mostCopiedRows = 100_000;

export class DetailPane {
  readonly element = make("aside", { class: "detail", "aria-label": "Details" });
  private place: Place | undefined;
  private image: Image | undefined;

  /** @param emptyText shown while nothing is selected */
  constructor(private readonly context: Context, private readonly emptyText: string) {
    this.clear();
  }

  clear(): void {
    this.place = undefined;
    this.element.replaceChildren(make("p", { class: "muted" }, this.emptyText));
  }

  show(image: Image, place: Place): void {
    this.place = place;
    this.image = image;
    const link = placeHash(image, place);
    this.element.replaceChildren(
      make("h2", { class: "path" }, place.path),
      make("div", { class: "buttons" },
        button("Copy path", () => this.copy("path", place.path)),
        button("Copy address", () =>
          this.copy("address", image.formatAddress(image.addressOf(place)))),
        button("Copy CSV", () => this.copyCsv(), { title: "This and all its parts, as CSV" }),
        button("Copy link", () => this.copy("link", location.href.split("#")[0] + link)),
      ),
      this.facts(image, place),
      make("div", { class: "links" },
        make("a", { href: link }, "In the table"),
        make("a", { href: viewHash("map", image.formatAddress(image.addressOf(place))) },
             "In the memory map"),
      ),
    );
  }

  private facts(image: Image, place: Place): HTMLElement {
    const list = make("dl", { class: "facts" });
    const add = (term: string, fact: Node | string) => {
      if (fact !== "") {
        list.append(make("dt", {}, term), make("dd", {}, fact));
      }
    };
    const address = image.addressOf(place);
    const section = image.sectionAt(address);
    add("Address", make("code", {}, image.formatAddress(address)));
    add("Size", place.size >= 1024
      ? `${number(place.size)} bytes (${bytes(place.size)})` : count(place.size, "byte"));
    add("Bits", place.isBitField ? `${bitRange(place)} of ${place.size * 8}` : "");
    add("Type", typeLink(image, place.type));
    add("Value", this.value(image, place));
    if (place.parent !== undefined) {
      add("Offset", `${number(place.offset)} (0x${place.offset.toString(16)}) in ${image.name(place.variable)}`);
    }
    add("Unit", image.unit(place.variable));
    add("Section", section === undefined ? "" : `${section.name} (${section.kind})`);
    return list;
  }

  private value(image: Image, place: Place): Node | string {
    const text = valueText(image, place);
    return text === "" ? "" : make("code", {}, text);
  }

  private async copy(what: string, text: string): Promise<void> {
    const isDone = await copyText(text);
    this.context.say(isDone ? `Copied the ${what}` : "The browser does not allow copying");
  }

  private copyCsv(): void {
    const { image, place } = this;
    if (image === undefined || place === undefined) {
      return;
    }
    const rows = [csvHeader];
    for (const leaf of image.leaves(place)) {
      if (rows.length > mostCopiedRows) {
        break;
      }
      rows.push(csvRow(image, leaf, valueText(image, leaf)));
    }
    void this.copy(count(rows.length - 1, "row"), rows.join("\n") + "\n");
  }
}

/** A type as a link to its layout, if it has one. */
export function typeLink(image: Image, type: number): Node | string {
  const text = image.types.text(type);
  const shown = layoutOf(image, type);
  return shown === 0 ? text : make("a", { href: viewHash("types", `${shown}`), class: "type" }, text);
}

/** The type with a page of its own that a type leads to, even through arrays and pointers. */
function layoutOf(image: Image, type: number): number {
  const types = image.types;
  let end = type;
  for (let step = 0; step < 100 && end !== 0; ++step) {
    if (types.isClass(end) || types.kind(end) === 8 || types.kind(end) === 9) {
      return end;
    }
    const kind = types.kind(end);
    end = kind === 6 || kind === 7 ? types.target(end) : 0;
  }
  return 0;
}
