// The two manners of reading a file. A read chooses one at its start; where they differ, each has
// its own row of a table or its own small function, and nothing asks the option again.
#pragma once

#include "core/VElfOptions.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// What is made of what a file says. `docs/full-reading.md` lists the differences.
enum class ReadingManner : std::uint8_t {
    /// As hosts of long standing rely on.
    Classic,
    /// Also takes what compilers of today write by default.
    Full,
};

/// The manner that the options ask for.
inline ReadingManner ChosenManner() {
    return VElfOptions::mIsFullReading != 0 ? ReadingManner::Full : ReadingManner::Classic;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
