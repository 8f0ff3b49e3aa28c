// Whole declarations of mangled names, by the C++ runtime's demangler. The reader's own demangler
// gives only names.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// The declaration for a name of the Itanium C++ ABI, with template arguments and parameters;
/// nothing for any other name.
std::optional<std::string> FullDemangling(const std::string& name);

/// True if a plain name lacks scopes, names or template arguments of a name of the Itanium C++ ABI.
/// Parameters and qualifiers of a function don't count.
/// @param separator separates the scopes of the plain name
bool LacksParts(std::string_view plain, const std::string& name, std::string_view separator);

} // namespace Tessel::Norn::Brindle::Program
