// Members of anonymous structures and unions belong to the enclosing type. Register definitions in
// C rely on that, and C compilers declare an anonymous type beside the type that uses it:
//
//     structure A   members "a" at 0, "b" at 1            becomes
//     union B       members of type A, "w"                B: "w" at 0, "a" at 0, "b" at 1
//     structure C   member of type B at 4, "x" at 0       C: "x" at 0, "w" at 4, "a" at 4, "b" at 5
//
// Inner types come first, wherever their entries are. A type that nothing else refers to gives its
// members away; any other type keeps them, and the enclosing type gets copies.
#include "diagnostics/ElfLog.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "nodes/VDebugInfoNode.h"
#include "nodes/VDebugInfoNodeStructures.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Limits of the work: members that may move for each node of the tree, and copies for each node
/// and beside them. A member moves once for each level of anonymous types around it; compilers
/// write at most a few levels.
constexpr std::size_t sMovesOfMembersPerNode = 64;
constexpr std::size_t sCopiesPerNode = 2;
constexpr std::size_t sFreeCopies = 0x10000;

bool HasName(const VDebugInfoNode& node) {
    return node.GetNameOrNull() != nullptr;
}

/// The structure or union of a nameless member, through qualifiers and typedefs; null for any other
/// node.
VDebugInfoNode* AggregateOf(const VDebugInfoNode& member) {
    const VDebugInfoNode* parent = member.GetParent();
    if (member.GetTag() != DW_TAG_member || HasName(member) || parent == nullptr ||
        !IsAggregate(parent->GetTag())) {
        return nullptr;
    }
    VDebugInfoNode* type = member.GetPlainTypeNode();
    return type != nullptr && IsAggregate(type->GetTag()) ? type : nullptr;
}

/// The types with anonymous members, and the work on them.
class AnonymousMembers {
public:
    explicit AnonymousMembers(VDwarf2Section& section)
        : mSection(section)
        , mMovesLeft(sMovesOfMembersPerNode * section.EntryCount())
        , mCopiesLeft(sCopiesPerNode * section.EntryCount() + sFreeCopies) {
        section.mDieNodes.ForEachOf(NodeGroup::MembersAndEnumerations,
                                    [this](const VDebugInfoNode& node) {
                                        if (VDebugInfoNode* type = AggregateOf(node)) {
                                            Add(node, *type);
                                        }
                                    });
        if (!mHolders.empty()) {
            section.mSkipped.NoteReferencesOfVariables(section.mDieNodes);
        }
    }

    void Flatten() {
        for (Holder& holder : mHolders) {
            FlattenFrom(holder);
        }
        if (mHasLeftOut) {
            elflog("Error: Anonymous types have far too many members, some of them are left out.");
        }
    }

private:
    enum class Progress : std::uint8_t { Untouched, InProgress, Done };

    struct AnonymousMember {
        const VDebugInfoNode* member;
        VDebugInfoNode* type;
    };

    /// A type with anonymous members.
    struct Holder {
        VDebugInfoNode* type = nullptr;
        std::vector<AnonymousMember> members;
        Progress progress = Progress::Untouched;
        /// Number of members whose types were visited.
        std::size_t visited = 0;
    };

    void Add(const VDebugInfoNode& member, VDebugInfoNode& type) {
        VDebugInfoNode* parent = member.GetParent();
        const auto [place, isNew] = mPlaces.try_emplace(parent, mHolders.size());
        if (isNew) {
            mHolders.push_back({.type = parent, .members = {}});
        }
        mHolders[place->second].members.push_back({&member, &type});
    }

    /// Finishes the types within a type before the type itself, however deep they nest.
    void FlattenFrom(Holder& outermost) {
        std::vector<Holder*> open;
        Open(outermost, open);
        while (!open.empty()) {
            Holder& holder = *open.back();
            if (holder.visited < holder.members.size()) {
                if (const auto inner = mPlaces.find(holder.members[holder.visited++].type);
                    inner != mPlaces.end()) {
                    Open(mHolders[inner->second], open);
                }
                continue;
            }
            for (const AnonymousMember& anonymous : holder.members) {
                TakeMembers(anonymous, *holder.type);
            }
            holder.progress = Progress::Done;
            open.pop_back();
        }
    }

    static void Open(Holder& holder, std::vector<Holder*>& open) {
        if (holder.progress == Progress::Untouched) {
            holder.progress = Progress::InProgress;
            open.push_back(&holder);
        }
    }

    void TakeMembers(const AnonymousMember& anonymous, VDebugInfoNode& holder) {
        // A type within itself has no size, and flattening it would never end.
        const auto place = mPlaces.find(anonymous.type);
        if (place != mPlaces.end() && mHolders[place->second].progress != Progress::Done) {
            return;
        }
        if (IsOnlyFor(anonymous)) {
            MoveMembers(anonymous, holder);
        } else {
            CopyMembers(anonymous, holder);
        }
    }

    /// True if only the anonymous member refers to its type.
    [[nodiscard]] bool IsOnlyFor(const AnonymousMember& anonymous) const {
        const VDebugInfoNode* type = anonymous.member->GetTypeNode();
        while (type != anonymous.type && mSection.mDieNodes.IsReferredOnce(*type)) {
            type = type->GetTypeNode();
        }
        return type == anonymous.type && !HasName(*type) &&
               mSection.mDieNodes.IsReferredOnce(*type);
    }

    void MoveMembers(const AnonymousMember& anonymous, VDebugInfoNode& holder) {
        for (VDebugInfoNode* children = anonymous.type->DetachChildren(); children != nullptr;) {
            VDebugInfoNode* child = VDebugInfoNode::TakeNext(children);
            if (child->GetTag() != DW_TAG_member || !HasName(*child) || !Allow(mMovesLeft)) {
                anonymous.type->AddChild(child);
                continue;
            }
            child->SetParent(&holder);
            holder.AddChild(child);
            Shift(*child, anonymous);
        }
    }

    void CopyMembers(const AnonymousMember& anonymous, VDebugInfoNode& holder) {
        for (const VDebugInfoNode* child : anonymous.type->Children()) {
            if (child->GetTag() != DW_TAG_member || !HasName(*child)) {
                continue;
            }
            if (!Allow(mCopiesLeft)) {
                return;
            }
            const auto& member = static_cast<const VDebugInfoNodeMember&>(*child);
            Shift(member.CopyTo(holder, mSection.mArena), anonymous);
        }
    }

    static void Shift(VDebugInfoNode& member, const AnonymousMember& anonymous) {
        member.SetMemberOffset(member.GetMemberOffset() + anonymous.member->GetMemberOffset());
    }

    bool Allow(std::size_t& left) {
        if (left == 0) {
            mHasLeftOut = true;
            return false;
        }
        --left;
        return true;
    }

    VDwarf2Section& mSection;
    std::size_t mMovesLeft;
    std::size_t mCopiesLeft;
    bool mHasLeftOut = false;
    std::vector<Holder> mHolders;
    /// Indices of types in the list of holders.
    std::unordered_map<const VDebugInfoNode*, std::size_t> mPlaces;
};

} // namespace

void FlattenAllAnonymousMembers(VDwarf2Section& section) {
    AnonymousMembers(section).Flatten();
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
