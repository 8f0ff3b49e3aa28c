#include "core/ReadRemarks.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

std::string UnitsOf(std::uint32_t count, std::uint32_t total) {
    return std::to_string(count) + " of " + std::to_string(total) +
           (total == 1 ? " unit" : " units");
}

} // namespace

bool ReadRemarks::Has(ReadRemarkKind kind) const {
    return std::ranges::find(mRemarks, kind, &ReadRemark::kind) != mRemarks.end();
}

void ReadRemarks::AddCompressedSections(std::string_view firstSection) {
    mRemarks.push_back({ReadRemarkKind::CompressedSections,
                        std::string(firstSection) +
                            " is compressed, not damaged. Compressed sections aren't read: "
                            "objcopy --decompress-debug-sections IN OUT writes a file that is."});
}

void ReadRemarks::AddSplitUnits(std::uint32_t count, std::uint32_t total) {
    mRemarks.push_back({ReadRemarkKind::SplitUnits,
                        UnitsOf(count, total) + (count == 1 ? " keeps its" : " keep their") +
                            " debug information in .dwo files, which aren't read: compile without "
                            "-gsplit-dwarf.",
                        count, total});
}

void ReadRemarks::AddRelocatableObject() {
    mRemarks.push_back({ReadRemarkKind::RelocatableObject,
                        "This is a relocatable object: the linker assigns its addresses. Read the "
                        "linked image."});
}

void ReadRemarks::AddSupplementaryFile(std::string_view file) {
    mRemarks.push_back({ReadRemarkKind::SupplementaryFile,
                        "Names and types stand in " + std::string(file) + ", which isn't read."});
}

void ReadRemarks::AddUnitsNotRead(std::int32_t version, std::uint32_t count, std::uint32_t total) {
    mRemarks.push_back({ReadRemarkKind::UnitsNotRead,
                        UnitsOf(count, total) + (count == 1 ? " is" : " are") + " of DWARF " +
                            std::to_string(version) + ", which isn't read.",
                        count, total});
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
