// References become links. Entries of code have no nodes, see dwarf/CodeEntries.h; if one is
// referred to after all, it gets its node here, with all others of its unit:
//
//     subprogram "f"                              skipped: formal_parameter "p"
//     typedef "T"  type: "p" (a damaged file)     now "p" is read, and the typedef gets its link
//
// The entries that are read then may refer to skipped entries of other units.
//
// If bodies are left for later, see dwarf/BodyEntries.h, one kind of reference into bodies, of
// which files are full, waits for them: that of a function to its declaration in a class. Any
// other, and any to code, makes the section be read anew with all bodies.
#include "dwarf/BodyEntries.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "nodes/VDebugInfoNode.h"
#include "nodes/VReferenceFinder.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Rounds in which only the units that are referred to are read again. Only crafted files need
/// more, and they could ask for one unit after the other.
constexpr int sRoundsByUnit = 8;

class ReferenceResolver {
public:
    explicit ReferenceResolver(VDwarf2Section& section)
        : mSection(section)
        , mNodes(section.mDieNodes) {}

    void ResolveAll() {
        mNodes.ForEachWith(NodeTask::References, [this](VDebugInfoNode& node) { Resolve(node); });
        for (const auto& [declaration, type] : mSection.mUnitLinks.mTypeDeclarations) {
            mReferences.Require(type);
        }
        if (mSection.LeavesBodies()) {
            if (!mUnresolved.empty() || !mSection.mUnitLinks.mTypeDeclarations.empty() ||
                !mSection.mSkipped.References().Finish(mNodes)) {
                mSection.RequireBodies();
            }
            return;
        }
        for (int round = 0; mSection.mSkipped.Count() != 0 && mReferences.MissingCount() != 0;
             ++round) {
            ResolveMissing(round < sRoundsByUnit
                               ? mSection.ReadSkippedEntries(mReferences.TakeMissing())
                               : mSection.ReadAllSkippedEntries());
        }
    }

private:
    void Resolve(VDebugInfoNode& node) {
        const std::size_t missing = mReferences.MissingCount();
        node.ResolveReferences(mReferences);
        if (mReferences.MissingCount() != missing &&
            !(mReferences.MissingCount() == missing + 1 && WaitsForBody(node))) {
            mUnresolved.push_back(&node);
        }
    }

    /// True for a function that lacks its declaration, but not its type. Contents of an instance
    /// get their scope from the declaration, before bodies are read.
    [[nodiscard]] bool WaitsForBody(const VDebugInfoNode& node) const {
        return mSection.LeavesBodies() && node.GetTag() == DW_TAG_subprogram &&
               node.LacksSpecification() && (!node.IsInstance() || node.FirstChild() == nullptr) &&
               FindTypeAround(mNodes, static_cast<std::uint32_t>(
                                          node.GetSpecificationAttribute().mValue)) != nullptr;
    }

    void ResolveMissing(const std::vector<VDebugInfoNode*>& made) {
        mReferences.ForgetMissing();
        if (made.empty()) {
            return;
        }
        const std::vector<VDebugInfoNode*> unresolved = std::exchange(mUnresolved, {});
        for (VDebugInfoNode* node : unresolved) {
            node->ResolveReferences(mReferences);
        }
        // References that led nowhere just now will never lead anywhere.
        mReferences.ForgetMissing();
        for (VDebugInfoNode* node : made) {
            Resolve(*node);
        }
    }

    VDwarf2Section& mSection;
    VDieNodes& mNodes;
    VReferenceFinder mReferences{mNodes};
    /// Nodes with references that were not found.
    std::vector<VDebugInfoNode*> mUnresolved;
};

} // namespace

void ResolveAllReferences(VDwarf2Section& section) {
    ReferenceResolver(section).ResolveAll();
}

void ReadEntriesForSizes(VDwarf2Section& section) {
    VDieNodes& nodes = section.mDieNodes;
    if (section.mSkipped.Count() == 0 || !nodes.HasBitFieldsWithoutSize()) {
        return;
    }
    bool dependsOnThem = false;
    nodes.ForEachWith(NodeTask::Size, [&](const VDebugInfoNode& node) {
        dependsOnThem = dependsOnThem || node.DependsOnSizesBefore();
    });
    if (dependsOnThem && section.LeavesBodies()) {
        section.RequireBodies();
    } else if (dependsOnThem) {
        VReferenceFinder references(nodes);
        for (VDebugInfoNode* node : section.ReadAllSkippedEntries()) {
            node->ResolveReferences(references);
        }
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
