#include "container/SymbolName.h"

#include "core/CutText.h"
#include "core/VElfOptions.h"
#include "demangle/Demangler.h"
#include "demangle/NameText.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <system_error>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// What compilers put between the parts of the name of a static variable.
constexpr bool IsSeparator(char character) {
    return character == '.' || character == '$' || character == ':';
}

/// The length of the name up to its last separator, that included; 0 if it has none.
std::size_t LengthWithSeparator(std::string_view name) {
    const auto separator = std::find_if(name.rbegin(), name.rend(), IsSeparator);
    return static_cast<std::size_t>(name.rend() - separator);
}

/// The name without the parts behind it that are a number or say who has added the number.
std::string_view WithoutUniqueEnd(std::string_view name) {
    for (;;) {
        const std::size_t length = LengthWithSeparator(name);
        if (length <= 1) {
            return name;
        }
        const std::string_view end = name.substr(length);
        if (!std::ranges::all_of(end, IsDigit) && end != "lto_priv" && end != "llvm") {
            return name;
        }
        name = name.substr(0, length - 1);
    }
}

std::string_view LastIdentifier(std::string_view mangled) {
    std::string_view last = mangled;
    for (std::string_view taken = last; !taken.empty(); taken = TakeIdentifier(mangled)) {
        last = taken;
    }
    return last;
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

std::string_view TakeIdentifier(std::string_view& mangledRest) {
    for (;;) {
        const auto* const digits = std::ranges::find_if(mangledRest, IsDigit);
        if (digits == mangledRest.end()) {
            return {};
        }
        mangledRest.remove_prefix(static_cast<std::size_t>(digits - mangledRest.begin()));
        std::size_t length = 0;
        const char* const end = mangledRest.data() + mangledRest.size();
        const auto [behind, error] = std::from_chars(mangledRest.data(), end, length);
        mangledRest.remove_prefix(static_cast<std::size_t>(behind - mangledRest.data()));
        if (error == std::errc() && length != 0 && length <= mangledRest.size()) {
            const std::string_view identifier = mangledRest.substr(0, length);
            mangledRest.remove_prefix(length);
            return identifier;
        }
    }
}

std::string_view WithoutUnderscore(std::string_view symbolName) {
    return symbolName.starts_with('_') ? symbolName.substr(1) : std::string_view();
}

std::string_view NameInSource(std::string_view symbolName) {
    const std::string_view unique = WithoutUniqueEnd(symbolName);
    return unique.starts_with("_Z") ? LastIdentifier(unique)
                                    : unique.substr(LengthWithSeparator(unique));
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
