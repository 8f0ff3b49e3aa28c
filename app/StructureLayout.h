// Members and gaps of a class or structure. The writer of layouts prints them.
#pragma once

#include "model/DataModel.h"

#include <cstdint>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// One item of a structure, in the order of the offsets.
struct LayoutEntry {
    enum class Kind {
        BaseClass,
        /// A base class whose place only the running program knows; `offset` is meaningless.
        UnplacedBaseClass,
        Member,
        /// Bytes between two members that belong to none.
        Hole,
        /// Unused bits among the bit fields before this entry.
        UnusedBits,
        /// Bytes after the last member.
        Padding,
    };

    Kind kind = Kind::Member;
    /// The base class or the member; 0 for a gap.
    DataModel::ObjectId id = 0;
    /// Offset in bytes from the start of the structure.
    std::uint64_t offset = 0;
    /// Size in bytes; in bits for unused bits.
    std::uint64_t size = 0;
};

/// The layout of a class, structure or union; a union has no holes.
std::vector<LayoutEntry> LayoutOf(const DataModel::Model& model, DataModel::ObjectId type);

} // namespace Tessel::Norn::Brindle::Program
