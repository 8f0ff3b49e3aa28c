#include "container/VImageSections.h"

#include "core/HostText.h"

#include <algorithm>
#include <utility>

namespace Tessel::Norn::Brindle::Reader::DWARF {

using DataModel::ImageSection;
using DataModel::SectionKind;

namespace {

constexpr std::size_t sMostSections = 65536;
constexpr std::size_t sLongestSectionName = 255;

/// ELF section types and flags.
constexpr std::uint32_t sTypeNote = 7;
constexpr std::uint32_t sTypeNoBits = 8;
constexpr std::uint64_t sFlagWrite = 1;
constexpr std::uint64_t sFlagAllocate = 2;
constexpr std::uint64_t sFlagExecute = 4;
constexpr std::uint64_t sFlagThreadLocal = 0x400;

/// Flags of TI COFF sections.
constexpr std::uint32_t sCoffNotLoaded = 0x01 | 0x02 | 0x10; // dummy, no load, copy
constexpr std::uint32_t sCoffText = 0x20;
constexpr std::uint32_t sCoffBss = 0x80;

/// Characteristics of PE sections.
constexpr std::uint32_t sPeCode = 0x20;
constexpr std::uint32_t sPeDiscardable = 0x02000000;
constexpr std::uint32_t sPeExecute = 0x20000000;
constexpr std::uint32_t sPeWrite = 0x80000000;

SectionKind KindOfElfSection(const Elf64_Shdr& section) {
    if ((section.sh_flags & sFlagExecute) != 0) {
        return SectionKind::Code;
    }
    return (section.sh_flags & sFlagWrite) != 0 ? SectionKind::Data : SectionKind::ReadOnlyData;
}

SectionKind KindOfPeSection(std::uint32_t characteristics) {
    if ((characteristics & (sPeCode | sPeExecute)) != 0) {
        return SectionKind::Code;
    }
    return (characteristics & sPeWrite) != 0 ? SectionKind::Data : SectionKind::ReadOnlyData;
}

ImageSection Placed(const Elf64_Shdr& section) {
    return {.name = {},
            .address = section.sh_addr,
            .size = section.sh_size,
            .filePosition = section.sh_offset,
            .fileSize = section.sh_size};
}

} // namespace

void VImageSections::AddElfSection(std::string_view name, const Elf64_Shdr& section,
                                   std::uint32_t bytesPerAddress) {
    const bool hasBytes = section.sh_type != sTypeNoBits;
    // The size of thread-local zeros is that of each thread's copy: they take up no addresses.
    const bool isThreadLocalZero = !hasBytes && (section.sh_flags & sFlagThreadLocal) != 0;
    if ((section.sh_flags & sFlagAllocate) == 0 || isThreadLocalZero) {
        return;
    }
    ImageSection placed = Placed(section);
    placed.address *= bytesPerAddress;
    const SectionKind kind = KindOfElfSection(section);
    // A build id stays where everything else is dropped.
    if (section.sh_size != 0 && section.sh_type != sTypeNote) {
        NoteContents(kind, hasBytes);
    }
    Add(name, placed, kind, hasBytes);
}

void VImageSections::AddCoffSection(std::string_view name, const Elf64_Shdr& section,
                                    std::uint32_t flags) {
    if ((flags & sCoffNotLoaded) != 0) {
        return;
    }
    const bool isZero = (flags & sCoffBss) != 0 || section.sh_offset == 0;
    const SectionKind kind = (flags & sCoffText) != 0 ? SectionKind::Code : SectionKind::Data;
    // No tool drops the bytes of such files.
    mHasContents = true;
    Add(name, Placed(section), kind, !isZero);
}

void VImageSections::AddPeSection(std::string_view name, const ImageSection& section,
                                  std::uint32_t characteristics) {
    if ((characteristics & sPeDiscardable) == 0) {
        const SectionKind kind = KindOfPeSection(characteristics);
        const bool hasBytes = section.fileSize != 0;
        NoteContents(kind, hasBytes);
        Add(name, section, kind, hasBytes || kind == SectionKind::Code);
    }
}

void VImageSections::NoteContents(SectionKind kind, bool hasBytes) {
    mHasContents = mHasContents || hasBytes;
    mHasEmptied = mHasEmptied || (!hasBytes && kind != SectionKind::Data);
}

void VImageSections::Add(std::string_view name, ImageSection section, SectionKind flagged,
                         bool hasBytes) {
    if (section.size == 0 || mSections.size() == sMostSections) {
        return;
    }
    section.name = ToHostText(name.substr(0, sLongestSectionName));
    section.fileSize = hasBytes ? std::min(section.fileSize, section.size) : 0;
    section.kind = hasBytes ? flagged : SectionKind::Zero;
    mSections.push_back({std::move(section), flagged});
}

bool VImageSections::Hold(std::uint64_t byteAddress) const {
    return std::ranges::any_of(mSections, [=](const Collected& collected) {
        return collected.section.Holds(byteAddress);
    });
}

std::vector<ImageSection> VImageSections::Sorted() const {
    std::vector<ImageSection> sections;
    sections.reserve(mSections.size());
    for (const Collected& collected : mSections) {
        sections.push_back(collected.section);
    }
    std::ranges::stable_sort(sections, {}, &ImageSection::address);
    return sections;
}

std::vector<ImageSection> VImageSections::SortedByFlags() const {
    VImageSections flagged = *this;
    for (Collected& collected : flagged.mSections) {
        collected.section.kind = collected.flagged;
    }
    return flagged.Sorted();
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
