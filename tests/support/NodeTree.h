// The tree of nodes of an image, for tests of what happens to it after decoding. Entries are found
// by their labels.
#pragma once

#include "nodes/VDebugInfoNode.h"
#include "support/DwarfSections.h"
#include "support/ElfImage.h"
#include "support/SectionRun.h"

#include <string>

namespace Tessel::Norn::Brindle::Tests {

/// A tree as decoding leaves it. The test must hold a `ScopedReaderState`.
class NodeTree {
public:
    explicit NodeTree(DwarfSections sections, const ElfImage& image = ElfImage());

    /// Runs all passes that finish the tree.
    NodeTree& Resolve();
    [[nodiscard]] Reader::DWARF::VDebugInfoNode& operator[](DieLabel label) const;
    [[nodiscard]] Reader::DWARF::VDwarf2Section& Section() { return mRun.Section(); }
    /// What the log holds so far, see `SectionRun`.
    [[nodiscard]] std::string Log() const { return mRun.Log(); }

private:
    DwarfSections mSections;
    mutable SectionRun mRun;
};

} // namespace Tessel::Norn::Brindle::Tests
