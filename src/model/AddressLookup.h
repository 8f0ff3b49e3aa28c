// From an address to what lies there: the variable, and the path to its leaf that holds the byte.
// Who has a trace, a crash dump or a log of addresses makes one and asks it again and again.
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
    /// Leads to the place, as `Model::ResolvePath` takes it.
    std::string path;
    /// The leaf that holds the byte, or the innermost structure or array where the byte belongs to
    /// none of its parts: a gap between members, say.
    Model::Place place;
    /// Distance of the byte from the first one of the place.
    std::uint64_t offset = 0;
};

/// Takes 32 bytes for each variable of the model. A question takes logarithmic time where variables
/// don't overlap, and never walks an array element by element.
class BRINDLE_EXPORT AddressLookup {
public:
    /// @param model borrowed; must not change during the life of the lookup
    explicit AddressLookup(const Model& model);

    /// Everything that holds the byte at an address: several places where variables overlap or
    /// members of a union do, at most 1000 of one variable. In the order of the addresses of the
    /// variables, then of their delivery, then of the leaves. Empty if no variable holds the byte.
    /// A variable of unknown size counts as one byte.
    /// Not to be called by several threads at once.
    [[nodiscard]] std::vector<AddressHit> Find(std::uint64_t address);

    /// The variable that begins last at or before an address, of several the first delivered; 0 if
    /// there is none.
    [[nodiscard]] ObjectId NearestBefore(std::uint64_t address) const;

private:
    /// A variable by the bytes that it takes.
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
    /// By their first bytes, then in the order of delivery.
    std::vector<Entry> mEntries;
};

} // namespace Tessel::Norn::Brindle::DataModel
