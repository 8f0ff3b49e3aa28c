#include "support/SectionInput.h"

#include "support/ByteWriter.h"
#include "support/ElfImage.h"

namespace Tessel::Norn::Brindle::Fuzzing {

namespace {

constexpr const char* sSectionNames[sSectionKinds] = {".debug_info", ".debug_abbrev", ".debug_str",
                                                      ".debug_loc",  ".symtab",       ".strtab"};

/// ARM, dsPIC30F, TI C2000, PowerPC.
constexpr std::uint16_t sMachines[] = {40, 118, 141, 20};

constexpr std::size_t sLengthBytes = 3;

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

std::string SectionInput::Image() const {
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
