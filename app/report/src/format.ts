// Numbers and names as people read them.

import type { Place } from "./image.ts";
import { Kind, type Types } from "./types.ts";

const grouped = new Intl.NumberFormat("en");

export function count(number: number, one: string, several = one + "s"): string {
  return `${grouped.format(number)} ${number === 1 ? one : several}`;
}

export function number(value: number): string {
  return grouped.format(value);
}

/** "1.5 KiB"; whole bytes below that. */
export function bytes(size: number): string {
  const units = ["bytes", "KiB", "MiB", "GiB", "TiB", "PiB"];
  let unit = 0;
  let rest = size;
  while (rest >= 1024 && unit < units.length - 1) {
    rest /= 1024;
    ++unit;
  }
  if (unit === 0) {
    return count(size, "byte");
  }
  return `${rest >= 100 ? Math.round(rest) : Number(rest.toPrecision(3))} ${units[unit]}`;
}

export function signed(difference: bigint): string {
  const size = difference < 0n ? -difference : difference;
  return (difference < 0n ? "−" : "+") + "0x" + size.toString(16);
}

/** First and last bit of a bit field: "3–7". */
export function bitRange(place: { isBitField: boolean; bit: number; bits: number }): string {
  if (!place.isBitField) {
    return "";
  }
  if (place.bit < 0) {
    return `? (${place.bits})`;
  }
  return place.bits === 1 ? String(place.bit) : `${place.bit}–${place.bit + place.bits - 1}`;
}

export type Family = "integer" | "float" | "enum" | "pointer" | "struct" | "array" | "bits" | "other";

export const familyNames: Record<Family, string> = {
  integer: "integer", float: "float", enum: "enum, bool", pointer: "pointer", struct: "structure",
  array: "array", bits: "bit field", other: "size only",
};

const floats = new Set([6, 10, 18]);

/** The colour group of a type. */
export function familyOf(types: Types, type: number): Family {
  const end = types.withoutTypedefs(type);
  switch (types.kind(end)) {
    case Kind.Base:
      return floats.has(types.basic(end)) ? "float" : types.basic(end) === 7 ? "enum" : "integer";
    case Kind.Enum:
      return "enum";
    case Kind.Pointer:
    case Kind.Function:
      return "pointer";
    case Kind.Class:
    case Kind.Struct:
    case Kind.Union:
      return "struct";
    case Kind.Array:
      return "array";
    default:
      return "other";
  }
}

export function familyOfPlace(types: Types, place: Place): Family {
  return place.isBitField ? "bits" : familyOf(types, place.type);
}

const machines: Record<string, Record<number, string>> = {
  ELF: {
    3: "x86", 8: "MIPS", 20: "PowerPC", 21: "PowerPC 64", 40: "Arm", 42: "SuperH", 44: "TriCore",
    62: "x86-64", 83: "AVR", 94: "Xtensa", 105: "MSP430", 140: "TMS320C6000", 141: "TMS320C2000",
    118: "dsPIC30F", 36: "V850", 87: "V850", 173: "RX", 183: "AArch64", 243: "RISC-V", 197: "RL78",
  },
  PE: { 0x14c: "x86", 0x8664: "x86-64", 0x1c0: "Arm", 0x1c4: "Arm", 0xaa64: "AArch64" },
  COFF: { 0x98: "TMS320C5400", 0x99: "TMS320C6000", 0x9d: "TMS320C2800", 0xa0: "MSP430" },
};

export function machineName(container: string, machine: number | undefined): string {
  if (machine === undefined) {
    return "";
  }
  return machines[container]?.[machine] ?? `machine 0x${machine.toString(16)}`;
}
