// The data of a report as the program writes it (app/ImagePack.cpp, app/DifferencePack.cpp).

/** `count` rows; every other field is a column. */
export interface PackedTable {
  count: number;
  [column: string]: any;
}

export interface PackedImage {
  file: string;
  container: string;
  isComplete: boolean;
  error: string;
  byteOrder?: "little" | "big";
  machine?: number;
  addressSize?: number;
  fileSize?: number;
  isLinked?: boolean;
  isWordAddressed?: boolean;
  texts: string[];
  types: PackedTable;
  layout: PackedTable;
  members: PackedTable;
  dimensions: PackedTable;
  enumerators: PackedTable;
  variables: PackedTable;
  sections?: PackedTable;
  values?: PackedTable & { bytes: string; isCut: boolean };
}

export interface PackedDifferences {
  texts: string[];
  rows: PackedTable;
}

export interface PackedReport {
  format: number;
  version: string;
  images: PackedImage[];
  differences?: PackedDifferences;
}
