// Makes packed images from declarations, as the program would write them.

import type { PackedImage, PackedTable } from "../src/pack.ts";
import { Kind } from "../src/types.ts";

export interface TestMember {
  name: string;
  type: string;
  offset: number;
  /** First bit and width. */
  bits?: [number, number];
}

export type TestType =
  | { kind: "base"; basic: number; size: number }
  | { kind: "struct" | "union"; size: number; members: TestMember[]; flat?: TestMember[] }
  | { kind: "array"; of: string; lengths: number[]; size: number; stride: number }
  | { kind: "typedef"; of: string; size: number }
  | { kind: "pointer"; of: string; size: number }
  | { kind: "enum"; of: string; size: number; values: [bigint, string][] };

export interface TestImage {
  types: Record<string, TestType>;
  variables: { name: string; scope?: string; type: string; address: bigint; size: number; unit?: string }[];
  sections?: { name: string; address: bigint; size: bigint; kind: number }[];
  values?: { address: bigint; bytes: number[] }[];
  isBigEndian?: boolean;
}

export function packColumn(numbers: (number | bigint)[]): string {
  const all = numbers.map((number) => BigInt.asUintN(64, BigInt(number)));
  const largest = all.reduce((sofar, number) => (number > sofar ? number : sofar), 0n);
  const width = [0, 1, 2, 4, 8].find((bytes) => largest < 1n << BigInt(8 * bytes))!;
  const bytes = all.flatMap((number) =>
    Array.from({ length: width }, (_, index) => Number((number >> BigInt(8 * index)) & 255n)));
  return `${width}:` + Buffer.from(bytes).toString("base64");
}

export function packTable(columns: Record<string, (number | bigint)[]>): PackedTable {
  const count = Object.values(columns)[0]!.length;
  return {
    count,
    ...Object.fromEntries(Object.entries(columns).map(([name, cells]) => [name, packColumn(cells)])),
  };
}

const kinds = {
  base: Kind.Base, struct: Kind.Struct, union: Kind.Union, array: Kind.Array,
  typedef: Kind.Typedef, pointer: Kind.Pointer, enum: Kind.Enum,
};

export function packImage(image: TestImage): PackedImage {
  const texts = [""];
  const text = (value: string) => {
    const known = texts.indexOf(value);
    return known >= 0 ? known : texts.push(value) - 1;
  };
  const names = Object.keys(image.types);
  const number = (type: string) => names.indexOf(type) + 1;
  const types = Object.entries(image.types);
  const membersOf = (type: TestType) => ("members" in type ? type.members : []);
  const flatOf = (type: TestType) => ("flat" in type ? type.flat ?? [] : []);
  const layout = types.flatMap(([, type]) => membersOf(type));
  const flat = types.flatMap(([, type]) => flatOf(type));
  const enumerators = types.flatMap(([, type]) => (type.kind === "enum" ? type.values : []));
  const sections = image.sections ?? [];
  const values = image.values ?? [];
  return {
    file: "test.elf", container: "ELF", isComplete: true, error: "",
    byteOrder: image.isBigEndian ? "big" : "little",
    types: packTable({
      kind: types.map(([, type]) => kinds[type.kind]),
      text: types.map(([name]) => text(name)),
      size: types.map(([, type]) => type.size),
      target: types.map(([, type]) => ("of" in type ? number(type.of) : 0)),
      basic: types.map(([, type]) => (type.kind === "base" ? type.basic : 0)),
      stride: types.map(([, type]) => (type.kind === "array" ? type.stride : 0)),
      unit: types.map(() => 0),
      entries: types.map(([, type]) => membersOf(type).length),
      members: types.map(([, type]) => flatOf(type).length),
      dimensions: types.map(([, type]) => (type.kind === "array" ? type.lengths.length : 0)),
      enumerators: types.map(([, type]) => (type.kind === "enum" ? type.values.length : 0)),
    }),
    layout: packTable({
      kind: layout.map(({ bits }) => (bits === undefined ? 2 : 6)),
      name: layout.map(({ name }) => text(name)),
      type: layout.map(({ type }) => number(type)),
      offset: layout.map(({ offset }) => offset),
      size: layout.map(({ type }) => image.types[type]!.size),
      bit: layout.map(({ bits }) => (bits === undefined ? 0 : bits[0] + 1)),
      bits: layout.map(({ bits }) => bits?.[1] ?? 0),
    }),
    members: packTable({
      step: flat.map(({ name }) => text("." + name)),
      type: flat.map(({ type }) => number(type)),
      offset: flat.map(({ offset }) => offset),
      isBitField: flat.map(({ bits }) => (bits === undefined ? 0 : 1)),
      bit: flat.map(({ bits }) => (bits === undefined ? 0 : bits[0] + 1)),
      bits: flat.map(({ bits }) => bits?.[1] ?? 0),
    }),
    dimensions: packTable({
      length: types.flatMap(([, type]) => (type.kind === "array" ? type.lengths : [])),
    }),
    enumerators: packTable({
      value: enumerators.map(([value]) => value < 0n ? ~value << 1n | 1n : value << 1n),
      name: enumerators.map(([, name]) => text(name)),
    }),
    variables: packTable({
      name: image.variables.map(({ name }) => text(name)),
      scope: image.variables.map(({ scope }) => text(scope ?? "")),
      type: image.variables.map(({ type }) => number(type)),
      address: image.variables.map(({ address }) => address),
      size: image.variables.map(({ size }) => size),
      unit: image.variables.map(({ unit }) => text(unit ?? "")),
    }),
    sections: packTable({
      name: sections.map(({ name }) => text(name)),
      address: sections.map(({ address }) => address),
      size: sections.map(({ size }) => size),
      kind: sections.map(({ kind }) => kind),
    }),
    values: {
      ...packTable({
        address: values.map(({ address }) => address),
        length: values.map(({ bytes }) => bytes.length),
        hasBytes: values.map(() => 1),
      }),
      bytes: Buffer.from(values.flatMap(({ bytes }) => bytes)).toString("base64"),
      isCut: false,
    },
    texts,
  };
}

/** Motors with loops, as an engineer's program has them. */
export const motors: TestImage = {
  types: {
    float: { kind: "base", basic: 6, size: 4 },
    uint16: { kind: "base", basic: 14, size: 2 },
    int8: { kind: "base", basic: 11, size: 1 },
    char: { kind: "base", basic: 2, size: 1 },
    "char[4]": { kind: "array", of: "char", lengths: [4], size: 4, stride: 1 },
    Mode: { kind: "enum", of: "int8", size: 1, values: [[-1n, "Fault"], [2n, "Run"]] },
    Loop: {
      kind: "struct", size: 8,
      members: [
        { name: "gain", type: "float", offset: 0 },
        { name: "limit", type: "uint16", offset: 4 },
        { name: "isActive", type: "uint16", offset: 6, bits: [3, 2] },
      ],
    },
    "Loop[3]": { kind: "array", of: "Loop", lengths: [3], size: 24, stride: 8 },
    Motor: {
      kind: "struct", size: 28,
      members: [
        { name: "loops", type: "Loop[3]", offset: 0 },
        { name: "mode", type: "Mode", offset: 24 },
        { name: "speed", type: "uint16", offset: 26 },
      ],
    },
    "Motor[2]": { kind: "array", of: "Motor", lengths: [2], size: 56, stride: 28 },
    "uint16[2][3]": { kind: "array", of: "uint16", lengths: [2, 3], size: 12, stride: 2 },
    Table: { kind: "typedef", of: "uint16[2][3]", size: 12 },
    Derived: {
      kind: "struct", size: 8, members: [{ name: "own", type: "uint16", offset: 4 }],
      flat: [
        { name: "Base::own", type: "uint16", offset: 0 },
        { name: "own", type: "uint16", offset: 4 },
      ],
    },
    Node: { kind: "struct", size: 8, members: [{ name: "inner", type: "Node", offset: 0 }] },
  },
  variables: [
    { name: "motors", type: "Motor[2]", address: 0x2000_0000n, size: 56, unit: "motor.c" },
    { name: "gTable", scope: "plant", type: "Table", address: 0x2000_0040n, size: 12, unit: "plant.c" },
    { name: "gDerived", type: "Derived", address: 0x2000_0050n, size: 8, unit: "plant.c" },
    { name: "speed_ref", type: "float", address: 0x2000_0060n, size: 4, unit: "motor.c" },
    { name: "gNode", type: "Node", address: 0x2000_0070n, size: 8, unit: "plant.c" },
    { name: "gName", type: "char[4]", address: 0x0800_0000n, size: 4, unit: "main.c" },
    { name: "gHigh", type: "uint16", address: 0xffff_ffff_8000_0010n, size: 2, unit: "main.c" },
  ],
  sections: [
    { name: ".rodata", address: 0x0800_0000n, size: 0x20n, kind: 1 },
    { name: ".data", address: 0x2000_0000n, size: 0x80n, kind: 2 },
  ],
  values: [
    { address: 0x0800_0000n, bytes: [0x68, 0x69, 0x22, 0] },
    { address: 0x2000_0000n, bytes: [0, 0, 0xc0, 0x3f, 7, 0, 0x18, 0] },
    { address: 0x2000_0018n, bytes: [0xff, 0, 0x34, 0x12] },
  ],
};
