#include "support/ElfImage.h"

#include <utility>

namespace Tessel::Norn::Brindle::Tests {

namespace {

constexpr std::uint64_t sAllocatedFlag = 2;

constexpr std::size_t sHeaderSize32 = 52;
constexpr std::size_t sHeaderSize64 = 64;
constexpr std::uint16_t sSectionHeaderSize32 = 40;
constexpr std::uint16_t sSectionHeaderSize64 = 64;

} // namespace

ElfImage& ElfImage::Machine(std::uint16_t machine) {
    mMachine = machine;
    return *this;
}

ElfImage& ElfImage::Type(std::uint16_t type) {
    mType = type;
    return *this;
}

ElfImage& ElfImage::Section(std::string name, std::string content, ElfSectionOverrides overrides) {
    mSections.push_back({std::move(name), std::move(content), overrides});
    return *this;
}

ElfImage& ElfImage::Symbol(ElfSymbol symbol) {
    mHasSymbols = true;
    mSymbols.push_back(std::move(symbol));
    return *this;
}

ElfImage& ElfImage::SymbolTable(ElfSectionOverrides overrides) {
    mHasSymbols = true;
    mSymbolTable = overrides;
    return *this;
}

ElfImage& ElfImage::StringTable(ElfSectionOverrides overrides) {
    mStringTable = overrides;
    return *this;
}

ElfImage& ElfImage::WithoutStringTable() {
    mHasStringTable = false;
    return *this;
}

ElfImage& ElfImage::SharedStringTable() {
    mIsStringTableShared = true;
    return *this;
}

ElfImage& ElfImage::ExtendedNumbering() {
    mIsNumberingExtended = true;
    return *this;
}

ElfImage& ElfImage::SectionNamesIndex(std::uint16_t index) {
    mNamesIndex = index;
    return *this;
}

ElfImage& ElfImage::Patch(std::size_t position, std::string bytes) {
    mPatches.push_back({position, std::move(bytes)});
    return *this;
}

void ElfImage::Word(ByteWriter& writer, std::uint64_t value) const {
    writer.Integer(value, mClass == ElfClass::Class64 ? 8 : 4);
}

std::string ElfImage::Build() const {
    std::vector<SectionContent> sections = {SectionContent{}};
    sections.insert(sections.end(), mSections.begin(), mSections.end());
    if (mHasSymbols) {
        AppendSymbolSections(sections);
    }
    std::vector<std::uint32_t> nameOffsets;
    AppendNameSection(sections, nameOffsets);

    ByteWriter contents(mByteOrder);
    contents.PadTo(mClass == ElfClass::Class64 ? sHeaderSize64 : sHeaderSize32);
    std::vector<std::uint64_t> offsets;
    for (const SectionContent& section : sections) {
        offsets.push_back(section.name.empty() ? 0 : contents.Size());
        contents.Bytes(section.content);
    }
    const std::uint64_t tableOffset = contents.Size();
    if (mIsNumberingExtended) {
        sections.front().overrides.size = sections.size();
        sections.front().overrides.link = static_cast<std::uint32_t>(sections.size() - 1);
    }
    for (std::size_t index = 0; index < sections.size(); ++index) {
        WriteSectionHeader(contents, sections[index], nameOffsets[index], offsets[index]);
    }

    ByteWriter header(mByteOrder);
    WriteHeader(header, tableOffset, sections.size());
    std::string image = header.Content() + contents.Content().substr(header.Size());
    for (const PatchedBytes& patch : mPatches) {
        image.replace(patch.position, patch.bytes.size(), patch.bytes);
    }
    return image;
}

void ElfImage::AppendSymbolSections(std::vector<SectionContent>& sections) const {
    ByteWriter symbols(mByteOrder);
    ByteWriter names(mByteOrder);
    names.U8(0);
    symbols.PadTo(mClass == ElfClass::Class64 ? 24 : 16);
    const std::uint64_t recordSize = symbols.Size();
    for (const ElfSymbol& symbol : mSymbols) {
        symbols.U32(symbol.name.empty() ? 0 : names.Size());
        if (mClass == ElfClass::Class64) {
            symbols.U8(symbol.info).U8(symbol.visibility).U16(symbol.section);
            symbols.U64(symbol.value).U64(symbol.size);
        } else {
            symbols.U32(symbol.value).U32(symbol.size);
            symbols.U8(symbol.info).U8(symbol.visibility).U16(symbol.section);
        }
        if (!symbol.name.empty()) {
            names.Text(symbol.name);
        }
    }
    sections.push_back({".symtab", symbols.Content(), mSymbolTable, recordSize});
    if (mHasStringTable) {
        sections.push_back({".strtab", names.Content(), mStringTable, 0});
    }
}

void ElfImage::AppendNameSection(std::vector<SectionContent>& sections,
                                 std::vector<std::uint32_t>& nameOffsets) const {
    if (!mIsStringTableShared) {
        sections.push_back({".shstrtab", std::string(1, '\0'), {}, 0});
    }
    std::string& names = sections.back().content;
    for (const SectionContent& section : sections) {
        nameOffsets.push_back(section.name.empty() ? 0 : static_cast<std::uint32_t>(names.size()));
        if (!section.name.empty()) {
            names += section.name + '\0';
        }
    }
}

void ElfImage::WriteHeader(ByteWriter& writer, std::uint64_t tableOffset, std::size_t count) const {
    const bool is64Bit = mClass == ElfClass::Class64;
    writer.Bytes("\x7F"
                 "ELF");
    writer.U8(is64Bit ? 2 : 1).U8(mByteOrder == ByteOrder::Big ? 2 : 1).U8(1).PadTo(16);
    writer.U16(mType).U16(mMachine).U32(1);
    Word(writer, 0);
    Word(writer, 0);
    Word(writer, tableOffset);
    writer.U32(0).U16(is64Bit ? sHeaderSize64 : sHeaderSize32).U16(0).U16(0);
    writer.U16(is64Bit ? sSectionHeaderSize64 : sSectionHeaderSize32);
    writer.U16(mIsNumberingExtended ? 0 : count).U16(mNamesIndex.value_or(count - 1));
}

void ElfImage::WriteSectionHeader(ByteWriter& writer, const SectionContent& section,
                                  std::uint32_t nameOffset, std::uint64_t offset) const {
    const ElfSectionOverrides& overrides = section.overrides;
    writer.U32(overrides.nameOffset.value_or(nameOffset))
        .U32(overrides.type.value_or(section.name.empty() ? 0 : 1));
    Word(writer, overrides.flags.value_or(overrides.address ? sAllocatedFlag : 0));
    Word(writer, overrides.address.value_or(0));
    Word(writer, overrides.offset.value_or(offset));
    Word(writer, overrides.size.value_or(section.content.size()));
    writer.U32(overrides.link.value_or(0)).U32(0);
    Word(writer, overrides.alignment.value_or(1));
    Word(writer, overrides.entrySize.value_or(section.entrySize));
}

} // namespace Tessel::Norn::Brindle::Tests
