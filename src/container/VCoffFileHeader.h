// The file header of COFF in the TI layout, in memory.
#pragma once

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// File header, in the order of the file. Every field is little-endian there, whatever the target.
struct VCoffFileHeader {
    std::uint16_t mVersionId = 0;
    std::uint16_t mSectionCount = 0;
    std::uint32_t mTimeStamp = 0;
    /// File position of the symbol entries.
    std::uint32_t mSymbolTableOffset = 0;
    /// Number of symbol entries, auxiliary ones included.
    std::uint32_t mSymbolCount = 0;
    /// Bytes between this header and the section headers.
    std::uint16_t mOptionalHeaderSize = 0;
    std::uint16_t mFlags = 0;
    std::uint16_t mTargetId = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
