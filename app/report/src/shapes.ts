// The places of a type without their indices: ".loops[].gain" stands for the gains of all loops. A
// search visits shapes instead of places, so that its time doesn't grow with the lengths of arrays.

import type { Image, Place } from "./image.ts";
import { Kind, type Member, type Types } from "./types.ts";

/** All shapes below one type, parents before their children. */
export interface ShapeSet {
  /** Index of the parent among the shapes; -1 for a direct member. */
  parents: Int32Array;
  /** Number of the last step, a member or the brackets of an element, see `Shapes.steps`. */
  steps: Uint32Array;
  types: Uint32Array;
  paths: string[];
  lowerPaths: string[];
  /** For each shape, the dimensions of all arrays on its way, one for each pair of brackets. */
  lengths: number[][];
}

const mostShapes = 100_000;
const deepest = 100;

const noShapes: ShapeSet = {
  parents: new Int32Array(0),
  steps: new Uint32Array(0),
  types: new Uint32Array(0),
  paths: [],
  lowerPaths: [],
  lengths: [],
};

export class Shapes {
  /** All steps that occur, in lower case: ".loops". */
  readonly steps: string[] = [];
  /** A type has more shapes than the search covers. */
  isCut = false;
  private readonly stepNumbers = new Map<string, number>();
  private readonly sets = new Map<number, ShapeSet>();

  constructor(private readonly types: Types) {}

  /** The shapes below a variable of a type. */
  of(type: number): ShapeSet {
    let set = this.sets.get(type);
    if (set === undefined) {
      set = this.build(type);
      this.sets.set(type, set);
    }
    return set;
  }

  private build(type: number): ShapeSet {
    const parents: number[] = [];
    const steps: number[] = [];
    const types: number[] = [];
    const paths: string[] = [];
    const lengths: number[][] = [];
    const push = (parent: number, path: string, step: string, shapeType: number, own: number[]) => {
      parents.push(parent);
      steps.push(this.stepNumber(step));
      types.push(shapeType);
      lengths.push(own);
      return paths.push(path + step) - 1;
    };
    const add = (
      inType: number, path: string, parent: number, outer: number[], own: number[],
    ): void => {
      const end = this.types.withoutTypedefs(inType);
      if (paths.length >= mostShapes) {
        this.isCut = true;
      } else if (outer.length < deepest && this.types.kind(end) === Kind.Array) {
        const dimensions = this.types.dimensions(end);
        if (this.types.elementCount(end) > 0) {
          const step = "[]".repeat(dimensions.length);
          const element = this.types.target(end);
          const inner = [...own, ...dimensions];
          const position = push(parent, path, step, element, inner);
          add(element, path + step, position, [...outer, end], inner);
        }
      } else if (outer.length < deepest && this.types.isClass(end) && !outer.includes(end)) {
        for (const member of this.types.membersOf(end)) {
          const position = push(parent, path, member.step, member.type, own);
          if (!member.isBitField) {
            add(member.type, path + member.step, position, [...outer, end], own);
          }
        }
      }
    };
    add(type, "", -1, [], []);
    return paths.length === 0 ? noShapes : {
      parents: Int32Array.from(parents),
      steps: Uint32Array.from(steps),
      types: Uint32Array.from(types),
      paths,
      lowerPaths: paths.map((path) => path.toLowerCase()),
      lengths,
    };
  }

  private stepNumber(step: string): number {
    const lower = step.toLowerCase();
    let known = this.stepNumbers.get(lower);
    if (known === undefined) {
      known = this.steps.length;
      this.stepNumbers.set(lower, known);
      this.steps.push(lower);
    }
    return known;
  }
}

/** An index for each pair of brackets of a shape; undefined for any. */
export type Indices = (number | undefined)[];

/** The number of places that a shape stands for. */
export function placeCount(lengths: number[], fixed: Indices): number {
  return lengths.reduce(
    (product, length, level) => product * (fixed[level] === undefined ? length : 1), 1);
}

/** One of the places that a shape of a variable stands for, counted from 0. */
export function placeOfShape(
  image: Image, variable: number, path: string, lengths: number[], fixed: Indices, number: number,
): Place | undefined {
  const indices = new Array<number>(lengths.length);
  let rest = number;
  for (let level = lengths.length - 1; level >= 0; --level) {
    const length = lengths[level]!;
    indices[level] = fixed[level] ?? rest % length;
    rest = fixed[level] === undefined ? Math.floor(rest / length) : rest;
  }
  return walk(image, variable, path, indices);
}

/** Follows a shape with an index for each pair of brackets. */
function walk(
  image: Image, variable: number, path: string, indices: number[],
): Place | undefined {
  let place = image.placeOf(variable);
  let rest = path;
  let level = 0;
  while (rest !== "") {
    const type = image.types.withoutTypedefs(place.type);
    if (image.types.kind(type) === Kind.Array) {
      const dimensions = image.types.dimensions(type);
      const brackets = "[]".repeat(dimensions.length);
      if (!rest.startsWith(brackets)) {
        return undefined;
      }
      let element = 0;
      for (const length of dimensions) {
        element = element * length + indices[level++]!;
      }
      place = image.child(place, element);
      rest = rest.slice(brackets.length);
    } else {
      const index = memberTowards(image.types.membersOf(type), rest);
      if (index < 0) {
        return undefined;
      }
      rest = rest.slice(image.types.membersOf(type)[index]!.step.length);
      place = image.child(place, index);
    }
  }
  return place;
}

function memberTowards(members: Member[], rest: string): number {
  let best = -1;
  for (const [index, { step }] of members.entries()) {
    const next = rest[step.length];
    const isOnPath = rest.startsWith(step) && (next === undefined || next === "." || next === "[");
    if (isOnPath && (best < 0 || step.length > members[best]!.step.length)) {
      best = index;
    }
  }
  return best;
}
