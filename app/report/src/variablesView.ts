// The table of all variables: searched while typing, sorted by any column, opened in place.

import type { Context, View } from "./context.ts";
import { csvHeader, csvRow, saveText } from "./csv.ts";
import { DetailPane, typeLink } from "./detailPane.ts";
import { button, make, marked } from "./dom.ts";
import { bitRange, count, number } from "./format.ts";
import { type Column, Grid, type Sorting } from "./grid.ts";
import type { Image, Place } from "./image.ts";
import { Outline } from "./outline.ts";
import { type VariableRow, Rows } from "./rows.ts";
import { type Hit, type Search, matchedRanges } from "./search.ts";
import { sortHits } from "./sorting.ts";
import { leafCount } from "./leafCount.ts";
import { valueText } from "./values.ts";

const mostSavedRows = 2_000_000;

export class VariablesView implements View {
  readonly id = "variables";
  readonly title = "Variables";
  readonly element: HTMLElement;
  private readonly input: HTMLInputElement;
  private readonly status = make("p", { class: "status", role: "status" });
  private readonly grid: Grid<VariableRow>;
  private readonly detail: DetailPane;
  private sorting: Sorting | undefined;
  private outline: Outline<VariableRow> | undefined;
  private hits: Hit[] = [];
  /** Number of rows before those of the hits. */
  private directCount = 0;
  private shownImage = -1;
  private rows!: Rows;

  constructor(private readonly context: Context) {
    this.input = make("input", {
      type: "search", id: "search", spellcheck: "false", autocomplete: "off",
      placeholder: "Search: name, type, unit, 0x20000000, 0x20000000..0x20000fff",
      "aria-label": "Search variables by name, type, unit, address or range",
      "aria-describedby": "search-help",
      input: () => this.find(),
      keydown: (event: KeyboardEvent) => this.onInputKey(event),
    });
    this.detail = new DetailPane(context, "Select a row to see everything about it.");
    this.grid = new Grid<VariableRow>({
      label: "Variables",
      columns: this.columns(),
      canOpen: (row) => row.count > 1 || this.image.childCount(row.place) > 0,
      rowClass: (row) => (row.isFuzzy ? "is-fuzzy" : ""),
      onSelect: (row) => this.detail.show(this.image, row.place),
      onSort: (sorting) => this.sort(sorting),
      emptyText: "No match. Try fewer letters.",
    });
    this.element = make("section", { class: "view variables" },
      make("div", { class: "toolbar" },
        this.input,
        this.status,
        button("Save CSV", () => this.save(), { title: "All rows of this table with their leaves" }),
      ),
      make("p", { id: "search-help", class: "help" },
        "All words must match; ",
        ...["name:", "type:", "unit:", "section:"].flatMap((word, index) => [
          index === 0 ? "" : " ", make("code", {}, word)]),
        " look in one column. ", make("kbd", {}, "/"), " searches, ", make("kbd", {}, "↓"),
        " goes to the table, ", make("kbd", {}, "→"), " opens a row. ",
        make("span", { class: "fuzzy-mark" }, "≈"), " marks similar names."),
      make("div", { class: "split" }, this.grid.element, this.detail.element),
    );
  }

  show(argument: string): void {
    const isOther = this.shownImage !== this.context.current;
    if (isOther) {
      this.shownImage = this.context.current;
      this.rows = new Rows(this.image, this.searchOf());
      // Compiles the search in the browser before the first key needs it.
      setTimeout(() => this.searchOf().find("ab"), 200);
      this.element.style.setProperty(
        "--address-width", `${2.6 + this.image.addressDigits * 0.58}rem`);
    }
    if (argument !== "" || isOther) {
      this.input.value = argument;
      this.find();
    }
  }

  focusSearch(): void {
    this.input.focus();
    this.input.select();
  }

  /** Opens the table down to a place and selects its row. */
  reveal(place: Place): void {
    if (this.shownImage !== this.context.current || this.rowOf(place) < 0) {
      this.input.value = "";
      this.shownImage = -1;
      this.show("");
    }
    const row = this.openTo(place);
    if (row >= 0) {
      this.grid.select(row, true, true);
    }
    this.detail.show(this.image, place);
    this.grid.focus();
  }

  private get image(): Image {
    return this.context.images[this.context.current]!;
  }

  private searchOf(): Search {
    return this.context.search(this.context.current);
  }

  private columns(): Column<VariableRow>[] {
    return [
      { id: "name", title: "Name", width: "minmax(12rem, 4fr)", isSortable: true,
        cell: (row) => this.nameCell(row) },
      { id: "address", title: "Address", width: "var(--address-width)",
        isSortable: true, isNumber: true,
        cell: (row) => this.image.formatAddress(this.image.addressOf(row.place)) +
                       (row.count > 1 ? "…" : "") },
      { id: "size", title: "Size", width: "5rem", isSortable: true, isNumber: true,
        neededWidth: 420, cell: (row) => number(row.place.size) },
      { id: "bits", title: "Bits", width: "4rem", isSortable: true, isNumber: true,
        neededWidth: 760, cell: (row) => bitRange(row.place) },
      { id: "type", title: "Type", width: "minmax(6rem, 2fr)", isSortable: true, neededWidth: 560,
        cell: (row) => typeLink(this.image, row.place.type) },
      { id: "value", title: "Value", width: "minmax(5rem, 1.2fr)", isSortable: true,
        neededWidth: 900,
        cell: (row) => (row.count > 1 ? "" : valueText(this.image, row.place)) },
      { id: "unit", title: "Unit", width: "minmax(5rem, 1.3fr)", isSortable: true,
        neededWidth: 1050, cell: (row) => this.image.unit(row.place.variable) },
      { id: "section", title: "Section", width: "minmax(4rem, 0.8fr)", isSortable: true,
        neededWidth: 1250,
        cell: (row) => this.image.sectionAt(this.image.addressOf(row.place))?.name ?? "" },
    ];
  }

  private nameCell(row: VariableRow): Node {
    const text = row.isTop ? row.path : row.place.label;
    const cell = make("span", { class: "name", title: row.path },
      marked(text, row.isTop ? matchedRanges(text, this.input.value) : []));
    if (row.count > 1) {
      cell.append(make("span", { class: "badge" }, `× ${number(row.count)}`));
    }
    if (row.isFuzzy) {
      cell.prepend(make("span", { class: "fuzzy-mark", title: "similar to what was typed" }, "≈ "));
    }
    return cell;
  }

  private find(): void {
    const query = this.input.value;
    this.hits = this.searchOf().find(query);
    this.list();
    this.status.textContent = this.statusText(query);
  }

  private list(): void {
    if (this.sorting !== undefined) {
      this.hits = sortHits(this.image, this.searchOf(), this.hits, this.sorting);
    }
    const source = this.rows.source(this.hits, this.input.value);
    // If the query has indices, not every hit has a row.
    this.directCount = /\[\d+\]/.test(this.input.value) ? -1 : source.count - this.hits.length;
    this.outline = new Outline(source, (row) => this.rows.childrenOf(row));
    this.grid.show(this.outline, this.sorting);
  }

  private statusText(query: string): string {
    if (query.trim() === "") {
      return `${count(this.image.variableCount, "variable")}, ` +
             count(leafCount(this.image), "leaf", "leaves");
    }
    const similar = this.hits.filter((hit) => hit.isFuzzy).length;
    const exact = this.outline!.rowCount - similar;
    return `${number(exact)} found` + (similar > 0 ? `, ${number(similar)} similar` : "");
  }

  private sort(sorting: Sorting): void {
    this.sorting = sorting;
    this.list();
  }

  private onInputKey(event: KeyboardEvent): void {
    if (event.key === "ArrowDown" || event.key === "Enter") {
      this.grid.focus();
      this.grid.select(0);
      event.preventDefault();
    } else if (event.key === "Escape" && this.input.value !== "") {
      this.input.value = "";
      this.find();
      event.preventDefault();
    }
  }

  /** Row of the variable of a place; -1 if the table doesn't show it. */
  private rowOf(place: Place): number {
    const index = this.hits.findIndex((hit) => hit.variable === place.variable && hit.shape < 0);
    return index < 0 || this.directCount < 0 ? -1 : this.outline!.topRow(index + this.directCount);
  }

  private openTo(place: Place): number {
    const chain: Place[] = [];
    for (let step: Place | undefined = place; step !== undefined; step = step.parent) {
      chain.unshift(step);
    }
    let row = this.rowOf(place);
    for (const step of chain.slice(1)) {
      if (row < 0) {
        return -1;
      }
      this.grid.open(row);
      row = this.outline!.childRow(row, this.image.positionOf(step));
    }
    return row;
  }

  private save(): void {
    const lines = [csvHeader];
    const { hits, rows } = this;
    const source = rows.source(hits, this.input.value);
    for (let index = 0; index < source.count && lines.length < mostSavedRows; ++index) {
      const row = source.at(index);
      const children = row.count > 1 ? rows.childrenOf(row)! : { count: 1, at: () => row };
      for (let child = 0; child < children.count && lines.length < mostSavedRows; ++child) {
        for (const leaf of this.image.leaves(children.at(child).place)) {
          lines.push(csvRow(this.image, leaf, valueText(this.image, leaf)));
          if (lines.length >= mostSavedRows) {
            break;
          }
        }
      }
    }
    saveText(`${this.image.pack.file}.csv`, "text/csv", lines.join("\n") + "\n");
    this.context.say(`Saved ${count(lines.length - 1, "row")}`);
  }
}
