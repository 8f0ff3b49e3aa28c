// Where variables are filed that only the symbol table knows.
#pragma once

#include <string_view>

namespace Tessel::Norn::Brindle::DataModel {

/// The namespace that is delivered for symbols without debug information. Names in it are those of
/// the file, with the points and numbers that compilers give them.
constexpr std::string_view sSymbolNamespaceName = "_Symbol_Table_BKR_";

} // namespace Tessel::Norn::Brindle::DataModel
