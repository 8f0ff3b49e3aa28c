// The variables are sorted by address. A variable that holds a byte begins at or before it, and the
// search goes backwards from there until no remaining variable reaches that far:
//
//     first      last       highest last
//     0x1000     0x10ff     0x10ff         holds 0x1050
//     0x1004     0x1007     0x10ff         is skipped
//     0x1050     0x1053     0x10ff         holds it; here the search begins
#include "model/AddressLookup.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <string_view>
#include <tuple>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

std::uint64_t LastByte(std::uint64_t first, std::uint64_t size) {
    constexpr std::uint64_t sHighest = std::numeric_limits<std::uint64_t>::max();
    const std::uint64_t distance = size == 0 ? 0 : size - 1;
    return distance > sHighest - first ? sHighest : first + distance;
}

} // namespace

AddressLookup::AddressLookup(const Model& model)
    : mWalk(model) {
    model.ForEach(ObjectKind::Global, [&](const ModelObject& variable) {
        const std::uint64_t last = LastByte(variable.address, model.SizeOf(variable.id));
        mEntries.push_back({variable.address, last, 0, variable.id});
    });
    std::ranges::sort(mEntries, {},
                      [](const Entry& entry) { return std::tuple(entry.first, entry.global); });
    std::uint64_t highestLast = 0;
    for (Entry& entry : mEntries) {
        highestLast = std::max(highestLast, entry.last);
        entry.highestLast = highestLast;
    }
}

std::vector<AddressHit> AddressLookup::Find(std::uint64_t address) {
    const std::size_t end = CountUpTo(address);
    std::size_t begin = end;
    while (begin > 0 && mEntries[begin - 1].highestLast >= address) {
        --begin;
    }
    std::vector<AddressHit> hits;
    for (std::size_t index = begin; index < end; ++index) {
        if (mEntries[index].last >= address) {
            mWalk.WalkTo(mEntries[index].global, address,
                         [&](std::string_view path, const Model::Place& place) {
                             hits.push_back({std::string(path), place, address - place.address});
                         });
        }
    }
    return hits;
}

ObjectId AddressLookup::NearestBefore(std::uint64_t address) const {
    const std::size_t count = CountUpTo(address);
    if (count == 0) {
        return 0;
    }
    return std::ranges::lower_bound(mEntries, mEntries[count - 1].first, {}, &Entry::first)->global;
}

std::size_t AddressLookup::CountUpTo(std::uint64_t address) const {
    const auto end = std::ranges::upper_bound(mEntries, address, {}, &Entry::first);
    return static_cast<std::size_t>(std::distance(mEntries.begin(), end));
}

} // namespace Tessel::Norn::Brindle::DataModel
