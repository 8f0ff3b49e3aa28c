// Where variables are filed that only the symbol table knows.
#pragma once

#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// The start of their qualified names.
constexpr std::string_view sSymbolScope = "_Symbol_Table_BKR_::";

/// A qualified name as a person searches for it.
constexpr std::string_view WithoutSymbolScope(std::string_view name) {
    return name.starts_with(sSymbolScope) ? name.substr(sSymbolScope.size()) : name;
}

} // namespace Tessel::Norn::Brindle::Program
