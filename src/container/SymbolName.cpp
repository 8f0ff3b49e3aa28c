#include "container/SymbolName.h"

#include "core/VElfOptions.h"
#include "demangle/Demangler.h"

#include <cstring>

namespace Tessel::Norn::Brindle::Reader::DWARF {

std::string_view CutSymbolName(const char* name) {
    const void* terminator = std::memchr(name, 0, sSymbolNameBufferSize - 1);
    return terminator != nullptr ? std::string_view(name, static_cast<const char*>(terminator))
                                 : std::string_view(name, sSymbolNameBufferSize - 1);
}

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): one of the two ways below writes the name
DemangledSymbolName::DemangledSymbolName(const char* name) {
    const std::string_view cutName = CutSymbolName(name);
    bool isDemangled = false;
    mIsModified = DemangleName(mName, sizeof mName - 1, name, static_cast<int>(cutName.size()),
                               isDemangled, VElfOptions::mDemanglingOptions);
    if (!mIsModified) {
        mName[cutName.copy(mName, cutName.size())] = '\0';
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
