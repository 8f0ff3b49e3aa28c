// Members of an anonymous member are used like members of the enclosing type:
//
//     struct Frame {
//         int head;
//         struct { int low; int high; };       frame.low, not frame.something.low
//     } frame;
//
// So they move there, and their offsets grow by that of the anonymous member: `head` at 0, `low` at
// 4, `high` at 8. The classic reading does so only if the anonymous type is declared inside the
// type that uses it, as C++ compilers write it. FlattenAllAnonymousMembers does it for all.
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "nodes/VDebugInfoNode.h"

#include <cstddef>
#include <unordered_set>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Moves that the members of a tree may take together, for each of its nodes. A member moves once
/// for each level of anonymous types around it; compilers write at most a few levels.
constexpr std::size_t sMovesPerNode = 64;

bool IsNameless(const VDebugInfoNode& node) {
    return node.GetNameOrNull() == nullptr;
}

/// The nameless type of a nameless member, declared beside the member; null for any other node.
VDebugInfoNode* AnonymousTypeOf(const VDebugInfoNode& member) {
    const VDebugInfoNode* parent = member.GetParent();
    if (member.GetTag() != DW_TAG_member || !IsNameless(member) || parent == nullptr ||
        !IsAggregate(parent->GetTag())) {
        return nullptr;
    }
    VDebugInfoNode* type = member.GetTypeNode();
    return type != nullptr && IsNameless(*type) && type->GetParent() == parent ? type : nullptr;
}

/// Moves members out of anonymous types. A type without members left is not walked again, however
/// many members have it; once the moves are used up, types keep their members.
class MemberMover {
public:
    explicit MemberMover(std::size_t nodeCount)
        : mMovesLeft(sMovesPerNode * nodeCount) {}

    void Move(VDebugInfoNode& type, const VDebugInfoNode& member) {
        if (mMovesLeft == 0 || !mEmptied.insert(&type).second) {
            return;
        }
        VDebugInfoNode* parent = member.GetParent();
        mEmptied.erase(parent);
        for (VDebugInfoNode* children = type.DetachChildren(); children != nullptr;) {
            VDebugInfoNode* child = VDebugInfoNode::TakeNext(children);
            mMovesLeft -= mMovesLeft > 0 ? 1 : 0;
            if (child->GetTag() != DW_TAG_member) {
                type.AddChild(child);
                continue;
            }
            child->SetParent(parent);
            parent->AddChild(child);
            child->SetMemberOffset(child->GetMemberOffset() + member.GetMemberOffset());
        }
    }

private:
    std::size_t mMovesLeft;
    std::unordered_set<const VDebugInfoNode*> mEmptied;
};

} // namespace

void FlattenAnonymousMembers(VDwarf2Section& section) {
    MemberMover mover(section.EntryCount());
    section.mDieNodes.ForEachOf(NodeGroup::MembersAndEnumerations, [&](const VDebugInfoNode& node) {
        if (VDebugInfoNode* type = AnonymousTypeOf(node)) {
            mover.Move(*type, node);
        }
    });
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
