import assert from "node:assert/strict";
import { test } from "node:test";
import { Differences } from "../src/differences.ts";
import { Image } from "../src/image.ts";
import { motors, packImage, packTable } from "./support.ts";

const old = motors.variables.slice(0, 5);

/** motors grew by 8, so that what follows moved by 8; gNode vanished, gMode appeared. */
const now = [
  { ...old[0]!, size: 64 },
  ...old.slice(1, 4).map((variable) => ({ ...variable, address: variable.address + 8n })),
  { name: "gMode", type: "Mode", address: 0x2000_0100n, size: 1, unit: "plant.c" },
];

interface TestRow { old: number; new: number; changes: number; path?: string; places?: number }

function differencesOf(rows: TestRow[]): Differences {
  const oldImage = new Image(packImage({ ...motors, variables: old }));
  const newImage = new Image(packImage({ ...motors, variables: now }));
  const texts = ["", ...rows.map(({ path }) => path ?? "")];
  const cells = (cell: (row: TestRow) => number | bigint) => rows.map(cell);
  const table = packTable({
    old: cells((row) => row.old + 1), new: cells((row) => row.new + 1),
    changes: cells(({ changes }) => changes), isLeaf: cells(({ path }) => (path ? 1 : 0)),
    path: cells((row) => rows.indexOf(row) + 1), places: cells(({ places }) => places ?? 1),
    oldAddress: cells((row) => old[row.old]?.address ?? 0n),
    newAddress: cells((row) => now[row.new]?.address ?? 0n),
    oldSize: cells((row) => old[row.old]?.size ?? 0), newSize: cells((row) => now[row.new]?.size ?? 0),
    oldType: cells(() => 0), newType: cells(() => 0), oldBit: cells(() => 0), oldBits: cells(() => 0),
    newBit: cells(() => 0), newBits: cells(() => 0),
  });
  return new Differences({ texts, rows: table }, oldImage, newImage);
}

test("changes are grouped by cause, leaves with their variable", () => {
  const differences = differencesOf([
    { old: 0, new: 0, changes: 2 },
    { old: -1, new: 0, changes: 0, path: "[].extra", places: 2 },
    { old: 1, new: 1, changes: 1 },
    { old: 2, new: 2, changes: 1 },
    { old: 2, new: 2, changes: 4, path: ".own" },
    { old: 3, new: 3, changes: 1 },
    { old: 4, new: -1, changes: 0 },
    { old: -1, new: 4, changes: 0 },
  ]);
  const causes = differences.variables.map(({ cause, change, leaves }) => [cause, change.name, leaves.length]);
  assert.deepEqual(causes, [
    ["grew", "motors", 1], ["moved alone", "plant::gTable", 0], ["changed inside", "gDerived", 1],
    ["moved alone", "speed_ref", 0], ["vanished", "gNode", 0], ["appeared", "gMode", 0]]);
  const [block, ...others] = differences.movedBlocks(differences.of("moved alone"));
  assert.equal(others.length, 0);
  assert.equal(block!.distance, 8n);
  assert.equal(block!.reason, "motors grew");
  assert.equal(differences.causeOf("old", 4), "vanished");
  assert.equal(differences.causeOf("new", 4), "appeared");
});
