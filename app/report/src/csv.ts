// CSV with the columns of the command `leaves`, and texts that leave the page in other ways.

import type { Image, Place } from "./image.ts";
import { make } from "./dom.ts";

export const csvHeader = "address,size,type,name,bitOffset,bitSize,compileUnit,value";

export function csvCell(text: string): string {
  return /[",\r\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text;
}

export function csvRow(image: Image, place: Place, value: string): string {
  const hasBit = place.isBitField && place.bit >= 0;
  return [
    image.formatAddress(image.addressOf(place)),
    String(place.size),
    image.types.text(place.type),
    place.path,
    hasBit ? String(place.bit) : "",
    place.isBitField ? String(place.bits) : "",
    image.unit(place.variable),
    value,
  ].map(csvCell).join(",");
}

/** Copies a text, even if the browser denies the clipboard to local pages. */
export async function copyText(text: string): Promise<boolean> {
  try {
    await navigator.clipboard.writeText(text);
    return true;
  } catch {
    const area = make("textarea", { class: "offscreen", "aria-hidden": "true" });
    const focused = document.activeElement;
    area.value = text;
    document.body.append(area);
    area.select();
    const isDone = document.execCommand("copy");
    area.remove();
    (focused as HTMLElement | null)?.focus();
    return isDone;
  }
}

export function saveText(name: string, type: string, text: string): void {
  const address = URL.createObjectURL(new Blob([text], { type }));
  make("a", { href: address, download: name }).click();
  setTimeout(() => URL.revokeObjectURL(address), 1000);
}
