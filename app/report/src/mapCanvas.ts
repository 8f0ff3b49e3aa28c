// Draws a memory map and lets the user move in it: sections, variables and their parts, one line each,
// on the scale of a `MapModel`. The wheel and the keys zoom.

import { cssColour, make, onceAFrame } from "./dom.ts";
import { bytes, count, familyOfPlace } from "./format.ts";
import type { Image, Place, Section } from "./image.ts";
import type { MapModel } from "./mapModel.ts";
import { placeAt } from "./rows.ts";
import { onColourChange } from "./theme.ts";

export interface MapCanvasOptions {
  label: string;
  onSelect(place: Place): void;
  onOpen(place: Place): void;
  /** Colour variable of a variable, if it isn't the one of its type. */
  colourOf?(variable: number): string | undefined;
  /** Called after the user moved the map. */
  onMove?(): void;
}

interface Box {
  left: number;
  right: number;
  top: number;
  bottom: number;
  place?: Place;
  section?: Section;
}

const rulerHeight = 40;
const sectionHeight = 28;
const variableHeight = 52;
const partHeight = 24;
const partLevels = 4;
const gap = 3;
const mostBoxes = 6000;
const widestZoom = 48;

export class MapCanvas {
  readonly element: HTMLElement;
  private readonly canvas: HTMLCanvasElement;
  private readonly tip = make("div", { class: "map-tip", hidden: true });
  private readonly announced = make("p", { class: "offscreen", "aria-live": "polite" });
  private context!: CanvasRenderingContext2D;
  private boxes: Box[] = [];
  private width = 0;
  /** Position where the last label of the ruler ends. */
  private rulerEnd = 0;
  private from = 0;
  private to: number;
  private selected: Place | undefined;
  private colours = new Map<string, string>();
  private readonly redraw = onceAFrame(() => this.draw());
  private drag: { x: number; from: number; isMoved: boolean } | undefined;

  constructor(readonly model: MapModel, private readonly options: MapCanvasOptions) {
    this.to = model.length;
    this.canvas = make("canvas", {
      class: "map-canvas", tabindex: 0, role: "application", "aria-roledescription": "memory map",
      "aria-label": options.label +
        ". Left and right move, plus and minus zoom, Home shows all, N and P step through the " +
        "variables, Enter opens one. Tables below list the same.",
      keydown: (event: KeyboardEvent) => this.onKey(event),
    });
    this.element = make("div", { class: "map-frame" }, this.canvas, this.tip, this.announced);
    this.listen();
    new ResizeObserver(() => this.resize()).observe(this.element);
    onColourChange(() => this.recolour());
  }

  get range(): [number, number] {
    return [this.from, this.to];
  }

  show(from: number, to: number, isOwnMove = true): void {
    const length = Math.min(Math.max(to - from, this.shortest), this.model.length);
    this.from = Math.min(Math.max(0, from), this.model.length - length);
    this.to = this.from + length;
    if (isOwnMove) {
      this.options.onMove?.();
    }
    this.redraw();
  }

  showAll(): void {
    this.show(0, this.model.length);
  }

  zoom(factor: number, at = (this.from + this.to) / 2): void {
    this.show(at - (at - this.from) * factor, at + (this.to - at) * factor);
  }

  /** Selects the next or previous variable. */
  step(direction: number): void {
    const { model } = this;
    const current = this.selected === undefined
      ? model.firstAt(this.from) - (direction > 0 ? 1 : 0)
      : model.positionOf(this.selected.variable);
    const position = Math.max(0, Math.min(model.order.length - 1, current + direction));
    const variable = model.order[position];
    if (variable !== undefined) {
      this.select(model.image.placeOf(variable));
    }
  }

  /** Marks a place and brings it into view. */
  select(place: Place, isAnnounced = true): void {
    this.selected = place;
    const { image } = this.model;
    const start = this.model.xOf(image.addressOf(place));
    const end = this.model.xOf(image.addressOf(place) + BigInt(Math.max(1, Math.trunc(place.size))));
    const length = end - start;
    if (start < this.from || end > this.to || length / (this.to - this.from) < 0.01) {
      const wanted = Math.max(length * 6, 64, this.shortest);
      this.show(start + length / 2 - wanted / 2, start + length / 2 + wanted / 2);
    }
    this.announced.textContent =
      `${place.path}, ${count(place.size, "byte")} at ${image.formatAddress(image.addressOf(place))}`;
    if (isAnnounced) {
      this.options.onSelect(place);
    }
    this.redraw();
  }

  /** Marks a place without moving the map. */
  mark(place: Place): void {
    this.selected = place;
    this.redraw();
  }

  private get shortest(): number {
    return Math.min(this.model.length, Math.max(4, this.width / widestZoom));
  }

  private listen(): void {
    const { canvas } = this;
    canvas.addEventListener("wheel", (event) => this.onWheel(event), { passive: false });
    canvas.addEventListener("pointerdown", (event) => {
      this.drag = { x: event.clientX, from: this.from, isMoved: false };
      canvas.setPointerCapture(event.pointerId);
    });
    canvas.addEventListener("pointermove", (event) => this.onPointerMove(event));
    canvas.addEventListener("pointerup", (event) => this.onPointerUp(event));
    canvas.addEventListener("pointerleave", () => { this.tip.hidden = true; });
    canvas.addEventListener("dblclick", (event) => {
      const box = this.boxAt(event);
      if (box?.place !== undefined) {
        this.options.onOpen(box.place);
      }
    });
    canvas.addEventListener("focus", () => this.redraw());
    canvas.addEventListener("blur", () => this.redraw());
  }

  private onWheel(event: WheelEvent): void {
    event.preventDefault();
    if (Math.abs(event.deltaX) > Math.abs(event.deltaY) || event.shiftKey) {
      const delta = (event.deltaX || event.deltaY) / this.width;
      this.show(this.from + delta * (this.to - this.from), this.to + delta * (this.to - this.from));
      return;
    }
    this.zoom(Math.exp(Math.max(-80, Math.min(80, event.deltaY)) * 0.004), this.xAt(event));
  }

  private onPointerMove(event: PointerEvent): void {
    const { drag } = this;
    if (drag !== undefined) {
      const moved = event.clientX - drag.x;
      drag.isMoved ||= Math.abs(moved) > 4;
      if (drag.isMoved) {
        const length = this.to - this.from;
        const from = drag.from - (moved / this.width) * length;
        this.show(from, from + length);
        return;
      }
    }
    this.showTip(event);
  }

  private onPointerUp(event: PointerEvent): void {
    const isClick = this.drag !== undefined && !this.drag.isMoved;
    this.drag = undefined;
    const box = isClick ? this.boxAt(event) : undefined;
    if (box?.place !== undefined) {
      this.selected = box.place;
      this.options.onSelect(box.place);
      this.redraw();
    } else if (box?.section !== undefined) {
      const { address, size } = box.section;
      this.show(this.model.xOf(address), this.model.xOf(address + size));
    }
  }

  private onKey(event: KeyboardEvent): void {
    if (event.ctrlKey || event.metaKey || event.altKey) {
      return;
    }
    const length = this.to - this.from;
    const actions: Record<string, () => void> = {
      ArrowLeft: () => this.show(this.from - length / 8, this.to - length / 8),
      ArrowRight: () => this.show(this.from + length / 8, this.to + length / 8),
      ArrowUp: () => this.zoom(0.7),
      ArrowDown: () => this.zoom(1 / 0.7),
      "+": () => this.zoom(0.7),
      "=": () => this.zoom(0.7),
      "-": () => this.zoom(1 / 0.7),
      Home: () => this.showAll(),
      n: () => this.step(1),
      p: () => this.step(-1),
      Enter: () => {
        if (this.selected !== undefined) {
          this.options.onOpen(this.selected);
        }
      },
    };
    const action = actions[event.key];
    if (action !== undefined) {
      event.preventDefault();
      action();
    }
  }

  private xAt(event: MouseEvent): number {
    return this.from + (event.offsetX / this.width) * (this.to - this.from);
  }

  private boxAt(event: MouseEvent): Box | undefined {
    const { offsetX: x, offsetY: y } = event;
    for (let index = this.boxes.length - 1; index >= 0; --index) {
      const box = this.boxes[index]!;
      if (x >= box.left && x < box.right && y >= box.top && y < box.bottom) {
        return box;
      }
    }
    return undefined;
  }

  private showTip(event: MouseEvent): void {
    const box = this.boxAt(event);
    const { image } = this.model;
    let text = "";
    if (box?.place !== undefined) {
      const { place } = box;
      text = `${place.path}\n${image.formatAddress(image.addressOf(place))} · ` +
             `${count(place.size, "byte")} · ${image.types.text(place.type)}`;
    } else if (box?.section !== undefined) {
      const { section } = box;
      text = `${section.name} (${section.kind})\n${image.formatAddress(section.address)} · ` +
             bytes(Number(section.size));
    } else {
      const address = this.model.addressAt(this.xAt(event));
      text = address === undefined ? "" : image.formatAddress(address);
    }
    this.tip.hidden = text === "";
    this.tip.textContent = text;
    const left = Math.min(event.offsetX + 12, Math.max(0, this.width - this.tip.offsetWidth - 4));
    this.tip.style.transform = `translate(${left}px, ${event.offsetY + 16}px)`;
  }

  private recolour(): void {
    this.colours.clear();
    // Paper has another width as well.
    this.resize();
  }

  private colour(name: string): string {
    let colour = this.colours.get(name);
    if (colour === undefined) {
      colour = cssColour(name);
      this.colours.set(name, colour);
    }
    return colour;
  }

  private get variablesTop(): number {
    return rulerHeight + (this.model.image.sections.length > 0 ? sectionHeight + gap : 0);
  }

  private resize(): void {
    const ratio = devicePixelRatio || 1;
    this.width = Math.max(50, this.element.clientWidth);
    const height = this.variablesTop + this.model.lineCount * (variableHeight + gap) +
                   partLevels * (partHeight + gap) + 6;
    this.canvas.width = Math.round(this.width * ratio);
    this.canvas.height = Math.round(height * ratio);
    this.canvas.style.height = `${height}px`;
    this.context = this.canvas.getContext("2d")!;
    this.context.scale(ratio, ratio);
    this.draw();
  }

  private px(x: number): number {
    return ((x - this.from) / (this.to - this.from)) * this.width;
  }

  private draw(): void {
    if (this.context === undefined || this.element.offsetParent === null) {
      return;
    }
    const { context } = this;
    this.boxes = [];
    this.rulerEnd = 0;
    context.clearRect(0, 0, this.width, this.canvas.height);
    context.font = '12px ui-monospace, "SF Mono", Menlo, Consolas, "DejaVu Sans Mono", monospace';
    context.textBaseline = "middle";
    this.drawRegions();
    this.drawSections();
    this.drawVariables();
    this.drawHint();
    this.drawSelected();
  }

  /** Says what the empty space below the variables is for. */
  private drawHint(): void {
    const top = this.variablesTop + this.model.lineCount * (variableHeight + gap);
    if (!this.boxes.some((box) => box.top >= top)) {
      const { context } = this;
      context.fillStyle = this.colour("--muted");
      context.fillText("Members and elements appear here when you zoom in.", 8, top + 16);
    }
  }

  private drawRegions(): void {
    const { context } = this;
    const top = this.variablesTop;
    // Further lines hold overlapping variables: beside those nothing is missing.
    const bottom = top + variableHeight + gap;
    for (const region of this.model.regions) {
      const left = Math.max(0, this.px(region.x));
      const right = Math.min(this.width, this.px(region.x + region.length));
      if (right <= 0 || left >= this.width) {
        continue;
      }
      context.fillStyle = this.colour("--map-free");
      context.fillRect(left, top, Math.max(1, right - left), bottom - top - gap);
      this.hatch(left, top, Math.max(1, right - left), bottom - top - gap);
      this.drawRuler(region.start, region.size, region.x, region.length, left, right);
    }
    this.clearCode(top, bottom - top - gap);
  }

  /** Where there is code, no variable is missing. */
  private clearCode(top: number, height: number): void {
    const { context, model } = this;
    for (const { kind, address, size } of model.image.sections) {
      const left = Math.max(-1, this.px(model.xOf(address)));
      const right = Math.min(this.width + 1, this.px(model.xOf(address + size)));
      if (kind === "code" && right > left) {
        context.fillStyle = this.colour("--map-free");
        context.fillRect(left, top, right - left, height);
      }
    }
  }

  private hatch(left: number, top: number, width: number, height: number): void {
    const { context } = this;
    context.save();
    context.beginPath();
    context.rect(left, top, width, height);
    context.clip();
    context.strokeStyle = this.colour("--map-hatch");
    context.lineWidth = 1;
    context.beginPath();
    for (let x = left - height - (left % 8); x < left + width; x += 8) {
      context.moveTo(x, top + height);
      context.lineTo(x + height, top);
    }
    context.stroke();
    context.restore();
  }

  private drawRuler(
    start: bigint, size: number, x: number, length: number, left: number, right: number,
  ): void {
    const { context } = this;
    const { image } = this.model;
    context.fillStyle = this.colour("--muted");
    context.strokeStyle = this.colour("--border");
    const perByte = (length / size / (this.to - this.from)) * this.width;
    const labelWidth = context.measureText(image.formatAddress(start)).width + 18;
    const step = 2 ** Math.max(0, Math.ceil(Math.log2(labelWidth / perByte)));
    const firstByte = Math.max(0, ((this.from - x) / length) * size);
    const lastByte = Math.min(size, ((this.to - x) / length) * size);
    const origin = Number(start % BigInt(step));
    const tick = (byte: number) => {
      const at = this.px(x + (byte / size) * length);
      const text = image.formatAddress(start + BigInt(Math.round(byte)));
      context.fillRect(at, rulerHeight - 8, 1, 6);
      const textWidth = context.measureText(text).width;
      const textLeft = Math.max(2, Math.min(at, this.width - textWidth - 2));
      const isInRegion = byte === 0 || textLeft + textWidth <= right;
      if (textLeft >= this.rulerEnd && isInRegion) {
        context.fillText(text, textLeft, rulerHeight - 18);
        this.rulerEnd = textLeft + textWidth + 10;
      }
    };
    if (firstByte === 0) {
      tick(0);
    }
    const begin = Math.ceil((firstByte + origin) / step) * step - origin;
    for (let byte = Math.max(begin, step - origin); byte <= lastByte; byte += step) {
      tick(byte);
    }
    const isWhole = x >= this.from && x + length <= this.to;
    if (right - left > 90 && isWhole) {
      context.fillText(bytes(size), Math.max(2, left), 9);
    }
  }

  private drawSections(): void {
    const { model } = this;
    for (const section of model.image.sections) {
      const left = this.px(model.xOf(section.address));
      const right = this.px(model.xOf(section.address + section.size));
      if (section.size > 0n && right > 0 && left < this.width) {
        this.box(left, right, rulerHeight, sectionHeight, `--section-${section.kind}`, section.name);
        this.boxes.push({
          left, right: Math.max(right, left + 2), top: rulerHeight,
          bottom: rulerHeight + sectionHeight, section,
        });
      }
    }
  }

  private drawVariables(): void {
    const { model } = this;
    const drawn = new Array<number>(model.lineCount).fill(-1);
    for (let at = model.firstAt(this.from); at < model.order.length; ++at) {
      const start = model.starts[at]!;
      if (start > this.to || this.boxes.length > mostBoxes) {
        break;
      }
      if (model.ends[at]! < this.from) {
        continue;
      }
      const line = model.lines[at]!;
      const left = this.px(start);
      const right = Math.max(this.px(model.ends[at]!), left + 1);
      // Something drawn over the same pixel would show nothing more.
      if (right <= drawn[line]! + 0.5) {
        continue;
      }
      drawn[line] = right;
      this.drawVariable(model.order[at]!, left, right, line);
    }
  }

  private drawVariable(variable: number, left: number, right: number, line: number): void {
    const { image } = this.model;
    const place = image.placeOf(variable);
    const top = this.variablesTop + line * (variableHeight + gap);
    const fill = this.options.colourOf?.(variable) ?? `--fill-${familyOfPlace(image.types, place)}`;
    this.box(left, right, top, variableHeight, fill, place.path, line > 0);
    this.boxes.push({ left, right, top, bottom: top + variableHeight, place });
    if (right - left > 30) {
      const partsTop = this.variablesTop + this.model.lineCount * (variableHeight + gap);
      this.drawParts(place, left, right, partsTop, partLevels);
    }
  }

  /** Draws the parts of a place below it; parts smaller than a pixel are omitted. */
  private drawParts(place: Place, left: number, right: number, top: number, levels: number): void {
    const { image } = this.model;
    const children = levels === 0 || place.size === 0 ? 0 : image.childCount(place);
    const perByte = (right - left) / place.size;
    if (children === 0 || ((right - left) / children < 3 && children > 8)) {
      return;
    }
    const stride = image.types.stride(image.types.withoutTypedefs(place.type));
    let first = 0;
    let last = children;
    if (stride > 0) {
      first = Math.max(0, Math.floor(-left / perByte / stride));
      last = Math.min(children, Math.ceil((this.width - left) / perByte / stride));
    }
    for (let index = first; index < last && this.boxes.length < mostBoxes; ++index) {
      const child = image.child(place, index);
      const [start, end] = this.partRange(child, place, left, perByte);
      if (end < 0 || start > this.width || end - start < 1) {
        continue;
      }
      this.box(start, end, top, partHeight, `--fill-${familyOfPlace(image.types, child)}`,
               child.label.replace(/^\./, ""));
      this.boxes.push({ left: start, right: end, top, bottom: top + partHeight, place: child });
      this.drawParts(child, start, end, top + partHeight + gap, levels - 1);
    }
  }

  private partRange(
    child: Place, parent: Place, left: number, perByte: number,
  ): [number, number] {
    const { image } = this.model;
    let start = child.offset - parent.offset;
    let size = child.size;
    if (child.isBitField && child.bit >= 0) {
      start += (image.isBigEndian ? child.size * 8 - child.bit - child.bits : child.bit) / 8;
      size = child.bits / 8;
    }
    return [left + start * perByte, left + (start + size) * perByte];
  }

  private box(
    left: number, right: number, top: number, height: number, fill: string, label: string,
    isWarned = false,
  ): void {
    const { context } = this;
    const from = Math.max(-1, left);
    const to = Math.min(this.width + 1, right);
    const width = Math.max(1, to - from - (right - left > 3 ? 1 : 0));
    context.fillStyle = this.colour(fill);
    context.fillRect(from, top, width, height);
    if (isWarned) {
      context.fillStyle = this.colour("--danger");
      context.fillRect(from, top, width, 2);
    }
    const room = Math.floor((width - 8) / 7.23);
    if (room >= 2) {
      context.fillStyle = this.colour("--text");
      const text = label.length > room ? label.slice(0, room - 1) + "…" : label;
      context.fillText(text, Math.max(from, 0) + 4, top + height / 2 + 1);
    }
  }

  private drawSelected(): void {
    const { context, selected } = this;
    if (selected === undefined) {
      return;
    }
    const box = this.boxes.find(
      ({ place }) => place?.variable === selected.variable && place.path === selected.path);
    if (box !== undefined) {
      context.strokeStyle = this.colour("--accent");
      context.lineWidth = 2.5;
      context.strokeRect(
        box.left, box.top, Math.max(3, box.right - box.left - 1), box.bottom - box.top);
    }
  }
}

/** The part of an image that lies at an address. */
export function placeAtAddress(image: Image, model: MapModel, address: bigint): Place | undefined {
  for (const variable of model.order) {
    const place = placeAt(image, variable, address);
    if (place !== undefined) {
      return place;
    }
  }
  return undefined;
}
