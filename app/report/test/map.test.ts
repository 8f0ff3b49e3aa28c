import assert from "node:assert/strict";
import { test } from "node:test";
import { Image } from "../src/image.ts";
import { MapModel } from "../src/mapModel.ts";
import { splitScopes } from "../src/scopes.ts";
import { motors, packImage } from "./support.ts";

test("regions, holes and overlaps are those of the addresses", () => {
  const image = new Image(packImage({
    ...motors,
    variables: [...motors.variables,
      { name: "alias", type: "uint16", address: 0x2000_0036n, size: 4, unit: "motor.c" }],
  }));
  const model = new MapModel(image);
  assert.deepEqual(model.regions.map(({ start, size }) => [start, size]), [
    [0x0800_0000n, 0x20], [0x2000_0000n, 0x80], [0xffff_ffff_8000_0010n, 2]]);
  assert.deepEqual(
    model.holes.filter(({ section }) => section === ".data").map(({ start, size }) => [start, size])
      .sort(([first], [second]) => (first! < second! ? -1 : 1)),
    [[0x2000_003an, 6], [0x2000_004cn, 4], [0x2000_0058n, 8], [0x2000_0064n, 12], [0x2000_0078n, 8]]);
  assert.deepEqual(model.overlaps, [{ first: 0, second: 7, start: 0x2000_0036n, size: 2 }]);
  assert.equal(model.addressAt(model.xOf(0x2000_0060n) + 0.01), 0x2000_0060n);
});

test("scopes end at colons outside of brackets", () => {
  assert.deepEqual(splitScopes("a::Ring<b::C, 2>::Run"), ["a", "Ring<b::C, 2>", "Run"]);
  assert.deepEqual(splitScopes(""), []);
});
