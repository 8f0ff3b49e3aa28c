#include "emit/ReferenceCycles.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

using WalkState = VDebugInfoNode::WalkState;

struct TypeChain {
    static VDebugInfoNode* Next(const VDebugInfoNode& node) {
        return node.GetTypeOrSpecificationNode();
    }
    static WalkState Get(const VDebugInfoNode& node) { return node.GetTypeWalkState(); }
    static void Set(VDebugInfoNode& node, WalkState state) { node.SetTypeWalkState(state); }
};

struct SpecificationChain {
    static VDebugInfoNode* Next(const VDebugInfoNode& node) { return node.GetSpecificationNode(); }
    static WalkState Get(const VDebugInfoNode& node) { return node.GetSpecificationWalkState(); }
    static void Set(VDebugInfoNode& node, WalkState state) {
        node.SetSpecificationWalkState(state);
    }
};

} // namespace

bool VDebugInfoNode::BreakReferenceCycles(ReferenceCycles& cycles) {
    if (GetTypeNode() != nullptr && cycles.IsOnTypeCycle(*this)) {
        cycles.CutTypeAndSpecification(*this);
        return true;
    }
    if (GetSpecificationNode() != nullptr && cycles.IsOnSpecificationCycle(*this)) {
        cycles.CutSpecification(*this);
        return true;
    }
    return false;
}

bool ReferenceCycles::IsOnTypeCycle(VDebugInfoNode& node) {
    if (node.GetTypeWalkState() == WalkState::Unseen) {
        Explore<TypeChain>(node, mTypeCycles);
    }
    return node.GetTypeWalkState() == WalkState::OnCycle && mTypeCycles.IsOnWholeCycle(node);
}

bool ReferenceCycles::IsOnSpecificationCycle(VDebugInfoNode& node) {
    if (node.GetSpecificationWalkState() == WalkState::Unseen) {
        Explore<SpecificationChain>(node, mSpecificationCycles);
    }
    return node.GetSpecificationWalkState() == WalkState::OnCycle &&
           mSpecificationCycles.IsOnWholeCycle(node);
}

void ReferenceCycles::CutTypeAndSpecification(VDebugInfoNode& node) {
    node.ClearType();
    node.ClearSpecification();
    mTypeCycles.Cut(node);
    mSpecificationCycles.Cut(node);
}

void ReferenceCycles::CutSpecification(VDebugInfoNode& node) {
    if (node.GetTypeNode() == nullptr) {
        mTypeCycles.Cut(node);
    }
    node.ClearSpecification();
    mSpecificationCycles.Cut(node);
}

template <typename Chain>
void ReferenceCycles::Explore(VDebugInfoNode& start, CycleSet& cycles) {
    mPath.clear();
    VDebugInfoNode* node = &start;
    for (; node != nullptr && Chain::Get(*node) == WalkState::Unseen; node = Chain::Next(*node)) {
        Chain::Set(*node, WalkState::Walking);
        mPath.push_back(node);
    }
    if (node != nullptr && Chain::Get(*node) == WalkState::Walking) {
        const std::size_t number = cycles.isWhole.size();
        cycles.isWhole.push_back(true);
        VDebugInfoNode* member = nullptr;
        do {
            member = mPath.back();
            mPath.pop_back();
            Chain::Set(*member, WalkState::OnCycle);
            cycles.numbers.emplace(member, number);
        } while (member != node);
    }
    for (VDebugInfoNode* passed : mPath) {
        Chain::Set(*passed, WalkState::Safe);
    }
}

bool ReferenceCycles::CycleSet::IsOnWholeCycle(const VDebugInfoNode& node) const {
    const auto found = numbers.find(&node);
    return found != numbers.end() && isWhole[found->second];
}

void ReferenceCycles::CycleSet::Cut(const VDebugInfoNode& node) {
    if (const auto found = numbers.find(&node); found != numbers.end()) {
        isWhole[found->second] = false;
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
