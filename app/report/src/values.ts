// Initial values: the value of a place in the bytes of the image, when the program starts.

import type { Image, Place } from "./image.ts";
import { Kind } from "./types.ts";

/** The base types of the data model that are not read as plain integers. */
const Basic = { Void: 1, Char: 2, WideChar: 3, Float: 6, Bool: 7, Double: 10, Special: 17 } as const;
const signedBasics = new Set([4, 8, 11, 13, 15]);
const longestText = 64;
const float16 = 18;

/** The value of a leaf or of an array of characters; empty if unknown. */
export function valueText(image: Image, place: Place): string {
  if (place.size <= 0 || place.size > 65536) {
    return "";
  }
  const types = image.types;
  const type = types.withoutTypedefs(place.type);
  const kind = types.kind(type);
  if (kind === Kind.Array) {
    return isText(image, type) ? textOf(image, place) : "";
  }
  if (types.isClass(type) || place.size > 16) {
    return "";
  }
  const bytes = image.initialBytes(image.addressOf(place), extentOf(place));
  return bytes === undefined ? clearedText(image, place) : scalarText(image, place, type, bytes);
}

/** Memory without bytes in the file is cleared when the program starts, unless its name says otherwise. */
function clearedText(image: Image, place: Place): string {
  const section = image.sectionAt(image.addressOf(place));
  return section?.kind === "zero" && !/no_?init/i.test(section.name) ? "cleared" : "";
}

/** Bytes to read: a packed bit field may exceed its storage unit. */
function extentOf(place: Place): number {
  return place.isBitField && place.bit >= 0
    ? Math.max(place.size, Math.ceil((place.bit + place.bits) / 8))
    : place.size;
}

function isText(image: Image, array: number): boolean {
  const element = image.types.withoutTypedefs(image.types.target(array));
  return (
    image.types.kind(element) === Kind.Base && image.types.basic(element) === Basic.Char &&
    image.types.dimensions(array).length === 1
  );
}

function textOf(image: Image, place: Place): string {
  const bytes = image.initialBytes(image.addressOf(place), place.size);
  if (bytes === undefined) {
    return "";
  }
  const end = bytes.indexOf(0);
  const text = bytes.subarray(0, Math.min(end < 0 ? bytes.length : end, longestText));
  const characters = Array.from(text, (byte) =>
    byte >= 0x20 && byte < 0x7f ? String.fromCharCode(byte) : "\\x" + hex(BigInt(byte), 2),
  );
  return `"${characters.join("")}"` + (end > longestText ? "…" : "");
}

function scalarText(image: Image, place: Place, type: number, bytes: Uint8Array): string {
  const types = image.types;
  const kind = types.kind(type);
  let value = integerOf(bytes, image.isBigEndian);
  let bits = bytes.length * 8;
  if (place.isBitField) {
    if (place.bit < 0 || place.bits <= 0) {
      return "";
    }
    value = BigInt.asUintN(place.bits, value >> BigInt(place.bit));
    bits = place.bits;
  }
  if (kind === Kind.Pointer) {
    return "0x" + hex(value, place.size * 2);
  }
  if (kind === Kind.Enum) {
    const underlying = types.withoutTypedefs(types.target(type));
    return enumText(image, type, value, bits, signedBasics.has(types.basic(underlying)));
  }
  return kind === Kind.Base
    ? baseText(types.basic(type), value, bits, bytes, image.isBigEndian)
    : "0x" + hex(value, bytes.length * 2);
}

function baseText(
  basic: number, value: bigint, bits: number, bytes: Uint8Array, isBigEndian: boolean,
): string {
  const view = new DataView(bytes.buffer, bytes.byteOffset, bytes.length);
  switch (basic) {
    case Basic.Float:
    case Basic.Double:
    case float16:
      return bytes.length === 4
        ? shortest(view.getFloat32(0, !isBigEndian))
        : bytes.length === 8 ? String(view.getFloat64(0, !isBigEndian)) : "0x" + hex(value, bytes.length * 2);
    case Basic.Bool:
      return value === 0n ? "false" : value === 1n ? "true" : String(value);
    case Basic.Char:
      return characterText(value);
    case Basic.Special:
    case Basic.Void:
      return "0x" + hex(value, bytes.length * 2);
    default:
      return String(signedBasics.has(basic) ? BigInt.asIntN(bits, value) : value);
  }
}

function characterText(value: bigint): string {
  const code = Number(value);
  return code >= 0x20 && code < 0x7f ? `${code} '${String.fromCharCode(code)}'` : String(code);
}

/** The shortest decimal number that reads back as the same float. */
function shortest(value: number): string {
  for (let digits = 1; digits < 9; ++digits) {
    const text = Number(value.toPrecision(digits));
    if (Math.fround(text) === value) {
      return String(text);
    }
  }
  return String(value);
}

function enumText(
  image: Image, type: number, value: bigint, bits: number, isSigned: boolean,
): string {
  const number = isSigned ? BigInt.asIntN(bits, value) : value;
  const size = image.types.size(type);
  const wanted = bitsIn(size, number);
  const known = wanted === undefined
    ? undefined
    : image.types.enumerators(type).find((enumerator) => bitsIn(size, enumerator.value) === wanted);
  return known === undefined ? String(number) : `${number} ${known.name}`;
}

/** The bits of a value in a variable of `size` bytes; undefined if the variable can't hold it. */
function bitsIn(size: number, value: bigint): bigint | undefined {
  const width = size > 0 && size < 8 ? size * 8 : 64;
  const bits = BigInt.asUintN(width, value);
  return bits === value || BigInt.asIntN(width, bits) === value ? bits : undefined;
}

export function integerOf(bytes: Uint8Array, isBigEndian: boolean): bigint {
  let value = 0n;
  for (let index = 0; index < bytes.length; ++index) {
    value = (value << 8n) | BigInt(bytes[isBigEndian ? index : bytes.length - 1 - index]!);
  }
  return value;
}

function hex(value: bigint, digits: number): string {
  return value.toString(16).padStart(digits, "0");
}
