// The evaluation of location expressions (DWARF 4, 2.5) as far as they give a static number: the
// address of a variable or the offset of a member. Registers, frames, memory and pieces are not
// followed.
#pragma once

#include "core/ReadingManner.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class UnitAddresses;
class VElfBuffer;

/// Where an expression comes from. Some operators differ between the two.
enum class ExpressionPlace { Entry, LocationList };

/// The result of an expression.
struct VLocationResult {
    /// False if the expression is not static.
    bool mIsValid = false;
    /// 0 unless valid. In the classic manner, and for targets with addresses of 32 bits, numbers
    /// have 32 bits.
    std::uint64_t mValue = 0;
    /// The value lies some bytes from an address that is a tombstone: it is a part of something
    /// that the linker discarded, or lies near that address. Only in the full manner.
    bool mIsFromTombstone = false;
    /// A bit field was named, even if the rest is not valid. Only for `Entry`.
    bool mHasBitField = false;
    std::uint32_t mBitSize = 0;
    std::uint32_t mBitOffset = 0;
};

/// Evaluates the expression from the cursor to `end`, a buffer offset. In the classic manner the
/// operand of the last operator may exceed `end`; nothing may exceed the end of the buffer.
/// Afterwards the cursor is undefined. An empty expression gives 0.
/// @param addresses the addresses that the expression may name by index; null if none
VLocationResult EvaluateLocation(VElfBuffer& buffer, std::int32_t end, ExpressionPlace place,
                                 ReadingManner manner, const UnitAddresses* addresses = nullptr);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
