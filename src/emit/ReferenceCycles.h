// Finds the cycles that links of types and specifications form; each link is visited once for all
// nodes of a tree. The pass that cuts cycles asks it node by node. No compiler writes such a file,
// but a damaged one may hold
//
//     typedef A  type: B
//     typedef B  type: A
//     variable v type: A
//
// The type of A, the first node that the pass comes to, is cut. B then is a typedef of A, which is
// a typedef of nothing, and the chain of `v` ends. Without the cut, following the types would never
// end.
#pragma once

#include "nodes/VDebugInfoNode.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The cycles of one tree.
///
/// There are two kinds of chain: the type chain, which continues with the specification where there
/// is no type, and the chain of specifications only. A chain from a node is either safe, which
/// means that it doesn't lead back to the node, or the node is part of a cycle. Cutting a link
/// never makes a safe chain unsafe, so that each node is visited once for each kind.
class ReferenceCycles {
public:
    /// True if the type chain of the node leads back to it.
    bool IsOnTypeCycle(VDebugInfoNode& node);
    /// True if the chain of specifications of the node leads back to it.
    bool IsOnSpecificationCycle(VDebugInfoNode& node);
    /// Cuts type and specification of the node.
    void CutTypeAndSpecification(VDebugInfoNode& node);
    /// Cuts the specification of the node.
    void CutSpecification(VDebugInfoNode& node);

private:
    /// Nodes of the cycles of one kind; once a cycle is cut, its nodes count no more.
    struct CycleSet {
        std::unordered_map<const VDebugInfoNode*, std::size_t> numbers;
        std::vector<bool> isWhole;

        [[nodiscard]] bool IsOnWholeCycle(const VDebugInfoNode& node) const;
        void Cut(const VDebugInfoNode& node);
    };

    template <typename Chain>
    void Explore(VDebugInfoNode& start, CycleSet& cycles);

    CycleSet mTypeCycles;
    CycleSet mSpecificationCycles;
    std::vector<VDebugInfoNode*> mPath;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
