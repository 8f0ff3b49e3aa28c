#include "demangle/Demangler.h"

#include "demangle/DoubleUnderscoreNames.h"
#include "demangle/ItaniumNames.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

std::string_view CutAtTerminator(const char* name, int length) {
    const std::string_view text(name, static_cast<std::size_t>(std::max(length, 0)));
    return text.substr(0, text.find('\0'));
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
