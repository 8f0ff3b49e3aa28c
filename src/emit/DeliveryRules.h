// What the delivery of a node needs before it makes the object, and which object it makes. The
// tables themselves are in EntryObjects.cpp.
#pragma once

#include "core/ReadingManner.h"
#include "nodes/VDebugInfoNode.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// What a node needs from other nodes before its own object can be made.
enum class EntryNeed : std::uint8_t {
    Scope,
    /// The object of the type, or its substitute if the type delivers none.
    Type,
    /// The object of the base type of an enumeration.
    BaseType,
    CompileUnit,
    /// The unit that shares its object with this one, if this isn't the first of its kind.
    FirstUnit,
    /// The types of the formal parameters.
    Parameters,
    /// Ends the delivery here if a nested one has made the object already.
    Guard,
    /// Scope and return type of a subprogram's function type.
    FunctionScope,
    ReturnType,
};

/// The objects for the needs of a node; 0 where there is none.
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

/// What a manner of reading delivers for which node.
struct DeliveryRules {
    static const DeliveryRules& Of(ReadingManner manner);

    /// The needs of a tag, in the order in which they are met. A tag that never delivers an object
    /// has none: qualifiers, subranges, enumerators and all unknown ones.
    std::span<const EntryNeed> (*needsOf)(dwarf_tag tag);
    /// Makes the object of a node that has none yet, see `VDebugInfoNode::CreateEntryObject`.
    bool (*createObject)(VDebugInfoNode& node, VNodeEmission& emission,
                         const EmissionInputs& inputs, ObjectId& id, bool& alreadyRegistered);
    /// The entry after an entry of a structure, in the order of delivery; null after the last one.
    /// @param depth how deep in variants the entry lies, which becomes that of the next one; 0 at
    /// the first child of the structure
    VDebugInfoNode* (*nextOf)(const VDebugInfoNode& structure, VDebugInfoNode& entry,
                              std::uint32_t& depth);
    /// The name for a type that has none and completes no named entry. May mark it as
    /// anonymous.
    std::string_view (*nameOfNameless)(VDebugInfoNode& type);
    /// Adds a named enumerator to the table of its enumeration.
    void (*addEnumerator)(VCLIFactoryWrapper& factory, ObjectId table,
                          const VDebugInfoNode& enumeration, const VDebugInfoNode& enumerator);

    /// False for a node that delivers no object, whatever its needs deliver.
    [[nodiscard]] bool PassesFilter(const VDebugInfoNode& node) const;
    /// True for a node that is known to have no object, so that asking for it has no
    /// effect.
    [[nodiscard]] bool IsUndelivered(const VDebugInfoNode& node) const;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
