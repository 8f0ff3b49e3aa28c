// A list whose items open in place, addressed by row numbers. Closed items take no memory, so that an
// array of a million elements opens at once.

export interface Source<Item> {
  count: number;
  at(index: number): Item;
}

export interface Row<Item> {
  item: Item;
  level: number;
  isOpen: boolean;
  /** Index among its siblings, from 0, and their number. */
  position: number;
  siblings: number;
}

class Branch<Item> {
  /** Open items in ascending order of their positions. */
  readonly opened: { position: number; branch: Branch<Item> }[] = [];
  rows: number;

  constructor(readonly source: Source<Item>, readonly parent: Branch<Item> | undefined) {
    this.rows = source.count;
  }

  grow(rows: number): void {
    for (let branch: Branch<Item> | undefined = this; branch !== undefined; branch = branch.parent) {
      branch.rows += rows;
    }
  }
}

interface Found<Item> {
  branch: Branch<Item>;
  position: number;
  level: number;
  /** Index in `branch.opened`, or -1 - the index at which it would be inserted. */
  opened: number;
}

export class Outline<Item> {
  private readonly root: Branch<Item>;

  /** @param childrenOf the items below an item; undefined or empty if it doesn't open */
  constructor(
    source: Source<Item>, private readonly childrenOf: (item: Item) => Source<Item> | undefined,
  ) {
    this.root = new Branch(source, undefined);
  }

  get rowCount(): number {
    return this.root.rows;
  }

  row(number: number): Row<Item> | undefined {
    const found = this.find(number);
    return found && {
      item: found.branch.source.at(found.position),
      level: found.level,
      isOpen: found.opened >= 0,
      position: found.position,
      siblings: found.branch.source.count,
    };
  }

  canOpen(item: Item): boolean {
    return (this.childrenOf(item)?.count ?? 0) > 0;
  }

  /** @returns false if there is nothing to open */
  open(number: number): boolean {
    const found = this.find(number);
    if (found === undefined || found.opened >= 0) {
      return false;
    }
    const children = this.childrenOf(found.branch.source.at(found.position));
    if (children === undefined || children.count === 0) {
      return false;
    }
    const branch = new Branch(children, found.branch);
    found.branch.opened.splice(-1 - found.opened, 0, { position: found.position, branch });
    found.branch.grow(branch.rows);
    return true;
  }

  close(number: number): boolean {
    const found = this.find(number);
    if (found === undefined || found.opened < 0) {
      return false;
    }
    const [closed] = found.branch.opened.splice(found.opened, 1);
    found.branch.grow(-closed!.branch.rows);
    return true;
  }

  /** Row of the item that contains a row; -1 at the top. */
  parentOf(number: number): number {
    const level = this.find(number)?.level ?? 0;
    if (level === 0) {
      return -1;
    }
    const found = this.find(number)!;
    return number - rowInBranch(found.branch, found.position) - 1;
  }

  /** Row of an item within an open row, by its index there. */
  childRow(number: number, position: number): number {
    const found = this.find(number);
    if (found === undefined || found.opened < 0) {
      return -1;
    }
    return number + 1 + rowInBranch(found.branch.opened[found.opened]!.branch, position);
  }

  /** Row of a top-level item by its index. */
  topRow(position: number): number {
    return rowInBranch(this.root, position);
  }

  private find(number: number): Found<Item> | undefined {
    if (number < 0 || number >= this.root.rows) {
      return undefined;
    }
    let branch = this.root;
    let rest = number;
    for (let level = 0; ; ++level) {
      const inside = stepInto(branch, rest);
      if (inside.rest < 0) {
        return { branch, position: inside.position, level, opened: inside.opened };
      }
      rest = inside.rest;
      branch = branch.opened[inside.opened]!.branch;
    }
  }
}

function rowInBranch<Item>(branch: Branch<Item>, position: number): number {
  let row = position;
  for (const open of branch.opened) {
    row += open.position < position ? open.branch.rows : 0;
  }
  return row;
}

/** What a row of a branch is: one of its items (rest -1), or a row within an open item. */
function stepInto<Item>(
  branch: Branch<Item>, number: number,
): { position: number; opened: number; rest: number } {
  let below = 0;
  for (const [index, open] of branch.opened.entries()) {
    const row = open.position + below;
    if (number < row) {
      return { position: number - below, opened: -1 - index, rest: -1 };
    }
    if (number === row) {
      return { position: open.position, opened: index, rest: -1 };
    }
    if (number <= row + open.branch.rows) {
      return { position: open.position, opened: index, rest: number - row - 1 };
    }
    below += open.branch.rows;
  }
  return { position: number - below, opened: -1 - branch.opened.length, rest: -1 };
}
