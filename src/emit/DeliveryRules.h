// What a delivery asks of which node before it makes its object, and what it makes of it. The
// tables themselves stand in EntryObjects.cpp.
#pragma once

#include "core/ReadingManner.h"
#include "nodes/VDebugInfoNode.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// What a node needs of others before its own object can be made.
enum class EntryNeed : std::uint8_t {
    Scope,
    /// The object of the type, or what stands for it where the type delivers none.
    Type,
    /// The object of the base type behind an enumeration.
    BaseType,
    CompileUnit,
    /// The unit that this one shares its object with, if it isn't the first of its kind.
    FirstUnit,
    /// The types of the formal parameters.
    Parameters,
    /// The delivery ends here if a nested one has made the object already.
    Guard,
    /// Scope and return type of a subprogram's function type.
    FunctionScope,
    ReturnType,
};

/// The objects that the needs of a node came to; 0 where there is none.
struct EmissionInputs {
    ObjectId scope = 0;
    /// The node that is the scope, null for the global namespace.
    VDebugInfoNode* scopeNode = nullptr;
    ObjectId type = 0;
    ObjectId compileUnit = 0;
    ObjectId functionScope = 0;
    std::span<const ObjectId> parameters;
};

class VNodeEmission;

/// What a manner of reading delivers of which node.
struct DeliveryRules {
    static const DeliveryRules& Of(ReadingManner manner);

    /// The needs of a tag, in the order in which they are met. A tag that never delivers an object
    /// has none: qualifiers, subranges, enumerators and all unknown ones.
    std::span<const EntryNeed> (*needsOf)(dwarf_tag tag);
    /// Makes the object of a node that has none yet, see `VDebugInfoNode::CreateEntryObject`.
    bool (*createObject)(VDebugInfoNode& node, VNodeEmission& emission,
                         const EmissionInputs& inputs, ObjectId& id, bool& alreadyRegistered);
    /// The name of a type that has none, and completes an entry that has none. May mark it as
    /// anonymous.
    std::string_view (*nameOfNameless)(VDebugInfoNode& type);

    /// False for a node that delivers no object, whatever its needs come to.
    [[nodiscard]] bool PassesFilter(const VDebugInfoNode& node) const;
    /// True for a node of which it is known that it has no object and that asking for one has no
    /// effect.
    [[nodiscard]] bool IsUndelivered(const VDebugInfoNode& node) const;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
