// The order of the table by one of its columns.

import type { Sorting } from "./grid.ts";
import type { Image, Place } from "./image.ts";
import type { Hit, Search } from "./search.ts";
import { placeOfShape } from "./shapes.ts";
import { valueText } from "./values.ts";

type Key = number | bigint | string;

export function sortHits(image: Image, search: Search, hits: Hit[], sorting: Sorting): Hit[] {
  const keyOf = keys[sorting.column];
  if (keyOf === undefined) {
    return hits;
  }
  const keyed = hits.map((hit) => ({ hit, key: keyOf(image, placeOfHit(image, search, hit)) }));
  const direction = sorting.isDescending ? -1 : 1;
  keyed.sort((first, second) => direction * compare(first.key, second.key));
  return keyed.map(({ hit }) => hit);
}

const keys: Record<string, (image: Image, place: Place) => Key> = {
  name: (_, place) => place.path,
  address: (image, place) => image.addressOf(place),
  size: (_, place) => place.size,
  bits: (_, place) => (place.isBitField ? place.bits : 0),
  type: (image, place) => image.types.text(place.type),
  value: (image, place) => numberOrText(valueText(image, place)),
  unit: (image, place) => image.unit(place.variable),
  section: (image, place) => image.sectionAt(image.addressOf(place))?.name ?? "",
};

function placeOfHit(image: Image, search: Search, hit: Hit): Place {
  const variable = image.placeOf(hit.variable);
  if (hit.shape < 0) {
    return variable;
  }
  const set = search.shapes.of(image.variableTypes[hit.variable]!);
  const path = set.paths[hit.shape]!;
  return placeOfShape(image, hit.variable, path, set.lengths[hit.shape]!, [], 0) ?? variable;
}

function numberOrText(value: string): Key {
  const number = Number.parseFloat(value);
  return Number.isNaN(number) ? value : number;
}

/** Numbers come before texts, empty texts at the end. */
function compare(first: Key, second: Key): number {
  if (typeof first === "string" && typeof second === "string") {
    if (first === "" || second === "") {
      return first === second ? 0 : first === "" ? 1 : -1;
    }
    return collator.compare(first, second);
  }
  if (typeof first === "string" || typeof second === "string") {
    return typeof first === "string" ? 1 : -1;
  }
  return first < second ? -1 : first > second ? 1 : 0;
}

const collator = new Intl.Collator("en", { numeric: true });
