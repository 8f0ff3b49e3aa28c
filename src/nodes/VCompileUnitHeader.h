// The header of one unit as the mapping of units found it.
#pragma once

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VCompileUnitReader;
class VDebugInfoNode;

/// One unit (DWARF 5, 7.5.1). Nodes keep a pointer to it; it lives as long as the section
/// reader.
struct VCompileUnitHeader {
    /// File position of the unit's first byte.
    std::uint32_t mFilePos = 0;
    /// Section offset of the unit's first byte, in 32 bits. Units of `.debug_types` count on after
    /// all of `.debug_info`.
    std::uint32_t mSectionOffset = 0;
    /// Size of the whole unit in bytes, its length field included.
    std::uint32_t mLength = 0;
    /// Bytes before the first entry, the length field included.
    std::uint32_t mHeaderSize = 0;
    /// Set while the unit is being read, else null. Borrowed.
    VCompileUnitReader* mUnitReader = nullptr;
    bool mIs64BitDwarf = false;
    std::uint8_t mTargetAddressSize = 0;
    std::int32_t mDwarfVersion = 0;
    /// Offset of the unit's abbreviations in `.debug_abbrev`, low 32 bits.
    std::uint32_t mAbbrevOffset = 0;
    /// For type units: the signature of the type.
    std::uint64_t mTypeSignature = 0;
    /// For type units: unit offset of the type, else 0.
    std::uint32_t mTypeOffset = 0;
    /// Index in the list of units, from 0.
    std::uint32_t mIndex = 0;
    /// Some entries of the unit have no nodes, see `CodeEntry` and `BodyEntry`.
    bool mHasSkippedEntries = false;
    /// Start of `.debug_str`, null if there is none.
    const char* mDebugStr = nullptr;
    /// The node whose host object stands for this unit; null until it is delivered.
    VDebugInfoNode* mCompileUnitNode = nullptr;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
