// What a row of the table of variables can be: a place, or a shape that stands for several places.

import { type Image, type Place } from "./image.ts";
import type { Source } from "./outline.ts";
import { type TextTerm, parseQuery } from "./query.ts";
import type { Hit, Search } from "./search.ts";
import { type Indices, type ShapeSet, placeCount, placeOfShape } from "./shapes.ts";

export interface VariableRow {
  place: Place;
  /** Path of the row; for a shape, with empty brackets. */
  path: string;
  /** Number of places that the row stands for; more than one for a shape. */
  count: number;
  isFuzzy: boolean;
  /** The row is at the top level, so that it shows its whole path. */
  isTop: boolean;
  /** What a shape opens into. */
  shape?: { hit: Hit; fixed: Indices };
}

export class Rows {
  constructor(private readonly image: Image, private readonly search: Search) {}

  ofPlace(place: Place, isTop = false): VariableRow {
    return { place, path: place.path, count: 1, isFuzzy: false, isTop };
  }

  /** @param fixed indices that the user asked for */
  ofHit(hit: Hit, fixed: Indices = []): VariableRow {
    const { variable, isFuzzy } = hit;
    const place = hit.shape < 0 ? undefined : this.placeOfHit(hit, fixed, 0);
    if (place === undefined) {
      return { ...this.ofPlace(this.image.placeOf(variable), true), isFuzzy };
    }
    const count = placeCount(this.setOf(hit).lengths[hit.shape]!, fixed);
    let level = 0;
    const shapePath = this.setOf(hit).paths[hit.shape]!.replace(/\[\]/g, () => `[${fixed[level++] ?? ""}]`);
    const path = count === 1 ? place.path : this.image.name(variable) + shapePath;
    return { place, path, count, isFuzzy, isTop: true, shape: { hit, fixed } };
  }

  /** What a row opens into. */
  childrenOf(row: VariableRow): Source<VariableRow> | undefined {
    const { shape } = row;
    if (row.count > 1 && shape !== undefined) {
      return {
        count: row.count,
        at: (index) => this.ofPlace(this.placeOfHit(shape.hit, shape.fixed, index)!, true),
      };
    }
    const count = this.image.childCount(row.place);
    return { count, at: (index) => this.ofPlace(this.image.child(row.place, index)) };
  }

  /** Rows of hits; if the query has indices, only rows of these elements. */
  source(hits: Hit[], query: string): Source<VariableRow> {
    const direct = this.directRows(query);
    const indexed = parseQuery(query).filter((term): term is TextTerm =>
      term.kind === "text" && /\[\d+\]/.test(term.raw));
    if (indexed.length === 0) {
      return {
        count: direct.length + hits.length,
        at: (index) => direct[index] ?? this.ofHit(hits[index - direct.length]!),
      };
    }
    // Two lists rather than one of pairs: a short word may have a hit in each of ten thousand variables.
    const fitting: Hit[] = [];
    const indices: Indices[] = [];
    const known = new Map<ShapeSet, (Indices | null)[]>();
    for (const hit of hits) {
      const fixed = this.indicesOf(hit, indexed, known);
      if (fixed !== null) {
        fitting.push(hit);
        indices.push(fixed);
      }
    }
    return {
      count: direct.length + fitting.length,
      at: (index) =>
        direct[index] ?? this.ofHit(fitting[index - direct.length]!, indices[index - direct.length]),
    };
  }

  private setOf(hit: Hit): ShapeSet {
    return this.search.shapes.of(this.image.variableTypes[hit.variable]!);
  }

  private placeOfHit(hit: Hit, fixed: Indices, number: number): Place | undefined {
    const set = this.setOf(hit);
    return placeOfShape(
      this.image, hit.variable, set.paths[hit.shape]!, set.lengths[hit.shape]!, fixed, number);
  }

  /**
   * The indices that words give for a shape; null if it has no such element.
   * @param known what was found for the shapes of other variables
   */
  private indicesOf(
    hit: Hit, indexed: TextTerm[], known: Map<ShapeSet, (Indices | null)[]>,
  ): Indices | null {
    if (hit.shape < 0) {
      return [];
    }
    const set = this.setOf(hit);
    const path = set.lowerPaths[hit.shape]!;
    if (indexed.some(({ text }) => !path.includes(text))) {
      return fixedIndices(
        this.search.names[hit.variable]!, path, set.lengths[hit.shape]!, indexed);
    }
    let ofSet = known.get(set);
    if (ofSet === undefined) {
      ofSet = [];
      known.set(set, ofSet);
    }
    return (ofSet[hit.shape] ??= fixedIndices("", path, set.lengths[hit.shape]!, indexed));
  }

  /** The places that a query names directly: by a whole path, or an address within a variable. */
  private directRows(query: string): VariableRow[] {
    const terms = parseQuery(query);
    const [term] = terms;
    if (terms.length !== 1 || term === undefined) {
      return [];
    }
    if (term.kind === "text") {
      const place = /[.[]/.test(query) ? this.image.resolve(query.trim()) : undefined;
      return place === undefined || place.parent === undefined ? [] : [this.ofPlace(place, true)];
    }
    return term.prefix === "" ? [] : this.placesAt(term.first);
  }

  private placesAt(address: bigint): VariableRow[] {
    const rows: VariableRow[] = [];
    for (let variable = 0; variable < this.image.variableCount && rows.length < 20; ++variable) {
      const place = placeAt(this.image, variable, address);
      if (place?.parent !== undefined) {
        rows.push(this.ofPlace(place, true));
      }
    }
    return rows;
  }
}

function fixedIndices(
  name: string, path: string, lengths: number[], indexed: TextTerm[],
): Indices | null {
  const fixed: Indices = [];
  for (const { text, raw } of indexed) {
    const start = (name + path).lastIndexOf(text);
    // Brackets within the name itself are no indices.
    let level = path.slice(0, Math.max(0, start - name.length)).split("[").length - 1;
    for (const [, digits] of raw.matchAll(/\[(\d*)\]?/g)) {
      if (digits !== "" && start >= 0) {
        fixed[level] = Number(digits);
      }
      ++level;
    }
  }
  const fits = fixed.every((index, level) => index === undefined || index < (lengths[level] ?? 0));
  return fits ? fixed : null;
}

/** The innermost part of a variable that holds an address; undefined if the variable doesn't. */
export function placeAt(image: Image, variable: number, address: bigint): Place | undefined {
  const start = image.addresses[variable]!;
  if (address < start || address - start >= BigInt(Math.trunc(image.sizes[variable]!))) {
    return undefined;
  }
  const offset = Number(address - start);
  let place = image.placeOf(variable);
  for (let next: Place | undefined = place; next !== undefined; ) {
    place = next;
    next = childAt(image, place, offset);
  }
  return place;
}

function childAt(image: Image, place: Place, offset: number): Place | undefined {
  const count = image.childCount(place);
  const type = image.types.withoutTypedefs(place.type);
  const stride = image.types.stride(type);
  if (count > 0 && stride > 0) {
    const index = Math.floor((offset - place.offset) / stride);
    const element = index < count ? image.child(place, index) : undefined;
    return element !== undefined && offset < element.offset + element.size ? element : undefined;
  }
  for (let index = 0; index < count; ++index) {
    const child = image.child(place, index);
    if (offset >= child.offset && offset < child.offset + child.size) {
      return child;
    }
  }
  return undefined;
}
