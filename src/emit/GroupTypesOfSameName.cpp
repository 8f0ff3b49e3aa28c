// Every unit that includes a header describes the types of that header again, and C++ lets a unit
// declare a type that another one defines. This pass finds the nodes that describe the same type:
//
//     // motor.h                  // a.cpp                 // b.cpp
//     namespace motor {           #include "motor.h"       namespace motor { struct Gain; }
//     struct Gain { float p; };   motor::Gain gain;        motor::Gain* current;
//     }
//
// Unit a has a definition of 4 bytes, unit b a declaration without size, and both have the text
// "motor::Gain". So they form one group. The declaration gets the definition: without it
// `current` would point to a structure without members. In a group without declarations the largest
// node represents all others, so that one object is delivered however many units include the
// header.
//
// A large image has millions of such nodes. The ways to find the group of a node, each tried before
// the next, more expensive one:
//   1. Names and scopes prove that it is the group after the latest one.
//   2. The text is built and is the one that the group after the latest one keeps.
//   3. The hash of the text finds the group. Most groups keep no text; that of their latest node is
//      built again for the comparison.
// A text is kept if it becomes a name (instances of templates) or depends on the budget.
#include "container/VElfFile.h"
#include "core/HashSlots.h"
#include "core/Prefetch.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "emit/ScopedTypeText.h"
#include "emit/TextBudget.h"
#include "nodes/TypeName.h"
#include "nodes/VDebugInfoNode.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// How far ahead nodes and groups are fetched.
constexpr std::size_t sNodesAhead = 12;
constexpr std::size_t sGroupsAhead = 4;

/// All groups of one tree, in the order of their first nodes.
class TypeGroups {
public:
    explicit TypeGroups(VDwarf2Section& section)
        : mSection(section)
        , mBudget(section.mElfFile->mSecDebugInfo.sh_size) {}

    void Collect() {
        const std::span<const VDieNodes::Link> nodes = mSection.mDieNodes.InOffsetOrder();
        const std::span<const std::uint32_t> indices =
            mSection.mDieNodes.IndicesOf(NodeGroup::GroupedTypes);
        mGroupNumbers.reserve(indices.size());
        mGroups.reserve(indices.size() + 1);
        for (std::size_t index = 0; index < indices.size(); ++index) {
            FetchAhead(nodes, indices.subspan(index));
            Add(*nodes[indices[index]]);
        }
    }

    /// In the order of the nodes, not by group: the nodes of a group lie far apart.
    void Resolve() {
        auto number = mGroupNumbers.cbegin();
        mSection.mDieNodes.ForEachOf(NodeGroup::GroupedTypes, [&](VDebugInfoNode& node) {
            if (Group& group = mGroups[*number++]; !group.isSettled) {
                ResolveNode(node, group);
            }
        });
    }

private:
    /// What is known of the nodes of one text.
    struct Group {
        /// Null if the latest node can give the text again, see `KeepTextIfWanted`.
        const char* text = nullptr;
        std::uint32_t textLength = 0;
        VNodeLink<VDebugInfoNode> latest;
        VNodeLink<VDebugInfoNode> definition;
        VNodeLink<VDebugInfoNode> largest;
        std::int32_t largestSize = -1;
        std::optional<VNodeText> name;
        bool hasDeclaration = false;
        /// True as long as all nodes of the group have what they should have.
        bool isSettled = true;
    };

    /// Prefetches what the next nodes need: waiting for it took a quarter of the time.
    BRINDLE_FETCHES void FetchAhead(std::span<const VDieNodes::Link> nodes,
                                    std::span<const std::uint32_t> indices) const {
        if (indices.size() > sNodesAhead) {
            FetchNode(nodes[indices[sNodesAhead]]);
            Prefetch(nodes[indices[sNodesAhead / 2]]->GetNameStart());
        }
        if (mLatestGroup + sGroupsAhead < mGroups.size()) {
            FetchNode(mGroups[mLatestGroup + sGroupsAhead].latest);
        }
    }

    /// A node may straddle two cache lines: fetch both.
    BRINDLE_FETCHES static void FetchNode(const VDebugInfoNode* node) {
        Prefetch(node);
        Prefetch(node + 1);
    }

    void Add(VDebugInfoNode& node) {
        mLatestGroup = IsOfNextGroup(node) ? mLatestGroup + 1 : FindOrAddGroup(node);
        mGroupNumbers.push_back(mLatestGroup);
        TakeUp(node, mGroups[mLatestGroup]);
    }

    static void TakeUp(VDebugInfoNode& node, Group& group) {
        if (node.IsDeclaration()) {
            group.hasDeclaration = true;
        } else if (group.definition == nullptr) {
            group.definition = &node;
        }
        if (node.GetByteSize() > group.largestSize) {
            group.isSettled = group.latest == nullptr;
            group.largest = &node;
            group.largestSize = node.GetByteSize();
        }
        group.isSettled = group.isSettled && !group.hasDeclaration && !node.HasTemplateParameters();
        node.SetCanonicalTypeNode(group.largest);
        group.latest = &node;
    }

    /// Fast path: certainly the group after the latest one. Units that include the same headers
    /// list the same types in the same order, so that most nodes take it.
    bool IsOfNextGroup(VDebugInfoNode& node) {
        if (mLatestGroup + 1 >= mGroups.size()) {
            return false;
        }
        const Group& next = mGroups[mLatestGroup + 1];
        if (!mTypeNames.AreCertainlySame(node, *next.latest) || node.HasTemplateParameters()) {
            return false;
        }
        mBudget.SpendOnBuilt(next.textLength);
        return true;
    }

    /// The group of the node's text.
    std::uint32_t FindOrAddGroup(VDebugInfoNode& node) {
        mText.Build(node, mBudget.LimitOfText());
        const std::size_t length = mText.Get().size();
        const auto count = static_cast<std::uint32_t>(mGroups.size());
        if (mLatestGroup + 1 < count && HasKeptText(mGroups[mLatestGroup + 1])) {
            mBudget.SpendOnBuilt(length);
            return mLatestGroup + 1;
        }
        const std::uint64_t hash = mText.Hash();
        std::uint32_t group = mGroupSlots.Find(
            hash, [&](std::uint32_t candidate) { return HasText(mGroups[candidate], node); });
        if (group != 0) {
            mBudget.SpendOnBuilt(length);
        } else {
            group = count;
            mBudget.SpendOnKept(length);
            mGroups.emplace_back().textLength = static_cast<std::uint32_t>(length);
            mGroupSlots.Add(hash, group);
        }
        KeepTextIfWanted(node, mGroups[group]);
        return group;
    }

    /// True if the group's text is kept and equals the text that was just built.
    [[nodiscard]] bool HasKeptText(const Group& group) const {
        return group.text != nullptr &&
               mText.Get() == std::string_view(group.text, group.textLength);
    }

    /// True if the text of the group is the one that was built for the node.
    bool HasText(const Group& group, VDebugInfoNode& node) {
        if (group.text != nullptr || group.textLength != mText.Get().size()) {
            return HasKeptText(group);
        }
        if (mTypeNames.AreCertainlySame(node, *group.latest)) {
            return true;
        }
        mOtherText.clear();
        mTypeNames.AppendTypeName(group.latest, 0, mOtherText, false);
        return mText.Get() == mOtherText;
    }

    /// Texts that become names are kept, and those with argument lists, which depend on the limit.
    /// Others are long as well in C++, but seldom asked for again.
    void KeepTextIfWanted(const VDebugInfoNode& node, Group& group) {
        if (group.text == nullptr && (node.HasTemplateParameters() || mText.HasArgumentLists())) {
            group.text = mTexts.KeepText(mText.Get());
        }
    }

    void ResolveNode(VDebugInfoNode& node, Group& group) {
        if (node.HasTemplateParameters()) {
            node.SetName(TextAsName(group));
        }
        node.SetCanonicalTypeNode(group.hasDeclaration ? nullptr : group.largest.Get());
        if (group.hasDeclaration && group.definition != nullptr && node.IsDeclaration()) {
            ResolveDeclaration(node, *group.definition);
        }
    }

    /// The text of a group as name of its nodes.
    VNodeText TextAsName(Group& group) {
        if (!group.name) {
            group.name = mSection.mTexts.Copy({group.text, group.textLength});
        }
        return *group.name;
    }

    /// A definition that is itself a typedef of the declaration would form a loop.
    void ResolveDeclaration(VDebugInfoNode& declaration, VDebugInfoNode& definition) const {
        if (definition.GetTypeOrSpecificationNode() != &declaration) {
            declaration.SetDeclarationResolved(&definition);
            mSection.mDieNodes.NoteReferred(definition.GetOffset());
        }
    }

    VDwarf2Section& mSection;
    TextBudget mBudget;
    TypeNameBuilder mTypeNames{TextBudget::kLongestText};
    ScopedTypeText mText{mTypeNames};
    std::string mOtherText;
    /// Of each node, in their order.
    std::vector<std::uint32_t> mGroupNumbers;
    /// The texts are wanted no longer than the groups.
    VNodeArena mTexts;
    /// The first one is a placeholder.
    std::vector<Group> mGroups{1};
    HashSlots mGroupSlots;
    std::uint32_t mLatestGroup = 0;
};

} // namespace

void GroupTypesOfSameName(VDwarf2Section& section) {
    TypeGroups groups(section);
    groups.Collect();
    groups.Resolve();
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
