#include "demangle/Demangler.h"

#include "demangle/DoubleUnderscoreNames.h"
#include "demangle/ItaniumNames.h"

#include <algorithm>
#include <cstring>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

std::string_view CutAtTerminator(const char* name, int length) {
    const auto most = static_cast<std::size_t>(std::max(length, 0));
    const void* const terminator = std::memchr(name, '\0', most);
    return terminator != nullptr ? std::string_view(name, static_cast<const char*>(terminator))
                                 : std::string_view(name, most);
}

} // namespace

bool DemangleName(char* out, int outSize, const char* name, int length, bool& demangled,
                  const VDemanglingOptions& options) {
    demangled = false;
    if (outSize < 0) {
        return false;
    }
    const std::string_view text = CutAtTerminator(name, length);
    return options.mIsTaskingProducer
               ? DemangleItaniumName(out, outSize, text, demangled, options)
               : DemangleDoubleUnderscoreName(out, outSize, text, demangled, options);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
