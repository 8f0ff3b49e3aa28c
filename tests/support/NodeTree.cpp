#include "support/NodeTree.h"

#include <gtest/gtest.h>
#include <utility>

namespace Tessel::Norn::Brindle::Tests {

using namespace Reader::DWARF;

NodeTree::NodeTree(DwarfSections sections, const ElfImage& image)
    : mSections(std::move(sections))
    , mRun(image + mSections) {
    VElfFile& file = mRun.File();
    if (file.mSecSymtab.IsPresent()) {
        EXPECT_TRUE(file.LoadStrTabSection() && file.LoadSymbolMap(file.mSymbolMap));
    }
    EXPECT_TRUE(mRun.Read());
}

NodeTree& NodeTree::Resolve() {
    mRun.Section().ResolveNodes();
    return *this;
}

VDebugInfoNode& NodeTree::operator[](DieLabel label) const {
    VDebugInfoNode* node = mRun.Section().mDieNodes.Find(mSections.OffsetOf(label));
    EXPECT_NE(node, nullptr);
    return *node;
}

} // namespace Tessel::Norn::Brindle::Tests
