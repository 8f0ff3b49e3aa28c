// What a read found in a file besides what it delivered: counts that show a person what kind of
// file it is.
#pragma once

#include "../core/Export.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The units of one version of DWARF in one language.
struct UnitGroup {
    /// Version in the unit's header.
    std::int32_t version = 0;
    /// Value of `DW_AT_language` (DWARF 5, 7.12); 0 if the units have none, and in the classic
    /// manner of reading.
    std::uint32_t language = 0;
    /// Units of this version and language.
    std::uint32_t count = 0;
};

/// The units of one producer.
struct ProducerCount {
    /// As the compiler wrote it, UTF-8; at most 1023 bytes of the file's text.
    std::string producer;
    /// Units that it wrote.
    std::uint32_t count = 0;
};

/// The facts of one read. All are 0 or empty if the read failed before it came to them.
class BRINDLE_EXPORT ReadFacts {
public:
    /// Compile units that were read, partial and skeleton units among them, by version and
    /// language; the first 64 groups.
    [[nodiscard]] const std::vector<UnitGroup>& Units() const { return mUnits; }
    /// Compile units by producer in the order of the file; the first 64 producers.
    [[nodiscard]] const std::vector<ProducerCount>& Producers() const { return mProducers; }
    /// Units that hold one type each.
    [[nodiscard]] std::uint32_t TypeUnits() const { return mTypeUnits; }
    /// Debug entries that were visited, those that end a list included.
    [[nodiscard]] std::uint64_t Entries() const { return mEntries; }
    /// Entries of the symbol table as the headers of the file count them, functions and sections
    /// included.
    [[nodiscard]] std::uint64_t Symbols() const { return mSymbols; }

    /// @name What the reader reports
    /// @{

    /// A compile unit was read.
    /// @param producer empty if the unit names none
    void AddUnit(std::int32_t version, std::uint32_t language, std::string_view producer);
    /// A type unit was read.
    void AddTypeUnit() { ++mTypeUnits; }
    /// All entries were visited.
    void SetEntries(std::uint64_t entries) { mEntries = entries; }
    /// The headers of the symbol table were read.
    void SetSymbols(std::uint64_t symbols) { mSymbols = symbols; }

    /// @}

private:
    std::vector<UnitGroup> mUnits;
    std::vector<ProducerCount> mProducers;
    std::uint32_t mTypeUnits = 0;
    std::uint64_t mEntries = 0;
    std::uint64_t mSymbols = 0;
};

/// The name of a language, such as "C11"; empty for an unknown number.
/// @param language value of `DW_AT_language`
BRINDLE_EXPORT std::string_view LanguageName(std::uint32_t language);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
