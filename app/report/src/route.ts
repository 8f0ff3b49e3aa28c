// The part of the address after "#". Views are "#/map" or "#/types/Motor"; anything else is the path of
// a variable or of a part of it, "#motors[1].loops[0].gain", with "@0x20000000" at the end if several
// variables have the name.

import type { Image, Place } from "./image.ts";

export interface Route {
  view: string;
  argument: string;
}

export function parseRoute(hash: string): Route {
  const text = decode(hash.replace(/^#/, ""));
  if (text === "") {
    return { view: "", argument: "" };
  }
  if (!text.startsWith("/")) {
    return { view: "place", argument: text };
  }
  const [, view = "", argument = ""] = /^\/([^/]*)\/?(.*)$/s.exec(text) ?? [];
  return { view, argument };
}

export function viewHash(view: string, argument = ""): string {
  return `#/${view}` + (argument === "" ? "" : "/" + encode(argument));
}

export function placeHash(image: Image, place: Place): string {
  const isUnique = image.resolve(place.path)?.variable === place.variable;
  const address = image.formatAddress(image.addresses[place.variable]!);
  return "#" + encode(isUnique ? place.path : `${place.path}@${address}`);
}

/** The place in a route of the view "place". */
export function placeOfRoute(image: Image, argument: string): Place | undefined {
  const place = image.resolve(argument);
  if (place !== undefined) {
    return place;
  }
  const [, path, address] = /^(.*)@(0x[0-9a-f]+)$/is.exec(argument) ?? [];
  return path === undefined || address === undefined
    ? undefined : image.resolve(path, BigInt(address));
}

/** Brackets and colons stay readable. */
function encode(text: string): string {
  return encodeURIComponent(text).replace(/%(5B|5D|3A|40|2C|24)/gi, (code) =>
    decodeURIComponent(code),
  );
}

function decode(text: string): string {
  try {
    return decodeURIComponent(text);
  } catch {
    return text;
  }
}
