#include "container/VElfFile.h"
#include "core/HashSlots.h"
#include "core/KeyMixing.h"
#include "core/Prefetch.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "nodes/TypeName.h"
#include "nodes/VDebugInfoNode.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Lengths of type texts. Together the texts of one tree stay in proportion to the section,
/// whatever its template arguments say: what is kept counts in full, what is only built counts as
/// far as it is long.
constexpr std::size_t sMaximumTextLength = std::size_t{64} * 1024;
constexpr std::size_t sScarceTextLength = 256;
constexpr std::size_t sTextsPerSectionByte = 16;
constexpr std::size_t sAlwaysAllowedTexts = std::size_t{16} * 1024 * 1024;

/// How far ahead nodes and groups are fetched.
constexpr std::size_t sNodesAhead = 12;
constexpr std::size_t sGroupsAhead = 4;

/// All groups of one tree, in the order of their first nodes.
class TypeGroups {
public:
    explicit TypeGroups(VDwarf2Section& section)
        : mSection(section)
        , mTextsLeft(sAlwaysAllowedTexts +
                     sTextsPerSectionByte *
                         static_cast<std::size_t>(section.mElfFile->mSecDebugInfo.sh_size)) {}

    void Collect() {
        const std::span<const VDieNodeMap::Link> nodes = mSection.mDieNodes.InOffsetOrder();
        const std::span<const std::uint32_t> places =
            mSection.mDieNodes.PlacesOf(NodeGroup::GroupedTypes);
        mGroupNumbers.reserve(places.size());
        mGroups.reserve(places.size() + 1);
        for (std::size_t index = 0; index < places.size(); ++index) {
            FetchAhead(nodes, places.subspan(index));
            Add(*nodes[places[index]]);
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
        /// Null where the text can be told from the latest node again, see `KeepTextIfWanted`.
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

    /// Has what the next nodes need brought near: waiting for it took a quarter of the time.
    BRINDLE_FETCHES void FetchAhead(std::span<const VDieNodeMap::Link> nodes,
                                    std::span<const std::uint32_t> places) const {
        if (places.size() > sNodesAhead) {
            FetchNode(nodes[places[sNodesAhead]]);
            Prefetch(nodes[places[sNodesAhead / 2]]->GetNameStart());
        }
        if (mLatestGroup + sGroupsAhead < mGroups.size()) {
            FetchNode(mGroups[mLatestGroup + sGroupsAhead].latest);
        }
    }

    /// A node begins anywhere in a line of the cache, hence lies in two.
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

    /// True if the node plainly belongs to the group behind the latest. Units over the same headers
    /// have the same types in the same order, so that most nodes do.
    bool IsOfNextGroup(VDebugInfoNode& node) {
        if (mLatestGroup + 1 >= mGroups.size()) {
            return false;
        }
        const Group& next = mGroups[mLatestGroup + 1];
        if (!mTypeNames.HavePlainlySameText(node, *next.latest) || node.HasTemplateParameters()) {
            return false;
        }
        SpendOnBuilt(next.textLength);
        return true;
    }

    /// The group of the node's text.
    std::uint32_t FindOrAddGroup(VDebugInfoNode& node) {
        BuildText(node);
        const auto count = static_cast<std::uint32_t>(mGroups.size());
        if (mLatestGroup + 1 < count && HasKeptText(mGroups[mLatestGroup + 1])) {
            SpendOnBuilt(mText.size());
            return mLatestGroup + 1;
        }
        const std::uint64_t hash = mHashOfScopes.Continued(mText);
        std::uint32_t group = mGroupSlots.Find(
            hash, [&](std::uint32_t candidate) { return HasText(mGroups[candidate], node); });
        if (group != 0) {
            SpendOnBuilt(mText.size());
        } else {
            group = count;
            Spend(mText.size());
            mGroups.emplace_back().textLength = static_cast<std::uint32_t>(mText.size());
            mGroupSlots.Add(hash, group);
        }
        KeepTextIfWanted(node, mGroups[group]);
        return group;
    }

    /// True if the text of the group is at hand and the one that was built.
    [[nodiscard]] bool HasKeptText(const Group& group) const {
        return group.text != nullptr && mText == std::string_view(group.text, group.textLength);
    }

    /// True if the text of the group is the one that was built for the node.
    bool HasText(const Group& group, VDebugInfoNode& node) {
        if (group.text != nullptr || group.textLength != mText.size()) {
            return HasKeptText(group);
        }
        if (mTypeNames.HavePlainlySameText(node, *group.latest)) {
            return true;
        }
        mOtherText.clear();
        mTypeNames.AppendTypeName(group.latest, 0, mOtherText, false);
        return mText == mOtherText;
    }

    /// Texts that become names are kept, and those with argument lists, which depend on the limit.
    /// Others are long as well in C++, but seldom asked for again.
    void KeepTextIfWanted(const VDebugInfoNode& node, Group& group) {
        if (group.text == nullptr && (node.HasTemplateParameters() || mHasArgumentLists)) {
            group.text = mTexts.KeepText(mText);
        }
    }

    /// The scopes of siblings are built once.
    void BuildText(VDebugInfoNode& node) {
        const std::size_t limit = LimitOfText();
        mTypeNames.SetLimit(limit);
        if (node.GetParent() != mParentOfScopes || limit != mLimitOfScopes) {
            mParentOfScopes = node.GetParent();
            mLimitOfScopes = limit;
            mText.clear();
            const std::size_t listsBefore = mTypeNames.GetArgumentListCount();
            mTypeNames.AppendScopes(node, mText);
            mHaveScopesArgumentLists = mTypeNames.GetArgumentListCount() != listsBefore;
            mLengthOfScopes = mText.size();
            mHashOfScopes = HashOfGrowingText(mText, ProcessSeed());
        }
        mText.resize(mLengthOfScopes);
        const std::size_t listsBefore = mTypeNames.GetArgumentListCount();
        mTypeNames.AppendWithoutScopes(node, mText);
        mHasArgumentLists =
            mHaveScopesArgumentLists || mTypeNames.GetArgumentListCount() != listsBefore;
    }

    [[nodiscard]] std::size_t LimitOfText() const {
        return std::clamp(mTextsLeft, sScarceTextLength, sMaximumTextLength);
    }

    void SpendOnBuilt(std::size_t textLength) {
        Spend(textLength - std::min(textLength, sScarceTextLength));
    }
    void Spend(std::size_t textLength) { mTextsLeft -= std::min(mTextsLeft, textLength); }

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
            group.name = mSection.CopyText({group.text, group.textLength});
        }
        return *group.name;
    }

    /// A definition that is itself a typedef of the declaration would form a loop.
    void ResolveDeclaration(VDebugInfoNode& declaration, VDebugInfoNode& definition) const {
        if (definition.GetTypeOrSpecificationNode() != &declaration) {
            declaration.SetDeclarationResolved(&definition);
            mSection.mDieNodes.NoteReferred(definition);
        }
    }

    VDwarf2Section& mSection;
    std::size_t mTextsLeft;
    TypeNameBuilder mTypeNames{sMaximumTextLength};
    /// The latest text that was built, and the scopes with which it begins.
    std::string mText;
    const VDebugInfoNode* mParentOfScopes = nullptr;
    std::size_t mLimitOfScopes = 0;
    std::size_t mLengthOfScopes = 0;
    HashOfGrowingText mHashOfScopes;
    bool mHaveScopesArgumentLists = false;
    bool mHasArgumentLists = false;
    std::string mOtherText;
    /// Of each node, in their order.
    std::vector<std::uint32_t> mGroupNumbers;
    /// The texts are wanted no longer than the groups.
    VNodeArena mTexts;
    /// The first one is none.
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
