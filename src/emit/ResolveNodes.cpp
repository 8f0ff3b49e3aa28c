// The sequence of the passes over a complete tree, and the passes that are one call for each node.
#include "core/KeyMixing.h"
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
    if (VElfOptions::mDumpDebugInfoNodes != 0) {
        mDieNodes.LeaveNoneOut();
    }
    ResolveAllReferences(*this);
    DemangleNames(*this);
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
    const auto resolve = [&](VDebugInfoNode& node) { node.ResolveReferences(section.mDieNodes); };
    section.mDieNodes.ForEachWith(NodeTask::References, resolve);
    section.mDieNodes.ForEachReferredParameter(resolve);
}

void BreakAllReferenceCycles(VDwarf2Section& section) {
    ReferenceCycles cycles;
    // No other nodes are on a cycle.
    section.mDieNodes.ForEachReferredAndReferring(
        [&](VDebugInfoNode& node) { node.BreakReferenceCycles(cycles); });
}

void ResolveAllSizes(VDwarf2Section& section) {
    section.mDieNodes.ForEachWith(NodeTask::Size, [&](VDebugInfoNode& node) {
        node.ResolveSizes(section.mDieNodes, section);
    });
}

void UnifyCompileUnits(VDwarf2Section& section) {
    std::unordered_map<std::string, VDebugInfoNode*, SeededHash> firstOfKind;
    section.mDieNodes.ForEachOf(NodeGroup::CompileUnits, [&](VDebugInfoNode& unit) {
        std::string key(unit.GetName());
        if (const VAttributeString directory = unit.GetCompUnitDirAttribute(); directory.mDefined) {
            key.append(";").append(directory.mValue);
        }
        unit.SetFirstKindOfCompileUnit(firstOfKind.try_emplace(key, &unit).first->second);
    });
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
