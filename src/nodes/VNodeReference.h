// What an entry refers to, before and after it is found.
#pragma once

#include "nodes/VNodeArena.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDebugInfoNode;

/// The section offset of an entry, or its node, in 32 bits. No bit is left to say which: the owner
/// keeps that, and reads back what it stored.
class VNodeReference {
public:
    /// Offset 0, at which there is no entry.
    VNodeReference() = default;
    explicit VNodeReference(std::uint32_t sectionOffset)
        : mBits(sectionOffset) {}
    explicit VNodeReference(VDebugInfoNode& node)
        : mBits(VNodeLink<VDebugInfoNode>(&node).Number()) {}

    [[nodiscard]] std::uint32_t Offset() const { return mBits; }
    [[nodiscard]] VDebugInfoNode* Node() const {
        return VNodeLink<VDebugInfoNode>::OfNumber(mBits).Get();
    }

private:
    std::uint32_t mBits = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
