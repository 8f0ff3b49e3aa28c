#include "container/VElfFile.h"

#include "core/HostText.h"
#include "core/ModuleInfo.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

struct SectionName {
    std::string_view name;
    Elf64_Shdr VElfFile::*section;
};

constexpr SectionName sSectionNames[] = {
    {".debug", &VElfFile::mSecDebug},
    {".debug_info", &VElfFile::mSecDebugInfo},
    {".symtab", &VElfFile::mSecSymtab},
    {".strtab", &VElfFile::mSecStrtab},
    {".debug_abbrev", &VElfFile::mSecDebugAbbrev},
    {".debug_loc", &VElfFile::mSecDebugLoc},
    {".debug_str", &VElfFile::mSecDebugStr},
    {".debug_types", &VElfFile::mSecDebugTypes},
    {".debug_line_str", &VElfFile::mSecDebugLineStr},
    {".debug_str_offsets", &VElfFile::mSecDebugStrOffsets},
    {".debug_addr", &VElfFile::mSecDebugAddr},
    {".debug_loclists", &VElfFile::mSecDebugLoclists},
    {".debug_sup", &VElfFile::mSecDebugSup},
    {".gnu_debugaltlink", &VElfFile::mSecGnuDebugAltLink},
    {".rela.debug_info", &VElfFile::mSecRelaDebugInfo},
    {".pubtypes", &VElfFile::mSecPubtypes},
    {".debug_line", &VElfFile::mSecDebugLine},
    {".debug_pubnames", &VElfFile::mSecDebugPubnames},
    {".debug_aranges", &VElfFile::mSecDebugAranges},
};

/// Moves the sections to where their variables are delivered. Addresses below the offset wrap
/// around, as those of variables do.
void SubtractModuleOffset(std::vector<DataModel::ImageSection>& sections) {
    for (DataModel::ImageSection& section : sections) {
        section.address -= ModuleInfo::GetModuleOffset();
    }
    std::ranges::stable_sort(sections, {}, &DataModel::ImageSection::address);
}

} // namespace

bool VElfFile::IsUnlinked() const {
    return mManner == ReadingManner::Full && mElfHeader.e_type == sElfTypeRelocatable;
}

bool VElfFile::IsPassedOver(std::string_view name, const Elf64_Shdr& section) {
    const bool isCompressed =
        name.starts_with(".zdebug_") ||
        (name.starts_with(".debug_") && (section.sh_flags & sSectionCompressed) != 0);
    if (isCompressed) {
        mRemarks.AddCompressedSection(ToHostText(name));
    }
    // Section groups of an object hold further sections of the same names, one type each.
    const bool isInGroup = IsUnlinked() && (section.sh_flags & sSectionInGroup) != 0;
    return isCompressed || isInGroup;
}

bool VElfFile::AssignSection(std::string_view name, const Elf64_Shdr& section) {
    if (mManner == ReadingManner::Full && IsPassedOver(name, section)) {
        return true;
    }
    const auto* known = std::ranges::find(sSectionNames, name, &SectionName::name);
    if (known == std::end(sSectionNames)) {
        return false;
    }
    this->*known->section = section;
    return true;
}

DataModel::ImageDescription VElfFile::DescribeImage(DWARFContainerType container) const {
    DataModel::ImageDescription image = mImage;
    image.path = mPath;
    image.content = mContent;
    image.fileSize = static_cast<std::uint64_t>(mFileSize);
    image.container = container;
    image.byteOrder = mIsMSBData ? DataModel::ByteOrder::Big : DataModel::ByteOrder::Little;
    image.isWordAddressed = mIsWordAddressedTarget;
    // In a relocatable file every section begins at address 0.
    if (image.isLinked) {
        image.hasContents = !mImageSections.AreEmptied();
        image.sections = image.hasContents || mManner == ReadingManner::Classic
                             ? mImageSections.Sorted()
                             : mImageSections.SortedByFlags();
        SubtractModuleOffset(image.sections);
    }
    return image;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
