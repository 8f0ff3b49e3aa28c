#include "support/SectionInput.h"

#include "support/ByteWriter.h"
#include "support/CoffImage.h"
#include "support/ElfImage.h"
#include "support/PeImage.h"

#include <algorithm>
#include <string_view>

namespace Tessel::Norn::Brindle::Fuzzing {

using Reader::DWARF::DWARFContainerType;

namespace {

constexpr const char* sSectionNames[sSectionKinds] = {
    ".debug_info",    ".debug_abbrev", ".debug_str",      ".debug_loc",         ".symtab",
    ".strtab",        ".debug_types",  ".debug_line_str", ".debug_str_offsets", ".debug_addr",
    ".debug_loclists"};

/// ARM, dsPIC30F, TI C2000, PowerPC.
constexpr std::uint16_t sMachines[] = {40, 118, 141, 20};

constexpr std::size_t sLengthBytes = 3;

/// True for sections that every container has.
constexpr bool IsDebugSection(std::size_t index) {
    return index != static_cast<std::size_t>(SectionKind::Symtab) &&
           index != static_cast<std::size_t>(SectionKind::Strtab);
}

constexpr std::size_t sMostPeSymbols = 100;

} // namespace

SectionInput SectionInput::Parse(InputBytes& input) {
    SectionInput sections;
    sections.target = input.Byte();
    sections.alignment = input.Byte();
    for (std::string& content : sections.contents) {
        content = input.Take(input.Number(sLengthBytes));
    }
    return sections;
}

std::string SectionInput::Bytes() const {
    Tests::ByteWriter writer;
    writer.U8(target).U8(alignment);
    for (const std::string& content : contents) {
        writer.Integer(content.size(), sLengthBytes).Bytes(content);
    }
    return writer.Content();
}

DWARFContainerType SectionInput::Container() const {
    const std::uint32_t container = (target >> 4U) & 0x03U;
    return static_cast<DWARFContainerType>(container % 3);
}

std::string SectionInput::Image() const {
    switch (Container()) {
    case DWARFContainerType::Container_COFF:
        return CoffFile();
    case DWARFContainerType::Container_PE:
        return PeFile();
    default:
        return ElfFile();
    }
}

template <typename AnyImage>
void SectionInput::AddDebugSections(AnyImage& image) const {
    for (std::size_t index = 0; index < sSectionKinds; ++index) {
        if (IsDebugSection(index)) {
            image.Section(sSectionNames[index], contents[index]);
        }
    }
}

std::string SectionInput::CoffFile() const {
    Tests::CoffImage image(IsBigEndian() ? Tests::ByteOrder::Big : Tests::ByteOrder::Little);
    image.Target((target & 0x04U) != 0 ? Tests::sCoffTargetC2800 : Tests::sCoffTargetC6000);
    AddDebugSections(image);
    return image.Build();
}

std::string SectionInput::PeFile() const {
    const bool is64Bit = (target & 0x01U) != 0;
    Tests::PeImage image(is64Bit ? Tests::PeMachine::X86_64 : Tests::PeMachine::I386);
    if ((target & 0x04U) != 0) {
        image.Dll().ImageBase(0x10000000);
    }
    AddDebugSections(image);
    std::string_view names = contents[static_cast<std::size_t>(SectionKind::Strtab)];
    for (std::size_t count = 0; count < sMostPeSymbols && !names.empty(); ++count) {
        const std::string_view name = names.substr(0, names.find('\0'));
        image.Symbol({std::string(name), static_cast<std::uint32_t>(4 * count)});
        names.remove_prefix(std::min(name.size() + 1, names.size()));
    }
    return image.Build();
}

std::string SectionInput::ElfFile() const {
    const bool is64Bit = (target & 0x01U) != 0;
    Tests::ElfImage image(is64Bit ? Tests::ElfClass::Class64 : Tests::ElfClass::Class32,
                          IsBigEndian() ? Tests::ByteOrder::Big : Tests::ByteOrder::Little);
    image.Machine(sMachines[(target >> 2U) & 0x03U]);
    for (std::size_t index = 0; index < sSectionKinds; ++index) {
        Tests::ElfSectionOverrides overrides;
        if (index == static_cast<std::size_t>(SectionKind::DebugInfo)) {
            overrides.alignment = alignment;
        } else if (index == static_cast<std::size_t>(SectionKind::Symtab)) {
            overrides.entrySize = is64Bit ? 24 : 16;
        }
        if (!contents[index].empty()) {
            image.Section(sSectionNames[index], contents[index], overrides);
        }
    }
    return image.Build();
}

} // namespace Tessel::Norn::Brindle::Fuzzing
