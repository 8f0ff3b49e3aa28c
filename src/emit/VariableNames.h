// The names under which the symbol table may know a variable, and whether it may know it at all.
#pragma once

#include "emit/VariableOrigins.h"
#include "nodes/VDebugInfoNode.h"

#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Name, linkage name and external flag of a variable; what the variable lacks comes from the
/// entries that it completes. Names are views of the tree, and empty if there is none.
struct VariableNames {
    explicit VariableNames(const VDebugInfoNode& variable) {
        TakeFrom(variable);
        ForEachOrigin(variable, [this](const VDebugInfoNode& origin) { TakeFrom(origin); });
    }

    std::string_view name;
    std::string_view linkageName;
    bool isExternal = false;

private:
    void TakeFrom(const VDebugInfoNode& entry) {
        name = name.empty() ? entry.GetName() : name;
        linkageName = linkageName.empty() ? entry.GetLinkageNameAttribute().mValue : linkageName;
        isExternal = isExternal || entry.IsExternal();
    }
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
