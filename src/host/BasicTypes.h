// The scalar types that a host's data model knows. The reader treats the values as plain numbers;
// which one a debug entry gets is decided in emit/BaseTypes.
#pragma once

#include <cstdint>

namespace Tessel::Norn::Brindle::DataModel {

/// Scalar type of a base entry type, as the host receives it. Values from 0 to 18. The width of an
/// integer is part of the value. Integers of other widths come as `Double` in the classic reading,
/// and as `Long` or `UnsignedLong` in the full one; their length gives the width.
enum class BasicTypes : std::int32_t {
    NoType = 0,
    Void = 1,
    Char = 2,
    WideChar = 3,
    Int32 = 4,
    UInt32 = 5,
    Float = 6,
    Bool = 7,
    Long = 8,
    UnsignedLong = 9,
    Double = 10,
    Int8 = 11,
    UInt8 = 12,
    Int16 = 13,
    UInt16 = 14,
    Int64 = 15,
    UInt64 = 16,
    Special = 17,
    Float16 = 18,
};

} // namespace Tessel::Norn::Brindle::DataModel
