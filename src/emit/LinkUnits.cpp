// What units say about each other. A unit that others import is no scope; a declaration with the
// signature of a type stands for that type:
//
//   unit:       structure_type (declaration, signature 17)
//               variable motor, type: the structure above
//   type unit:  signature 17, structure_type Motor { speed; current }
//
// Here the declaration gets Motor as its definition, whatever their names are.
#include "core/KeyMixing.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "nodes/VDebugInfoNode.h"

#include <cstddef>
#include <unordered_map>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Declarations may stand for types that are declarations again.
constexpr int sMaximumDeclarationChain = 16;

using TypeOfDeclaration = std::unordered_map<std::uint32_t, std::uint32_t, SeededHash>;

/// The entry at the end of a chain of declarations; 0 if the chain is too long or circular.
std::uint32_t EndOfChain(const TypeOfDeclaration& types, std::uint32_t offset) {
    for (int link = 0; link < sMaximumDeclarationChain; ++link) {
        const auto next = types.find(offset);
        if (next == types.end()) {
            return offset;
        }
        offset = next->second;
    }
    return 0;
}

/// Contents of a declaration, such as its static members, get their scope from the definition. Its
/// other members, which compilers repeat there for imports, are members of the definition already.
void MoveScope(VDebugInfoNode& declaration, VDebugInfoNode& definition, VNodeArena& arena) {
    for (VDebugInfoNode* child : declaration.Children()) {
        if (child->GetParent() == &definition) {
            break;
        }
        child->SetParent(&definition);
        if (child->GetTag() == DW_TAG_member && !child->IsDeclaration()) {
            child->SetDeliveryRefused(arena);
        }
    }
}

void LinkTypeDeclarations(VDwarf2Section& section) {
    TypeOfDeclaration types;
    for (const auto& [declaration, type] : section.mUnitLinks.mTypeDeclarations) {
        types.try_emplace(declaration, type);
    }
    for (const auto& [offset, type] : section.mUnitLinks.mTypeDeclarations) {
        VDebugInfoNode* declaration = section.mDieNodes.FindReferred(offset);
        VDebugInfoNode* definition = section.mDieNodes.FindReferred(EndOfChain(types, type));
        if (declaration == nullptr || definition == nullptr || definition == declaration) {
            continue;
        }
        if (definition->GetTypeOrSpecificationNode() != declaration) {
            declaration->SetDeclarationResolved(definition);
            MoveScope(*declaration, *definition, section.mArena);
        }
    }
}

} // namespace

void LinkUnits(VDwarf2Section& section) {
    for (const std::uint32_t offset : section.mUnitLinks.mImportedUnits) {
        if (VDebugInfoNode* unit = section.mDieNodes.Find(offset)) {
            unit->SetImported();
        }
    }
    LinkTypeDeclarations(section);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
