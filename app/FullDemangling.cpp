#include "FullDemangling.h"

#include <cstddef>
#include <cstdlib>
#include <cxxabi.h>
#include <memory>

namespace Tessel::Norn::Brindle::Program {

namespace {

constexpr std::string_view sTableOf = "vtable for ";
constexpr std::string_view sSeparator = "::";

/// Removes a plain name from the start of a full one, whose scopes are separated by "::".
/// @return false if the full one does not begin with it
bool BeginsWithScopes(std::string_view& full, std::string_view plain, std::string_view separator) {
    while (!plain.empty()) {
        const bool isSeparator = !separator.empty() && plain.starts_with(separator);
        const std::string_view piece = isSeparator ? sSeparator : plain.substr(0, 1);
        if (!full.starts_with(piece)) {
            return false;
        }
        full.remove_prefix(piece.size());
        plain.remove_prefix(isSeparator ? separator.size() : 1);
    }
    return true;
}

} // namespace

std::optional<std::string> FullDemangling(const std::string& name) {
    // The runtime reads "i" as the type int; only this prefix marks the name of a symbol.
    if (!name.starts_with("_Z")) {
        return std::nullopt;
    }
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text(
        abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status), &std::free);
    return text == nullptr ? std::nullopt : std::optional<std::string>(text.get());
}

bool LacksParts(std::string_view plain, const std::string& name, std::string_view separator) {
    const std::optional<std::string> full = FullDemangling(name);
    if (!full) {
        return false;
    }
    std::string_view rest = *full;
    if (rest.starts_with(sTableOf)) {
        rest.remove_prefix(sTableOf.size());
    }
    // Parameters, or the tag of an ABI, follow the name.
    return !BeginsWithScopes(rest, plain, separator) ||
           (!rest.empty() && rest.front() != '(' && rest.front() != '[');
}

} // namespace Tessel::Norn::Brindle::Program
