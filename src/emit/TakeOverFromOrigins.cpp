// What an instance of an entry inherits from its origin. Link-time optimisation writes all types,
// names and scopes in the units of the sources, and only addresses in a unit of its own:
//
//     unit "a.c"     variable "speed"  type int, external  <----+
//     unit of link   variable          origin -----------------+   address 0x2000
//
// The same holds for inlined functions: their static variables are in the abstract function, and
// again, with the address, in an instance of it.
#include "dwarf/VDwarf2Section.h"
#include "emit/OfLastScope.h"
#include "emit/ResolutionPasses.h"
#include "emit/VariableOrigins.h"
#include "nodes/VDebugInfoNode.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Takes type and external flag from the nearest origin that has them, and name and scope from the
/// last origin with a name, whose parent is the scope. A variable without a named origin, such as
/// an anonymous union of C++ in a namespace, keeps no name and so is not delivered.
void TakeOver(VDebugInfoNode& variable, VDebugInfoNode& nearest) {
    VDebugInfoNode* declaration = &nearest;
    bool hasName = variable.HasNameAttribute();
    ForEachOrigin(variable, [&](VDebugInfoNode& origin) {
        if (!origin.GetName().empty()) {
            declaration = &origin;
        }
        if (VDebugInfoNode* type = origin.GetTypeNode();
            type != nullptr && variable.GetTypeNode() == nullptr) {
            variable.SetTypeNode(*type);
        }
        if (origin.IsExternal()) {
            variable.SetExternal();
        }
        hasName = hasName || origin.HasNameAttribute();
    });
    if (!hasName) {
        variable.ClearSpecification();
    } else if (declaration != &nearest && declaration != &variable) {
        variable.SetSpecificationNode(*declaration);
    }
}

/// The function whose instance the scope is, or is a block of; null if there is none.
VDebugInfoNode* OriginOfScope(const VDebugInfoNode* scope) {
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
    OfLastScope<VDebugInfoNode*> functions;
    section.mDieNodes.ForEachOf(NodeGroup::Variables, [&](VDebugInfoNode& variable) {
        if (VDebugInfoNode* origin = variable.GetSpecificationNode()) {
            TakeOver(variable, *origin);
            return;
        }
        if (VDebugInfoNode* function = functions.Get(variable.GetParent(), OriginOfScope)) {
            variable.SetParent(function);
        }
    });
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
