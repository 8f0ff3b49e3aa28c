// The number of leaves of an image, computed without expanding anything.

import type { Image } from "./image.ts";
import { Kind } from "./types.ts";

export function leafCount(image: Image): number {
  const types = image.types;
  const known = new Map<number, number>();
  const countOf = (type: number, outer: number[]): number => {
    const end = types.withoutTypedefs(type);
    const remembered = known.get(end);
    if (remembered !== undefined) {
      return remembered;
    }
    if (outer.includes(end) || outer.length >= 100) {
      return 1;
    }
    let leaves = 1;
    if (types.kind(end) === Kind.Array && types.elementCount(end) > 0) {
      leaves = types.elementCount(end) * countOf(types.target(end), [...outer, end]);
    } else if (types.isClass(end) && types.membersOf(end).length > 0) {
      leaves = 0;
      for (const member of types.membersOf(end)) {
        leaves += member.isBitField ? 1 : countOf(member.type, [...outer, end]);
      }
    }
    known.set(end, leaves);
    return leaves;
  };
  let sum = 0;
  for (let variable = 0; variable < image.variableCount; ++variable) {
    sum += countOf(image.variableTypes[variable]!, []);
  }
  return sum;
}
