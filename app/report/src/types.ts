// The types of an image: their names, their sizes and their contents.

import { type NumberColumn, startsOf, unpackNumbers, unpackSigned } from "./columns.ts";
import type { PackedImage } from "./pack.ts";

export const Kind = {
  None: 0,
  Base: 1,
  Unknown: 2,
  Class: 3,
  Struct: 4,
  Union: 5,
  Array: 6,
  Pointer: 7,
  Enum: 8,
  Typedef: 9,
  Function: 10,
} as const;

export const kindNames = [
  "none", "base type", "unknown", "class", "struct", "union", "array", "pointer", "enum", "typedef",
  "function",
];

/** The kinds of layout entries; the numbers are those of the pack. */
export const Entry = {
  BaseClass: 0,
  UnplacedBaseClass: 1,
  Member: 2,
  Hole: 3,
  UnusedBits: 4,
  Padding: 5,
  BitField: 6,
} as const;

export interface LayoutEntry {
  kind: number;
  name: string;
  type: number;
  offset: number;
  /** Size in bytes; in bits for unused bits. */
  size: number;
  /** Position of a bit field in its storage unit from the least significant bit; -1 for none. */
  bit: number;
  bits: number;
}

/** A member under the name that paths use, including inherited and anonymous ones. */
export interface Member {
  step: string;
  type: number;
  offset: number;
  isBitField: boolean;
  bit: number;
  bits: number;
}

export interface Enumerator {
  /** As the model has it, with sign: large values of an unsigned enum may be negative. */
  value: bigint;
  name: string;
}

const longestChain = 1000;

export class Types {
  /** Types have the numbers 1 to `count`; 0 is none. */
  readonly count: number;
  private readonly kinds: NumberColumn;
  private readonly textNumbers: NumberColumn;
  private readonly sizes: NumberColumn;
  private readonly targets: NumberColumn;
  private readonly basics: NumberColumn;
  private readonly strides: NumberColumn;
  private readonly units: NumberColumn;
  private readonly layoutStarts: Uint32Array;
  private readonly layoutColumns: Record<string, NumberColumn>;
  private readonly memberStarts: Uint32Array;
  private readonly memberColumns: Record<string, NumberColumn>;
  private readonly dimensionStarts: Uint32Array;
  private readonly lengths: NumberColumn;
  private readonly enumeratorStarts: Uint32Array;
  private readonly enumeratorValues: BigInt64Array;
  private readonly enumeratorNames: NumberColumn;
  private readonly members = new Map<number, Member[]>();
  private readonly resolved: Uint32Array;

  constructor(private readonly pack: PackedImage) {
    const types = pack.types;
    this.count = types.count;
    const column = (name: string) => unpackNumbers(types[name]!, types.count);
    this.kinds = column("kind");
    this.textNumbers = column("text");
    this.sizes = column("size");
    this.targets = column("target");
    this.basics = column("basic");
    this.strides = column("stride");
    this.units = column("unit");
    this.layoutStarts = startsOf(column("entries"));
    this.memberStarts = startsOf(column("members"));
    this.dimensionStarts = startsOf(column("dimensions"));
    this.enumeratorStarts = startsOf(column("enumerators"));
    const table = (packed: typeof types) =>
      Object.fromEntries(
        Object.keys(packed)
          .filter((name) => name !== "count")
          .map((name) => [name, unpackNumbers(packed[name]!, packed.count)]),
      );
    this.layoutColumns = table(pack.layout);
    this.memberColumns = table(pack.members);
    this.lengths = table(pack.dimensions)["length"]!;
    this.enumeratorValues = unpackSigned(pack.enumerators["value"]!, pack.enumerators.count);
    this.enumeratorNames = unpackNumbers(pack.enumerators["name"]!, pack.enumerators.count);
    this.resolved = this.resolveTypedefs();
  }

  kind(type: number): number {
    return type === 0 ? Kind.None : this.kinds[type - 1]!;
  }

  text(type: number): string {
    return type === 0 ? "" : this.pack.texts[this.textNumbers[type - 1]!]!;
  }

  size(type: number): number {
    return type === 0 ? 0 : this.sizes[type - 1]!;
  }

  /** Element of an array, target of a pointer or typedef, underlying type of an enum. */
  target(type: number): number {
    return type === 0 ? 0 : this.targets[type - 1]!;
  }

  basic(type: number): number {
    return type === 0 ? 0 : this.basics[type - 1]!;
  }

  unit(type: number): string {
    return type === 0 ? "" : this.pack.texts[this.units[type - 1]!]!;
  }

  stride(array: number): number {
    return array === 0 ? 0 : this.strides[array - 1]!;
  }

  withoutTypedefs(type: number): number {
    return type === 0 ? 0 : this.resolved[type - 1]!;
  }

  isClass(type: number): boolean {
    const kind = this.kind(type);
    return kind === Kind.Class || kind === Kind.Struct || kind === Kind.Union;
  }

  dimensions(array: number): number[] {
    if (array === 0) {
      return [];
    }
    const end = this.dimensionStarts[array]!;
    return Array.from(this.lengths.subarray(this.dimensionStarts[array - 1]!, end));
  }

  elementCount(array: number): number {
    const lengths = this.dimensions(array);
    return lengths.length === 0 ? 0 : lengths.reduce((product, length) => product * length, 1);
  }

  layout(type: number): LayoutEntry[] {
    const entries: LayoutEntry[] = [];
    if (type === 0) {
      return entries;
    }
    const columns = this.layoutColumns;
    for (let row = this.layoutStarts[type - 1]!; row < this.layoutStarts[type]!; ++row) {
      entries.push({
        kind: columns["kind"]![row]!,
        name: this.pack.texts[columns["name"]![row]!]!,
        type: columns["type"]![row]!,
        offset: columns["offset"]![row]!,
        size: columns["size"]![row]!,
        bit: columns["bit"]![row]! - 1,
        bits: columns["bits"]![row]!,
      });
    }
    return entries;
  }

  /** Members of a class in the order of their offsets, as in the leaves of a variable. */
  membersOf(type: number): Member[] {
    let members = this.members.get(type);
    if (members === undefined) {
      members = this.flatMembers(type);
      this.members.set(type, members);
    }
    return members;
  }

  enumerators(type: number): Enumerator[] {
    const result: Enumerator[] = [];
    if (type === 0) {
      return result;
    }
    for (let row = this.enumeratorStarts[type - 1]!; row < this.enumeratorStarts[type]!; ++row) {
      result.push({
        value: this.enumeratorValues[row]!,
        name: this.pack.texts[this.enumeratorNames[row]!]!,
      });
    }
    return result;
  }

  private resolveTypedefs(): Uint32Array {
    const resolved = new Uint32Array(this.count);
    for (let type = 1; type <= this.count; ++type) {
      let end = type;
      let steps = 0;
      while (this.kind(end) === Kind.Typedef && ++steps <= longestChain) {
        end = this.target(end);
      }
      resolved[type - 1] = steps > longestChain ? 0 : end;
    }
    return resolved;
  }

  private flatMembers(type: number): Member[] {
    const start = type === 0 ? 0 : this.memberStarts[type - 1]!;
    const end = type === 0 ? 0 : this.memberStarts[type]!;
    if (start === end) {
      return this.plainMembers(type);
    }
    const columns = this.memberColumns;
    const members: Member[] = [];
    for (let row = start; row < end; ++row) {
      members.push({
        step: this.pack.texts[columns["step"]![row]!]!,
        type: columns["type"]![row]!,
        offset: columns["offset"]![row]!,
        isBitField: columns["isBitField"]![row]! !== 0,
        bit: columns["bit"]![row]! - 1,
        bits: columns["bits"]![row]!,
      });
    }
    return members;
  }

  /** If nothing is inherited or anonymous, the layout contains all members. */
  private plainMembers(type: number): Member[] {
    return this.layout(type)
      .filter((entry) => entry.kind === Entry.Member || entry.kind === Entry.BitField)
      .map((entry) => ({
        step: "." + entry.name,
        type: entry.type,
        offset: entry.offset,
        isBitField: entry.kind === Entry.BitField,
        bit: entry.bit,
        bits: entry.bits,
      }))
      .sort((first, second) => first.offset - second.offset);
  }
}
