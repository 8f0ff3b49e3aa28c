// The types of an image: a searchable list, and beside it the layout of the selected type.

import type { Context, View } from "./context.ts";
import { typeLink } from "./detailPane.ts";
import { make, marked } from "./dom.ts";
import { bitRange, count, familyOf, number } from "./format.ts";
import { Grid, type Sorting } from "./grid.ts";
import type { Image } from "./image.ts";
import { hasPicture, layoutPicture, unionPicture } from "./layoutPicture.ts";
import { Outline } from "./outline.ts";
import { placeHash, viewHash } from "./route.ts";
import { matchedRanges } from "./search.ts";
import { type TypeEntry, TypeIndex, firstPlace } from "./typeUse.ts";
import { Entry, Kind, type LayoutEntry, kindNames } from "./types.ts";

const mostUses = 300;

export class TypesView implements View {
  readonly id = "types";
  readonly title = "Types";
  readonly element: HTMLElement;
  private readonly input: HTMLInputElement;
  private readonly status = make("p", { class: "status", role: "status" });
  private readonly page = make("article", { class: "type-page", "aria-label": "Layout", tabindex: -1 });
  private readonly grid: Grid<TypeEntry>;
  private index!: TypeIndex;
  private shownImage = -1;
  private shownType: TypeEntry | undefined;
  private entries: TypeEntry[] = [];
  private sorting: Sorting | undefined;
  private pictureWidth = 0;

  constructor(private readonly context: Context) {
    this.input = make("input", {
      type: "search", spellcheck: "false", autocomplete: "off", placeholder: "Search types",
      "aria-label": "Search types by name or kind", input: () => this.list(),
      keydown: (event: KeyboardEvent) => {
        if (event.key === "ArrowDown" || event.key === "Enter") {
          this.grid.focus();
          this.grid.select(0);
          event.preventDefault();
        }
      },
    });
    this.grid = new Grid<TypeEntry>({
      label: "Types",
      columns: [
        { id: "text", title: "Type", width: "minmax(9rem, 3fr)", isSortable: true,
          cell: (entry) => this.nameCell(entry) },
        { id: "kind", title: "Kind", width: "4.8rem", isSortable: true, neededWidth: 450,
          cell: (entry) => kindNames[entry.kind]! },
        { id: "size", title: "Size", width: "4.2rem", isSortable: true, isNumber: true,
          cell: (entry) => number(entry.size) },
        { id: "lost", title: "Lost", width: "4rem", isSortable: true, isNumber: true,
          cell: (entry) => (entry.lost === 0 ? "" : number(entry.lost)) },
        { id: "variables", title: "Used", width: "4.2rem", isSortable: true, isNumber: true,
          neededWidth: 330,
          cell: (entry) => (entry.variables === 0 ? "" : number(entry.variables)) },
      ],
      canOpen: () => false,
      isFlat: true,
      onSelect: (entry) => this.showType(entry),
      onActivate: (entry) => {
        this.context.go(viewHash("types", String(entry.type)));
        this.page.focus();
      },
      onSort: (sorting) => {
        this.sorting = sorting;
        this.list();
      },
      emptyText: "No type matches.",
    });
    this.element = make("section", { class: "view types" },
      make("div", { class: "split types-split" },
        make("div", { class: "type-list" },
          make("div", { class: "toolbar" }, this.input, this.status),
          this.grid.element),
        this.page),
    );
    new ResizeObserver(() => this.onResize()).observe(this.page);
  }

  /** @param argument number of a type, or its text */
  show(argument: string): void {
    if (this.shownImage !== this.context.current) {
      this.shownImage = this.context.current;
      this.index = new TypeIndex(this.image, this.context.search(this.context.current));
      this.sorting = { column: "variables", isDescending: true };
      this.shownType = undefined;
      this.list();
    }
    const wanted = /^\d+$/.test(argument)
      ? this.index.entryOf(Number(argument))
      : this.index.entries.find((entry) => entry.text === argument);
    const entry = wanted ?? this.shownType ?? this.entries.find(({ lost }) => lost > 0) ??
                  this.entries[0];
    if (entry !== undefined && (entry !== this.shownType || argument !== "")) {
      this.select(entry);
    } else if (entry === undefined) {
      this.page.replaceChildren(make("p", { class: "muted" }, "The image has no such types."));
    }
  }

  focusSearch(): void {
    this.input.focus();
    this.input.select();
  }

  private get image(): Image {
    return this.context.images[this.context.current]!;
  }

  private nameCell(entry: TypeEntry): Node {
    return make("span", { class: "name", title: entry.text },
      make("span", { class: `swatch fill-${familyOf(this.image.types, entry.type)}`, "aria-hidden": "true" }),
      marked(entry.text, matchedRanges(entry.text, this.input.value)));
  }

  private list(): void {
    const words = this.input.value.toLowerCase().split(/\s+/).filter((word) => word !== "");
    this.entries = this.index.entries.filter((entry) => {
      const text = `${entry.text} ${kindNames[entry.kind]}`.toLowerCase();
      return words.every((word) => text.includes(word));
    });
    const { sorting, entries } = this;
    if (sorting !== undefined) {
      const direction = sorting.isDescending ? -1 : 1;
      const column = sorting.column as "text" | "kind" | "size" | "lost" | "variables";
      entries.sort((first, second) => {
        const [one, other] = [first[column], second[column]];
        const order = typeof one === "string" && typeof other === "string"
          ? one.localeCompare(other) : Number(one) - Number(other);
        return direction * order || first.text.localeCompare(second.text);
      });
    }
    this.status.textContent = count(entries.length, "type");
    this.grid.show(
      new Outline({ count: entries.length, at: (index) => entries[index]! }, () => undefined),
      sorting);
  }

  private select(entry: TypeEntry): void {
    let row = this.entries.indexOf(entry);
    if (row < 0) {
      this.input.value = "";
      this.list();
      row = this.entries.indexOf(entry);
    }
    this.grid.select(row, false, true);
    this.showType(entry);
  }

  private onResize(): void {
    const width = this.page.clientWidth;
    if (this.shownType !== undefined && Math.abs(width - this.pictureWidth) > 40) {
      this.showType(this.shownType);
    }
  }

  private showType(entry: TypeEntry): void {
    this.shownType = entry;
    this.pictureWidth = this.page.clientWidth;
    this.page.scrollTop = 0;
    this.page.replaceChildren(
      make("h2", { class: "path" }, entry.text),
      make("p", { class: "muted" }, this.summary(entry)),
      ...this.contents(entry),
      ...this.holders(entry),
      ...this.uses(entry),
    );
  }

  private summary(entry: TypeEntry): string {
    const parts = [kindNames[entry.kind]!, count(entry.size, "byte")];
    if (entry.lost > 0) {
      const share = Math.round((100 * entry.lost) / Math.max(1, entry.size));
      parts.push(`${count(entry.lost, "byte")} lost to holes and padding (${share} %)`);
    }
    if (entry.units.length > 0) {
      parts.push(`in ${entry.units.slice(0, 3).join(", ")}` +
                 (entry.units.length > 3 ? ` and ${entry.units.length - 3} more units` : ""));
    }
    return parts.join(" · ");
  }

  private contents(entry: TypeEntry): Node[] {
    const types = this.image.types;
    if (entry.kind === Kind.Typedef) {
      return [make("p", {}, "Another name of ", typeLink(this.image, types.target(entry.type)))];
    }
    if (entry.kind === Kind.Enum) {
      return [this.enumTable(entry.type)];
    }
    if (!hasPicture(this.image, entry.type)) {
      return [make("p", { class: "muted" }, "It has no members.")];
    }
    const width = Math.max(260, Math.min(1400, this.pictureWidth - 34));
    const picture = entry.kind === Kind.Union
      ? unionPicture(this.image, entry.type, width)
      : layoutPicture(this.image, entry.type, width);
    const table = this.layoutTable(entry.type);
    linkHighlights(picture, table);
    return [make("div", { class: "layout-frame" }, picture), table];
  }

  private enumTable(type: number): HTMLElement {
    return make("table", { class: "plain" },
      make("thead", {}, make("tr", {}, make("th", { scope: "col", class: "is-number" }, "Value"),
                             make("th", { scope: "col" }, "Name"))),
      make("tbody", {}, ...this.image.types.enumerators(type).map(({ value, name }) =>
        make("tr", {}, make("td", { class: "is-number" }, String(value)), make("td", {}, make("code", {}, name))))));
  }

  private layoutTable(type: number): HTMLElement {
    const head = ["Offset", "Size", "Bits", "Name", "Type"].map((title, index) =>
      make("th", { scope: "col", class: index < 3 ? "is-number" : "" }, title));
    const rows = this.image.types.layout(type).map((entry, index) => this.layoutRow(entry, index));
    return make("table", { class: "plain layout-table" },
      make("caption", { class: "offscreen" }, "Members in the order of their offsets"),
      make("thead", {}, make("tr", {}, ...head)), make("tbody", {}, ...rows));
  }

  private layoutRow(entry: LayoutEntry, index: number): HTMLElement {
    const isBitField = entry.kind === Entry.BitField;
    const isUnusedBits = entry.kind === Entry.UnusedBits;
    const names: Record<number, string> = {
      [Entry.Hole]: "hole", [Entry.Padding]: "padding at the end",
      [Entry.UnusedBits]: "unused bits", [Entry.BaseClass]: "base class",
      [Entry.UnplacedBaseClass]: "virtual base class",
    };
    const isGap = entry.kind === Entry.Hole || entry.kind === Entry.Padding || isUnusedBits;
    const name = names[entry.kind] ?? (entry.name === "" ? "(anonymous)" : entry.name);
    return make("tr", { "data-entry": index, class: isGap ? "is-gap" : "" },
      make("td", { class: "is-number" }, entry.kind === Entry.UnplacedBaseClass ? "?" : entry.offset),
      make("td", { class: "is-number" }, isUnusedBits ? "" : number(entry.size)),
      make("td", { class: "is-number" },
        isBitField ? bitRange({ ...entry, isBitField }) : isUnusedBits ? String(entry.size) : ""),
      make("td", {}, entry.kind in names ? name : make("code", {}, name)),
      make("td", {}, typeLink(this.image, entry.type)));
  }

  private holders(entry: TypeEntry): Node[] {
    const holders = this.index.holdersOf(entry);
    return holders.length === 0 ? [] : [
      make("h3", {}, "Part of"),
      make("p", { class: "tags" }, ...holders.slice(0, mostUses).flatMap((holder, index) => [
        index === 0 ? "" : " ",
        make("a", { href: viewHash("types", String(holder.type)), class: "type" }, holder.text)])),
    ];
  }

  private uses(entry: TypeEntry): Node[] {
    const uses = this.index.usesOf(entry);
    if (uses.length === 0) {
      return [make("h3", {}, "Variables"), make("p", { class: "muted" }, "No variable has this type.")];
    }
    const items = uses.slice(0, mostUses).map((use) => {
      const place = firstPlace(this.image, use);
      const text = this.image.name(use.variable) + use.shape;
      return make("li", {},
        place === undefined ? text : make("a", { href: placeHash(this.image, place) }, text),
        place === undefined ? "" : make("span", { class: "muted" },
          " " + this.image.formatAddress(this.image.addressOf(place))));
    });
    const rest = uses.length - items.length;
    const list = make("ul", { class: "uses" }, ...items);
    if (rest > 0) {
      list.append(make("li", { class: "muted" }, `… and ${number(rest)} more`));
    }
    return [make("h3", {}, `Variables of this type: ${number(uses.length)}`), list];
  }
}

/** Highlights what the mouse points at in the picture or the table in both. */
function linkHighlights(picture: Element, table: Element): void {
  const mark = (event: Event, isOn: boolean) => {
    const entry = (event.target as Element).closest("[data-entry]")?.getAttribute("data-entry");
    for (const side of [picture, table]) {
      for (const element of side.querySelectorAll(`[data-entry="${entry}"]`)) {
        element.classList.toggle("is-marked", isOn);
      }
    }
  };
  for (const side of [picture, table]) {
    side.addEventListener("mouseover", (event) => mark(event, true));
    side.addEventListener("mouseout", (event) => mark(event, false));
  }
}
