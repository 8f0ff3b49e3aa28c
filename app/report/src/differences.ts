// The differences of two images, grouped by cause.

import { type NumberColumn, unpackAddresses, unpackNumbers } from "./columns.ts";
import type { Image } from "./image.ts";
import type { PackedDifferences } from "./pack.ts";

export const causes = ["appeared", "vanished", "grew", "shrank", "retyped", "changed inside", "moved alone"] as const;
export type Cause = (typeof causes)[number];

export interface Change {
  /** Numbers of the variable in the old and the new image; -1 if the image lacks it. */
  oldVariable: number;
  newVariable: number;
  name: string;
  /** Steps to the leaf; empty for the variable itself. */
  path: string;
  isMoved: boolean;
  isResized: boolean;
  isRetyped: boolean;
  /** Number of array elements that changed in the same way. */
  count: number;
  oldAddress: bigint;
  newAddress: bigint;
  oldSize: number;
  newSize: number;
  oldType: string;
  newType: string;
  oldBits: string;
  newBits: string;
}

export interface ChangedVariable {
  cause: Cause;
  /** The variable; if only its inside changed, it is composed from both images. */
  change: Change;
  leaves: Change[];
}

/** Adjacent variables that moved by the same distance. */
export interface MovedBlock {
  distance: bigint;
  variables: ChangedVariable[];
  /** The change before them that made the room, if it is obvious. */
  reason: string;
}

/** With more comparisons than this no reason is obvious anyway. */
const mostComparisons = 1_000_000;

const moved = 1;
const resized = 2;
const retyped = 4;

export class Differences {
  readonly variables: ChangedVariable[];

  constructor(packed: PackedDifferences, readonly oldImage: Image, readonly newImage: Image) {
    this.variables = groupByVariable(readChanges(packed, oldImage, newImage), oldImage, newImage);
  }

  of(cause: Cause): ChangedVariable[] {
    return this.variables.filter((variable) => variable.cause === cause);
  }

  /** The variables that only moved, in blocks that moved together. */
  movedBlocks(variables: ChangedVariable[]): MovedBlock[] {
    const byAddress = [...variables].sort((first, second) =>
      first.change.oldAddress < second.change.oldAddress ? -1 : 1);
    const blocks: MovedBlock[] = [];
    for (const variable of byAddress) {
      const distance = variable.change.newAddress - variable.change.oldAddress;
      const last = blocks[blocks.length - 1];
      if (last !== undefined && last.distance === distance) {
        last.variables.push(variable);
      } else {
        blocks.push({ distance, variables: [variable], reason: "" });
      }
    }
    this.explain(blocks);
    return blocks;
  }

  /** Cause of the change of a variable in one of the images; undefined if nothing changed. */
  causeOf(side: "old" | "new", variable: number): Cause | undefined {
    return this.causeMap(side).get(variable);
  }

  private readonly maps: Partial<Record<"old" | "new", Map<number, Cause>>> = {};

  private causeMap(side: "old" | "new"): Map<number, Cause> {
    return (this.maps[side] ??= new Map(this.variables.map(({ cause, change }) => [
      side === "old" ? change.oldVariable : change.newVariable, cause])));
  }

  /** Names what grew, shrank, appeared or vanished right before a block by exactly its distance. */
  private explain(blocks: MovedBlock[]): void {
    const resized = this.variables.filter(({ change }) => growthOf(change) !== 0n);
    if (resized.length * blocks.length > mostComparisons) {
      return;
    }
    let before = 0n;
    let previousEnd = 0n;
    for (const block of blocks) {
      const start = block.variables[0]!.change.newAddress;
      const step = block.distance - before;
      const candidates = resized.filter(({ cause, change }) => {
        const address = cause === "vanished" ? change.oldAddress + block.distance : change.newAddress;
        return growthOf(change) === step && address < start + 64n && address >= previousEnd;
      });
      if (candidates.length === 1 && step !== 0n) {
        const [{ cause, change }] = candidates as [ChangedVariable];
        block.reason = `${change.name} ${cause === "retyped" ? "changed its size" : cause}`;
      }
      before = block.distance;
      const last = block.variables[block.variables.length - 1]!.change;
      previousEnd = last.newAddress;
    }
  }
}

function growthOf(change: Change): bigint {
  return BigInt(Math.trunc(change.newSize)) - BigInt(Math.trunc(change.oldSize));
}

function bitText(bit: number, bits: number): string {
  return bits === 0 ? "" : bits === 1 ? `bit ${bit - 1}` : `bits ${bit - 1}–${bit + bits - 2}`;
}

interface RawChange extends Change {
  isLeaf: boolean;
}

function readChanges(packed: PackedDifferences, oldImage: Image, newImage: Image): RawChange[] {
  const { rows, texts } = packed;
  const column = (name: string): NumberColumn => unpackNumbers(rows[name] as string, rows.count);
  const names = ["old", "new", "changes", "isLeaf", "path", "places", "oldSize", "newSize", "oldType",
                 "newType", "oldBit", "oldBits", "newBit", "newBits"];
  const columns = Object.fromEntries(names.map((name) => [name, column(name)]));
  const oldAddresses = unpackAddresses(rows["oldAddress"], rows.count);
  const newAddresses = unpackAddresses(rows["newAddress"], rows.count);
  return Array.from({ length: rows.count }, (_, row) => {
    const cell = (name: string) => columns[name]![row]!;
    const oldVariable = cell("old") - 1;
    const newVariable = cell("new") - 1;
    return {
      oldVariable,
      newVariable,
      name: newVariable >= 0 ? newImage.name(newVariable) : oldImage.name(oldVariable),
      isLeaf: cell("isLeaf") !== 0,
      path: texts[cell("path")]!,
      isMoved: (cell("changes") & moved) !== 0,
      isResized: (cell("changes") & resized) !== 0,
      isRetyped: (cell("changes") & retyped) !== 0,
      count: cell("places"),
      oldAddress: oldAddresses[row]!,
      newAddress: newAddresses[row]!,
      oldSize: cell("oldSize"),
      newSize: cell("newSize"),
      oldType: texts[cell("oldType")]!,
      newType: texts[cell("newType")]!,
      oldBits: bitText(cell("oldBit"), cell("oldBits")),
      newBits: bitText(cell("newBit"), cell("newBits")),
    };
  });
}

/** Leaves follow their variable, or stand alone if the variable itself did not change. */
function groupByVariable(
  changes: RawChange[], oldImage: Image, newImage: Image,
): ChangedVariable[] {
  const variables: ChangedVariable[] = [];
  const oldToNew = pairs(changes);
  let last: ChangedVariable | undefined;
  for (const change of changes) {
    if (!change.isLeaf) {
      last = { cause: causeOf(change), change, leaves: [] };
      variables.push(last);
      continue;
    }
    if (last === undefined || !isOfVariable(change, last.change)) {
      last = {
        cause: "changed inside", change: wholeOf(change, oldImage, newImage, oldToNew), leaves: [],
      };
      variables.push(last);
    }
    last.leaves.push(change);
    if (last.cause === "moved alone") {
      last.cause = "changed inside";
    }
  }
  return variables;
}

/** A leaf that exists in only one build has its variable only there. */
function pairs(changes: RawChange[]): { toNew: Map<number, number>; toOld: Map<number, number> } {
  const toNew = new Map<number, number>();
  const toOld = new Map<number, number>();
  for (const { oldVariable, newVariable } of changes) {
    if (oldVariable >= 0 && newVariable >= 0) {
      toNew.set(oldVariable, newVariable);
      toOld.set(newVariable, oldVariable);
    }
  }
  return { toNew, toOld };
}

function isOfVariable(leaf: Change, variable: Change): boolean {
  return (
    (leaf.oldVariable >= 0 && leaf.oldVariable === variable.oldVariable) ||
    (leaf.newVariable >= 0 && leaf.newVariable === variable.newVariable)
  );
}

function wholeOf(
  leaf: Change, oldImage: Image, newImage: Image,
  known: { toNew: Map<number, number>; toOld: Map<number, number> },
): Change {
  const oldVariable = leaf.oldVariable >= 0 ? leaf.oldVariable : known.toOld.get(leaf.newVariable) ?? -1;
  const newVariable = leaf.newVariable >= 0 ? leaf.newVariable : known.toNew.get(leaf.oldVariable) ?? -1;
  const side = (image: Image, variable: number) => ({
    address: variable < 0 ? 0n : image.addresses[variable]!,
    size: variable < 0 ? 0 : image.sizes[variable]!,
    type: variable < 0 ? "" : image.types.text(image.variableTypes[variable]!),
  });
  const before = side(oldImage, oldVariable);
  const after = side(newImage, newVariable);
  return {
    oldVariable, newVariable, name: leaf.name, path: "", isMoved: false, isResized: false,
    isRetyped: false, count: 1, oldAddress: before.address, newAddress: after.address,
    oldSize: before.size, newSize: after.size, oldType: before.type, newType: after.type,
    oldBits: "", newBits: "",
  };
}

function causeOf(change: Change): Cause {
  if (change.oldVariable < 0) {
    return "appeared";
  }
  if (change.newVariable < 0) {
    return "vanished";
  }
  if (change.isResized) {
    return change.newSize > change.oldSize ? "grew" : "shrank";
  }
  return change.isRetyped ? "retyped" : "moved alone";
}
