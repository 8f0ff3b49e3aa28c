// The names under which the symbol table may know a variable, and whether it may know it at all.
#pragma once

#include "nodes/VDebugInfoNode.h"

#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Name, linkage name and external flag of a variable; what the variable lacks comes from the
/// entries that it completes. Names are views of the tree, and empty if there is none.
struct VariableNames {
    explicit VariableNames(const VDebugInfoNode& variable) {
        const VDebugInfoNode* entry = &variable;
        for (int link = 0; link < sMaximumLinks && entry != nullptr; ++link) {
            name = name.empty() ? entry->GetName() : name;
            linkageName =
                linkageName.empty() ? entry->GetLinkageNameAttribute().mValue : linkageName;
            isExternal = isExternal || entry->IsExternal();
            entry = entry->GetSpecificationNode();
        }
    }

    std::string_view name;
    std::string_view linkageName;
    bool isExternal = false;

private:
    /// An instance, its origin and that one's declaration are three; damaged files have more.
    static constexpr int sMaximumLinks = 16;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
