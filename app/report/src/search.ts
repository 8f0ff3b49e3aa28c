// The search over all variables and their parts. Each term of a query has a bit. Names, steps, types
// and units are each compared once, and a part has the bits of everything that leads to it. The hits
// are the topmost parts with all bits; what lies below opens in place.

import uFuzzy from "@leeoniya/ufuzzy";
import type { Image } from "./image.ts";
import { type AddressTerm, type Term, type TextTerm, parseQuery } from "./query.ts";
import { type ShapeSet, Shapes } from "./shapes.ts";

export interface Hit {
  variable: number;
  /** Index among the shapes of the variable's type; -1 for the variable itself. */
  shape: number;
  /** Only similar to the query. */
  isFuzzy: boolean;
  /** Higher is better. */
  score: number;
}

/** For each text, the terms that match it, one bit each, and the score of the best match. */
interface Fits {
  masks: Uint8Array;
  scores: Uint8Array;
}

/** A term that begins in the name of a variable and goes on in the steps below. */
interface Crossing {
  bit: number;
  head: string;
  rest: string;
}

/** The same for the shapes of a type, with the terms that any of them matches. */
interface ShapeFits extends Fits {
  union: number;
}

const shortestFuzzyWord = 3;
/** With more exact hits than this, similar ones aren't searched for. */
const enoughHits = 100;
const mostFuzzyHits = 200;

const fuzzy = new uFuzzy({ intraMode: 1, intraIns: 1, intraSub: 1, intraTrn: 1, intraDel: 1 });

export class Search {
  readonly shapes: Shapes;
  /** @internal Texts that terms are looked for in, in lower case. */
  readonly names: string[];
  /** @internal */
  readonly types: string[];
  /** @internal Units by their numbers. */
  readonly units: string[];
  /** @internal */
  readonly sections: string[];
  /** @internal Number of the section of each variable, from 1. */
  readonly sectionNumbers: Uint16Array;
  private addressTexts: string[] | undefined;

  constructor(private readonly image: Image) {
    this.shapes = new Shapes(image.types);
    const lower = (text: string) => text.toLowerCase();
    const variables = Array.from({ length: image.variableCount }, (_, variable) => variable);
    this.names = variables.map((variable) => lower(image.name(variable)));
    this.types = Array.from({ length: image.types.count }, (_, index) =>
      lower(image.types.text(index + 1)));
    this.units = [];
    for (const variable of variables) {
      this.units[image.unitNumbers[variable]!] ??= lower(image.unit(variable));
      this.shapes.of(image.variableTypes[variable]!);
    }
    this.sections = image.sections.map(({ name }) => lower(name));
    this.sectionNumbers = Uint16Array.from(variables, (variable) => {
      const section = image.sectionAt(image.addresses[variable]!);
      return section === undefined ? 0 : image.sections.indexOf(section) + 1;
    });
  }

  /** All variables for an empty query; otherwise the matches, best first. */
  find(query: string): Hit[] {
    const terms = parseQuery(query);
    if (terms.length === 0) {
      return Array.from({ length: this.image.variableCount }, (_, variable) => ({
        variable, shape: -1, isFuzzy: false, score: 0,
      }));
    }
    const exact = new Run(this.image, this, terms, false).find(Infinity);
    if (exact.length >= enoughHits || !terms.some(mayBeFuzzy)) {
      return exact;
    }
    const known = new Set(exact.map(({ variable, shape }) => `${variable} ${shape}`));
    const loose = new Run(this.image, this, terms, true).find(enoughHits + mostFuzzyHits);
    const similar = loose.filter(({ variable, shape }) =>
      !known.has(`${variable} ${shape}`) && !known.has(`${variable} -1`));
    return [...exact, ...similar.slice(0, mostFuzzyHits).map((hit) => ({ ...hit, isFuzzy: true }))];
  }

  /** @internal */
  addressText(variable: number): string {
    this.addressTexts ??= Array.from(this.image.addresses, (address) =>
      this.image.formatAddress(address));
    return this.addressTexts[variable]!;
  }
}

/** One pass over everything, for exact hits, or for similar ones too. */
class Run {
  private readonly all: number;
  private readonly names: Fits;
  private readonly types: Fits;
  private readonly steps: Fits;
  private readonly units: Fits;
  private readonly sections: Fits;
  private readonly addressTerms: [number, AddressTerm][];
  private readonly shapeFits = new Map<ShapeSet, ShapeFits>();
  /** Terms that may span several steps. */
  private readonly paths: { bit: number; text: string }[];
  /** Their two parts, for each place where a name may end and a step begin. */
  private readonly crossings: Crossing[];
  private readonly hits: Hit[] = [];

  constructor(
    private readonly image: Image, private readonly search: Search, private readonly terms: Term[],
    isLoose: boolean,
  ) {
    this.all = (1 << terms.length) - 1;
    const ofField = (field: "name" | "type" | "unit" | "section") => this.textTerms(field);
    this.names = fitsOf(search.names, ofField("name"), isLoose);
    this.types = fitsOf(search.types, ofField("type"), isLoose);
    this.steps = fitsOf(search.shapes.steps, ofField("name"), isLoose);
    this.units = fitsOf(search.units, ofField("unit"), false);
    this.sections = fitsOf(["", ...search.sections], ofField("section"), false);
    this.addressTerms = terms.flatMap((term, index): [number, AddressTerm][] =>
      term.kind === "address" ? [[1 << index, term]] : []);
    this.paths = ofField("name").flatMap(([bit, { text }]) =>
      /[.[]/.test(text) ? [{ bit, text }] : []);
    this.crossings = this.paths.flatMap(({ bit, text }) =>
      [...text].flatMap((character, index) =>
        index > 0 && (character === "." || character === "[")
          ? [{ bit, head: text.slice(0, index), rest: text.slice(index) }]
          : []));
  }

  find(most: number): Hit[] {
    const { variableCount } = this.image;
    for (let variable = 0; variable < variableCount && this.hits.length < most; ++variable) {
      this.look(variable);
    }
    return byScore(this.hits);
  }

  /** The text terms for names, types, units or sections, each with its bit. */
  private textTerms(field: "name" | "type" | "unit" | "section"): [number, TextTerm][] {
    return this.terms.flatMap((term, index): [number, TextTerm][] =>
      term.kind === "text" && (term.field === "any" || term.field === field)
        ? [[1 << index, term]]
        : [],
    );
  }

  private look(variable: number): void {
    const { image, search } = this;
    const type = image.variableTypes[variable]!;
    let mask = this.names.masks[variable]! | this.units.masks[image.unitNumbers[variable]!]! |
               this.sections.masks[search.sectionNumbers[variable]!]!;
    mask |= type === 0 ? 0 : this.types.masks[type - 1]!;
    if (this.addressTerms.length > 0) {
      mask |= this.addressMask(variable);
    }
    const score = this.names.scores[variable]!;
    if (mask === this.all) {
      this.hits.push({ variable, shape: -1, isFuzzy: false, score });
    } else {
      this.lookBelow(variable, search.shapes.of(type), mask, score);
    }
  }

  private lookBelow(variable: number, set: ShapeSet, mask: number, score: number): void {
    const fits = this.fitsOfShapes(set);
    const across = this.acrossName(variable);
    if (across.length > 0) {
      this.lookAcross(variable, set, mask, score, across);
      return;
    }
    if ((mask | fits.union) !== this.all) {
      return;
    }
    const { masks, scores } = fits;
    for (let shape = 0; shape < masks.length; ++shape) {
      if ((mask | masks[shape]!) === this.all) {
        const parent = set.parents[shape]!;
        if (parent < 0 || (mask | masks[parent]!) !== this.all) {
          this.hits.push({ variable, shape, isFuzzy: false, score: score + scores[shape]! });
        }
      }
    }
  }

  /** As `lookBelow`, with terms that begin in the name of the variable. */
  private lookAcross(
    variable: number, set: ShapeSet, mask: number, score: number,
    across: Crossing[],
  ): void {
    const { masks, scores } = this.fitsOfShapes(set);
    const fits = (shape: number) =>
      shape >= 0 &&
      (mask | masks[shape]! | acrossPath(across, set.lowerPaths[shape]!)) === this.all;
    for (let shape = 0; shape < masks.length; ++shape) {
      if (fits(shape) && !fits(set.parents[shape]!)) {
        this.hits.push({ variable, shape, isFuzzy: false, score: score + scores[shape]! });
      }
    }
  }

  private addressMask(variable: number): number {
    let mask = 0;
    const address = this.image.addresses[variable]!;
    const size = BigInt(Math.max(1, Math.trunc(this.image.sizes[variable]!)));
    for (const [bit, { first, last, prefix }] of this.addressTerms) {
      const isTouched = address <= last && address + size > first;
      const isBegun = prefix !== "" && this.search.addressText(variable).startsWith(prefix);
      mask |= isTouched || isBegun ? bit : 0;
    }
    return mask;
  }

  private fitsOfShapes(set: ShapeSet): ShapeFits {
    let fits = this.shapeFits.get(set);
    if (fits === undefined) {
      fits = this.makeShapeFits(set);
      this.shapeFits.set(set, fits);
    }
    return fits;
  }

  /** A shape has the bits of everything that leads to it. */
  private makeShapeFits(set: ShapeSet): ShapeFits {
    const count = set.parents.length;
    const masks = new Uint8Array(count);
    const scores = new Uint8Array(count);
    let union = 0;
    for (let shape = 0; shape < count; ++shape) {
      const parent = set.parents[shape]!;
      const step = set.steps[shape]!;
      const type = set.types[shape]!;
      let mask = this.steps.masks[step]! | (parent < 0 ? 0 : masks[parent]!);
      mask |= type === 0 ? 0 : this.types.masks[type - 1]!;
      for (const { bit, text } of this.paths) {
        mask |= (mask & bit) === 0 && set.lowerPaths[shape]!.includes(text) ? bit : 0;
      }
      masks[shape] = mask;
      scores[shape] = this.steps.scores[step]!;
      union |= mask;
    }
    return { masks, scores, union };
  }

  /** The crossings whose head matches the end of a variable's name. */
  private acrossName(variable: number): Crossing[] {
    const name = this.search.names[variable]!;
    return this.crossings.filter(({ head }) => name.endsWith(head));
  }
}

function acrossPath(across: Crossing[], path: string): number {
  let mask = 0;
  for (const { bit, rest } of across) {
    mask |= path.startsWith(rest) ? bit : 0;
  }
  return mask;
}

/** Best first, otherwise in the order of the image. */
function byScore(hits: Hit[]): Hit[] {
  const buckets: Hit[][] = [];
  for (const hit of hits) {
    (buckets[hit.score] ??= []).push(hit);
  }
  return buckets.reverse().flat();
}

function isBorder(path: string, position: number): boolean {
  return (
    position === 0 || position === path.length ||
    !/\w/.test(path[position]!) || !/\w/.test(path[position - 1]!)
  );
}

function fitsOf(texts: string[], terms: [number, TextTerm][], isLoose: boolean): Fits {
  const masks = new Uint8Array(texts.length);
  const scores = new Uint8Array(texts.length);
  for (const [bit, { text, raw }] of terms) {
    for (let index = 0; index < texts.length; ++index) {
      // Numbers of units have gaps.
      const within = texts[index] ?? "";
      if (within.includes(text) || (raw !== text && within.includes(raw))) {
        masks[index]! |= bit;
        const score = scoreOf(within, within.lastIndexOf(text), text.length);
        scores[index] = Math.max(scores[index]!, score);
      }
    }
    if (isLoose) {
      for (const index of similarTo(texts, text)) {
        masks[index]! |= bit;
      }
    }
  }
  return { masks, scores };
}

/** A match at the start of a name or step scores higher than one within. */
function scoreOf(text: string, start: number, length: number): number {
  return start < 0 || !isBorder(text, start) ? 1 : isBorder(text, start + length) ? 3 : 2;
}

function mayBeFuzzy(term: Term): boolean {
  return term.kind === "text" && isWord(term.text);
}

function isWord(text: string): boolean {
  return text.length >= shortestFuzzyWord && /^\w+$/.test(text);
}

function similarTo(texts: string[], word: string): number[] {
  return isWord(word) ? (fuzzy.filter(texts, word) ?? []) : [];
}

/** The ranges of a text that match words of a query, as pairs of positions in ascending order. */
export function matchedRanges(text: string, query: string): [number, number][] {
  const lower = text.toLowerCase();
  const ranges: [number, number][] = [];
  for (const term of parseQuery(query)) {
    if (term.kind === "text" && (term.field === "any" || term.field === "name")) {
      ranges.push(...rangesOf(lower, term));
    }
  }
  return merge(ranges.sort((first, second) => first[0] - second[0]));
}

function rangesOf(lower: string, term: TextTerm): [number, number][] {
  for (const word of [term.raw, term.text]) {
    const start = lower.lastIndexOf(word);
    if (start >= 0) {
      return [[start, start + word.length]];
    }
  }
  if (isWord(term.text)) {
    const found = fuzzy.filter([lower], term.text);
    const ranges = found?.length ? fuzzy.info(found, [lower], term.text).ranges[0] : undefined;
    return ranges && ranges.length >= 2 ? [[ranges[0]!, ranges[ranges.length - 1]!]] : [];
  }
  return [];
}

function merge(ranges: [number, number][]): [number, number][] {
  const merged: [number, number][] = [];
  for (const [start, end] of ranges) {
    const last = merged[merged.length - 1];
    if (last !== undefined && start <= last[1]) {
      last[1] = Math.max(last[1], end);
    } else {
      merged.push([start, end]);
    }
  }
  return merged;
}
