// From the DWARF encoding of a base type to the host's value, in two steps: encoding to
// `BasicType`, then `BasicType` and size to `BasicTypes`.
#pragma once

#include "host/BasicTypes.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Base type code of the reader. Up to 31 the values follow a public convention of debuggers; the
/// names cover those that a DWARF encoding yields or the conversion knows.
enum class BasicType : std::int32_t {
    NoType = 0,
    Void = 1,
    Char = 2,
    WideChar = 3,
    Int = 6,
    UInt = 7,
    Float = 8,
    Bcd = 9,
    Bool = 10,
    Long = 13,
    UnsignedLong = 14,
    Special = 100,
    ComplexFloat = 101,
    Int16 = 102,
    UInt16 = 103,
    Int64 = 104,
    UInt64 = 105,
};

/// The code of a DWARF encoding (`DW_ATE_...`, DWARF 4, 7.8). An unsupported encoding gives
/// `NoType` and, for a size other than 1, a line in the log.
/// @param byteSize size of the base type in bytes, for the log
BasicType BasicTypeOfEncoding(std::uint32_t encoding, std::uint32_t byteSize);

/// The code of a DWARF encoding whose host value also fits the size: an integer of a width without
/// a value of its own is `Long` or `UnsignedLong`. Nothing for kinds that the host lacks: complex
/// and decimal numbers, fixed points, texts.
/// @param byteSize size of the base type in bytes
/// @param name name of the base type, since the encoding doesn't distinguish all floats
std::optional<BasicType> BasicTypeOfItsSize(std::uint32_t encoding, std::uint32_t byteSize,
                                            std::string_view name);

/// The host's value for a code and a size in bytes. A width for which the host has no integer or
/// float gives its `Double`.
DataModel::BasicTypes GetManagedBasicType(BasicType code, std::uint64_t byteSize);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
