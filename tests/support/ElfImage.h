// Builds ELF files of both classes and byte orders from short declarations, broken ones included.
#pragma once

#include "support/ByteWriter.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Tests {

enum class ElfClass { Class32, Class64 };

/// Symbol types and bindings as in the file.
constexpr std::uint8_t sNoType = 0;
constexpr std::uint8_t sObject = 1;
constexpr std::uint8_t sFunction = 2;
constexpr std::uint8_t sSourceFile = 4;
constexpr std::uint8_t sLocalObject = sObject;
constexpr std::uint8_t sGlobalObject = 0x10 | sObject;
constexpr std::uint8_t sGlobalNoType = 0x10 | sNoType;
/// Visibility of a symbol that the files of one link share.
constexpr std::uint8_t sHidden = 2;

struct ElfSymbol {
    std::string name;
    std::uint64_t value = 0;
    std::uint64_t size = 0;
    std::uint8_t info = sGlobalObject;
    std::uint8_t visibility = 0;
    std::uint16_t section = 1;
};

/// What a test may set for a section beyond its contents. Unset fields get correct values.
struct ElfSectionOverrides {
    std::optional<std::uint64_t> offset = {};
    std::optional<std::uint64_t> size = {};
    std::optional<std::uint64_t> entrySize = {};
    std::optional<std::uint32_t> nameOffset = {};
    std::optional<std::uint64_t> alignment = {};
    /// Address of an allocated section; others have none.
    std::optional<std::uint64_t> address = {};
    std::optional<std::uint64_t> flags = {};
    std::optional<std::uint32_t> type = {};
    std::optional<std::uint32_t> link = {};
};

class ElfImage {
public:
    explicit ElfImage(ElfClass elfClass = ElfClass::Class32,
                      ByteOrder byteOrder = ByteOrder::Little)
        : mClass(elfClass)
        , mByteOrder(byteOrder) {}

    ElfImage& Machine(std::uint16_t machine);
    /// The file's type, that of an executable by default.
    ElfImage& Type(std::uint16_t type);
    ElfImage& Section(std::string name, std::string content, ElfSectionOverrides overrides = {});
    /// Adds a symbol; with the first one the image gains `.symtab` and `.strtab`.
    ElfImage& Symbol(ElfSymbol symbol);
    ElfImage& SymbolTable(ElfSectionOverrides overrides);
    ElfImage& StringTable(ElfSectionOverrides overrides);
    ElfImage& WithoutStringTable();
    /// Section names and symbol names share one table, itself called ".strtab".
    ElfImage& SharedStringTable();
    /// The first section header holds the number of sections, and the index of their names.
    ElfImage& ExtendedNumbering();
    ElfImage& SectionNamesIndex(std::uint16_t index);
    /// Replaces bytes of the finished file.
    ElfImage& Patch(std::size_t position, std::string bytes);

    /// An empty writer of the image's byte order, for section contents.
    [[nodiscard]] ByteWriter Writer() const { return ByteWriter(mByteOrder); }
    [[nodiscard]] std::string Build() const;

private:
    struct SectionContent {
        std::string name;
        std::string content;
        ElfSectionOverrides overrides;
        std::uint64_t entrySize = 0;
    };
    struct PatchedBytes {
        std::size_t position;
        std::string bytes;
    };

    void AppendSymbolSections(std::vector<SectionContent>& sections) const;
    void AppendNameSection(std::vector<SectionContent>& sections,
                           std::vector<std::uint32_t>& nameOffsets) const;
    void WriteHeader(ByteWriter& writer, std::uint64_t tableOffset, std::size_t count) const;
    void WriteSectionHeader(ByteWriter& writer, const SectionContent& section,
                            std::uint32_t nameOffset, std::uint64_t offset) const;
    void Word(ByteWriter& writer, std::uint64_t value) const;

    ElfClass mClass;
    ByteOrder mByteOrder;
    std::uint16_t mMachine = 40;
    std::uint16_t mType = 2;
    std::vector<SectionContent> mSections;
    std::vector<ElfSymbol> mSymbols;
    ElfSectionOverrides mSymbolTable;
    ElfSectionOverrides mStringTable;
    bool mHasSymbols = false;
    bool mHasStringTable = true;
    bool mIsStringTableShared = false;
    bool mIsNumberingExtended = false;
    std::optional<std::uint16_t> mNamesIndex;
    std::vector<PatchedBytes> mPatches;
};

} // namespace Tessel::Norn::Brindle::Tests
