// The differences of two images: grouped by cause, filtered, opened down to the leaves that changed.

import type { Context, View } from "./context.ts";
import { csvCell, saveText } from "./csv.ts";
import { button, make, marked } from "./dom.ts";
import { type Cause, type Change, type ChangedVariable, type Differences, type MovedBlock, causes } from "./differences.ts";
import { bytes, count, number, signed } from "./format.ts";
import { Grid } from "./grid.ts";
import { Outline, type Source } from "./outline.ts";
import { placeHash } from "./route.ts";
import { matchedRanges } from "./search.ts";

type Item =
  | { kind: "cause"; cause: Cause; variables: ChangedVariable[] }
  | { kind: "block"; block: MovedBlock }
  | { kind: "variable"; variable: ChangedVariable }
  | { kind: "leaf"; change: Change };

export const causeTexts: Record<Cause, string> = {
  appeared: "Appeared", vanished: "Vanished", grew: "Grew", shrank: "Shrank", retyped: "Retyped",
  "changed inside": "Changed inside", "moved alone": "Moved alone",
};

export function causeClass(cause: Cause): string {
  return "cause-" + cause.replace(" ", "-");
}

export class ChangesView implements View {
  readonly id = "changes";
  readonly title = "Changes";
  readonly element: HTMLElement;
  private readonly input: HTMLInputElement;
  private readonly status = make("p", { class: "status", role: "status" });
  private readonly grid: Grid<Item>;
  private readonly wanted = new Set<Cause>(causes);
  private isShown = false;

  constructor(private readonly context: Context, private readonly differences: Differences) {
    this.input = make("input", {
      type: "search", spellcheck: "false", autocomplete: "off", placeholder: "Filter by name, type or unit",
      "aria-label": "Filter changes by name, type or unit", input: () => this.list(),
      keydown: (event: KeyboardEvent) => {
        if (event.key === "ArrowDown" || event.key === "Enter") {
          this.grid.focus();
          this.grid.select(0);
          event.preventDefault();
        }
      },
    });
    this.grid = new Grid<Item>({
      label: "Changes by cause",
      columns: [
        { id: "name", title: "What", width: "minmax(12rem, 3fr)", cell: (item) => this.nameCell(item) },
        { id: "address", title: "Address", width: "minmax(9rem, 2fr)",
          cell: (item) => this.addressCell(item) },
        { id: "size", title: "Size", width: "8rem", neededWidth: 560, isNumber: true,
          cell: (item) => this.sizeCell(item) },
        { id: "type", title: "Type", width: "minmax(8rem, 2.5fr)", neededWidth: 760,
          cell: (item) => this.typeCell(item) },
        { id: "bits", title: "Bits", width: "9rem", neededWidth: 1150,
          cell: (item) => (item.kind === "leaf" ? beforeAfter(item.change.oldBits, item.change.newBits) : "") },
        { id: "unit", title: "Unit", width: "minmax(6rem, 1fr)", neededWidth: 960,
          cell: (item) => (item.kind === "variable" ? this.unitOf(item.variable) : "") },
      ],
      canOpen: (item) => (this.childrenOf(item)?.count ?? 0) > 0,
      rowClass: (item) => (item.kind === "cause" ? "is-group" : ""),
      onActivate: (item) => this.activate(item),
      emptyText: "No change matches.",
    });
    this.element = make("section", { class: "view changes" },
      make("div", { class: "toolbar" }, this.input, this.filters(), this.status,
        button("Save CSV", () => this.save())),
      this.grid.element);
  }

  show(argument: string): void {
    if (argument !== "" || !this.isShown) {
      this.isShown = true;
      this.input.value = argument;
      this.list();
    }
  }

  focusSearch(): void {
    this.input.focus();
    this.input.select();
  }

  private filters(): HTMLElement {
    const set = make("fieldset", { class: "filters" }, make("legend", { class: "offscreen" }, "Shown causes"));
    for (const cause of causes) {
      const box = make("input", { type: "checkbox", checked: true });
      box.addEventListener("change", () => {
        if (box.checked) {
          this.wanted.add(cause);
        } else {
          this.wanted.delete(cause);
        }
        this.list();
      });
      set.append(make("label", { class: "filter" }, box,
        make("span", { class: `cause-mark ${causeClass(cause)}`, "aria-hidden": "true" }),
        `${causeTexts[cause]} ${number(this.differences.of(cause).length)}`));
    }
    return set;
  }

  private fits(variable: ChangedVariable, words: string[]): boolean {
    const { change, leaves } = variable;
    const texts = [change.name, change.oldType, change.newType, this.unitOf(variable),
                   ...leaves.map(({ path, oldType, newType }) => `${path} ${oldType} ${newType}`)];
    const whole = texts.join(" ").toLowerCase();
    return words.every((word) => whole.includes(word));
  }

  private found(): ChangedVariable[] {
    const words = this.input.value.toLowerCase().split(/\s+/).filter((word) => word !== "");
    return this.differences.variables.filter(
      (variable) => this.wanted.has(variable.cause) && this.fits(variable, words));
  }

  private list(): void {
    const found = this.found();
    const items: Item[] = causes
      .map((cause): Item => ({
        kind: "cause", cause, variables: found.filter((variable) => variable.cause === cause),
      }))
      .filter((item) => item.kind === "cause" && item.variables.length > 0);
    const outline = new Outline<Item>(sourceOf(items), (item) => this.childrenOf(item));
    for (let row = items.length - 1; row >= 0; --row) {
      const item = items[row]!;
      if (item.kind === "cause" && (item.cause !== "moved alone" || found.length < 200)) {
        outline.open(row);
        if (item.cause === "moved alone" && this.input.value !== "") {
          for (let block = this.blocksOf(item.variables).length; block > 0; --block) {
            outline.open(row + block);
          }
        }
      }
    }
    this.status.textContent = found.length === this.differences.variables.length
      ? count(found.length, "changed variable")
      : `${number(found.length)} of ${count(this.differences.variables.length, "changed variable")}`;
    this.grid.show(outline);
  }

  private childrenOf(item: Item): Source<Item> | undefined {
    switch (item.kind) {
      case "cause":
        return item.cause === "moved alone"
          ? sourceOf(this.blocksOf(item.variables).map(itemOf))
          : sourceOf(item.variables.map((variable): Item => ({ kind: "variable", variable })));
      case "block":
        return sourceOf(item.block.variables.map((variable): Item => ({ kind: "variable", variable })));
      case "variable":
        return sourceOf(item.variable.leaves.map((change): Item => ({ kind: "leaf", change })));
      default:
        return undefined;
    }
  }

  private readonly knownBlocks = new WeakMap<ChangedVariable[], MovedBlock[]>();

  private blocksOf(variables: ChangedVariable[]): MovedBlock[] {
    let blocks = this.knownBlocks.get(variables);
    if (blocks === undefined) {
      blocks = this.differences.movedBlocks(variables);
      this.knownBlocks.set(variables, blocks);
    }
    return blocks;
  }

  private nameCell(item: Item): Node {
    switch (item.kind) {
      case "cause":
        return make("span", { class: "name" },
          make("span", { class: `cause-mark ${causeClass(item.cause)}`, "aria-hidden": "true" }),
          make("strong", {}, causeTexts[item.cause]),
          make("span", { class: "badge" }, number(item.variables.length)));
      case "block":
        return make("span", { class: "name" },
          `${signed(item.block.distance)} bytes`,
          make("span", { class: "badge" }, number(item.block.variables.length)),
          item.block.reason === "" ? "" : make("span", { class: "muted" }, ` ${item.block.reason}`));
      case "variable":
        return this.variableCell(item.variable);
      default:
        return make("span", { class: "name" }, item.change.path,
          item.change.count > 1 ? make("span", { class: "badge" }, `× ${number(item.change.count)}`) : "",
          make("span", { class: "muted" }, " " + leafText(item.change)));
    }
  }

  private variableCell(variable: ChangedVariable): Node {
    const { change } = variable;
    const text = marked(change.name, matchedRanges(change.name, this.input.value));
    const { newImage } = this.differences;
    return make("span", { class: "name", title: change.name },
      change.newVariable < 0
        ? text
        : make("a", { href: placeHash(newImage, newImage.placeOf(change.newVariable)), tabindex: -1 }, text));
  }

  private unitOf({ change }: ChangedVariable): string {
    const { oldImage, newImage } = this.differences;
    return change.newVariable >= 0
      ? newImage.unit(change.newVariable) : oldImage.unit(change.oldVariable);
  }

  private addressCell(item: Item): Node | string {
    if (item.kind === "cause" || item.kind === "block") {
      return "";
    }
    const change = item.kind === "leaf" ? item.change : item.variable.change;
    const { oldImage, newImage } = this.differences;
    const before = change.oldVariable < 0 ? "" : oldImage.formatAddress(change.oldAddress);
    const after = change.newVariable < 0 ? "" : newImage.formatAddress(change.newAddress);
    return beforeAfter(before, after);
  }

  private sizeCell(item: Item): Node | string {
    if (item.kind === "cause") {
      return sizeText(item.variables);
    }
    if (item.kind === "block") {
      return "";
    }
    const change = item.kind === "leaf" ? item.change : item.variable.change;
    return beforeAfter(change.oldVariable < 0 ? "" : number(change.oldSize),
                       change.newVariable < 0 ? "" : number(change.newSize));
  }

  private typeCell(item: Item): Node | string {
    if (item.kind === "cause" || item.kind === "block") {
      return "";
    }
    const change = item.kind === "leaf" ? item.change : item.variable.change;
    return beforeAfter(change.oldType, change.newType);
  }

  private activate(item: Item): void {
    if (item.kind === "variable" && item.variable.change.newVariable >= 0) {
      const { newImage } = this.differences;
      this.context.go(placeHash(newImage, newImage.placeOf(item.variable.change.newVariable)));
    }
  }

  private save(): void {
    const lines = ["cause,name,oldAddress,newAddress,oldSize,newSize,oldType,newType,count"];
    const { oldImage, newImage } = this.differences;
    const add = (cause: string, change: Change) => {
      lines.push([
        cause, change.name + change.path,
        change.oldVariable < 0 ? "" : oldImage.formatAddress(change.oldAddress),
        change.newVariable < 0 ? "" : newImage.formatAddress(change.newAddress),
        change.oldVariable < 0 ? "" : String(change.oldSize),
        change.newVariable < 0 ? "" : String(change.newSize),
        change.oldType, change.newType, String(change.count)].map(csvCell).join(","));
    };
    for (const { cause, change, leaves } of this.found()) {
      add(cause, change);
      for (const leaf of leaves) {
        add("leaf", leaf);
      }
    }
    saveText("changes.csv", "text/csv", lines.join("\n") + "\n");
    this.context.say(`Saved ${count(lines.length - 1, "row")}`);
  }
}

/** A variable that moved by its own distance is not a group. */
function itemOf(block: MovedBlock): Item {
  const [variable] = block.variables;
  return block.variables.length === 1 && block.reason === "" && variable !== undefined
    ? { kind: "variable", variable } : { kind: "block", block };
}

function sourceOf<Item>(items: Item[]): Source<Item> {
  return { count: items.length, at: (index) => items[index]! };
}

function leafText(change: Change): string {
  if (change.oldVariable < 0) {
    return "appeared";
  }
  if (change.newVariable < 0) {
    return "vanished";
  }
  const words = [change.isMoved && "moved", change.isResized && "resized", change.isRetyped && "retyped"];
  return words.filter((word) => word !== false).join(", ");
}

/** The text once if both are equal, otherwise the old and the new one. */
function beforeAfter(before: string, after: string): Node | string {
  if (before === after || before === "" || after === "") {
    return before || after;
  }
  return make("span", { class: "before-after" },
    make("del", {}, before), make("span", { "aria-hidden": "true" }, " → "), make("ins", {}, after));
}

function sizeText(variables: ChangedVariable[]): string {
  let sum = 0;
  for (const { change } of variables) {
    sum += (change.newVariable < 0 ? 0 : change.newSize) - (change.oldVariable < 0 ? 0 : change.oldSize);
  }
  return sum === 0 ? "" : (sum > 0 ? "+" : "−") + bytes(Math.abs(sum));
}
