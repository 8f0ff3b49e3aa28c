// How the two manners of reading decode unit headers. The mapping of units calls it with a
// position; which positions to try is the mapping's decision.
#pragma once

#include "core/ReadingManner.h"
#include "nodes/VCompileUnitHeader.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VElfBuffer;
class VElfInput;

/// The result of reading a header.
enum class HeaderVerdict : std::uint8_t {
    /// A unit that is read.
    Accepted,
    /// A sound unit of a version or type that isn't read.
    NotRead,
    /// Not a header.
    Implausible,
};

/// The section of a unit.
enum class UnitSection : std::uint8_t { DebugInfo, DebugTypes };

/// One manner of reading headers.
class UnitHeaderFormat {
public:
    static const UnitHeaderFormat& Of(ReadingManner manner);

    UnitHeaderFormat() = default;
    virtual ~UnitHeaderFormat() = default;
    UnitHeaderFormat(const UnitHeaderFormat&) = delete;
    UnitHeaderFormat& operator=(const UnitHeaderFormat&) = delete;
    UnitHeaderFormat(UnitHeaderFormat&&) = delete;
    UnitHeaderFormat& operator=(UnitHeaderFormat&&) = delete;

    /// True if the first four bytes of a unit mark it as 64-bit DWARF.
    [[nodiscard]] virtual bool IsEscapeValue(std::uint32_t value, const VElfInput& input) const = 0;
    /// The least value of a unit's length field.
    [[nodiscard]] virtual std::uint64_t LeastLength(bool is64BitDwarf) const = 0;
    /// Bytes after the length that `Read` needs, for a unit with this many.
    [[nodiscard]] virtual std::uint64_t BytesNeeded(bool is64BitDwarf,
                                                    std::uint64_t unitLength) const = 0;
    /// Decodes the header after the length, which is in the buffer, into the unit, whose format is
    /// known. The header size that it stores counts from after the length.
    virtual HeaderVerdict Read(VElfBuffer& buffer, UnitSection section,
                               VCompileUnitHeader& unit) const = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
