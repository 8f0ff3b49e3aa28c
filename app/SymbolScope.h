// The names of variables that only the symbol table knows, as the program shows them.
#pragma once

#include "host/SymbolNamespace.h"

#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// True for the qualified name of such a variable.
constexpr bool IsInSymbolScope(std::string_view name) {
    return name.starts_with(DataModel::sSymbolNamespaceName) &&
           name.substr(DataModel::sSymbolNamespaceName.size()).starts_with("::");
}

/// A qualified name as a person searches for it.
constexpr std::string_view WithoutSymbolScope(std::string_view name) {
    return IsInSymbolScope(name) ? name.substr(DataModel::sSymbolNamespaceName.size() + 2) : name;
}

} // namespace Tessel::Norn::Brindle::Program
