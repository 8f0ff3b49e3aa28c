// The evaluation of location expressions (DWARF 4, 2.5) as far as they give a static number: the
// address of a variable or the offset of a member. Registers, frames, memory and pieces are not
// followed.
#pragma once

#include "core/ReadingManner.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class UnitAddresses;
class VElfBuffer;

/// Where an expression stands. The two places differ in a few operators.
enum class ExpressionPlace { Entry, LocationList };

/// What an expression gave.
struct VLocationResult {
    /// False if the expression is not static.
    bool mIsValid = false;
    /// 0 unless valid. In the classic manner, and for targets with addresses of 32 bits, numbers
    /// have 32 bits.
    std::uint64_t mValue = 0;
    /// A bit field was named, whether the rest is valid or not. In entries only.
    bool mHasBitField = false;
    std::uint32_t mBitSize = 0;
    std::uint32_t mBitOffset = 0;
};

/// Evaluates the expression from the cursor to `end`, a buffer offset. In the classic manner the
/// operand of the last operator may pass `end`; nothing may pass the end of the buffer. The cursor
/// stands anywhere afterwards. An empty expression gives 0.
/// @param addresses those that the expression may name by index; null if there are none
VLocationResult EvaluateLocation(VElfBuffer& buffer, std::int32_t end, ExpressionPlace place,
                                 ReadingManner manner, const UnitAddresses* addresses = nullptr);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
