// What an instance of an entry leaves to its origin. Link-time optimisation writes all types, names
// and scopes in the units of the sources, and in a unit of its own no more than addresses:
//
//     unit "a.c"     variable "speed"  type int, external  <----+
//     unit of link   variable          origin -----------------+   address 0x2000
//
// So do functions that are inlined: their static variables stand once in the abstract function, and
// once more, with the address, in an instance of it.
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "nodes/VDebugInfoNode.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Entries that complete each other: an instance, what it is an instance of, its declaration.
/// Longer chains occur in damaged files only.
constexpr int sMaximumOrigins = 16;

/// Takes type and external flag from the nearest origin that says them, and the scope, which is
/// that of the node at the end, from the last one. A variable that no origin names, as an anonymous
/// union of C++ in a namespace is, stays without name and so without delivery.
void TakeOver(VDebugInfoNode& variable, VDebugInfoNode& nearest) {
    VDebugInfoNode* origin = &nearest;
    bool hasName = variable.HasNameAttribute();
    for (int link = 0; link < sMaximumOrigins; ++link) {
        if (VDebugInfoNode* type = origin->GetTypeNode();
            type != nullptr && variable.GetTypeNode() == nullptr) {
            variable.SetTypeNode(*type);
        }
        if (origin->IsExternal()) {
            variable.SetExternal();
        }
        hasName = hasName || origin->HasNameAttribute();
        VDebugInfoNode* next = origin->GetSpecificationNode();
        if (next == nullptr) {
            break;
        }
        origin = next;
    }
    if (!hasName) {
        variable.ClearSpecification();
    } else if (origin != &nearest && origin != &variable) {
        variable.SetSpecificationNode(*origin);
    }
}

/// The function that the instance around a variable is an instance of, null if it lies in none.
VDebugInfoNode* OriginOfScope(const VDebugInfoNode& variable) {
    const VDebugInfoNode* scope = variable.GetParent();
    for (int link = 0; link < sMaximumChainLength && scope != nullptr; ++link) {
        if (scope->GetTag() != DW_TAG_lexical_block) {
            return scope->GetAbstractOriginNode();
        }
        scope = scope->GetParent();
    }
    return nullptr;
}

} // namespace

void TakeOverFromOrigins(VDwarf2Section& section) {
    section.mDieNodes.ForEachOf(NodeGroup::Variables, [](VDebugInfoNode& variable) {
        if (VDebugInfoNode* origin = variable.GetSpecificationNode()) {
            TakeOver(variable, *origin);
        } else if (VDebugInfoNode* function = OriginOfScope(variable)) {
            variable.SetParent(function);
        }
    });
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
