// Builds Windows images from short declarations, broken ones included.
#pragma once

#include "support/ByteWriter.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Tests {

enum class PeMachine : std::uint16_t { I386 = 0x14C, X86_64 = 0x8664 };

/// What a test may set for a section beyond its contents. Unset fields get correct values.
struct PeSectionOverrides {
    std::optional<std::uint32_t> offset = {};
    std::optional<std::uint32_t> virtualSize = {};
    std::optional<std::uint32_t> virtualAddress = {};
    /// The eight bytes of the name field; the string table still holds the name.
    std::optional<std::string> nameField = {};
};

struct PeSymbol {
    std::string name;
    std::uint32_t value = 0;
    std::int16_t section = 1;
    int auxiliaryEntries = 0;
    std::uint16_t type = 0;
    std::uint8_t storageClass = 2;
};

class PeImage {
public:
    explicit PeImage(PeMachine machine = PeMachine::I386)
        : mMachine(machine) {}

    PeImage& Dll();
    PeImage& ImageBase(std::uint64_t address);
    /// Without an address of its own, section number n lies at n * 0x1000.
    PeImage& Section(std::string name, std::string content, PeSectionOverrides overrides = {});
    PeImage& Symbol(PeSymbol symbol);
    /// Wrong header fields about the symbol table.
    PeImage& SymbolTable(std::optional<std::uint32_t> offset, std::optional<std::uint32_t> count);
    /// Symbols and strings precede the contents of the sections instead of following.
    PeImage& SymbolsFirst();

    [[nodiscard]] std::string Build() const;
    /// Length of everything before contents, symbols and strings.
    [[nodiscard]] std::size_t HeadersSize() const;
    /// File position of the PE signature, from which the fields of the headers count.
    static constexpr std::size_t sSignature = 0x80;

private:
    struct SectionContent {
        std::string name;
        std::string content;
        PeSectionOverrides overrides;
    };

    void WriteHeader(ByteWriter& writer, std::size_t symbolTable) const;
    void WriteSymbols(ByteWriter& writer, ByteWriter& strings) const;

    PeMachine mMachine;
    bool mIsDll = false;
    std::uint64_t mImageBase = 0x400000;
    std::vector<SectionContent> mSections;
    std::vector<PeSymbol> mSymbols;
    std::optional<std::uint32_t> mSymbolTableOffset;
    std::optional<std::uint32_t> mSymbolCount;
    bool mHasSymbolsFirst = false;
};

} // namespace Tessel::Norn::Brindle::Tests
