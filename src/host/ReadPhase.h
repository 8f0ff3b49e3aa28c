// The phases of a read that takes long enough for a person to wait.
#pragma once

#include <cstdint>
#include <functional>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// What a read with debug information is doing, in this order.
enum class ReadPhase : std::int32_t {
    /// The debug section is read, unit by unit. Progress counts its bytes.
    Reading,
    /// The debug entries are linked and joined. No progress is reported.
    Resolving,
    /// The data model receives what was found. Progress counts the debug entries.
    Delivering,
};

/// Called when a phase begins.
using PhaseDelegate = std::function<void(ReadPhase)>;

} // namespace Tessel::Norn::Brindle::Reader::DWARF
