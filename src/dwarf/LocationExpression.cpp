#include "dwarf/LocationExpression.h"

#include "container/VElfBuffer.h"
#include "dwarf/DwarfConstants.h"

#include <algorithm>
#include <array>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

enum class OperandKind : std::uint8_t {
    None,
    Address,
    Unsigned1,
    Signed1,
    Unsigned2,
    Signed2,
    FourBytes,
    UnsignedLeb128,
    SignedLeb128,
};

enum class Action : std::uint8_t { Invalid, Push, Subtract, Add, AddConstant, BitPiece };

struct LocationOperator {
    Action action = Action::Invalid;
    OperandKind operand = OperandKind::None;
    /// Least index of the stack's top that the operator works with.
    std::uint8_t leastTopInEntry = 0;
    std::uint8_t leastTopInList = 0;
};

constexpr auto sOperators = [] {
    std::array<LocationOperator, 256> operators{};
    operators[DW_OP_addr] = {Action::Push, OperandKind::Address};
    operators[DW_OP_const1u] = {Action::Push, OperandKind::Unsigned1};
    operators[DW_OP_const1s] = {Action::Push, OperandKind::Signed1};
    operators[DW_OP_const2u] = {Action::Push, OperandKind::Unsigned2};
    operators[DW_OP_const2s] = {Action::Push, OperandKind::Signed2};
    operators[DW_OP_const4u] = {Action::Push, OperandKind::FourBytes};
    operators[DW_OP_const4s] = {Action::Push, OperandKind::FourBytes};
    operators[DW_OP_constu] = {Action::Push, OperandKind::UnsignedLeb128};
    operators[DW_OP_consts] = {Action::Push, OperandKind::SignedLeb128};
    operators[DW_OP_minus] = {Action::Subtract, OperandKind::None, 1, 1};
    operators[DW_OP_plus] = {Action::Add, OperandKind::None, 1, 1};
    operators[DW_OP_plus_uconst] = {Action::AddConstant, OperandKind::UnsignedLeb128, 0, 1};
    operators[DW_OP_bit_piece] = {Action::BitPiece, OperandKind::UnsignedLeb128};
    return operators;
}();

class LocationEvaluator {
public:
    LocationEvaluator(VElfBuffer& buffer, std::int32_t end, ExpressionPlace place)
        : mBuffer(buffer)
        , mEnd(std::min(end, buffer.GetBufferLength()))
        , mPlace(place) {}

    VLocationResult Run() {
        bool isValid = true;
        while (isValid && mBuffer.GetOffset() < mEnd) {
            isValid = Execute(sOperators[mBuffer.GetUByte()]);
        }
        mResult.mIsValid = isValid;
        mResult.mValue = isValid ? mStack[mTop] : 0;
        return mResult;
    }

private:
    bool Execute(const LocationOperator& operation) {
        const std::size_t leastTop =
            mPlace == ExpressionPlace::Entry ? operation.leastTopInEntry : operation.leastTopInList;
        std::uint32_t operand = 0;
        return operation.action != Action::Invalid && mTop >= leastTop &&
               ReadOperand(operation.operand, operand) && Act(operation.action, operand);
    }

    bool Act(Action action, std::uint32_t operand) {
        switch (action) {
        case Action::Push:
            if (mTop + 1 == mStack.size()) {
                return false;
            }
            mStack[++mTop] = operand;
            return true;
        case Action::Subtract:
            --mTop;
            mStack[mTop] -= mStack[mTop + 1];
            return true;
        case Action::Add:
            --mTop;
            mStack[mTop] += mStack[mTop + 1];
            return true;
        case Action::AddConstant:
            mStack[mTop] += operand;
            return true;
        case Action::BitPiece:
            return TakeBitPiece(operand);
        default:
            return false;
        }
    }

    bool TakeBitPiece(std::uint32_t bitSize) {
        std::uint32_t bitOffset = 0;
        if (!ReadOperand(OperandKind::UnsignedLeb128, bitOffset)) {
            return false;
        }
        if (mPlace == ExpressionPlace::Entry) {
            mResult.mHasBitField = true;
            mResult.mBitSize = bitSize;
            mResult.mBitOffset = bitOffset;
        }
        return true;
    }

    /// False if the operand does not lie within the expression.
    bool ReadOperand(OperandKind kind, std::uint32_t& value) {
        const bool isLeb128 =
            kind == OperandKind::UnsignedLeb128 || kind == OperandKind::SignedLeb128;
        if (isLeb128 && !HoldsLeb128()) {
            return false;
        }
        value = Decode(kind);
        return mBuffer.GetOffset() <= mEnd;
    }

    std::uint32_t Decode(OperandKind kind) {
        switch (kind) {
        case OperandKind::Address:
            return static_cast<std::uint32_t>(mBuffer.GetADDRESS());
        case OperandKind::Unsigned1:
            return mBuffer.GetUByte();
        case OperandKind::Signed1:
            return static_cast<std::uint32_t>(static_cast<std::int8_t>(mBuffer.GetUByte()));
        case OperandKind::Unsigned2:
            return mBuffer.GetUShort();
        case OperandKind::Signed2:
            return static_cast<std::uint32_t>(static_cast<std::int16_t>(mBuffer.GetUShort()));
        case OperandKind::FourBytes:
            return mBuffer.GetULong();
        case OperandKind::UnsignedLeb128:
            return mBuffer.GetULEB128();
        case OperandKind::SignedLeb128:
            return static_cast<std::uint32_t>(mBuffer.GetSLEB128());
        default:
            return 0;
        }
    }

    /// Many expressions may name the same bytes: none of them may read on behind its own.
    [[nodiscard]] bool HoldsLeb128() const {
        std::int32_t offset = mBuffer.GetOffset();
        while (offset < mEnd && mBuffer[offset] < 0) {
            ++offset;
        }
        return offset < mEnd;
    }

    VElfBuffer& mBuffer;
    std::int32_t mEnd;
    ExpressionPlace mPlace;
    /// Element 0 stands for the address of the enclosing object.
    std::array<std::uint32_t, 128> mStack{};
    std::size_t mTop = 0;
    VLocationResult mResult;
};

} // namespace

VLocationResult EvaluateLocation(VElfBuffer& buffer, std::int32_t end, ExpressionPlace place) {
    return LocationEvaluator(buffer, end, place).Run();
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
