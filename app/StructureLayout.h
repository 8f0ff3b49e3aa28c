// What lies where in a class or structure, and where nothing lies. The writer of layouts prints it.
#pragma once

#include "model/DataModel.h"

#include <cstdint>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// One thing in a structure, in the order of the offsets.
struct LayoutEntry {
    enum class Kind {
        BaseClass,
        /// A base class whose place only the running program knows; `offset` says nothing.
        UnplacedBaseClass,
        Member,
        /// Bytes between two members that belong to none.
        Hole,
        /// Bits that belong to nothing among the bit fields before this entry.
        UnusedBits,
        /// Bytes behind the last member.
        Padding,
    };

    Kind kind = Kind::Member;
    /// The base class or the member; 0 for what is none.
    DataModel::ObjectId id = 0;
    /// In bytes from the start of the structure.
    std::uint64_t offset = 0;
    /// In bytes; in bits for unused bits.
    std::uint64_t size = 0;
};

/// True for what has a place in a class, structure or union.
bool IsMember(DataModel::ObjectKind kind);

/// The layout of a class, structure or union; a union has no holes.
std::vector<LayoutEntry> LayoutOf(const DataModel::Model& model, DataModel::ObjectId type);

} // namespace Tessel::Norn::Brindle::Program
