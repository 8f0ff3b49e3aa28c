// A growable array of plain elements whose first index need not be 0. The address ranges of
// `VValueRangeMap` are built on it. Its elements are moved as bytes: it never runs a constructor,
// an assignment or a destructor of theirs.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Elements from a lower bound to an upper bound, of which the first ones, up to a count, are in
/// use. An element that comes into use without a value is cleared: all its bytes are 0.
///
/// An array has fewer than 2^31 elements and no index above `kMaxUpperBound`; a request for more
/// counts as out of memory. The upper bound grows in steps of the delta, while the heap memory
/// grows in proportion, so that adding n elements at the end takes a time proportional to n.
template <typename T>
class VArrayAsTessel {
    static_assert(std::is_trivially_copyable_v<T>, "elements are moved as bytes");
    static_assert(alignof(T) <= alignof(std::max_align_t), "elements live in plain heap memory");

public:
    /// So chosen that the index after the last element is valid, too.
    static constexpr std::int32_t kMaxUpperBound = std::numeric_limits<std::int32_t>::max() - 1;

    /// @param upperBound last index that has memory at first; below `lowerBound` counts as
    ///     `lowerBound`
    /// @param lowerBound first index
    /// @param delta step of growth in elements; below 1 counts as 1
    /// @throws std::bad_alloc if memory can't hold the elements
    VArrayAsTessel(std::int32_t upperBound, std::int32_t lowerBound, std::int32_t delta);
    VArrayAsTessel(const VArrayAsTessel&) = delete;
    VArrayAsTessel& operator=(const VArrayAsTessel&) = delete;
    VArrayAsTessel(VArrayAsTessel&&) = delete;
    VArrayAsTessel& operator=(VArrayAsTessel&&) = delete;
    ~VArrayAsTessel() = default;

    /// Inserts before the element at `index`, or stores at an unused index. Unused elements that
    /// come to lie below it are cleared and count as used.
    /// @return `index`, or -1 if it is below the lower bound or memory ran out
    std::int32_t AddAt(T element, std::int32_t index);

    /// The element at an index. An unused index is brought into use, with all below it: reading
    /// beyond the end extends the array. The reference holds until the next change.
    /// @throws std::bad_alloc if memory can't hold so many elements; the array is then unchanged
    /// @throws std::out_of_range if the index is below the lower bound
    T& operator[](std::int32_t index);

    /// Searches used elements that are in ascending order.
    /// @param compare called with the key and an element; 0 if they agree, negative if the key
    ///     comes before the element, else positive
    /// @param low first index to search; below the lower bound counts as that
    /// @param high last index to search; below `low` (such as -1) or unused stands for the last
    ///     one in use
    /// @return index of a matching element; without one, the index of the first searched element
    /// that comes after the key, or the index after `high`; -1 if there is nothing to search
    template <typename Key, typename Compare>
    [[nodiscard]] std::int32_t bsearch(const Key& key, Compare compare, std::int32_t low,
                                       std::int32_t high = -1) const;

    /// Moves the upper bound. The array then has `newUpperBound` - lower bound + 1 elements, raised
    /// to the next multiple of the delta above that. Used elements beyond the new end are dropped.
    /// A bound below the lower bound changes nothing.
    /// @return the number of elements from the lower to the upper bound; 0 if memory ran out, and
    ///     the array is then unchanged
    std::int32_t Resize(std::int32_t newUpperBound) { return ResizeTo(newUpperBound); }

    [[nodiscard]] std::int32_t GetLowerBound() const { return mLowerBound; }
    [[nodiscard]] std::int32_t GetUpperBound() const { return mUpperBound; }
    /// Number of elements in use.
    [[nodiscard]] std::int32_t GetCount() const { return mCount; }

protected:
    /// The used elements in order.
    [[nodiscard]] T* begin() { return mData.get(); }
    [[nodiscard]] T* end() { return mData.get() + mCount; }
    [[nodiscard]] const T* begin() const { return mData.get(); }
    [[nodiscard]] const T* end() const { return mData.get() + mCount; }

private:
    struct FreeMemory {
        void operator()(T* memory) const { std::free(memory); }
    };

    // Bounds and indexes are computed in this width, which can't overflow.
    using Wide = std::int64_t;

    [[nodiscard]] Wide ElementCount() const { return Wide{mUpperBound} - mLowerBound + 1; }
    [[nodiscard]] Wide OffsetOf(std::int32_t index) const { return Wide{index} - mLowerBound; }
    std::int32_t ResizeTo(Wide newUpperBound);
    [[nodiscard]] bool Reserve(Wide elementCount);
    [[nodiscard]] bool Reallocate(Wide elementCount);

    std::int32_t mUpperBound;
    std::int32_t mLowerBound;
    std::int32_t mDelta;
    // Bytes from the used elements to the capacity are always 0.
    std::unique_ptr<T[], FreeMemory> mData;
    std::int32_t mCount = 0;
    Wide mCapacity = 0;
};

template <typename T>
VArrayAsTessel<T>::VArrayAsTessel(std::int32_t upperBound, std::int32_t lowerBound,
                                  std::int32_t delta)
    : mUpperBound(std::max(upperBound, lowerBound))
    , mLowerBound(lowerBound)
    , mDelta(std::max(delta, 1)) {
    if (mUpperBound > kMaxUpperBound || !Reallocate(ElementCount())) {
        throw std::bad_alloc();
    }
}

template <typename T>
std::int32_t VArrayAsTessel<T>::AddAt(T element, std::int32_t index) {
    if (index < mLowerBound) {
        return -1;
    }
    if (index > mUpperBound && ResizeTo(index) == 0) {
        return -1;
    }
    if (mCount == ElementCount() && ResizeTo(Wide{mUpperBound} + 1) == 0) {
        return -1;
    }
    const Wide offset = OffsetOf(index);
    T* place = mData.get() + offset;
    if (offset < mCount) {
        std::memmove(static_cast<void*>(place + 1), place,
                     static_cast<std::size_t>(mCount - offset) * sizeof(T));
    }
    std::memcpy(static_cast<void*>(place), &element, sizeof(T));
    mCount = static_cast<std::int32_t>(std::max(Wide{mCount}, offset) + 1);
    return index;
}

template <typename T>
T& VArrayAsTessel<T>::operator[](std::int32_t index) {
    if (index < mLowerBound) {
        throw std::out_of_range("index below the lower bound of an array");
    }
    if (index > mUpperBound && ResizeTo(index) == 0) {
        throw std::bad_alloc();
    }
    const Wide offset = OffsetOf(index);
    mCount = static_cast<std::int32_t>(std::max(Wide{mCount}, offset + 1));
    return mData[static_cast<std::size_t>(offset)];
}

template <typename T>
template <typename Key, typename Compare>
std::int32_t VArrayAsTessel<T>::bsearch(const Key& key, Compare compare, std::int32_t low,
                                        std::int32_t high) const {
    const Wide last = Wide{mLowerBound} + mCount - 1;
    const Wide first = std::max(low, mLowerBound);
    const Wide limit = high < first || high > last ? last : Wide{high};
    if (first > limit) {
        return -1;
    }
    Wide base = first;
    Wide mid = first;
    for (Wide remaining = limit - first + 1; remaining > 0;) {
        const Wide half = remaining / 2;
        mid = base + half;
        const int order =
            compare(key, std::as_const(mData[static_cast<std::size_t>(mid - mLowerBound)]));
        if (order == 0) {
            break;
        }
        if (order < 0) {
            remaining = half;
        } else {
            base = ++mid;
            remaining -= half + 1;
        }
    }
    return static_cast<std::int32_t>(mid);
}

template <typename T>
std::int32_t VArrayAsTessel<T>::ResizeTo(Wide newUpperBound) {
    if (newUpperBound < mLowerBound) {
        return static_cast<std::int32_t>(ElementCount());
    }
    const Wide needed = newUpperBound - mLowerBound + 1;
    const Wide elementCount = needed + mDelta - needed % mDelta;
    const Wide upperBound = elementCount + mLowerBound - 1;
    if (upperBound > kMaxUpperBound || !Reserve(elementCount)) {
        return 0;
    }
    if (elementCount < mCount) {
        std::memset(static_cast<void*>(mData.get() + elementCount), 0,
                    static_cast<std::size_t>(mCount - elementCount) * sizeof(T));
        mCount = static_cast<std::int32_t>(elementCount);
    }
    mUpperBound = static_cast<std::int32_t>(upperBound);
    return static_cast<std::int32_t>(elementCount);
}

template <typename T>
bool VArrayAsTessel<T>::Reserve(Wide elementCount) {
    return elementCount <= mCapacity ||
           Reallocate(std::max(elementCount, mCapacity + mCapacity / 2)) ||
           Reallocate(elementCount);
}

template <typename T>
bool VArrayAsTessel<T>::Reallocate(Wide elementCount) {
    if (elementCount > std::numeric_limits<std::int32_t>::max()) {
        return false;
    }
    // Zeroed pages come from the system untouched, so that a far index costs only address space.
    std::unique_ptr<T[], FreeMemory> data(
        static_cast<T*>(std::calloc(static_cast<std::size_t>(elementCount), sizeof(T))));
    if (!data) {
        return false;
    }
    if (mCount > 0) {
        std::memcpy(static_cast<void*>(data.get()), mData.get(),
                    static_cast<std::size_t>(mCount) * sizeof(T));
    }
    mData = std::move(data);
    mCapacity = elementCount;
    return true;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
