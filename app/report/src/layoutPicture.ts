// The layout of a structure drawn to scale: rows of cells, one cell a byte, with holes and padding
// hatched and bit fields bit by bit. Long members are cut in the middle.

import { makeSvg } from "./dom.ts";
import { bytes, count, familyOf, number } from "./format.ts";
import type { Image } from "./image.ts";
import { Entry, Kind, type LayoutEntry } from "./types.ts";

/** A range of bits in the order of the drawing. */
interface Stretch {
  entry: LayoutEntry;
  index: number;
  start: number;
  end: number;
}

/** A row of the picture: bytes from a first one on, or a number of omitted bytes. */
type PictureRow = { first: number } | { skipped: number; entry: LayoutEntry };

const cellWidth = 76;
const cellHeight = 40;
const skipHeight = 22;
const headHeight = 22;
const marginWidth = 64;
const mostRows = 400;

export function layoutPicture(image: Image, type: number, width: number): SVGSVGElement {
  const size = image.types.size(type);
  const perRow = bytesPerRow(size, width);
  const stretches = stretchesOf(image, type);
  const rows = rowsOf(stretches, size, perRow).slice(0, mostRows);
  const cell = Math.min(cellWidth, (width - marginWidth - 4) / perRow);
  const height = rows.reduce(
    (sum, row) => sum + ("skipped" in row ? skipHeight : cellHeight), headHeight);
  const svg = makeSvg("svg", {
    class: "layout", role: "img", width: marginWidth + cell * perRow + 2, height: height + 2,
    viewBox: `0 0 ${marginWidth + cell * perRow + 2} ${height + 2}`,
    "aria-label": `Layout of ${image.types.text(type)}, ${count(size, "byte")}; the table lists it`,
  });
  drawHead(svg, perRow, cell);
  let top = headHeight;
  for (const row of rows) {
    if ("skipped" in row) {
      drawSkipped(svg, row, top, cell * perRow);
      top += skipHeight;
    } else {
      drawRow(svg, image, stretches, row.first, perRow, Math.min(perRow, size - row.first), cell, top);
      top += cellHeight;
    }
  }
  return svg;
}

function bytesPerRow(size: number, width: number): number {
  const fitting = Math.floor((width - marginWidth) / 44);
  const wanted = size > 64 && fitting >= 16 ? 16 : fitting >= 8 ? 8 : 4;
  return size < wanted ? Math.max(1, size <= 4 ? 4 : wanted) : wanted;
}

/** Members before the gaps between them. Bit 0 of a byte is where its field begins. */
function stretchesOf(image: Image, type: number): Stretch[] {
  return image.types.layout(type).flatMap((entry, index): Stretch[] => {
    if (entry.kind === Entry.UnplacedBaseClass || entry.kind === Entry.UnusedBits) {
      return [];
    }
    if (entry.kind !== Entry.BitField) {
      return [{ entry, index, start: entry.offset * 8, end: (entry.offset + entry.size) * 8 }];
    }
    const storage = image.types.size(entry.type);
    const start = image.isBigEndian
      ? (entry.offset + storage) * 8 - entry.bit - entry.bits
      : entry.offset * 8 + entry.bit;
    return entry.bit < 0 ? [] : [{ entry, index, start, end: start + entry.bits }];
  });
}

/** The rows, without those that lie completely in the middle of one long member. */
function rowsOf(stretches: Stretch[], size: number, perRow: number): PictureRow[] {
  const rows: PictureRow[] = [];
  const sorted = stretches.filter((stretch) => stretch.end - stretch.start > perRow * 8 * 4);
  for (let first = 0; first < size && rows.length < mostRows; first += perRow) {
    const long = sorted.find(
      ({ start, end }) => start <= (first - perRow) * 8 && (first + 2 * perRow) * 8 <= end);
    if (long !== undefined) {
      const end = Math.floor(long.end / 8 / perRow) * perRow - perRow;
      rows.push({ skipped: end - first, entry: long.entry });
      first = end - perRow;
    } else {
      rows.push({ first });
    }
  }
  return rows;
}

function drawHead(svg: SVGSVGElement, perRow: number, cell: number): void {
  for (let byte = 0; byte < perRow; ++byte) {
    svg.append(makeSvg("text", {
      x: marginWidth + (byte + 0.5) * cell, y: 14, class: "layout-scale", "text-anchor": "middle",
    }, `+${byte}`));
  }
}

function drawSkipped(
  svg: SVGSVGElement, row: { skipped: number; entry: LayoutEntry }, top: number, width: number,
): void {
  svg.append(makeSvg("text", {
    x: marginWidth + width / 2, y: top + 15, class: "layout-scale", "text-anchor": "middle",
  }, `⋮ ${bytes(row.skipped)} more of ${row.entry.name || "the same"} ⋮`));
}

function drawRow(
  svg: SVGSVGElement, image: Image, stretches: Stretch[], first: number, perRow: number,
  byteCount: number, cell: number, top: number,
): void {
  svg.append(makeSvg("text", {
    x: marginWidth - 8, y: top + cellHeight / 2 + 4, class: "layout-scale", "text-anchor": "end",
  }, "0x" + first.toString(16).padStart(2, "0")));
  svg.append(makeSvg("rect", {
    x: marginWidth, y: top, width: cell * byteCount, height: cellHeight, class: "layout-unused",
  }));
  const firstBit = first * 8;
  const endBit = (first + perRow) * 8;
  for (const stretch of stretches) {
    if (stretch.start < endBit && stretch.end > firstBit) {
      drawStretch(svg, image, stretch, firstBit, endBit, cell, top);
    }
  }
  drawTicks(svg, stretches, first, byteCount, cell, top);
}

function drawStretch(
  svg: SVGSVGElement, image: Image, stretch: Stretch, firstBit: number, endBit: number,
  cell: number, top: number,
): void {
  const { entry } = stretch;
  const start = Math.max(stretch.start, firstBit);
  const end = Math.min(stretch.end, endBit);
  const x = marginWidth + ((start - firstBit) / 8) * cell;
  const width = ((end - start) / 8) * cell;
  const title = titleOf(image, entry);
  const group = makeSvg("g", { "data-entry": stretch.index, class: "layout-entry" },
    makeSvg("title", {}, title),
    makeSvg("rect", {
      x, y: top, width: Math.max(1, width), height: cellHeight,
      class: `layout-box ${classOf(image, entry)}`,
    }));
  const isStart = start === stretch.start;
  const label = isStart ? labelOf(entry) : "…";
  const fitting = Math.floor((width - 6) / 7);
  if (fitting >= 1 && (isStart || fitting > 3)) {
    group.append(makeSvg("text", {
      x: x + 4, y: top + cellHeight / 2 + 4, class: isStart ? "layout-label" : "layout-scale",
    }, label.length > fitting ? label.slice(0, Math.max(1, fitting - 1)) + "…" : label));
  }
  svg.append(group);
}

/** Small marks between bytes, and between bits where bit fields are. */
function drawTicks(
  svg: SVGSVGElement, stretches: Stretch[], first: number, byteCount: number, cell: number,
  top: number,
): void {
  const fields = stretches.filter(({ entry }) => entry.kind === Entry.BitField);
  for (let byte = 0; byte < byteCount; ++byte) {
    const x = marginWidth + byte * cell;
    const bit = (first + byte) * 8;
    if (byte > 0) {
      svg.append(makeSvg("path", { d: `M${x} ${top + cellHeight - 5}v5`, class: "layout-tick" }));
    }
    if (fields.some(({ start, end }) => start < bit + 8 && end > bit)) {
      const marks = [1, 2, 3, 4, 5, 6, 7]
        .map((index) => `M${x + (index * cell) / 8} ${top + cellHeight - 3}v3`).join("");
      svg.append(makeSvg("path", { d: marks, class: "layout-tick" }));
    }
  }
}

function labelOf(entry: LayoutEntry): string {
  switch (entry.kind) {
    case Entry.Hole:
      return "hole";
    case Entry.Padding:
      return "padding";
    case Entry.BaseClass:
      return "base class";
    default:
      return entry.name === "" ? "(anonymous)" : entry.name;
  }
}

function classOf(image: Image, entry: LayoutEntry): string {
  switch (entry.kind) {
    case Entry.Hole:
    case Entry.Padding:
      return "layout-hole";
    case Entry.BitField:
      return "fill-bits";
    default:
      return `fill-${familyOf(image.types, entry.type)}`;
  }
}

/** The text of an entry, for a person. */
export function titleOf(image: Image, entry: LayoutEntry): string {
  const type = image.types.text(entry.type);
  const size = entry.kind === Entry.BitField
    ? count(entry.bits, "bit") : count(entry.size, "byte");
  const name = labelOf(entry);
  return `${name}${type === "" ? "" : `: ${type}`}, ${size} at ${number(entry.offset)}`;
}

/** Members of a union, one strip each, on the scale of the union. */
export function unionPicture(image: Image, type: number, width: number): SVGSVGElement {
  const size = Math.max(1, image.types.size(type));
  const entries = image.types.layout(type).filter(({ kind }) => kind !== Entry.UnplacedBaseClass);
  const room = width - 4;
  const strip = 30;
  const svg = makeSvg("svg", {
    class: "layout", role: "img", width, height: entries.length * strip + 24,
    viewBox: `0 0 ${width} ${entries.length * strip + 24}`,
    "aria-label": `Layout of ${image.types.text(type)}, ${count(size, "byte")}; the table lists it`,
  });
  svg.append(makeSvg("text", { x: 1, y: 14, class: "layout-scale" }, "0"),
    makeSvg("text", { x: room, y: 14, class: "layout-scale", "text-anchor": "end" }, bytes(size)));
  for (const [index, entry] of entries.entries()) {
    const isField = entry.kind === Entry.BitField;
    const start = isField ? Math.max(0, entry.bit) / 8 + entry.offset : entry.offset;
    const length = isField ? entry.bits / 8 : entry.size;
    const top = 20 + index * strip;
    svg.append(
      makeSvg("rect", { x: 1, y: top, width: room, height: strip - 4, class: "layout-unused" }),
      makeSvg("g", { "data-entry": index, class: "layout-entry" },
        makeSvg("title", {}, titleOf(image, entry)),
        makeSvg("rect", {
          x: 1 + (start / size) * room, y: top, width: Math.max(2, (length / size) * room),
          height: strip - 4, class: `layout-box ${classOf(image, entry)}`,
        }),
        makeSvg("text", { x: 8 + (start / size) * room, y: top + 17, class: "layout-label" },
          labelOf(entry))),
    );
  }
  return svg;
}

export function hasPicture(image: Image, type: number): boolean {
  return image.types.isClass(type) && image.types.layout(type).length > 0 &&
    image.types.kind(type) !== Kind.None;
}
