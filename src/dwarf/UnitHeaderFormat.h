// The headers of units as the two manners of reading take them. The mapping of units asks here what
// it finds at a place; where it looks is its own business.
#pragma once

#include "core/ReadingManner.h"
#include "nodes/VCompileUnitHeader.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VElfBuffer;
class VElfInput;

/// What a header turned out to be.
enum class HeaderVerdict : std::uint8_t {
    /// A unit that is read.
    Accepted,
    /// A sound unit of a version or type that isn't read.
    NotRead,
    /// No header.
    Implausible,
};

/// The section that a unit stands in.
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

    /// True if the first four bytes of a unit say that it is one of 64-bit DWARF.
    [[nodiscard]] virtual bool IsEscapeValue(std::uint32_t value, const VElfInput& input) const = 0;
    /// The fewest bytes that a unit has behind its length.
    [[nodiscard]] virtual std::uint64_t LeastLength(bool is64BitDwarf) const = 0;
    /// Bytes behind the length that `Read` needs, of a unit that has this many.
    [[nodiscard]] virtual std::uint64_t BytesNeeded(bool is64BitDwarf,
                                                    std::uint64_t unitLength) const = 0;
    /// Decodes the header behind the length, which is in the buffer, into the unit: whose format is
    /// known. Its header size counts from behind the length.
    virtual HeaderVerdict Read(VElfBuffer& buffer, UnitSection section,
                               VCompileUnitHeader& unit) const = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
