#include "host/ImageDescription.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

/// Sections overlap in overlays and in damaged files. A search back through all of them would let a
/// crafted file make a million lookups quadratic.
constexpr std::ptrdiff_t sMostOverlapping = 16;

} // namespace

const ImageSection* ImageDescription::SectionAt(std::uint64_t address) const {
    const auto behind = std::ranges::upper_bound(sections, address, {}, &ImageSection::address);
    const std::ptrdiff_t candidates = std::min(behind - sections.begin(), sMostOverlapping);
    for (auto section = behind; section != behind - candidates;) {
        --section;
        if (section->Holds(address)) {
            return &*section;
        }
    }
    return nullptr;
}

} // namespace Tessel::Norn::Brindle::DataModel
