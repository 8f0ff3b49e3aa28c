// What the entries of one scope share, found once for all that follow each other.
#pragma once

#include "nodes/VDebugInfoNode.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Remembers the answer for the scope that was asked for last: passes meet the entries of a scope
/// one after the other, and scopes may lie deep.
template <typename Value>
class OfLastScope {
public:
    /// @param scope may be null, which is a scope like any other
    /// @param find gets the scope and gives its value; asked only if the scope isn't the last one
    template <typename Find>
    const Value& Get(const VDebugInfoNode* scope, Find find) {
        if (!mIsKnown || scope != mScope) {
            mValue = find(scope);
            mScope = scope;
            mIsKnown = true;
        }
        return mValue;
    }

private:
    Value mValue{};
    const VDebugInfoNode* mScope = nullptr;
    bool mIsKnown = false;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
