// What a host knows of the module that is loaded from the input file.
#pragma once

#include "../core/Export.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Process-wide facts about the loaded module.
struct BRINDLE_EXPORT ModuleInfo {
    /// Subtracted from the address of each global and each section before delivery; 0 leaves them
    /// unchanged. The classic manner leaves globals without debug information where they are.
    static inline std::uint64_t mModuleOffset = 0;

    /// The value of `mModuleOffset`.
    static std::uint64_t GetModuleOffset() { return mModuleOffset; }
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
