#include "demangle/Demangler.h"

#include "demangle/DoubleUnderscoreNames.h"
#include "demangle/ItaniumNames.h"

#include <algorithm>
#include <cstddef>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

std::string_view CutAtTerminator(const char* name, int length) {
    const std::string_view text(name, static_cast<std::size_t>(std::max(length, 0)));
    return text.substr(0, text.find('\0'));
}

/// Looks at all characters: a loop without an early exit is faster, since it can be vectorized.
bool HoldsTwoUnderscores(std::string_view name) {
    unsigned found = 0;
    for (std::size_t index = 1; index < name.size(); ++index) {
        found |= static_cast<unsigned>(name[index - 1] == '_') &
                 static_cast<unsigned>(name[index] == '_');
    }
    return found != 0;
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

bool MayBeMangled(std::string_view name, const VDemanglingOptions& options) {
    return options.mIsTaskingProducer || HoldsTwoUnderscores(name);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
