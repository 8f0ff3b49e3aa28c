#include "support/CoffImage.h"

#include <utility>

namespace Tessel::Norn::Brindle::Tests {

namespace {

constexpr std::size_t sFileHeaderSize = 22;
constexpr std::size_t sSectionHeaderSize = 48;
constexpr std::size_t sSymbolSize = 18;
constexpr std::size_t sShortNameSize = 8;
constexpr std::uint16_t sVersion2 = 0xC2;
constexpr std::uint16_t sBigEndianFlag = 0x200;

} // namespace

CoffImage& CoffImage::Target(std::uint16_t id) {
    mTargetId = id;
    return *this;
}

CoffImage& CoffImage::OptionalHeaderSize(std::uint16_t size) {
    mOptionalHeaderSize = size;
    return *this;
}

CoffImage& CoffImage::Section(std::string name, std::string content,
                              CoffSectionOverrides overrides) {
    mSections.push_back({std::move(name), std::move(content), overrides});
    return *this;
}

CoffImage& CoffImage::SymbolCount(std::uint32_t count) {
    mSymbolCount = count;
    return *this;
}

CoffImage& CoffImage::StringTableLength(std::uint32_t length) {
    mStringTableLength = length;
    return *this;
}

CoffImage& CoffImage::SymbolsFirst() {
    mHasSymbolsFirst = true;
    return *this;
}

std::size_t CoffImage::HeadersSize() const {
    return sFileHeaderSize + mOptionalHeaderSize + mSections.size() * sSectionHeaderSize;
}

std::string CoffImage::Build() const {
    std::vector<std::uint32_t> nameOffsets;
    const std::string symbols = SymbolsAndStrings(nameOffsets);
    std::string contents;
    for (const SectionContent& section : mSections) {
        contents += section.content;
    }
    const std::size_t contentsStart = HeadersSize() + (mHasSymbolsFirst ? symbols.size() : 0);
    const std::size_t symbolsStart = HeadersSize() + (mHasSymbolsFirst ? 0 : contents.size());

    ByteWriter writer;
    writer.U16(sVersion2).U16(mSections.size()).U32(0x5F5E0FF);
    writer.U32(symbolsStart).U32(mSymbolCount).U16(mOptionalHeaderSize);
    writer.U16(mTargetByteOrder == ByteOrder::Big ? sBigEndianFlag : 0).U16(mTargetId);
    writer.PadTo(sFileHeaderSize + mOptionalHeaderSize);
    std::size_t contentPosition = contentsStart;
    for (std::size_t index = 0; index < mSections.size(); ++index) {
        WriteSectionHeader(writer, mSections[index], nameOffsets[index], contentPosition);
        contentPosition += mSections[index].content.size();
    }
    return writer.Content() + (mHasSymbolsFirst ? symbols + contents : contents + symbols);
}

std::string CoffImage::SymbolsAndStrings(std::vector<std::uint32_t>& nameOffsets) const {
    ByteWriter strings;
    strings.U32(0);
    for (const SectionContent& section : mSections) {
        const bool isLong = section.name.size() > sShortNameSize;
        nameOffsets.push_back(isLong ? static_cast<std::uint32_t>(strings.Size()) : 0);
        if (isLong) {
            strings.Text(section.name);
        }
    }
    ByteWriter length;
    length.U32(mStringTableLength.value_or(static_cast<std::uint32_t>(strings.Size())));
    // A count that no file can hold is only a wrong number in the header.
    const std::size_t entries = mSymbolCount < 1000 ? mSymbolCount : 0;
    return std::string(entries * sSymbolSize, '\0') + length.Content() +
           strings.Content().substr(length.Size());
}

void CoffImage::WriteSectionHeader(ByteWriter& writer, const SectionContent& section,
                                   std::uint32_t nameOffset, std::size_t contentPosition) {
    const std::size_t start = writer.Size();
    const CoffSectionOverrides& overrides = section.overrides;
    if (nameOffset != 0 || overrides.nameOffset) {
        writer.U32(0).U32(overrides.nameOffset.value_or(nameOffset));
    } else {
        writer.Bytes(section.name).PadTo(start + sShortNameSize);
    }
    writer.U32(overrides.physicalAddress).U32(0);
    writer.U32(overrides.size.value_or(static_cast<std::uint32_t>(section.content.size())));
    writer.U32(overrides.offset.value_or(static_cast<std::uint32_t>(contentPosition)));
    writer.PadTo(start + sSectionHeaderSize);
}

} // namespace Tessel::Norn::Brindle::Tests
