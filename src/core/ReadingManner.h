// The two manners of reading a file. A read chooses one at its start; where they differ, each has
// its own row of a table or its own small function, and nothing asks the option again.
#pragma once

#include "core/VElfOptions.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// How the contents of a file are understood. `docs/full-reading.md` lists the differences.
enum class ReadingManner : std::uint8_t {
    /// The reading that long-standing hosts rely on.
    Classic,
    /// Also reads what compilers of today write by default.
    Full,
};

/// The manner that the options ask for.
inline ReadingManner ChosenManner() {
    return VElfOptions::mIsFullReading != 0 ? ReadingManner::Full : ReadingManner::Classic;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
