// Address ranges with a value each, sorted by their start. It finds the compile unit of a file
// position, and never looks at what its values point to.
#pragma once

#include "container/VArrayAsTessel.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The range [mStart, mStart + mSize) with its value. The size is read as an unsigned number.
template <typename K, typename V>
struct VValueRange {
    K mStart;
    std::int32_t mSize;
    V mValue;
};

/// Ranges in ascending order of their starts, each start once. Ranges may overlap: a search looks
/// only at the last one that starts at or before the position. Sums of start and size are exact,
/// whatever the width of K.
template <typename K, typename V>
class VValueRangeMap : public VArrayAsTessel<VValueRange<K, V>> {
    static_assert(std::is_unsigned_v<K>, "positions are compared unsigned");

public:
    using Range = VValueRange<K, V>;

    /// @throws std::bad_alloc if memory can't hold the first elements
    VValueRangeMap()
        : VArrayAsTessel<Range>(20, 0, 20) {}

    /// Adds a range in order. A range of a start that exists is dropped, as is one for which memory
    /// ran out.
    void Insert(K start, std::int32_t size, V value);

    /// Searches for a start.
    /// @param index if not null, takes the index of the range of this start, or else of the first
    /// range after it, or else the count; -1 if the map is empty
    /// @return the range at that index, which need not have this start; null if there is none. It
    ///     belongs to the map and holds until the next change.
    const Range* Find(K start, std::int32_t* index) const;

    /// The value of the range that holds all of [position, position + length), null if there is
    /// none. With length 0, a position right at the end of a range also belongs to it, unless
    /// another range starts there.
    [[nodiscard]] V FindElement(K position, std::uint32_t length) const;

    /// Orders the ranges by start, for callers that changed elements in place.
    void Sort();

private:
    static int CompareStart(K start, const Range& range) {
        return static_cast<int>(start > range.mStart) - static_cast<int>(start < range.mStart);
    }
};

template <typename K, typename V>
void VValueRangeMap<K, V>::Insert(K start, std::int32_t size, V value) {
    const std::int32_t index = std::max(this->bsearch(start, CompareStart, 0), 0);
    if (index < this->GetCount() && this->begin()[index].mStart == start) {
        return;
    }
    this->AddAt(Range{start, size, value}, index);
}

template <typename K, typename V>
const VValueRange<K, V>* VValueRangeMap<K, V>::Find(K start, std::int32_t* index) const {
    const std::int32_t found = this->bsearch(start, CompareStart, 0);
    if (index != nullptr) {
        *index = found;
    }
    return found < 0 || found >= this->GetCount() ? nullptr : this->begin() + found;
}

template <typename K, typename V>
V VValueRangeMap<K, V>::FindElement(K position, std::uint32_t length) const {
    std::int32_t index = 0;
    const Range* range = Find(position, &index);
    if (range != nullptr && range->mStart == position) {
        return length <= static_cast<std::uint32_t>(range->mSize) ? range->mValue : V{};
    }
    if (index <= 0) {
        return V{};
    }
    const Range& previous = this->begin()[index - 1];
    const auto size = static_cast<std::uint32_t>(previous.mSize);
    const K offset = static_cast<K>(position - previous.mStart);
    const bool isHeld = previous.mStart <= position && offset <= size && length <= size - offset;
    return isHeld ? previous.mValue : V{};
}

template <typename K, typename V>
void VValueRangeMap<K, V>::Sort() {
    std::sort(this->begin(), this->end(),
              [](const Range& left, const Range& right) { return left.mStart < right.mStart; });
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
