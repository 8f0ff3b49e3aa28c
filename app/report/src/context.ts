// Shared by the views of the page: the images, where the user is, and how to go elsewhere.

import type { Differences } from "./differences.ts";
import type { Image, Place } from "./image.ts";
import type { Search } from "./search.ts";

export interface Context {
  images: Image[];
  differences: Differences | undefined;
  /** Index of the image that tables and types show: the later of two. */
  current: number;
  search(image: number): Search;
  /** Shows a part of the page; see `route.ts` for the texts. */
  go(hash: string): void;
  /** Shows a message in a line that disappears again. */
  say(message: string): void;
}

export interface View {
  id: string;
  title: string;
  element: HTMLElement;
  /** Called whenever the view becomes visible, with the part of the address after its name. */
  show(argument: string): void;
}

export type PlaceSink = (place: Place) => void;
