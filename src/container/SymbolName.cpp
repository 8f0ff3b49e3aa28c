#include "container/SymbolName.h"

#include "core/CutText.h"
#include "core/VElfOptions.h"
#include "demangle/Demangler.h"

#include <cstddef>
#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

bool IsNumbered(std::string_view symbolName, std::string_view name) {
    return !name.empty() && symbolName.starts_with(name) &&
           (symbolName.size() == name.size() || symbolName[name.size()] == '.');
}

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

/// Names of the Itanium ABI and of Rust hold each identifier behind its length.
bool HoldsIdentifier(std::string_view mangledName, std::string_view identifier) {
    const std::string part = std::to_string(identifier.size()).append(identifier);
    for (std::size_t at = mangledName.find(part); at != std::string_view::npos;
         at = mangledName.find(part, at + 1)) {
        if (at == 0 || !IsDigit(mangledName[at - 1])) {
            return true;
        }
    }
    return false;
}

bool IsLastPartOf(std::string_view qualifiedName, std::string_view name) {
    return qualifiedName.ends_with(name) &&
           qualifiedName.substr(0, qualifiedName.size() - name.size()).ends_with("::");
}

} // namespace

std::string_view CutSymbolName(const char* name) {
    return CutText(name, sSymbolNameBufferSize - 1);
}

std::string_view CutSymbolName(const char* name, LongTextAllowance& longNames) {
    return longNames.Cut(name, sSymbolNameBufferSize - 1);
}

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): one of the two ways below writes the name
DemangledSymbolName::DemangledSymbolName(std::string_view cutName) {
    bool isDemangled = false;
    mIsModified =
        DemangleName(mName, sizeof mName - 1, cutName.data(), static_cast<int>(cutName.size()),
                     isDemangled, VElfOptions::mDemanglingOptions);
    if (!mIsModified) {
        mName[cutName.copy(mName, cutName.size())] = '\0';
    }
}

std::string_view WithoutVersion(std::string_view symbolName) {
    const std::size_t version = symbolName.find('@', 1);
    return symbolName.substr(0, version);
}

bool IsSymbolOfVariable(std::string_view symbolName, std::string_view name,
                        std::string_view linkageName) {
    const std::string_view symbol = WithoutVersion(symbolName);
    if (IsNumbered(symbol, name) || IsNumbered(symbol, linkageName)) {
        return true;
    }
    if (name.empty()) {
        return false;
    }
    if (symbol.starts_with("_Z") || symbol.starts_with("_R")) {
        return HoldsIdentifier(symbol, name);
    }
    if (symbol.starts_with('_') && symbol.substr(1) == name) {
        return true;
    }
    const DemangledSymbolName readable(symbol);
    return readable.IsModified() && IsLastPartOf(readable.GetName(), name);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
