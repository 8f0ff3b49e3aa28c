// How the references of nodes become links: each one is looked up here once.
#pragma once

#include "nodes/VDieNodes.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Whether references that are looked up are counted at the nodes that they lead to.
enum class ReferenceCounting : bool { Off, On };

/// Finds what entries refer to, marks it as referred to, and takes note of what is missing. Lives
/// as long as one pass.
class VReferenceFinder {
public:
    explicit VReferenceFinder(VDieNodes& nodes, ReferenceCounting counting = ReferenceCounting::On)
        : mNodes(nodes)
        , mCounting(counting) {}

    /// The node at a section offset. One that has none is missing.
    VDebugInfoNode* Find(std::uint32_t sectionOffset) {
        VDebugInfoNode* node = FindIfThere(sectionOffset);
        if (node == nullptr) {
            mMissing.push_back(sectionOffset);
        }
        return node;
    }
    /// As `Find`, for callers that can do without the node.
    VDebugInfoNode* FindIfThere(std::uint32_t sectionOffset) {
        return mCounting == ReferenceCounting::On ? mNodes.FindReferred(sectionOffset)
                                                  : mNodes.Find(sectionOffset);
    }
    /// Takes note if there is no node at an offset, without counting a reference to it.
    void Require(std::uint32_t sectionOffset) {
        if (mNodes.Find(sectionOffset) == nullptr) {
            mMissing.push_back(sectionOffset);
        }
    }

    [[nodiscard]] std::size_t MissingCount() const { return mMissing.size(); }
    /// The offsets that have no node, since they were taken or forgotten last.
    std::vector<std::uint32_t> TakeMissing() { return std::exchange(mMissing, {}); }
    void ForgetMissing() { mMissing.clear(); }

private:
    VDieNodes& mNodes;
    ReferenceCounting mCounting;
    std::vector<std::uint32_t> mMissing;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
