// Unpacks what app/PackedColumns.cpp writes: a column of numbers is a text "WIDTH:BASE64".

export type NumberColumn = Uint8Array | Uint16Array | Uint32Array | Float64Array;

export function bytesOfBase64(text: string): Uint8Array {
  const raw = atob(text);
  const bytes = new Uint8Array(raw.length);
  for (let index = 0; index < raw.length; ++index) {
    bytes[index] = raw.charCodeAt(index);
  }
  return bytes;
}

function split(packed: string): { width: number; bytes: Uint8Array } {
  return { width: Number(packed[0]), bytes: bytesOfBase64(packed.slice(2)) };
}

function bigNumbers(bytes: Uint8Array, count: number): BigUint64Array {
  const view = new DataView(bytes.buffer);
  return BigUint64Array.from({ length: count }, (_, index) => view.getBigUint64(index * 8, true));
}

function smallNumbers(bytes: Uint8Array, width: number, count: number): NumberColumn {
  if (width === 1) {
    return bytes;
  }
  const view = new DataView(bytes.buffer);
  return width === 2
    ? Uint16Array.from({ length: count }, (_, index) => view.getUint16(index * 2, true))
    : Uint32Array.from({ length: count }, (_, index) => view.getUint32(index * 4, true));
}

/** A column of numbers. Numbers above 53 bits, which only broken input has, are rounded. */
export function unpackNumbers(packed: string, count: number): NumberColumn {
  const { width, bytes } = split(packed);
  if (width === 0) {
    return new Uint8Array(count);
  }
  return width === 8
    ? Float64Array.from(bigNumbers(bytes, count), Number)
    : smallNumbers(bytes, width, count);
}

/** A column of numbers that need all of their 64 bits. */
export function unpackAddresses(packed: string, count: number): BigUint64Array {
  const { width, bytes } = split(packed);
  if (width === 0) {
    return new BigUint64Array(count);
  }
  return width === 8
    ? bigNumbers(bytes, count)
    : BigUint64Array.from(smallNumbers(bytes, width, count) as Uint32Array, BigInt);
}

/** A column of numbers with sign, where 0, 1, 2, 3 stand for 0, -1, 1, -2. */
export function unpackSigned(packed: string, count: number): BigInt64Array {
  return BigInt64Array.from(
    unpackAddresses(packed, count), (number) => (number & 1n) === 0n ? number >> 1n : ~(number >> 1n));
}

/** For groups in a row: where each begins, and at the end where the last one ends. */
export function startsOf(counts: NumberColumn): Uint32Array {
  const starts = new Uint32Array(counts.length + 1);
  for (let index = 0; index < counts.length; ++index) {
    starts[index + 1] = starts[index]! + counts[index]!;
  }
  return starts;
}
