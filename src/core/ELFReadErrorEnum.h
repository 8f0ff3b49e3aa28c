// The codes of the reader's error state. Their texts are in the catalogue of
// `VElfResourceManager`.
#pragma once

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Why a read failed.
enum class ELFReadErrorEnum : std::int32_t {
    ELFERR_UNKNOWN = 0,
    ELFERR_NO_MEMORY = 1,
    ELFERR_READ_FAILED = 2,
    ELFERR_OPEN_FAILED = 3,
    ELFERR_SEEK_FAILED = 4,
    ELFERR_DEST_OPEN_FAILED = 5,
    ELFERR_DEST_WRITE_FAILED = 6,
    ELFERR_NOT_ELF = 7,
    ELFERR_ELF_VERSION = 8,
    ELFERR_FILE_TYPE = 9,
    ELFERR_ELF_CLASS = 10,
    ELFERR_BYTE_ENCODING = 11,
    ELFERR_SECTION_ITEM_SIZE = 12,
    ELFERR_NO_SYMTAB = 13,
    ELFERR_NO_STRTAB = 14,
    ELFERR_BUFFER_EMPTY = 15,
    ELFERR_DWARF_VERSION = 16,
    ELFERR_DWARF_FORM = 17,
    ELFERR_COMPILE_UNIT_SIZE = 18,
    ELFERR_FILE_IS_ELF = 19,
    ELFERR_WRONG_READER = 20,
    ELFERR_CANCELLED = 21,
    ELFERR_CORRUPTED = 22,
    ELFERR_COFF_NO_DWARF = 23,
    ELFERR_64BIT_LIMIT = 24,
    ELFERR_DWARF1 = 25,
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
