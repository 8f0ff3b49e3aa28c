// The sequence of the passes over a complete tree, and the passes that are one call for each node.
#include "core/KeyMixing.h"
#include "core/VElfOptions.h"
#include "diagnostics/ElfLog.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ReferenceCycles.h"
#include "emit/ResolutionPasses.h"
#include "nodes/VDebugInfoNode.h"

#include <cstddef>
#include <span>
#include <string>
#include <unordered_map>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Of parameters there are more than of all other entries, and their sizes are never delivered.
/// Only an entry that names one as its type asks for them.
bool IsParameter(dwarf_tag tag) {
    return tag == DW_TAG_formal_parameter || tag == DW_TAG_template_type_param;
}

} // namespace

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
    // A node that nothing refers to is on no cycle.
    section.mDieNodes.ForEachReferred(
        [&](VDebugInfoNode& node) { node.BreakReferenceCycles(cycles); });
}

void ResolveAllSizes(VDwarf2Section& section) {
    const bool isForDump = VElfOptions::mDumpDebugInfoNodes != 0;
    const std::span<const VDieNodeMap::Link> nodes = section.mDieNodes.InOffsetOrder();
    for (std::size_t place = 0; place < nodes.size(); ++place) {
        VDebugInfoNode& node = *nodes[place];
        if (isForDump || !IsParameter(node.GetTag()) || section.mDieNodes.IsReferred(place)) {
            node.ResolveSizes(section.mDieNodes, section);
        }
    }
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
