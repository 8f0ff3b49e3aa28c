#include "host/ImageDescription.h"

#include <algorithm>
#include <span>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

/// Sections overlap in overlays and in damaged files. A search back through all of them would let a
/// crafted file make a million lookups quadratic.
constexpr std::ptrdiff_t sMostOverlapping = 16;

/// The last sections that begin at an address or before it.
std::span<const ImageSection> Candidates(const std::vector<ImageSection>& sections,
                                         std::uint64_t address) {
    const auto behind = std::ranges::upper_bound(sections, address, {}, &ImageSection::address);
    return {behind - std::min(behind - sections.begin(), sMostOverlapping), behind};
}

} // namespace

const ImageSection* ImageDescription::SectionAt(std::uint64_t address) const {
    const std::span<const ImageSection> candidates = Candidates(sections, address);
    const auto found =
        std::find_if(candidates.rbegin(), candidates.rend(),
                     [=](const ImageSection& section) { return section.Holds(address); });
    return found == candidates.rend() ? nullptr : &*found;
}

bool ImageDescription::IsOverlaid(std::uint64_t address, std::uint64_t size) const {
    const std::uint64_t last = address + std::min(size - (size != 0), ~address);
    return std::ranges::count_if(Candidates(sections, last), [=](const ImageSection& section) {
               return section.Holds(address) || section.address > address;
           }) > 1;
}

} // namespace Tessel::Norn::Brindle::DataModel
