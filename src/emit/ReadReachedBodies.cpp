// A read without all types has skipped the bodies of types, see dwarf/BodyEntries.h. Now that the
// places of variables are known, this pass reads the bodies that delivery or a later pass asks for:
// the bodies of types to which variables lead. Delivery goes from a variable to
//
//     its scope, its type, the entry that it completes, and on from each of these;
//     the definition in place of a declaration;
//     members, base classes, enumerators and functions of a type, once that is reached;
//     the parameters of a function type;
//     in the full manner, the members in variants, and the index types of an array.
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
#include <span>
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

    /// A body that was read.
    struct Body {
        /// Section offset.
        std::uint32_t end = 0;
        /// Index of its first node in `mMade`, and the number of its nodes.
        std::size_t firstMade = 0;
        std::size_t madeCount = 0;
    };

    /// A node that is in no map yet. Its offset is kept here too, because sorting and searching
    /// would wait for memory at each node: nodes lie far apart.
    struct MadeNode {
        /// Section offset.
        std::uint32_t offset = 0;
        VNodeLink<VDebugInfoNode> node;
    };

    /// @return true if the node wasn't reached before
    bool Reach(VDebugInfoNode* node) {
        const bool isNew = node != nullptr && mNodes.Reach(*node);
        if (isNew) {
            mReached.push_back(node);
        }
        return isNew;
    }

    void FollowAll() {
        while (!mReached.empty()) {
            VDebugInfoNode* node = mReached.back();
            mReached.pop_back();
            Follow(*node);
            ReachScope(*node);
            if (HasBody(node->GetTag())) {
                Want(*node);
            } else if (HasReachedChildren(node->GetTag())) {
                ReachChildren(*node);
            }
        }
    }

    /// True for an entry without body whose children are asked for with it.
    [[nodiscard]] bool HasReachedChildren(dwarf_tag tag) const {
        return tag == DW_TAG_subroutine_type || ((IsOfVariants(tag) || tag == DW_TAG_array_type) &&
                                                 mSection.mElfFile->mManner == ReadingManner::Full);
    }

    void ReachScope(const VDebugInfoNode& node) {
        VDebugInfoNode* scope = node.GetParent();
        // An anonymous member gives its type's members to the type around it: that one has to be
        // read, and it may be any.
        if (Reach(scope) && IsAggregate(scope->GetTag()) && scope->GetNameOrNull() == nullptr &&
            mSection.mElfFile->mManner == ReadingManner::Full) {
            mSection.RequireBodies();
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

    /// The body that holds the entry at a section offset, null if it wasn't read.
    [[nodiscard]] const Body* BodyAround(std::uint32_t offset) const {
        const auto behind = mBodies.upper_bound(offset);
        const bool isInBody = behind != mBodies.begin() && offset < std::prev(behind)->second.end;
        return isInBody ? &std::prev(behind)->second : nullptr;
    }

    void Want(VDebugInfoNode& type) {
        if (BodyAround(type.GetOffset()) != nullptr) {
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
        if (BodyAround(offset) != nullptr) {
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
        VDebugInfoNode* completed = FindMade(offset);
        if (completed == nullptr || completed->GetTag() != DW_TAG_subprogram) {
            mSection.RequireBodies();
            return;
        }
        function.SetSpecificationNode(*completed);
        Reach(completed->GetParent());
    }

    /// The node that was made for the entry at a section offset, null if none was.
    [[nodiscard]] VDebugInfoNode* FindMade(std::uint32_t offset) const {
        const Body* body = BodyAround(offset);
        if (body == nullptr) {
            return nullptr;
        }
        const auto made = std::span(mMade).subspan(body->firstMade, body->madeCount);
        const auto found = std::ranges::lower_bound(made, offset, {}, &MadeNode::offset);
        return found != made.end() && found->offset == offset ? found->node.Get() : nullptr;
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
            if (BodyAround(type->GetOffset()) == nullptr) {
                const std::size_t before = reader.MadeCount();
                const std::uint32_t end = reader.Read(*type);
                mBodies.emplace(type->GetOffset(), Body{.end = end,
                                                        .firstMade = mMade.size() + before,
                                                        .madeCount = reader.MadeCount() - before});
            }
        }
        const std::vector<VDebugInfoNode*> made = reader.TakeNodes();
        for (VDebugInfoNode* node : made) {
            mMade.push_back({node->GetOffset(), node});
        }
        for (VDebugInfoNode* node : made) {
            node->ResolveReferences(mReferences);
            if (HasBody(node->GetParent()->GetTag())) {
                Follow(*node);
            }
        }
        for (const VDebugInfoNode* type : types) {
            ReachChildren(*type);
        }
    }

    void AddToTree() {
        std::ranges::sort(mMade, {}, &MadeNode::offset);
        std::vector<VDebugInfoNode*> nodes;
        nodes.reserve(mMade.size());
        for (const MadeNode& made : mMade) {
            nodes.push_back(made.node);
        }
        DemangleNamesOf(mSection, nodes);
        mNodes.InsertAll(nodes);
        // Where these lie depends on entries that may not have been read.
        const bool dependsOnOthers = std::ranges::any_of(nodes, [](const VDebugInfoNode* node) {
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
    /// The bodies that were read, by the section offsets of their types, without nested ones.
    std::map<std::uint32_t, Body> mBodies;
    /// The nodes that were made. Those of a body lie together, in the order of their offsets.
    std::vector<MadeNode> mMade;
};

} // namespace

void ReadReachedBodies(VDwarf2Section& section) {
    if (section.LeavesBodies()) {
        ReachedBodies(section).ReadAll();
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
