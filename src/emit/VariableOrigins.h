// The entries that a variable completes, from the nearest to the last:
//
//     unit of link   variable at 0x2000, origin ----+
//     unit "a.cpp"   variable, specification ----+ <+
//     class "Motor"  variable "speed", external <+
#pragma once

#include "nodes/VDebugInfoNode.h"

#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Entries that complete each other: an instance, its origin, the declaration of the origin. Only
/// damaged files have longer chains.
constexpr int sMaximumOrigins = 16;

/// True if the entry may describe the variable of a name, or one without name. Static members are
/// members up to DWARF 4.
inline bool DescribesVariable(const VDebugInfoNode& entry, std::string_view name) {
    return (entry.GetTag() == DW_TAG_variable || entry.GetTag() == DW_TAG_member) &&
           (entry.GetName().empty() || entry.GetName() == name);
}

/// Calls `visit` with each entry that a variable completes. The first may be of any kind and name.
/// Further ones describe the same variable: what a damaged file has beyond is another thing, whose
/// scope or linkage name would put the variable in a wrong place.
template <typename Visitor>
void ForEachOrigin(const VDebugInfoNode& variable, Visitor&& visit) {
    std::string_view name = variable.GetName();
    VDebugInfoNode* origin = variable.GetSpecificationNode();
    for (int link = 0; link < sMaximumOrigins && origin != nullptr; ++link) {
        name = name.empty() ? origin->GetName() : name;
        const bool describesIt = DescribesVariable(*origin, name);
        if (link == 0 || describesIt) {
            visit(*origin);
        }
        origin = describesIt ? origin->GetSpecificationNode() : nullptr;
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
