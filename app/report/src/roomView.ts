// What occupies the memory: a treemap of all variables by unit, namespace, section or type.

import { type HierarchyRectangularNode, hierarchy, treemap, treemapSquarify } from "d3-hierarchy";
import type { Context, View } from "./context.ts";
import { cssColour, make, onceAFrame } from "./dom.ts";
import { bytes, count, number } from "./format.ts";
import type { Image } from "./image.ts";
import { placeHash } from "./route.ts";
import { splitScopes } from "./scopes.ts";
import { onColourChange } from "./theme.ts";

interface Branch {
  name: string;
  children?: Branch[];
  size?: number;
  variable?: number;
}

type Tile = HierarchyRectangularNode<Branch>;
type Grouping = "unit" | "namespace" | "section" | "type";

const groupings: [Grouping, string][] = [
  ["unit", "Unit"], ["namespace", "Namespace"], ["section", "Section"], ["type", "Type"],
];
const headHeight = 20;
const mostListed = 200;

export class RoomView implements View {
  readonly id = "room";
  readonly title = "Room";
  readonly element: HTMLElement;
  private readonly canvas: HTMLCanvasElement;
  private readonly frame: HTMLElement;
  private readonly trail = make("nav", { class: "trail", "aria-label": "Shown part" });
  private readonly list = make("ol", { class: "room-list" });
  private readonly tip = make("div", { class: "map-tip", hidden: true });
  private readonly announced = make("p", { class: "offscreen", "aria-live": "polite" });
  private grouping: Grouping = "unit";
  private shownImage = -1;
  private root: Tile | undefined;
  private shown: Tile | undefined;
  private tiles: Tile[] = [];
  /** Top-level groups by their numbers. */
  private tops = new Map<Tile, number>();
  private originals = new Map<Tile, Tile>();
  private active = -1;
  private width = 0;
  private height = 0;
  private readonly redraw = onceAFrame(() => this.draw());

  constructor(private readonly context: Context) {
    this.canvas = make("canvas", {
      class: "map-canvas", tabindex: 0, role: "application", "aria-roledescription": "treemap",
      "aria-label": "Treemap of the variables by size. Arrows choose a part, Enter goes into it, " +
                    "Backspace goes back. The list beside it shows the same.",
      keydown: (event: KeyboardEvent) => this.onKey(event),
      pointermove: (event: PointerEvent) => this.onMove(event),
      pointerleave: () => { this.tip.hidden = true; },
      click: (event: MouseEvent) => {
        const tile = this.tileAt(event);
        if (tile !== undefined) {
          this.enter(tile);
        }
      },
    });
    this.frame = make("div", { class: "map-frame room-frame" }, this.canvas, this.tip, this.announced);
    this.element = make("section", { class: "view room" },
      make("div", { class: "toolbar" }, this.choice(), this.trail),
      make("div", { class: "split" }, this.frame,
        make("aside", { class: "detail", "aria-label": "Largest parts" },
          make("h2", {}, "Largest here"), this.list)));
    new ResizeObserver(() => this.resize()).observe(this.frame);
    onColourChange(() => this.draw());
  }

  show(): void {
    if (this.shownImage !== this.context.current) {
      this.shownImage = this.context.current;
      this.build();
    }
  }

  private get image(): Image {
    return this.context.images[this.context.current]!;
  }

  private choice(): HTMLElement {
    const group = make("div", { class: "segments", role: "group", "aria-label": "Grouped by" });
    for (const [grouping, title] of groupings) {
      group.append(make("button", {
        type: "button", "aria-pressed": String(grouping === this.grouping),
        click: (event: Event) => {
          this.grouping = grouping;
          for (const each of group.children) {
            each.setAttribute("aria-pressed", String(each === event.currentTarget));
          }
          this.build();
        },
      }, title));
    }
    return group;
  }

  private build(): void {
    const root: Branch = { name: this.image.pack.file, children: [] };
    const branches = new Map<string, Branch>();
    for (let variable = 0; variable < this.image.variableCount; ++variable) {
      const size = this.image.sizes[variable]!;
      if (size > 0) {
        const name = this.image.name(variable);
        branchOf(root, branches, this.groupsOf(variable)).children!.push({ name, size, variable });
      }
    }
    const node = hierarchy(root)
      .sum((branch) => branch.size ?? 0)
      .sort((first, second) => (second.value ?? 0) - (first.value ?? 0));
    this.root = node as Tile;
    this.tops = new Map(this.root.children?.map((tile, index) => [tile, index]));
    this.goTo(this.root);
  }

  /** Names of the groups that contain a variable, outermost first. */
  private groupsOf(variable: number): string[] {
    const { image } = this;
    switch (this.grouping) {
      case "unit":
        return [image.unit(variable) || "(no unit)"];
      case "section":
        return [image.sectionAt(image.addresses[variable]!)?.name ?? "(no section)"];
      case "type":
        return [image.types.text(image.variableTypes[variable]!) || "(no type)"];
      default:
        return splitScopes(image.scope(variable));
    }
  }

  private goTo(tile: Tile): void {
    this.shown = tile;
    this.active = -1;
    this.showTrail();
    this.showList();
    this.layOut();
  }

  private showTrail(): void {
    const steps = this.shown!.ancestors().reverse();
    this.trail.replaceChildren(...steps.flatMap((step, index): Node[] => {
      const text = `${step.data.name} (${bytes(step.value ?? 0)})`;
      return [
        document.createTextNode(index === 0 ? "" : " › "),
        step === this.shown
          ? make("strong", { "aria-current": "location" }, text)
          : make("button", { type: "button", class: "link", click: () => this.goTo(step) }, text)];
    }));
  }

  private showList(): void {
    const whole = this.shown!.value || 1;
    const children = this.shown!.children ?? [];
    this.list.replaceChildren(...children.slice(0, mostListed).map((child) => {
      const share = (child.value ?? 0) / whole;
      const bar = make("span", { class: "bar", "aria-hidden": "true" });
      bar.style.width = `${Math.max(0.5, share * 100)}%`;
      return make("li", {},
        make("button", { type: "button", class: "link", click: () => this.enter(child) }, child.data.name),
        make("span", { class: "muted" }, `${bytes(child.value ?? 0)} · ${percent(share)}`),
        bar);
    }));
    if (children.length > mostListed) {
      this.list.append(make("li", { class: "muted" },
        `… and ${number(children.length - mostListed)} smaller ones`));
    }
  }

  private resize(): void {
    const ratio = devicePixelRatio || 1;
    this.width = Math.max(100, this.frame.clientWidth);
    this.height = Math.max(280, this.frame.clientHeight);
    this.canvas.width = Math.round(this.width * ratio);
    this.canvas.height = Math.round(this.height * ratio);
    this.canvas.style.height = `${this.height}px`;
    this.canvas.getContext("2d")!.scale(ratio, ratio);
    this.layOut();
  }

  private layOut(): void {
    const { shown } = this;
    if (shown === undefined || this.width === 0) {
      return;
    }
    const copy = shown.copy() as Tile;
    treemap<Branch>()
      .tile(treemapSquarify.ratio(1.4))
      .size([this.width, this.height])
      .paddingOuter(1)
      .paddingInner(1)
      .paddingTop((node) => (node.children && node.depth > 0 && node.y1 - node.y0 > 44 ? headHeight : 1))
      (copy);
    // The copies lead to the nodes of the whole tree, which know their place in it.
    const originals = shown.descendants();
    this.tiles = copy.descendants();
    this.originals = new Map(this.tiles.map((tile, index) => [tile, originals[index]!]));
    this.redraw();
  }

  private draw(): void {
    const context = this.canvas.getContext("2d")!;
    const colours = new Map<string, string>();
    const colour = (name: string) => {
      const known = colours.get(name) ?? cssColour(name);
      colours.set(name, known);
      return known;
    };
    context.clearRect(0, 0, this.width, this.height);
    context.textBaseline = "middle";
    for (const [index, tile] of this.tiles.entries()) {
      const width = tile.x1 - tile.x0;
      const height = tile.y1 - tile.y0;
      if (index === 0 || width < 0.7 || height < 0.7) {
        continue;
      }
      const isGroup = tile.children !== undefined;
      context.fillStyle = isGroup
        ? colour("--tile-group")
        : `hsl(${this.hueOf(tile)} ${colour("--tile-saturation")} ${colour("--tile-lightness")})`;
      context.fillRect(tile.x0, tile.y0, width, height);
      this.drawLabel(context, tile, width, height, colour("--text"), isGroup);
    }
    const active = this.tiles[this.active];
    if (active !== undefined) {
      context.strokeStyle = colour("--accent");
      context.lineWidth = 3;
      context.strokeRect(active.x0 + 1, active.y0 + 1, active.x1 - active.x0 - 2, active.y1 - active.y0 - 2);
    }
  }

  private drawLabel(
    context: CanvasRenderingContext2D, tile: Tile, width: number, height: number, colour: string,
    isGroup: boolean,
  ): void {
    if (width < 40 || height < 16 || (isGroup && height <= 44)) {
      return;
    }
    context.fillStyle = colour;
    context.font = `${isGroup ? "600 " : ""}12px system-ui, sans-serif`;
    context.fillText(fitting(context, tile.data.name, width - 9), tile.x0 + 5, tile.y0 + 11);
    if (!isGroup && height > 34) {
      context.globalAlpha = 0.8;
      context.fillText(fitting(context, bytes(tile.value ?? 0), width - 9), tile.x0 + 5, tile.y0 + 27);
      context.globalAlpha = 1;
    }
  }

  /** Each top-level group has a hue of its own, different from its neighbours. */
  private hueOf(tile: Tile): number {
    const original = this.originals.get(tile) ?? tile;
    const [, top] = original.ancestors().reverse();
    return top === undefined ? 210 : (210 + this.tops.get(top)! * 137.5) % 360;
  }

  private tileAt(event: MouseEvent): Tile | undefined {
    const { offsetX: x, offsetY: y } = event;
    for (let index = this.tiles.length - 1; index > 0; --index) {
      const tile = this.tiles[index]!;
      if (x >= tile.x0 && x < tile.x1 && y >= tile.y0 && y < tile.y1) {
        return tile;
      }
    }
    return undefined;
  }

  private enter(tile: Tile): void {
    const original = this.originals.get(tile) ?? tile;
    if (original.children !== undefined) {
      this.goTo(original);
    } else if (original.data.variable !== undefined) {
      this.context.go(placeHash(this.image, this.image.placeOf(original.data.variable)));
    }
  }

  private onMove(event: PointerEvent): void {
    const tile = this.tileAt(event);
    this.tip.hidden = tile === undefined;
    if (tile !== undefined) {
      this.tip.textContent = this.textOf(tile);
      const left = Math.min(event.offsetX + 12, Math.max(0, this.width - this.tip.offsetWidth - 4));
      this.tip.style.transform = `translate(${left}px, ${event.offsetY + 16}px)`;
    }
  }

  private textOf(tile: Tile): string {
    const { data } = tile;
    const share = percent((tile.value ?? 0) / (this.root?.value || 1));
    const what = data.variable === undefined
      ? count(tile.leaves().length, "variable")
      : this.image.types.text(this.image.variableTypes[data.variable]!);
    return `${data.name}\n${bytes(tile.value ?? 0)} · ${share} of all · ${what}`;
  }

  private onKey(event: KeyboardEvent): void {
    const moves: Record<string, number> = { ArrowRight: 1, ArrowDown: 1, ArrowLeft: -1, ArrowUp: -1 };
    const move = moves[event.key];
    if (move !== undefined) {
      this.active = Math.max(1, Math.min(this.tiles.length - 1, this.active + move));
      const tile = this.tiles[this.active];
      this.announced.textContent = tile === undefined ? "" : this.textOf(tile).replace("\n", ", ");
      this.redraw();
    } else if (event.key === "Enter" && this.tiles[this.active] !== undefined) {
      this.enter(this.tiles[this.active]!);
    } else if (event.key === "Backspace" && this.shown?.parent) {
      this.goTo(this.shown.parent);
    } else {
      return;
    }
    event.preventDefault();
  }
}

/** A text cut to a width, with "…" for what is left out. */
function fitting(context: CanvasRenderingContext2D, text: string, width: number): string {
  if (context.measureText(text).width <= width) {
    return text;
  }
  let low = 0;
  let high = text.length;
  while (low < high) {
    const middle = (low + high + 1) >> 1;
    if (context.measureText(text.slice(0, middle) + "…").width <= width) {
      low = middle;
    } else {
      high = middle - 1;
    }
  }
  return low === 0 ? "" : text.slice(0, low) + "…";
}

function percent(share: number): string {
  return share >= 0.1 || share === 0 ? `${Math.round(share * 100)} %` : `${(share * 100).toFixed(1)} %`;
}

function branchOf(root: Branch, branches: Map<string, Branch>, groups: string[]): Branch {
  let branch = root;
  let key = "";
  for (const group of groups) {
    key += "\n" + group;
    let next = branches.get(key);
    if (next === undefined) {
      next = { name: group, children: [] };
      branches.set(key, next);
      branch.children!.push(next);
    }
    branch = next;
  }
  return branch;
}
