#include "emit/ScopedTypeText.h"

#include "nodes/VDebugInfoNode.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

void ScopedTypeText::Build(VDebugInfoNode& node, std::size_t limit) {
    mBuilder.SetLimit(limit);
    if (node.GetParent() != mParent || limit != mLimit) {
        BuildScopes(node, limit);
    }
    mText.resize(mLengthOfScopes);
    const std::size_t listsBefore = mBuilder.GetArgumentListCount();
    mBuilder.AppendWithoutScopes(node, mText);
    mHasArgumentLists = mHaveScopesArgumentLists || mBuilder.GetArgumentListCount() != listsBefore;
}

void ScopedTypeText::BuildScopes(const VDebugInfoNode& node, std::size_t limit) {
    mParent = node.GetParent();
    mLimit = limit;
    mText.clear();
    const std::size_t listsBefore = mBuilder.GetArgumentListCount();
    mBuilder.AppendScopes(node, mText);
    mHaveScopesArgumentLists = mBuilder.GetArgumentListCount() != listsBefore;
    mLengthOfScopes = mText.size();
    mHashOfScopes = HashOfGrowingText(mText, ProcessSeed());
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
