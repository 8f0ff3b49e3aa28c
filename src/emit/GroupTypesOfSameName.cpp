#include "container/VElfFile.h"
#include "core/HashSlots.h"
#include "core/KeyMixing.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "nodes/TypeName.h"
#include "nodes/VDebugInfoNode.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::uint32_t sNoEntry = UINT32_MAX;

/// One record of the grouping: a node, and the next one of its group.
struct VDataTypeNameEntryStruct {
    VNodeLink<VDebugInfoNode> mNode;
    std::uint32_t mNext = sNoEntry;
};

/// Lengths of type texts. Together the texts of one tree stay in proportion to the section,
/// whatever its template arguments say: what is kept counts in full, what is only built counts as
/// far as it is long.
constexpr std::size_t sMaximumTextLength = std::size_t{64} * 1024;
constexpr std::size_t sScarceTextLength = 256;
constexpr std::size_t sTextsPerSectionByte = 16;
constexpr std::size_t sAlwaysAllowedTexts = std::size_t{16} * 1024 * 1024;

/// All groups of one tree, in the order of their first nodes.
class TypeGroups {
public:
    explicit TypeGroups(VDwarf2Section& section)
        : mSection(section)
        , mTextsLeft(sAlwaysAllowedTexts +
                     sTextsPerSectionByte *
                         static_cast<std::size_t>(section.mElfFile->mSecDebugInfo.sh_size)) {}

    void Collect() {
        mSection.mDieNodes.ForEachOf(NodeGroup::GroupedTypes,
                                     [this](VDebugInfoNode& node) { Add(node); });
    }

    void Resolve() const {
        for (const Group& group : mGroups) {
            ResolveGroup(group);
        }
    }

private:
    struct Group {
        std::string_view key;
        std::uint32_t first = sNoEntry;
        std::uint32_t last = sNoEntry;
    };

    /// What a walk over a group found.
    struct Candidates {
        VDebugInfoNode* definition = nullptr;
        VDebugInfoNode* largest = nullptr;
        std::int32_t largestSize = -1;
        bool hasDeclaration = false;
    };

    void Add(VDebugInfoNode& node) {
        mText.clear();
        mTypeNames.SetLimit(std::clamp(mTextsLeft, sScarceTextLength, sMaximumTextLength));
        mTypeNames.AppendTypeName(&node, 0, mText, false);
        const auto entry = static_cast<std::uint32_t>(mEntries.size());
        mEntries.push_back({&node});
        mLatestGroup = FindOrAddGroup();
        Group& group = mGroups[mLatestGroup];
        (group.last == sNoEntry ? group.first : mEntries[group.last].mNext) = entry;
        group.last = entry;
    }

    /// The group of `mText`. Units over the same headers have the same types in the same order, so
    /// that it mostly is the one behind the latest.
    std::uint32_t FindOrAddGroup() {
        const auto count = static_cast<std::uint32_t>(mGroups.size());
        if (mLatestGroup + 1 < count && mGroups[mLatestGroup + 1].key == mText) {
            SpendOnBuilt();
            return mLatestGroup + 1;
        }
        const std::uint64_t hash = HashOfText(mText, ProcessSeed());
        const std::uint32_t known = mGroupSlots.Find(
            hash, [this](std::uint32_t group) { return mGroups[group].key == mText; });
        if (known != 0) {
            SpendOnBuilt();
            return known;
        }
        Spend(mText.size());
        mGroups.push_back({std::string_view(mKeys.KeepText(mText), mText.size())});
        mGroupSlots.Add(hash, count);
        return count;
    }

    void SpendOnBuilt() { Spend(mText.size() - std::min(mText.size(), sScarceTextLength)); }
    void Spend(std::size_t textLength) { mTextsLeft -= std::min(mTextsLeft, textLength); }

    template <typename Visitor>
    void ForEachNode(const Group& group, Visitor&& visit) const {
        for (std::uint32_t entry = group.first; entry != sNoEntry; entry = mEntries[entry].mNext) {
            visit(*mEntries[entry].mNode);
        }
    }

    void ResolveGroup(const Group& group) const {
        const Candidates candidates = FindCandidates(group);
        if (!candidates.hasDeclaration) {
            ForEachNode(group, [&](VDebugInfoNode& node) {
                node.SetCanonicalTypeNode(candidates.largest);
            });
        } else if (candidates.definition != nullptr) {
            ForEachNode(group, [&](VDebugInfoNode& node) {
                if (node.IsDeclaration()) {
                    ResolveDeclaration(node, *candidates.definition);
                }
            });
        }
    }

    [[nodiscard]] Candidates FindCandidates(const Group& group) const {
        Candidates candidates;
        std::optional<VNodeText> name;
        ForEachNode(group, [&](VDebugInfoNode& node) {
            if (node.HasTemplateParameters()) {
                name = name ? name : mSection.CopyText(group.key);
                node.SetName(*name);
            }
            if (node.IsDeclaration()) {
                candidates.hasDeclaration = true;
            } else if (candidates.definition == nullptr) {
                candidates.definition = &node;
            }
            if (node.GetByteSize() > candidates.largestSize) {
                candidates.largest = &node;
                candidates.largestSize = node.GetByteSize();
            }
        });
        return candidates;
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
    std::string mText;
    std::vector<VDataTypeNameEntryStruct> mEntries;
    /// The keys are wanted no longer than the groups.
    VNodeArena mKeys;
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
