// How the references of nodes become links: each one is looked up here once.
#pragma once

#include "nodes/VDieNodes.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Whether a lookup counts as a reference to the node that it finds.
enum class ReferenceCounting : bool { Off, On };

/// Finds what entries refer to, marks it as referred to, and records missing nodes. Lives as long
/// as one pass.
class VReferenceFinder {
public:
    explicit VReferenceFinder(VDieNodes& nodes, ReferenceCounting counting = ReferenceCounting::On)
        : mNodes(nodes)
        , mCounting(counting) {}

    /// The node at a section offset. If there is none, the offset is recorded as missing.
    VDebugInfoNode* Find(std::uint32_t sectionOffset) {
        VDebugInfoNode* node = FindIfThere(sectionOffset);
        if (node == nullptr) {
            mMissing.push_back(sectionOffset);
        }
        return node;
    }
    /// As `Find`, for callers that don't need the node: nothing is recorded as missing.
    VDebugInfoNode* FindIfThere(std::uint32_t sectionOffset) {
        return mCounting == ReferenceCounting::On ? mNodes.FindReferred(sectionOffset)
                                                  : mNodes.Find(sectionOffset);
    }
    /// Records the offset as missing if it has no node, without counting a reference.
    void Require(std::uint32_t sectionOffset) {
        if (mNodes.Find(sectionOffset) == nullptr) {
            mMissing.push_back(sectionOffset);
        }
    }

    [[nodiscard]] std::size_t MissingCount() const { return mMissing.size(); }
    /// The offsets without a node, since the last call.
    std::vector<std::uint32_t> TakeMissing() { return std::exchange(mMissing, {}); }
    void ForgetMissing() { mMissing.clear(); }

private:
    VDieNodes& mNodes;
    ReferenceCounting mCounting;
    std::vector<std::uint32_t> mMissing;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
