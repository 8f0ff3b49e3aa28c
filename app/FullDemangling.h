// Whole declarations of mangled names, by the C++ runtime's demangler. The reader's own demangler
// gives names alone.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// The declaration that a name of the Itanium C++ ABI stands for, with template arguments and
/// parameters; nothing for any other name.
std::optional<std::string> FullDemangling(const std::string& name);

/// True if a plain name doesn't have all scopes, names and template arguments of a name of the
/// Itanium C++ ABI. Parameters and qualifiers of a function don't count.
/// @param separator what stands between the scopes of the plain name
bool LacksParts(std::string_view plain, const std::string& name, std::string_view separator);

} // namespace Tessel::Norn::Brindle::Program
