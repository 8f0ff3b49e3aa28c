// Where everything lies: ranges of used addresses on one scale, holes and overlaps. It draws nothing.

import type { Image, Section } from "./image.ts";

/** A range of addresses without large holes. */
export interface Region {
  start: bigint;
  size: number;
  /** Where it begins on the scale, and its length there. */
  x: number;
  length: number;
}

export interface Hole {
  start: bigint;
  size: number;
  section: string;
}

export interface Overlap {
  first: number;
  second: number;
  start: bigint;
  size: number;
}

interface Span {
  start: bigint;
  end: bigint;
}

/** Holes of at least this many bytes, and of this share of all used bytes, break the scale. */
const smallestBreak = 16 * 1024;
const breakShare = 0.25;
/** Smallest share of the scale for a region, and for a break. */
const leastShare = 0.03;
const gapShare = 0.012;
const mostOverlaps = 500;

export class MapModel {
  readonly regions: Region[];
  /** Length of the scale. */
  readonly length: number;
  /** Variables with a size, by address. */
  readonly order: Uint32Array;
  /** Places of the ordered variables on the scale. */
  readonly starts: Float64Array;
  readonly ends: Float64Array;
  /** The largest end among the variables up to each. */
  private readonly reached: Float64Array;
  /** Line of each ordered variable: 0, or more below one that it overlaps. */
  readonly lines: Uint8Array;
  readonly lineCount: number;
  readonly holes: Hole[];
  readonly overlaps: Overlap[];

  /** @param others images on the same scale */
  constructor(readonly image: Image, others: Image[] = []) {
    this.regions = regionsOf([image, ...others].flatMap(spansOf));
    const last = this.regions[this.regions.length - 1];
    this.length = last === undefined ? 1 : last.x + last.length;
    this.order = orderOf(image);
    const count = this.order.length;
    this.starts = new Float64Array(count);
    this.ends = new Float64Array(count);
    this.reached = new Float64Array(count);
    this.lines = new Uint8Array(count);
    this.overlaps = [];
    this.lineCount = this.place();
    this.holes = this.findHoles();
  }

  /** Place of an address on the scale; within a break if nothing lies there. */
  xOf(address: bigint): number {
    const region = this.regionBefore(address);
    if (region === undefined) {
      return 0;
    }
    const inside = Number(address - region.start);
    return region.x + Math.min(inside / Math.max(1, region.size), 1) * region.length;
  }

  /** Address at a place on the scale; undefined within a break. */
  addressAt(x: number): bigint | undefined {
    const region = this.regions.find((each) => x >= each.x && x < each.x + each.length);
    return region &&
      region.start + BigInt(Math.floor(((x - region.x) / region.length) * region.size));
  }

  /** Position of a variable in `order`; -1 for one without size. */
  positionOf(variable: number): number {
    return this.order.indexOf(variable);
  }

  /** First index in `order` of a variable that may lie at or after a place of the scale. */
  firstAt(x: number): number {
    let low = 0;
    let high = this.order.length;
    while (low < high) {
      const middle = (low + high) >> 1;
      if (this.reached[middle]! < x) {
        low = middle + 1;
      } else {
        high = middle;
      }
    }
    return low;
  }

  private regionBefore(address: bigint): Region | undefined {
    let found: Region | undefined;
    for (const region of this.regions) {
      if (region.start <= address) {
        found = region;
      }
    }
    return found ?? this.regions[0];
  }

  /** Gives each variable its place and line, and finds overlaps. */
  private place(): number {
    const { image, order } = this;
    const lineEnds: bigint[] = [];
    let widest = -1;
    let widestEnd = 0n;
    for (let position = 0; position < order.length; ++position) {
      const variable = order[position]!;
      const start = image.addresses[variable]!;
      const end = start + sizeOf(image, variable);
      this.starts[position] = this.xOf(start);
      this.ends[position] = Math.max(this.xOf(end), this.starts[position]!);
      const reachedBefore = position === 0 ? 0 : this.reached[position - 1]!;
      this.reached[position] = Math.max(reachedBefore, this.ends[position]!);
      let line = lineEnds.findIndex((lineEnd) => lineEnd <= start);
      line = line < 0 ? Math.min(lineEnds.length, 3) : line;
      lineEnds[line] = end;
      this.lines[position] = line;
      if (widest >= 0 && start < widestEnd && this.overlaps.length < mostOverlaps) {
        const shared = (end < widestEnd ? end : widestEnd) - start;
        this.overlaps.push({ first: widest, second: variable, start, size: Number(shared) });
      }
      if (end > widestEnd) {
        widest = variable;
        widestEnd = end;
      }
    }
    return Math.max(1, lineEnds.length);
  }

  /** The bytes between the first and the last variable of a data section that no variable uses. */
  private findHoles(): Hole[] {
    const holes: Hole[] = [];
    for (const section of this.image.sections) {
      if (section.kind !== "code") {
        this.findHolesIn(section, holes);
      }
    }
    return holes.sort((first, second) => second.size - first.size);
  }

  private findHolesIn(section: Section, holes: Hole[]): void {
    const { image, order } = this;
    let reached = section.address;
    const add = (end: bigint) => {
      if (end > reached) {
        holes.push({ start: reached, size: Number(end - reached), section: section.name });
      }
    };
    for (const variable of order) {
      const start = image.addresses[variable]!;
      const end = start + sizeOf(image, variable);
      if (end <= section.address || start >= section.address + section.size) {
        continue;
      }
      add(start);
      reached = end > reached ? end : reached;
    }
    add(section.address + section.size);
  }
}

function sizeOf(image: Image, variable: number): bigint {
  return BigInt(Math.trunc(image.sizes[variable]!));
}

function orderOf(image: Image): Uint32Array {
  const variables: number[] = [];
  for (let variable = 0; variable < image.variableCount; ++variable) {
    if (image.sizes[variable]! > 0) {
      variables.push(variable);
    }
  }
  const { addresses, sizes } = image;
  variables.sort((first, second) =>
    addresses[first]! < addresses[second]! ? -1
      : addresses[first]! > addresses[second]! ? 1 : sizes[second]! - sizes[first]!);
  return Uint32Array.from(variables);
}

function spansOf(image: Image): Span[] {
  const spans: Span[] = image.sections
    .filter(({ size }) => size > 0n)
    .map(({ address, size }) => ({ start: address, end: address + size }));
  for (let variable = 0; variable < image.variableCount; ++variable) {
    const size = sizeOf(image, variable);
    if (size > 0n) {
      const start = image.addresses[variable]!;
      spans.push({ start, end: start + size });
    }
  }
  return spans;
}

function regionsOf(spans: Span[]): Region[] {
  const merged: Span[] = [];
  spans.sort((first, second) => (first.start < second.start ? -1 : first.start > second.start ? 1 : 0));
  for (const { start, end } of spans) {
    const last = merged[merged.length - 1];
    if (last !== undefined && start <= last.end) {
      last.end = end > last.end ? end : last.end;
    } else {
      merged.push({ start, end });
    }
  }
  const used = merged.reduce((sum, { start, end }) => sum + Number(end - start), 0);
  return onScale(joinNear(merged, Math.max(smallestBreak, used * breakShare)));
}

function joinNear(spans: Span[], farthest: number): Span[] {
  const joined: Span[] = [];
  for (const { start, end } of spans) {
    const last = joined[joined.length - 1];
    if (last !== undefined && Number(start - last.end) < farthest) {
      last.end = end;
    } else {
      joined.push({ start, end });
    }
  }
  return joined;
}

function onScale(spans: Span[]): Region[] {
  const sizes = spans.map(({ start, end }) => Number(end - start));
  const total = sizes.reduce((sum, size) => sum + size, 0);
  let x = 0;
  return spans.map(({ start }, index) => {
    const size = sizes[index]!;
    const length = Math.max(size, total * leastShare);
    const region = { start, size, x, length };
    x += length + total * gapShare;
    return region;
  });
}
