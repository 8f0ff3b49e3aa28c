// The sequence of the passes over a complete tree, and the passes that are one call for each node.
#include "core/VElfOptions.h"
#include "diagnostics/ElfLog.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ReferenceCycles.h"
#include "emit/ResolutionPasses.h"
#include "nodes/VDebugInfoNode.h"

#include <string>
#include <unordered_map>

namespace Tessel::Norn::Brindle::Reader::DWARF {

bool VDwarf2Section::ResolveNodes() {
    VElfOptions::mLogNestLevel = 0;
    tag_alignment.clear();
    DemangleNames(*this);
    ResolveAllReferences(*this);
    GroupTypesOfSameName(*this);
    BreakAllReferenceCycles(*this);
    UnifyCompileUnits(*this);
    ResolveExternVariables(*this);
    ResolveAllSizes(*this);
    MarkRedundantVariables(*this);
    FlattenAnonymousMembers(*this);
    return true;
}

void ResolveAllReferences(VDwarf2Section& section) {
    for (VDebugInfoNode* node : section.mDieNodes.InOffsetOrder()) {
        node->ResolveReferences(section.mDieNodes);
    }
}

void BreakAllReferenceCycles(VDwarf2Section& section) {
    ReferenceCycles cycles;
    for (VDebugInfoNode* node : section.mDieNodes.InOffsetOrder()) {
        node->BreakReferenceCycles(cycles);
    }
}

void ResolveAllSizes(VDwarf2Section& section) {
    for (VDebugInfoNode* node : section.mDieNodes.InOffsetOrder()) {
        node->ResolveSizes(section.mDieNodes, section);
    }
}

void UnifyCompileUnits(VDwarf2Section& section) {
    std::unordered_map<std::string, VDebugInfoNode*> firstOfKind;
    for (VDebugInfoNode* node : section.mDieNodes.InOffsetOrder()) {
        if (node->GetTag() != DW_TAG_compile_unit) {
            continue;
        }
        std::string key(node->GetName());
        if (const VAttributeString directory = node->GetCompUnitDirAttribute();
            directory.mDefined) {
            key.append(";").append(directory.mValue);
        }
        node->SetFirstKindOfCompileUnit(firstOfKind.try_emplace(key, node).first->second);
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
