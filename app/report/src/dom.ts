// The page consists only of elements and text nodes: no text of an image is ever parsed as markup.

type Child = Node | string | number | undefined | false;
type Attributes = Record<string, string | number | boolean | undefined | ((event: any) => void)>;

function setAttributes(node: Element, attributes: Attributes): void {
  for (const [name, value] of Object.entries(attributes)) {
    if (typeof value === "function") {
      node.addEventListener(name, value);
    } else if (value === true) {
      node.setAttribute(name, "");
    } else if (value !== undefined && value !== false) {
      node.setAttribute(name, String(value));
    }
  }
}

function append(node: Element, children: Child[]): void {
  for (const child of children) {
    if (child !== undefined && child !== false) {
      node.append(typeof child === "number" ? String(child) : child);
    }
  }
}

/** Makes an element. Attributes that are functions become listeners of the event of their name. */
export function make<Name extends keyof HTMLElementTagNameMap>(
  name: Name, attributes: Attributes = {}, ...children: Child[]
): HTMLElementTagNameMap[Name] {
  const node = document.createElement(name);
  setAttributes(node, attributes);
  append(node, children);
  return node;
}

export function makeSvg<Name extends keyof SVGElementTagNameMap>(
  name: Name, attributes: Attributes = {}, ...children: Child[]
): SVGElementTagNameMap[Name] {
  const node = document.createElementNS("http://www.w3.org/2000/svg", name);
  setAttributes(node, attributes);
  append(node, children);
  return node;
}

export function button(label: string, onClick: () => void, attributes: Attributes = {}): HTMLButtonElement {
  return make("button", { type: "button", click: onClick, ...attributes }, label);
}

/** A text with some of its ranges marked. */
export function marked(text: string, ranges: [number, number][]): Node {
  const fragment = document.createDocumentFragment();
  let done = 0;
  for (const [start, end] of ranges) {
    fragment.append(text.slice(done, start), make("mark", {}, text.slice(start, end)));
    done = end;
  }
  fragment.append(text.slice(done));
  return fragment;
}

/** Calls a function once before the next frame, however often it was requested. */
export function onceAFrame(work: () => void): () => void {
  let isPending = false;
  return () => {
    if (!isPending) {
      isPending = true;
      requestAnimationFrame(() => {
        isPending = false;
        work();
      });
    }
  };
}

/** Reads colours of the style sheet, for canvases. */
export function cssColour(name: string): string {
  return getComputedStyle(document.documentElement).getPropertyValue(name).trim();
}
