// Where variables stand that only the symbol table knows.
#pragma once

#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// What their qualified names begin with.
constexpr std::string_view sSymbolScope = "_Symbol_Table_BKR_::";

/// A qualified name as a person looks for it.
constexpr std::string_view WithoutSymbolScope(std::string_view name) {
    return name.starts_with(sSymbolScope) ? name.substr(sSymbolScope.size()) : name;
}

} // namespace Tessel::Norn::Brindle::Program
