// Types with equal texts in several units are one entry here, with everything that uses them.

import type { Image, Place } from "./image.ts";
import type { Search } from "./search.ts";
import { Entry, Kind } from "./types.ts";

export interface TypeEntry {
  /** The first of the types with equal texts. */
  type: number;
  text: string;
  kind: number;
  size: number;
  /** Bytes of holes and padding. */
  lost: number;
  units: string[];
  /** Variables of this type, or arrays of it. */
  variables: number;
}

export interface TypeUse {
  variable: number;
  /** Path of the part without indices; empty for the variable itself. */
  shape: string;
}

export class TypeIndex {
  readonly entries: TypeEntry[] = [];
  private readonly entryOfType = new Map<number, number>();

  constructor(private readonly image: Image, private readonly search: Search) {
    this.collect();
    for (let variable = 0; variable < image.variableCount; ++variable) {
      const entry = this.entryOf(image.variableTypes[variable]!);
      if (entry !== undefined) {
        ++entry.variables;
      }
    }
  }

  /** The entry of a type, even through arrays. */
  entryOf(type: number): TypeEntry | undefined {
    const index = this.entryOfType.get(this.elementOf(type));
    return index === undefined ? undefined : this.entries[index];
  }

  /** Where variables contain something of an entry. */
  usesOf(entry: TypeEntry): TypeUse[] {
    const uses: TypeUse[] = [];
    const isOfEntry = (type: number) => type !== 0 && this.leadsTo(type, entry);
    const known = new Map<number, boolean>();
    const isUse = (type: number) => {
      let answer = known.get(type);
      if (answer === undefined) {
        answer = isOfEntry(type);
        known.set(type, answer);
      }
      return answer;
    };
    for (let variable = 0; variable < this.image.variableCount; ++variable) {
      const type = this.image.variableTypes[variable]!;
      if (isUse(type)) {
        uses.push({ variable, shape: "" });
      }
      const set = this.search.shapes.of(type);
      for (let shape = 0; shape < set.paths.length; ++shape) {
        // An array counts as it is, without its elements.
        if (!set.paths[shape]!.endsWith("]") && isUse(set.types[shape]!)) {
          uses.push({ variable, shape: set.paths[shape]! });
        }
      }
    }
    return uses;
  }

  /** Types with members or elements of an entry. */
  holdersOf(entry: TypeEntry): TypeEntry[] {
    return this.entries.filter(
      (holder) => holder !== entry &&
        this.image.types.layout(holder.type).some(({ type }) => this.leadsTo(type, entry)),
    );
  }

  /** Follows typedefs and arrays, one step at a time. */
  private leadsTo(start: number, entry: TypeEntry): boolean {
    const types = this.image.types;
    let type = start;
    for (let step = 0; step < 100 && type !== 0; ++step) {
      const index = this.entryOfType.get(type);
      if (index !== undefined && this.entries[index] === entry) {
        return true;
      }
      const kind = types.kind(type);
      type = kind === Kind.Array || kind === Kind.Typedef ? types.target(type) : 0;
    }
    return false;
  }

  private elementOf(type: number): number {
    const types = this.image.types;
    let element = type;
    for (let step = 0; step < 100 && types.kind(element) === Kind.Array; ++step) {
      element = types.target(element);
    }
    return element;
  }

  private collect(): void {
    const types = this.image.types;
    const known = new Map<string, number>();
    for (let type = 1; type <= types.count; ++type) {
      const kind = types.kind(type);
      if (!types.isClass(type) && kind !== Kind.Enum && kind !== Kind.Typedef) {
        continue;
      }
      const signature = this.signatureOf(type);
      let index = known.get(signature);
      if (index === undefined) {
        index = this.entries.length;
        known.set(signature, index);
        this.entries.push({
          type, kind, text: types.text(type), size: types.size(type), lost: this.lostIn(type),
          units: [], variables: 0,
        });
      }
      const unit = types.unit(type);
      if (unit !== "" && !this.entries[index]!.units.includes(unit)) {
        this.entries[index]!.units.push(unit);
      }
      this.entryOfType.set(type, index);
    }
  }

  private signatureOf(type: number): string {
    const types = this.image.types;
    const layout = types.layout(type).map((entry) =>
      [entry.kind, entry.name, types.text(entry.type), entry.offset, entry.size, entry.bit, entry.bits]);
    const target = types.kind(type) === Kind.Typedef ? types.text(types.target(type)) : "";
    return JSON.stringify([
      types.kind(type), types.text(type), types.size(type), layout, target,
      types.enumerators(type).map(({ value, name }) => [String(value), name])]);
  }

  private lostIn(type: number): number {
    let lost = 0;
    for (const entry of this.image.types.layout(type)) {
      lost += entry.kind === Entry.Hole || entry.kind === Entry.Padding ? entry.size : 0;
    }
    return lost;
  }
}

/** The first place of a use, for a link. */
export function firstPlace(image: Image, use: TypeUse): Place | undefined {
  const path = (image.name(use.variable) + use.shape).replaceAll("[]", "[0]");
  return image.resolve(path, image.addresses[use.variable]!);
}
