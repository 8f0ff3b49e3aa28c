import assert from "node:assert/strict";
import { test } from "node:test";
import { Image } from "../src/image.ts";
import { leafCount } from "../src/leafCount.ts";
import { placeHash, parseRoute, placeOfRoute } from "../src/route.ts";
import { placeAt } from "../src/rows.ts";
import { valueText } from "../src/values.ts";
import { motors, packImage } from "./support.ts";

const image = new Image(packImage(motors));

test("paths lead to places, and nothing else does", () => {
  const places: [string, bigint, number][] = [
    ["motors", 0x2000_0000n, 56],
    ["motors[1].loops[2].gain", 0x2000_0000n + 28n + 16n, 4],
    ["plant::gTable[1][2]", 0x2000_0040n + 10n, 2],
    ["gDerived.Base::own", 0x2000_0050n, 2],
    ["gDerived.own", 0x2000_0054n, 2],
    ["gHigh", 0xffff_ffff_8000_0010n, 2],
  ];
  for (const [path, address, size] of places) {
    const place = image.resolve(path);
    assert.equal(place && image.addressOf(place), address, path);
    assert.equal(place?.size, size, path);
  }
  for (const path of ["motors[2]", "motors[1].loops[3].gain", "plant::gTable[1]", "gTable", "motors.x", ""]) {
    assert.equal(image.resolve(path), undefined, path);
  }
});

test("leaves are those of the types, and a type in itself ends them", () => {
  const paths = [...image.leaves(image.placeOf(0))].map(({ path }) => path);
  assert.equal(paths.length, 2 * (3 * 3 + 2));
  assert.equal(paths[1], "motors[0].loops[0].limit");
  assert.equal(paths[paths.length - 1], "motors[1].speed");
  assert.deepEqual([...image.leaves(image.placeOf(4))].map(({ path }) => path), ["gNode.inner"]);
  assert.equal(leafCount(image), 22 + 6 + 2 + 1 + 1 + 4 + 1);
});

test("values are read as their types say", () => {
  const values: Record<string, string> = {
    "motors[0].loops[0].gain": "1.5",
    "motors[0].loops[0].limit": "7",
    "motors[0].loops[0].isActive": "3",
    "motors[0].mode": "-1 Fault",
    "motors[0].speed": "4660",
    "motors[1].speed": "",
    gName: '"hi""',
    "gName[0]": "104 'h'",
  };
  for (const [path, value] of Object.entries(values)) {
    assert.equal(valueText(image, image.resolve(path)!), value, path);
  }
  const big = new Image(packImage({ ...motors, isBigEndian: true }));
  assert.equal(valueText(big, big.resolve("motors[0].speed")!), String(0x3412));
  // Bits count from the least significant of the unit's two bytes, 0x1800.
  assert.equal(valueText(big, big.resolve("motors[0].loops[0].isActive")!), "0");
});

test("values of enums are compared in the size of the enum", () => {
  const cases: [basic: number, size: number, value: bigint, bytes: number[], text: string][] = [
    [11, 1, -1n, [0xff], "-1 E"],
    [12, 1, 255n, [0xff], "255 E"],
    [12, 1, 256n, [0], "0"],
    [5, 4, -1n, [0xff, 0xff, 0xff, 0xff], "4294967295 E"],
    [15, 8, 0x1_0000_0005n, [5, 0, 0, 0, 1, 0, 0, 0], "4294967301 E"],
    [15, 8, 0x1_0000_0005n, [5, 0, 0, 0, 0, 0, 0, 0], "5"],
    [15, 8, 5n, [5, 0, 0, 0, 5, 0, 0, 0], "21474836485"],
    [16, 8, -1n, [0xff, 0xff, 0xff, 0xff, 0, 0, 0, 0], "4294967295"],
    [16, 8, -1n, Array(8).fill(0xff) as number[], "18446744073709551615 E"],
  ];
  for (const [basic, size, value, bytes, text] of cases) {
    const one = new Image(packImage({
      types: { base: { kind: "base", basic, size }, E: { kind: "enum", of: "base", size, values: [[value, "E"]] } },
      variables: [{ name: "e", type: "E", address: 0n, size }],
      sections: [{ name: ".data", address: 0n, size: 8n, kind: 2 }],
      values: [{ address: 0n, bytes }],
    }));
    assert.equal(valueText(one, one.resolve("e")!), text, `${value} in ${size} bytes`);
  }
});

test("an address leads to the innermost place", () => {
  assert.equal(placeAt(image, 0, 0x2000_0000n + 28n + 9n)?.path, "motors[1].loops[1].gain");
  assert.equal(placeAt(image, 0, 0x2000_0000n + 25n)?.path, "motors[0]");
  assert.equal(placeAt(image, 0, 0x2000_0000n + 56n), undefined);
});

test("links name places, with an address where several have the name", () => {
  const twins = new Image(packImage({
    ...motors,
    variables: [...motors.variables, { ...motors.variables[3]!, address: 0x2000_0064n }],
  }));
  for (const variable of [0, 3, 7]) {
    const place = twins.placeOf(variable);
    const { view, argument } = parseRoute(placeHash(twins, place));
    assert.equal(view, "place");
    assert.equal(placeOfRoute(twins, argument)?.variable, variable);
  }
  assert.equal(placeHash(image, image.resolve("motors[1].loops[0].gain")!), "#motors[1].loops[0].gain");
});
