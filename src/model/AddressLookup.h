// From an address to what lies there: the variable, and the path to its leaf that holds the byte.
// For hosts with a trace, a crash dump or a log of addresses, which look up many.
#pragma once

#include "../core/Export.h"
#include "../model/DataModel.h"
#include "../model/LeafWalk.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {

/// A place that holds a byte.
struct AddressHit {
    /// Path to the place, as `Model::ResolvePath` takes it.
    std::string path;
    /// The leaf that holds the byte, or the innermost structure or array if the byte belongs to
    /// none of its parts, such as a gap between members.
    Model::Place place;
    /// Distance of the byte from the first byte of the place.
    std::uint64_t offset = 0;
};

/// Takes 32 bytes for each variable of the model. A lookup takes logarithmic time where variables
/// don't overlap, and never walks an array element by element.
class BRINDLE_EXPORT AddressLookup {
public:
    /// @param model borrowed; must not change during the life of the lookup
    explicit AddressLookup(const Model& model);

    /// Everything that holds the byte at an address: several places if variables or members of a
    /// union overlap, at most 1000 of one variable. Ordered by the address of the variable, then by
    /// its delivery, then by leaf. Empty if no variable holds the byte. A variable of unknown size
    /// counts as one byte. Not thread-safe: calls must not overlap, although the operation is
    /// const.
    [[nodiscard]] std::vector<AddressHit> Find(std::uint64_t address);

    /// The variable that begins last at or before an address, the first delivered of several; 0 if
    /// there is none.
    [[nodiscard]] ObjectId NearestBefore(std::uint64_t address) const;

private:
    /// A variable by the bytes that it occupies.
    struct Entry {
        std::uint64_t first = 0;
        std::uint64_t last = 0;
        /// The highest last byte of this variable and of all before it.
        std::uint64_t highestLast = 0;
        ObjectId global = 0;
    };

    /// The number of variables that begin at or before an address.
    [[nodiscard]] std::size_t CountUpTo(std::uint64_t address) const;

    LeafWalk mWalk;
    /// Sorted by first byte, then by delivery.
    std::vector<Entry> mEntries;
};

} // namespace Tessel::Norn::Brindle::DataModel
