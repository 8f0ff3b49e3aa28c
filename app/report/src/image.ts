// One image: its variables, and the places within them according to their types.

import { type NumberColumn, bytesOfBase64, unpackAddresses, unpackNumbers } from "./columns.ts";
import type { PackedImage, PackedTable } from "./pack.ts";
import { Kind, Types } from "./types.ts";

const lastAddress = 0xffff_ffff_ffff_ffffn;

/** A variable or a part of one. */
export interface Place {
  variable: number;
  /** Name of the variable with the steps to the part. */
  path: string;
  /** The last step of the path, for a row below its parent. */
  label: string;
  type: number;
  /** Bytes from the start of the variable. */
  offset: number;
  size: number;
  isBitField: boolean;
  /** From the least significant bit of the storage unit; -1 for none. */
  bit: number;
  bits: number;
  parent?: Place;
}

export interface Section {
  name: string;
  address: bigint;
  size: bigint;
  /** "code", "constants", "data" or "zero". */
  kind: string;
}

export const sectionKinds = ["code", "constants", "data", "zero"];
const deepestNesting = 100;

/** Initial content of memory: bytes of the file, or zeros. */
interface Chunk {
  address: bigint;
  length: number;
  /** Offset in the bytes; -1 for zeros. */
  position: number;
}

export class Image {
  readonly types: Types;
  readonly variableCount: number;
  readonly addresses: BigUint64Array;
  readonly sizes: NumberColumn;
  readonly variableTypes: NumberColumn;
  readonly unitNumbers: NumberColumn;
  readonly scopeNumbers: NumberColumn;
  readonly sections: Section[];
  readonly isBigEndian: boolean;
  /** Hexadecimal digits of an address. */
  readonly addressDigits: number;
  private readonly nameNumbers: NumberColumn;
  private readonly names: (string | undefined)[];
  private byName: Map<string, number[]> | undefined;
  private readonly chunks: Chunk[];
  private readonly bytes: Uint8Array;

  constructor(readonly pack: PackedImage) {
    this.types = new Types(pack);
    const variables = pack.variables;
    this.variableCount = variables.count;
    const column = (name: string) => unpackNumbers(variables[name]!, variables.count);
    this.nameNumbers = column("name");
    this.scopeNumbers = column("scope");
    this.variableTypes = column("type");
    this.addresses = unpackAddresses(variables["address"]!, variables.count);
    this.sizes = column("size");
    this.unitNumbers = column("unit");
    this.names = new Array<string | undefined>(this.variableCount);
    this.sections = readSections(pack);
    this.isBigEndian = pack.byteOrder === "big";
    this.chunks = readChunks(pack.values);
    this.bytes = bytesOfBase64(pack.values?.bytes ?? "");
    this.addressDigits = this.countAddressDigits();
  }

  /** Name after all its scopes. */
  name(variable: number): string {
    return (this.names[variable] ??= this.qualifiedName(variable));
  }

  ownName(variable: number): string {
    return this.pack.texts[this.nameNumbers[variable]!]!;
  }

  scope(variable: number): string {
    return this.pack.texts[this.scopeNumbers[variable]!]!;
  }

  unit(variable: number): string {
    return this.pack.texts[this.unitNumbers[variable]!]!;
  }

  /** The innermost section that holds an address. */
  sectionAt(address: bigint): Section | undefined {
    let best: Section | undefined;
    for (const section of this.sections) {
      const isInside = address >= section.address && address - section.address < section.size;
      if (isInside && (best === undefined || section.size < best.size)) {
        best = section;
      }
    }
    return best;
  }

  placeOf(variable: number): Place {
    return {
      variable,
      path: this.name(variable),
      label: this.name(variable),
      type: this.variableTypes[variable]!,
      offset: 0,
      size: this.sizes[variable]!,
      isBitField: false,
      bit: -1,
      bits: 0,
    };
  }

  /** Addresses wrap around at 2^64, as they do in the program. */
  addressOf(place: Place): bigint {
    return BigInt.asUintN(64, this.addresses[place.variable]! + BigInt(Math.trunc(place.offset)));
  }

  formatAddress(address: bigint): string {
    return "0x" + address.toString(16).padStart(this.addressDigits, "0");
  }

  /** Number of members or elements; 0 for a leaf. */
  childCount(place: Place): number {
    const type = this.types.withoutTypedefs(place.type);
    if (place.isBitField || type === 0 || depthOf(place) >= deepestNesting) {
      return 0;
    }
    if (this.types.isClass(type)) {
      return this.isInItself(place, type) ? 0 : this.types.membersOf(type).length;
    }
    return this.types.kind(type) === Kind.Array ? this.types.elementCount(type) : 0;
  }

  child(place: Place, index: number): Place {
    const type = this.types.withoutTypedefs(place.type);
    return this.types.kind(type) === Kind.Array
      ? this.element(place, type, index)
      : this.member(place, type, index);
  }

  /** Index of a place among the children of its parent. */
  positionOf(place: Place): number {
    const parent = place.parent!;
    const type = this.types.withoutTypedefs(parent.type);
    if (this.types.kind(type) === Kind.Array) {
      return indexAt(place.label, this.types.dimensions(type)) ?? -1;
    }
    return this.types.membersOf(type).findIndex(
      (member) => member.step === place.label && parent.offset + member.offset === place.offset);
  }

  /** All leaves of a place in the order in which the command `leaves` lists them. */
  *leaves(place: Place): Generator<Place> {
    const count = this.childCount(place);
    if (count === 0) {
      yield place;
      return;
    }
    for (let index = 0; index < count; ++index) {
      yield* this.leaves(this.child(place, index));
    }
  }

  /**
   * The place that a path names, as "motors[1].loops[0].gain".
   * @param address address of the variable, if several have the name
   */
  resolve(path: string, address?: bigint): Place | undefined {
    for (const variable of this.headsOf(path)) {
      if (address !== undefined && this.addresses[variable] !== address) {
        continue;
      }
      const place = this.descend(this.placeOf(variable), path);
      if (place !== undefined) {
        return place;
      }
    }
    return undefined;
  }

  /** Initial bytes, if all of them are known. */
  initialBytes(address: bigint, size: number): Uint8Array | undefined {
    const result = new Uint8Array(size);
    let filled = 0;
    while (filled < size) {
      const at = address + BigInt(filled);
      const chunk = this.chunkAt(at);
      if (chunk === undefined) {
        return undefined;
      }
      const start = Number(at - chunk.address);
      const count = Math.min(size - filled, chunk.length - start);
      if (chunk.position >= 0) {
        const from = chunk.position + start;
        result.set(this.bytes.subarray(from, from + count), filled);
      }
      filled += count;
    }
    return result;
  }

  get areValuesCut(): boolean {
    return this.pack.values?.isCut ?? false;
  }

  private qualifiedName(variable: number): string {
    const scope = this.scope(variable);
    const name = this.ownName(variable);
    return scope === "" || name === "" ? name : scope + "::" + name;
  }

  /** As many as the largest address needs, at least 8, and an even number. */
  private countAddressDigits(): number {
    let largest = 0n;
    for (let variable = 0; variable < this.variableCount; ++variable) {
      largest = this.addresses[variable]! > largest ? this.addresses[variable]! : largest;
    }
    for (const { address, size } of this.sections) {
      largest = address + size > largest + 1n ? address + size - 1n : largest;
    }
    const digits = largest.toString(16).length;
    return Math.min(16, Math.max(8, digits + (digits % 2)));
  }

  private isInItself(place: Place, type: number): boolean {
    for (let outer = place.parent; outer !== undefined; outer = outer.parent) {
      if (this.types.withoutTypedefs(outer.type) === type) {
        return true;
      }
    }
    return false;
  }

  private member(place: Place, type: number, index: number): Place {
    const member = this.types.membersOf(type)[index]!;
    return {
      variable: place.variable,
      path: place.path + member.step,
      label: member.step,
      type: member.type,
      offset: place.offset + member.offset,
      size: this.types.size(member.type),
      isBitField: member.isBitField,
      bit: member.bit,
      bits: member.bits,
      parent: place,
    };
  }

  private element(place: Place, array: number, index: number): Place {
    const label = indexText(index, this.types.dimensions(array));
    const type = this.types.target(array);
    const stride = this.types.stride(array);
    return {
      variable: place.variable,
      path: place.path + label,
      label,
      type,
      offset: place.offset + index * stride,
      size: this.types.size(type) || stride,
      isBitField: false,
      bit: -1,
      bits: 0,
      parent: place,
    };
  }

  /** Variables whose name is a prefix of the path, longest name first. */
  private headsOf(path: string): number[] {
    const heads = [...(this.variablesOf(path) ?? [])];
    for (let end = path.length - 1; end > 0; --end) {
      if (path[end] === "." || path[end] === "[") {
        heads.push(...(this.variablesOf(path.slice(0, end)) ?? []));
      }
    }
    return heads;
  }

  private variablesOf(name: string): number[] | undefined {
    if (this.byName === undefined) {
      this.byName = new Map();
      for (let variable = 0; variable < this.variableCount; ++variable) {
        const known = this.byName.get(this.name(variable));
        if (known === undefined) {
          this.byName.set(this.name(variable), [variable]);
        } else {
          known.push(variable);
        }
      }
    }
    return this.byName.get(name);
  }

  private descend(start: Place, path: string): Place | undefined {
    let place = start;
    while (place.path.length < path.length) {
      const next = this.stepTowards(place, path);
      if (next === undefined) {
        return undefined;
      }
      place = next;
    }
    return place;
  }

  private stepTowards(place: Place, path: string): Place | undefined {
    const type = this.types.withoutTypedefs(place.type);
    if (this.types.kind(type) === Kind.Array) {
      const index = indexAt(path.slice(place.path.length), this.types.dimensions(type));
      return index === undefined ? undefined : this.child(place, index);
    }
    let best: Place | undefined;
    for (let index = 0; index < this.childCount(place); ++index) {
      const child = this.child(place, index);
      const rest = path[child.path.length];
      const isOnPath = path.startsWith(child.path) && (rest === undefined || ".[".includes(rest));
      if (isOnPath && (best === undefined || child.path.length > best.path.length)) {
        best = child;
      }
    }
    return best;
  }

  private chunkAt(address: bigint): Chunk | undefined {
    let low = 0;
    let high = this.chunks.length;
    while (low < high) {
      const middle = (low + high) >> 1;
      if (this.chunks[middle]!.address <= address) {
        low = middle + 1;
      } else {
        high = middle;
      }
    }
    const chunk = this.chunks[low - 1];
    return chunk !== undefined && address - chunk.address < BigInt(chunk.length) ? chunk : undefined;
  }
}

export function depthOf(place: Place): number {
  let depth = 0;
  for (let outer = place.parent; outer !== undefined; outer = outer.parent) {
    ++depth;
  }
  return depth;
}

/** The indices of an element from its number over all dimensions: "[1][3]". */
export function indexText(index: number, dimensions: number[]): string {
  let text = "";
  let rest = index;
  for (let dimension = dimensions.length - 1; dimension >= 0; --dimension) {
    const length = dimensions[dimension]!;
    text = `[${rest % length}]` + text;
    rest = Math.floor(rest / length);
  }
  return text;
}

/** The element of the indices at the start of a text; undefined if one is missing or too large. */
function indexAt(text: string, dimensions: number[]): number | undefined {
  const indices = /^(\[\d+\])+/.exec(text)?.[0].match(/\d+/g)?.map(Number) ?? [];
  if (indices.length < dimensions.length) {
    return undefined;
  }
  let element = 0;
  for (const [dimension, length] of dimensions.entries()) {
    const index = indices[dimension]!;
    if (index >= length) {
      return undefined;
    }
    element = element * length + index;
  }
  return element;
}

function readSections(pack: PackedImage): Section[] {
  const table = pack.sections;
  if (table === undefined) {
    return [];
  }
  const names = unpackNumbers(table["name"]!, table.count);
  const addresses = unpackAddresses(table["address"]!, table.count);
  const sizes = unpackAddresses(table["size"]!, table.count);
  const kinds = unpackNumbers(table["kind"]!, table.count);
  return Array.from({ length: table.count }, (_, index) => ({
    name: pack.texts[names[index]!]!,
    address: addresses[index]!,
    size: sizes[index]! > lastAddress - addresses[index]!
      ? lastAddress - addresses[index]! : sizes[index]!,
    kind: sectionKinds[kinds[index]!] ?? "data",
  }));
}

function readChunks(table: PackedTable | undefined): Chunk[] {
  if (table === undefined) {
    return [];
  }
  const addresses = unpackAddresses(table["address"]!, table.count);
  const lengths = unpackNumbers(table["length"]!, table.count);
  const areBytes = unpackNumbers(table["hasBytes"]!, table.count);
  let position = 0;
  return Array.from({ length: table.count }, (_, index) => {
    const chunk = {
      address: addresses[index]!,
      length: lengths[index]!,
      position: areBytes[index] ? position : -1,
    };
    position += areBytes[index] ? chunk.length : 0;
    return chunk;
  });
}
