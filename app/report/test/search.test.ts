import assert from "node:assert/strict";
import { test } from "node:test";
import { Image } from "../src/image.ts";
import { Outline } from "../src/outline.ts";
import { Rows } from "../src/rows.ts";
import { Search, matchedRanges } from "../src/search.ts";
import { sortHits } from "../src/sorting.ts";
import { motors, packImage } from "./support.ts";

const image = new Image(packImage(motors));
const search = new Search(image);
const rows = new Rows(image, search);

function found(query: string): string[] {
  const source = rows.source(search.find(query), query);
  return Array.from({ length: source.count }, (_, index) => {
    const row = source.at(index);
    return (row.isFuzzy ? "~" : "") + row.path + (row.count > 1 ? ` x${row.count}` : "");
  });
}

test("a query finds the topmost parts that all words fit", () => {
  const queries: [string, string[]][] = [
    ["gain", ["motors[].loops[].gain x6"]],
    ["motors", ["motors"]],
    ["motor gain", ["motors[].loops[].gain x6"]],
    ["motors[].loops", ["motors[].loops x2"]],
    ["motors[1].loops[2].g", ["motors[1].loops[2].gain"]],
    ["motors[1].loops[].g", ["motors[1].loops[].gain x3"]],
    ["loops[2].gain", ["motors[].loops[2].gain x2"]],
    ["motors[1", ["motors[] x2"]],
    ["motors[1]", ["motors[1]", "motors[1]"]],
    ["gtable[1][2]", ["plant::gTable[1][2]"]],
    ["loops[3]", []],
    ["motors[1].loops[2].gain", ["motors[1].loops[2].gain", "motors[1].loops[2].gain"]],
    ["type:mode", ["motors[].mode x2"]],
    ["unit:main", ["gName", "gHigh"]],
    ["section:rodata", ["gName"]],
    ["name:plant", ["plant::gTable"]],
    ["0x20000060", ["speed_ref"]],
    ["0x20000050..0x20000063", ["gDerived", "speed_ref"]],
    ["0x20000050+8", ["gDerived"]],
    ["0xffffffff8000", ["gHigh"]],
    ["speed_rfe", ["~speed_ref"]],
    ["nosuchthing", []],
  ];
  for (const [query, paths] of queries) {
    assert.deepEqual(found(query), paths, query);
  }
  assert.equal(found("").length, motors.variables.length);
});

test("an address finds the part that holds it", () => {
  assert.deepEqual(found("0x20000004"), ["motors[0].loops[0].limit", "motors"]);
});

test("matched parts are marked", () => {
  assert.deepEqual(matchedRanges("motors[].loops[].gain", "gain mot"), [[0, 3], [17, 21]]);
});

test("hits are sorted by any column, numbers as numbers", () => {
  const order = (column: string, isDescending = false) =>
    sortHits(image, search, search.find(""), { column, isDescending }).map(({ variable }) => variable);
  assert.deepEqual(order("address"), [5, 0, 1, 2, 3, 4, 6]);
  assert.deepEqual(order("size", true).slice(0, 2), [0, 1]);
  assert.equal(order("unit")[0], 5);
});

test("an outline opens arrays of a million in place", () => {
  const million = { count: 1_000_000, at: (index: number) => `m${index}` };
  const outline = new Outline<string>(
    { count: 3, at: (index) => `top${index}` },
    (item) => (item === "top1" ? million : item === "m999999" ? { count: 2, at: (i) => `leaf${i}` } : undefined));
  assert.equal(outline.open(0), false);
  assert.equal(outline.open(1), true);
  assert.equal(outline.rowCount, 1_000_003);
  assert.equal(outline.open(1_000_001), true);
  const row = outline.row(1_000_003)!;
  assert.deepEqual([row.item, row.level, row.position, row.siblings], ["leaf1", 2, 1, 2]);
  assert.equal(outline.parentOf(1_000_003), 1_000_001);
  assert.equal(outline.parentOf(1_000_001), 1);
  assert.equal(outline.row(1_000_004)!.item, "top2");
  assert.equal(outline.childRow(1, 5), 7);
  assert.equal(outline.close(1), true);
  assert.deepEqual([outline.rowCount, outline.row(2)!.item], [3, "top2"]);
});
