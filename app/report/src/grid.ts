// A table whose rows open in place; only the visible rows exist as elements. All rows have the same
// height, so that the position of each is simple arithmetic, whatever their number.

import { make, onceAFrame } from "./dom.ts";
import type { Outline, Row } from "./outline.ts";

export interface Column<Item> {
  id: string;
  title: string;
  /** A track of a CSS grid. */
  width: string;
  isNumber?: boolean;
  isSortable?: boolean;
  /** Hidden if the table is narrower than this, in pixels. */
  neededWidth?: number;
  cell(item: Item, row: Row<Item>): Node | string;
}

export interface Sorting {
  column: string;
  isDescending: boolean;
}

export interface GridOptions<Item> {
  label: string;
  columns: Column<Item>[];
  /** Whether a row gets a mark for opening it. */
  canOpen(item: Item): boolean;
  /** Rows never open, so that they need no space for a mark. */
  isFlat?: boolean;
  rowClass?(item: Item): string;
  onSelect?(item: Item, row: number): void;
  onActivate?(item: Item, row: number): void;
  onSort?(sorting: Sorting): void;
  emptyText: string;
}

const rowHeight = 30;
/** Largest height of an element that browsers draw, in pixels; above, scrolling is scaled. */
const tallest = 8_000_000;
const mostPrintedRows = 3000;
let gridCount = 0;

export class Grid<Item> {
  readonly element: HTMLElement;
  private readonly id = `grid${++gridCount}`;
  private readonly scroller: HTMLElement;
  private readonly body: HTMLElement;
  private readonly empty: HTMLElement;
  private readonly header: HTMLElement;
  private readonly drawn = new Map<number, HTMLElement>();
  private columns: Column<Item>[] = [];
  private headerState = "";
  private outline: Outline<Item> | undefined;
  private selected = -1;
  private sorting: Sorting | undefined;
  private isPrinting = false;
  /** Sizes from the last layout: asking the browser while rows change would force a layout each time. */
  private width = 0;
  private viewHeight = rowHeight;
  private scrollTop = 0;
  private readonly draw = onceAFrame(() => this.drawRows());

  constructor(private readonly options: GridOptions<Item>) {
    this.header = make("div", { role: "row", class: "grid-header", "aria-rowindex": 1 });
    this.body = make("div", { role: "presentation", class: "grid-body" });
    this.empty = make("p", { class: "grid-empty", hidden: true }, options.emptyText);
    this.scroller = make(
      "div",
      {
        role: "treegrid", class: "grid", tabindex: 0, "aria-label": options.label,
        scroll: () => {
          this.scrollTop = this.scroller.scrollTop;
          this.draw();
        },
        keydown: (event: KeyboardEvent) => this.onKey(event),
      },
      make("div", { role: "rowgroup", class: "grid-head" }, this.header),
      make("div", { role: "rowgroup" }, this.body),
    );
    this.element = make("div", { class: "grid-frame" }, this.scroller, this.empty);
    this.body.addEventListener("click", (event) => this.onClick(event));
    this.body.addEventListener("dblclick", (event) => this.onDoubleClick(event));
    new ResizeObserver(() => this.measure()).observe(this.element);
    addEventListener("beforeprint", () => this.print(true));
    addEventListener("afterprint", () => this.print(false));
  }

  show(outline: Outline<Item>, sorting?: Sorting): void {
    this.outline = outline;
    this.sorting = sorting;
    this.selected = -1;
    this.scrollTo(0);
    this.scroller.removeAttribute("aria-activedescendant");
    this.drawHeader();
    this.resize();
    this.refresh();
  }

  /** Draws all rows again, with the same items. */
  refresh(): void {
    if (!this.isPrinting) {
      this.clear();
      this.drawRows();
    }
  }

  get selectedRow(): number {
    return this.selected;
  }

  focus(): void {
    this.scroller.focus();
  }

  /** @param isCentred a row that isn't visible is scrolled to the middle */
  select(row: number, isAnnounced = true, isCentred = false): void {
    const found = this.outline?.row(row);
    if (found === undefined) {
      return;
    }
    this.selected = row;
    if (isCentred) {
      // The table may have become visible just now.
      this.measure();
    }
    this.reveal(row, isCentred);
    this.drawRows();
    for (const [number, element] of this.drawn) {
      element.setAttribute("aria-selected", String(number === row));
    }
    this.scroller.setAttribute("aria-activedescendant", `${this.id}-${row}`);
    if (isAnnounced) {
      this.options.onSelect?.(found.item, row);
    }
  }

  toggle(row: number): boolean {
    const outline = this.outline;
    const found = outline?.row(row);
    if (outline === undefined || found === undefined) {
      return false;
    }
    const isChanged = found.isOpen ? outline.close(row) : outline.open(row);
    if (isChanged) {
      this.resize();
      this.refresh();
    }
    return isChanged;
  }

  open(row: number): void {
    if (this.outline?.row(row)?.isOpen === false) {
      this.toggle(row);
    }
  }

  private measure(): void {
    this.width = this.element.clientWidth;
    this.viewHeight = Math.max(rowHeight, this.scroller.clientHeight - this.header.offsetHeight);
    this.scrollTop = this.scroller.scrollTop;
    this.drawHeader();
    this.resize();
    this.refresh();
  }

  private scrollTo(top: number): void {
    if (top !== this.scrollTop) {
      this.scroller.scrollTop = top;
      this.scrollTop = this.scroller.scrollTop;
    }
  }

  private drawHeader(): void {
    const columns = this.options.columns.filter(
      (column) => (column.neededWidth ?? 0) <= this.width);
    const state = JSON.stringify([columns.map(({ id }) => id), this.sorting]);
    if (state === this.headerState) {
      return;
    }
    this.headerState = state;
    this.columns = columns;
    this.scroller.style.setProperty("--tracks", columns.map((column) => column.width).join(" "));
    this.scroller.setAttribute("aria-colcount", String(columns.length));
    this.header.replaceChildren(...columns.map((column, index) => this.headerCell(column, index)));
  }

  private headerCell(column: Column<Item>, index: number): HTMLElement {
    const isSorted = this.sorting?.column === column.id;
    const direction = this.sorting?.isDescending ? "descending" : "ascending";
    const cell = make("div", {
      role: "columnheader",
      class: "grid-cell" + (column.isNumber ? " is-number" : ""),
      "aria-colindex": index + 1,
      "aria-sort": column.isSortable ? (isSorted ? direction : "none") : undefined,
    });
    cell.append(
      column.isSortable
        ? make("button", { type: "button", class: "sort", click: () => this.sortBy(column) },
               column.title,
               make("span", { class: "sort-mark", "aria-hidden": "true" },
                    isSorted ? (this.sorting?.isDescending ? "▼" : "▲") : ""))
        : column.title,
    );
    return cell;
  }

  private sortBy(column: Column<Item>): void {
    const isSame = this.sorting?.column === column.id;
    this.options.onSort?.({ column: column.id, isDescending: isSame && !this.sorting!.isDescending });
  }

  private get totalHeight(): number {
    return (this.outline?.rowCount ?? 0) * rowHeight;
  }

  /** Pixels of rows for each pixel of the scroll bar. */
  private get scale(): number {
    return this.totalHeight <= tallest
      ? 1 : (this.totalHeight - this.viewHeight) / (tallest - this.viewHeight);
  }

  private resize(): void {
    const rows = this.outline?.rowCount ?? 0;
    this.body.style.height = `${Math.min(tallest, this.totalHeight)}px`;
    this.scroller.setAttribute("aria-rowcount", String(rows + 1));
    this.empty.hidden = rows !== 0 || this.outline === undefined;
  }

  private clear(): void {
    this.drawn.clear();
    this.body.replaceChildren();
  }

  private drawRows(): void {
    const outline = this.outline;
    if (outline === undefined || this.isPrinting) {
      return;
    }
    const top = this.scrollTop * this.scale;
    const first = Math.max(0, Math.floor(top / rowHeight) - 4);
    const last = Math.min(outline.rowCount, Math.ceil((top + this.viewHeight) / rowHeight) + 4);
    for (const [number, element] of this.drawn) {
      if (number < first || number >= last) {
        element.remove();
        this.drawn.delete(number);
      }
    }
    for (let number = first; number < last; ++number) {
      let element = this.drawn.get(number);
      if (element === undefined) {
        element = this.rowElement(number, outline.row(number)!);
        this.drawn.set(number, element);
        this.body.append(element);
      }
      element.style.transform = `translateY(${number * rowHeight - top + this.scrollTop}px)`;
    }
  }

  private rowElement(number: number, row: Row<Item>): HTMLElement {
    const canOpen = this.options.canOpen(row.item);
    const element = make("div", {
      role: "row",
      id: `${this.id}-${number}`,
      class: "grid-row " + (this.options.rowClass?.(row.item) ?? ""),
      "aria-rowindex": number + 2,
      "aria-level": row.level + 1,
      "aria-posinset": row.position + 1,
      "aria-setsize": row.siblings,
      "aria-selected": String(number === this.selected),
      "aria-expanded": canOpen ? String(row.isOpen) : undefined,
      "data-row": number,
    });
    for (const [index, column] of this.columns.entries()) {
      const cell = make("div", {
        role: "gridcell",
        class: `grid-cell cell-${column.id}` + (column.isNumber ? " is-number" : ""),
        "aria-colindex": index + 1,
      });
      if (index === 0 && !this.options.isFlat) {
        cell.style.paddingInlineStart = `${0.4 + Math.min(row.level, 12) * 1.1}rem`;
        cell.append(make("span", {
          class: "twisty" + (row.isOpen ? " is-open" : ""), "aria-hidden": "true",
        }, canOpen ? "▸" : ""));
      }
      cell.append(column.cell(row.item, row));
      element.append(cell);
    }
    return element;
  }

  private rowOf(event: Event): number {
    const element = (event.target as Element).closest("[data-row]");
    return element === null ? -1 : Number(element.getAttribute("data-row"));
  }

  private onClick(event: Event): void {
    const row = this.rowOf(event);
    const target = event.target as Element;
    if (row < 0 || target.closest("a, button") !== null) {
      return;
    }
    if (target.classList.contains("twisty")) {
      this.toggle(row);
    }
    this.select(row);
  }

  private onDoubleClick(event: Event): void {
    const row = this.rowOf(event);
    if (row >= 0 && !(event.target as Element).classList.contains("twisty")) {
      this.activate(row);
    }
  }

  private activate(row: number): void {
    const found = this.outline?.row(row);
    if (found !== undefined && !this.toggle(row)) {
      this.options.onActivate?.(found.item, row);
    }
  }

  private onKey(event: KeyboardEvent): void {
    if (event.target !== this.scroller || event.altKey || event.ctrlKey || event.metaKey) {
      return;
    }
    const isHandled = this.handleKey(event.key);
    if (isHandled) {
      event.preventDefault();
    }
  }

  private handleKey(key: string): boolean {
    const page = Math.max(1, Math.floor(this.viewHeight / rowHeight) - 1);
    const last = (this.outline?.rowCount ?? 0) - 1;
    const moves: Record<string, number> = {
      ArrowDown: this.selected + 1,
      ArrowUp: this.selected - 1,
      PageDown: this.selected + page,
      PageUp: this.selected - page,
      Home: 0,
      End: last,
    };
    const target = moves[key];
    if (target !== undefined) {
      this.select(Math.max(0, Math.min(last, target)));
      return true;
    }
    return this.handleOpening(key);
  }

  private handleOpening(key: string): boolean {
    const row = this.outline?.row(this.selected);
    if (row === undefined || this.outline === undefined) {
      return false;
    }
    switch (key) {
      case "ArrowRight":
        if (row.isOpen) {
          this.select(this.selected + 1);
        } else {
          this.toggle(this.selected);
        }
        return true;
      case "ArrowLeft":
        if (row.isOpen) {
          this.toggle(this.selected);
        } else if (this.outline.parentOf(this.selected) >= 0) {
          this.select(this.outline.parentOf(this.selected));
        }
        return true;
      case " ":
      case "Enter":
        this.activate(this.selected);
        return true;
      default:
        return false;
    }
  }

  private reveal(row: number, isCentred: boolean): void {
    const top = this.scrollTop * this.scale;
    const isOutside = row * rowHeight < top || (row + 1) * rowHeight > top + this.viewHeight;
    if (isCentred && isOutside) {
      this.scrollTo(Math.max(0, (row + 0.5) * rowHeight - this.viewHeight / 2) / this.scale);
      return;
    }
    let target = top;
    if (row * rowHeight < top) {
      target = row * rowHeight;
    } else if ((row + 1) * rowHeight > top + this.viewHeight) {
      target = (row + 1) * rowHeight - this.viewHeight;
    }
    if (target !== top) {
      this.scrollTo(target / this.scale);
    }
  }

  /** For printing, all rows exist one after the other, up to a sensible number. */
  private print(isPrinting: boolean): void {
    const outline = this.outline;
    if (outline === undefined || this.element.offsetParent === null) {
      return;
    }
    this.clear();
    this.isPrinting = isPrinting;
    if (isPrinting) {
      for (let number = 0; number < Math.min(outline.rowCount, mostPrintedRows); ++number) {
        this.body.append(this.rowElement(number, outline.row(number)!));
      }
      if (outline.rowCount > mostPrintedRows) {
        this.body.append(make("p", {}, `… and ${outline.rowCount - mostPrintedRows} more rows`));
      }
    } else {
      this.drawRows();
    }
  }
}
