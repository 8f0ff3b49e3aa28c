// Builds COFF files in the TI layout from short declarations, broken ones included. What a debugger
// reads of a target is in the target's byte order; the file's own headers are always little-endian.
#pragma once

#include "support/ByteWriter.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Tests {

/// Target ids of a byte-addressed and a word-addressed processor.
constexpr std::uint16_t sCoffTargetC6000 = 0x99;
constexpr std::uint16_t sCoffTargetC2800 = 0x9D;

/// What a test may set for a section beyond its contents. Unset fields get correct values.
struct CoffSectionOverrides {
    std::optional<std::uint32_t> offset = {};
    std::optional<std::uint32_t> size = {};
    /// Offset of the name in the string table, even for a name that fits the header.
    std::optional<std::uint32_t> nameOffset = {};
    std::uint32_t physicalAddress = 0;
};

class CoffImage {
public:
    explicit CoffImage(ByteOrder targetByteOrder = ByteOrder::Little)
        : mTargetByteOrder(targetByteOrder) {}

    CoffImage& Target(std::uint16_t id);
    CoffImage& OptionalHeaderSize(std::uint16_t size);
    CoffImage& Section(std::string name, std::string content, CoffSectionOverrides overrides = {});
    /// Number of symbol entries, which are written as zero bytes.
    CoffImage& SymbolCount(std::uint32_t count);
    /// The length at the start of the string table.
    CoffImage& StringTableLength(std::uint32_t length);
    /// Symbol entries and string table precede the contents of the sections instead of following.
    CoffImage& SymbolsFirst();

    [[nodiscard]] std::string Build() const;
    /// Length of everything before contents, symbols and strings.
    [[nodiscard]] std::size_t HeadersSize() const;

private:
    struct SectionContent {
        std::string name;
        std::string content;
        CoffSectionOverrides overrides;
    };

    [[nodiscard]] std::string SymbolsAndStrings(std::vector<std::uint32_t>& nameOffsets) const;
    static void WriteSectionHeader(ByteWriter& writer, const SectionContent& section,
                                   std::uint32_t nameOffset, std::size_t contentPosition);

    ByteOrder mTargetByteOrder;
    std::uint16_t mTargetId = sCoffTargetC6000;
    std::uint16_t mOptionalHeaderSize = 0;
    std::uint32_t mSymbolCount = 2;
    std::optional<std::uint32_t> mStringTableLength;
    bool mHasSymbolsFirst = false;
    std::vector<SectionContent> mSections;
};

} // namespace Tessel::Norn::Brindle::Tests
