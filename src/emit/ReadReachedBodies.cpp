// A read without all types has skipped the bodies of types, see dwarf/BodyEntries.h. Now that the
// places of variables are known, this pass reads the bodies that delivery or a later pass asks for:
// the bodies of types to which variables lead. Delivery goes from a variable to
//
//     its scope, its type, the entry that it completes, and on from each of these;
//     the definition in place of a declaration;
//     members, base classes, enumerators and functions of a type, once that is reached;
//     the parameters of a function type.
//
// Units are read one after the other, each as long as its bodies lead to others of the same unit.
// What is read gets its links, its names and its places in the tree as if it had been there from
// the start. Only functions that complete a function of a body have waited: nobody asks for that
// link until a variable within them does.
#include "container/VElfFile.h"
#include "dwarf/BodyEntries.h"
#include "dwarf/VBodyReader.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "nodes/VDebugInfoNode.h"
#include "nodes/VReferenceFinder.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

class ReachedBodies {
public:
    explicit ReachedBodies(VDwarf2Section& section)
        : mSection(section)
        , mNodes(section.mDieNodes) {}

    void ReadAll() {
        mNodes.ForEachOf(NodeGroup::Variables, [this](VDebugInfoNode& variable) {
            if (variable.HasLocation() && !variable.IsRegisterOrStackLocation()) {
                Reach(&variable);
                FollowAll();
            }
        });
        while (!mUnits.empty() && !mSection.RequiresBodies()) {
            VCompileUnitHeader& unit = *mSection.mCompileUnits[mUnits.begin()->first];
            ReadBodiesOf(unit);
        }
        if (mReferences.MissingCount() != 0) {
            mSection.RequireBodies();
        }
        if (!mSection.RequiresBodies()) {
            AddToTree();
        }
    }

private:
    /// What is wanted from a unit.
    struct WantedOfUnit {
        std::vector<VDebugInfoNode*> types;
        /// Functions that complete one of its bodies.
        std::vector<VDebugInfoNode*> functions;
    };

    void Reach(VDebugInfoNode* node) {
        if (node != nullptr && mNodes.Reach(*node)) {
            mReached.push_back(node);
        }
    }

    void FollowAll() {
        while (!mReached.empty()) {
            VDebugInfoNode* node = mReached.back();
            mReached.pop_back();
            Follow(*node);
            ReachScope(*node);
            if (HasBody(node->GetTag())) {
                Want(*node);
            } else if (node->GetTag() == DW_TAG_subroutine_type) {
                ReachChildren(*node);
            }
        }
    }

    void ReachScope(const VDebugInfoNode& node) {
        VDebugInfoNode* scope = node.GetParent();
        const bool isNew = scope != nullptr && mNodes.Reach(*scope);
        // An anonymous member gives its type's members to the type around it: that one has to be
        // read, and it may be any.
        if (isNew && IsAggregate(scope->GetTag()) && scope->GetNameOrNull() == nullptr &&
            mSection.mElfFile->mManner == ReadingManner::Full) {
            mSection.RequireBodies();
        }
        if (isNew) {
            mReached.push_back(scope);
        }
    }

    void Follow(VDebugInfoNode& node) {
        VDebugInfoNode* type = node.GetTypeNode();
        VDebugInfoNode* specification = node.GetSpecificationNode();
        const bool isFunction = node.GetTag() == DW_TAG_subprogram;
        if (isFunction && node.LacksSpecification()) {
            WantSpecification(node);
        }
        // A cycle of references may lead through what that function completes.
        if ((type != nullptr && type->GetTag() == DW_TAG_subprogram) ||
            (!isFunction && specification != nullptr &&
             specification->GetTag() == DW_TAG_subprogram)) {
            mSection.RequireBodies();
        }
        Reach(type);
        Reach(specification);
    }

    void ReachChildren(const VDebugInfoNode& node) {
        for (VDebugInfoNode* child : node.Children()) {
            Reach(child);
        }
    }

    [[nodiscard]] bool IsRead(std::uint32_t offset) const {
        const auto behind = mEndsOfBodies.upper_bound(offset);
        return behind != mEndsOfBodies.begin() && offset < std::prev(behind)->second;
    }

    void Want(VDebugInfoNode& type) {
        if (IsRead(type.GetOffset())) {
            ReachChildren(type);
        } else {
            mUnits[type.GetCompileUnitHeader()->mIndex].types.push_back(&type);
        }
    }

    void WantSpecification(VDebugInfoNode& function) {
        const auto offset = static_cast<std::uint32_t>(function.GetSpecificationAttribute().mValue);
        VDebugInfoNode* type = FindTypeAround(mNodes, offset);
        if (type == nullptr) {
            return;
        }
        if (IsRead(offset)) {
            Complete(function);
            return;
        }
        Reach(type);
        mUnits[type->GetCompileUnitHeader()->mIndex].functions.push_back(&function);
    }

    /// Links a function to the one in a body that was read. In a damaged file it names another
    /// entry.
    void Complete(VDebugInfoNode& function) {
        const auto offset = static_cast<std::uint32_t>(function.GetSpecificationAttribute().mValue);
        if (const auto completed = mFunctions.find(offset); completed != mFunctions.end()) {
            function.SetSpecificationNode(*completed->second);
            Reach(completed->second->GetParent());
        } else {
            mSection.RequireBodies();
        }
    }

    void ReadBodiesOf(VCompileUnitHeader& unit) {
        VBodyReader reader(mSection, unit);
        if (!reader.IsLoaded()) {
            mSection.RequireBodies();
            return;
        }
        for (auto wanted = mUnits.find(unit.mIndex);
             wanted != mUnits.end() && !mSection.RequiresBodies();
             wanted = mUnits.find(unit.mIndex)) {
            WantedOfUnit now = std::move(wanted->second);
            mUnits.erase(wanted);
            ReadBodies(reader, now.types);
            for (VDebugInfoNode* function : now.functions) {
                Complete(*function);
            }
            FollowAll();
        }
    }

    /// Types precede those within them, whose bodies are read with theirs.
    void ReadBodies(VBodyReader& reader, std::vector<VDebugInfoNode*>& types) {
        std::ranges::sort(types, {}, &VDebugInfoNode::GetOffset);
        for (VDebugInfoNode* type : types) {
            if (!IsRead(type->GetOffset())) {
                mEndsOfBodies.emplace(type->GetOffset(), reader.Read(*type));
            }
        }
        const std::vector<VDebugInfoNode*> made = reader.TakeNodes();
        for (VDebugInfoNode* node : made) {
            node->ResolveReferences(mReferences);
            if (node->GetTag() == DW_TAG_subprogram) {
                mFunctions.emplace(node->GetOffset(), node);
            }
        }
        for (VDebugInfoNode* node : made) {
            if (HasBody(node->GetParent()->GetTag())) {
                Follow(*node);
            }
        }
        for (const VDebugInfoNode* type : types) {
            ReachChildren(*type);
        }
        mMade.insert(mMade.end(), made.begin(), made.end());
    }

    void AddToTree() {
        std::ranges::sort(mMade, {}, &VDebugInfoNode::GetOffset);
        DemangleNamesOf(mSection, mMade);
        mNodes.InsertAll(mMade);
        // Where these lie depends on entries that may not have been read.
        const bool dependsOnOthers = std::ranges::any_of(mMade, [](const VDebugInfoNode* node) {
            return node->IsBitFieldWithoutSize() && node->DependsOnSizesBefore();
        });
        if (dependsOnOthers) {
            mSection.RequireBodies();
        }
    }

    VDwarf2Section& mSection;
    VDieNodes& mNodes;
    /// Counts nothing: references in bodies were counted when the bodies were skipped.
    VReferenceFinder mReferences{mNodes, ReferenceCounting::Off};
    /// Nodes whose references are still to be followed.
    std::vector<VDebugInfoNode*> mReached;
    /// What is still wanted, by the index of the unit in the list of units.
    std::map<std::uint32_t, WantedOfUnit> mUnits;
    /// Section offsets of the bodies that were read; those within others not.
    std::map<std::uint32_t, std::uint32_t> mEndsOfBodies;
    /// The functions of these bodies.
    std::unordered_map<std::uint32_t, VDebugInfoNode*> mFunctions;
    std::vector<VDebugInfoNode*> mMade;
};

} // namespace

void ReadReachedBodies(VDwarf2Section& section) {
    if (section.LeavesBodies()) {
        ReachedBodies(section).ReadAll();
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
