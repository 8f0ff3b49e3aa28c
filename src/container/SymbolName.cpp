#include "container/SymbolName.h"

#include "core/CutText.h"
#include "core/VElfOptions.h"
#include "demangle/Demangler.h"

#include <cstddef>

namespace Tessel::Norn::Brindle::Reader::DWARF {

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

} // namespace Tessel::Norn::Brindle::Reader::DWARF
