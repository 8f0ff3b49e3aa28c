// What a user types into the search: words, words of one column, addresses and ranges of them.

export type Field = "any" | "name" | "type" | "unit" | "section";

export interface TextTerm {
  kind: "text";
  field: Field;
  /** In lower case, without the numbers in brackets. */
  text: string;
  /** In lower case, as typed; it differs from `text` where an index is given. */
  raw: string;
}

/** Everything that occupies an address from `first` to `last`, both included. */
export interface AddressTerm {
  kind: "address";
  first: bigint;
  last: bigint;
  /** An address that the user may still be typing, in lower case; empty for a range. */
  prefix: string;
}

export type Term = TextTerm | AddressTerm;

/** At most this many terms count; each has a bit in the masks of a search. */
export const mostTerms = 8;

const range = /^(0x[0-9a-f]+)(?:\.\.|-|…|:)(0x[0-9a-f]+)$/;
const extent = /^(0x[0-9a-f]+)\+(0x[0-9a-f]+|\d+)$/;
const field = /^(name|type|unit|section):(.*)$/;

export function parseQuery(query: string): Term[] {
  return query
    .toLowerCase()
    .split(/\s+/)
    .filter((word) => word !== "")
    .slice(0, mostTerms)
    .map(parseTerm)
    .filter((term) => term.kind === "address" || term.raw !== "");
}

function parseTerm(word: string): Term {
  const [, first, last] = range.exec(word) ?? [];
  if (first !== undefined && last !== undefined) {
    return { kind: "address", first: BigInt(first), last: BigInt(last), prefix: "" };
  }
  const [, start, length] = extent.exec(word) ?? [];
  if (start !== undefined && length !== undefined) {
    const end = BigInt(start) + BigInt(length);
    return { kind: "address", first: BigInt(start), last: end > 0n ? end - 1n : 0n, prefix: "" };
  }
  if (/^0x[0-9a-f]+$/.test(word)) {
    return { kind: "address", first: BigInt(word), last: BigInt(word), prefix: word };
  }
  const [, name, text] = field.exec(word) ?? [];
  return name !== undefined && text !== undefined && !text.startsWith(":")
    ? textTerm(name as Field, text)
    : textTerm("any", word);
}

function textTerm(which: Field, raw: string): TextTerm {
  // The last bracket may still be open while the user types.
  return { kind: "text", field: which, text: raw.replace(/\[\d+(?=\]|$)/g, "["), raw };
}
