#include "container/VElfFile.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "nodes/TypeName.h"
#include "nodes/VDebugInfoNode.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::uint32_t sNoEntry = UINT32_MAX;

/// One record of the grouping: a node, and the next one of its group.
struct VDataTypeNameEntryStruct {
    VDebugInfoNode* mNode;
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
        for (VDebugInfoNode* node : mSection.mDieNodes.InOffsetOrder()) {
            if (IsGroupedType(node->GetTag())) {
                Add(*node);
            }
        }
    }

    void Resolve() const {
        for (const Group& group : mGroups) {
            ResolveGroup(group);
        }
    }

private:
    struct Group {
        /// Lives as long as the tree, since it may become the name of nodes.
        std::string_view key;
        std::uint32_t first;
        std::uint32_t last;
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
        if (const auto found = mGroupsByKey.find(mText); found != mGroupsByKey.end()) {
            Spend(mText.size() - std::min(mText.size(), sScarceTextLength));
            Group& group = mGroups[found->second];
            mEntries[group.last].mNext = entry;
            group.last = entry;
            return;
        }
        Spend(mText.size());
        const std::string_view key = mSection.KeepText(std::string_view(mText));
        mGroupsByKey.emplace(key, static_cast<std::uint32_t>(mGroups.size()));
        mGroups.push_back({key, entry, entry});
    }

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

    Candidates FindCandidates(const Group& group) const {
        Candidates candidates;
        ForEachNode(group, [&](VDebugInfoNode& node) {
            if (node.HasTemplateParameters()) {
                node.SetName(group.key.data());
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
    static void ResolveDeclaration(VDebugInfoNode& declaration, VDebugInfoNode& definition) {
        if (definition.GetTypeOrSpecificationNode() != &declaration) {
            declaration.SetDeclarationResolved(&definition);
        }
    }

    VDwarf2Section& mSection;
    std::size_t mTextsLeft;
    TypeNameBuilder mTypeNames{sMaximumTextLength};
    std::string mText;
    std::vector<VDataTypeNameEntryStruct> mEntries;
    std::vector<Group> mGroups;
    std::unordered_map<std::string_view, std::uint32_t> mGroupsByKey;
};

} // namespace

void GroupTypesOfSameName(VDwarf2Section& section) {
    TypeGroups groups(section);
    groups.Collect();
    groups.Resolve();
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
