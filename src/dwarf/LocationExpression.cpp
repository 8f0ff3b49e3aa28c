#include "dwarf/LocationExpression.h"

#include "container/VElfBuffer.h"
#include "dwarf/Tombstones.h"
#include "dwarf/UnitAddresses.h"
#include "dwarf/codes/DwarfConstants.h"

#include <algorithm>
#include <array>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

enum class OperandKind : std::uint8_t {
    None,
    Address,
    /// An index into the unit's part of `.debug_addr`.
    AddressIndex,
    Unsigned1,
    Signed1,
    Unsigned2,
    Signed2,
    Unsigned4,
    Signed4,
    EightBytes,
    UnsignedLeb128,
    SignedLeb128,
};

enum class Action : std::uint8_t { Invalid, Push, Subtract, Add, AddConstant, BitPiece };

struct LocationOperator {
    Action action = Action::Invalid;
    OperandKind operand = OperandKind::None;
    /// Lowest index of the stack's top with which the operator works.
    std::uint8_t leastTopInEntry = 0;
    std::uint8_t leastTopInList = 0;
};

using LocationOperators = std::array<LocationOperator, 256>;

/// An operator, and the first manner of reading that knows it.
struct KnownOperator {
    std::uint8_t code = 0;
    ReadingManner since = ReadingManner::Classic;
    LocationOperator properties;
};

constexpr KnownOperator sKnownOperators[] = {
#define DWARF_OPERATOR(code, name, since, action, operand, leastTopInEntry, leastTopInList)        \
    {DW_OP_##name,                                                                                 \
     ReadingManner::since,                                                                         \
     {Action::action, OperandKind::operand, leastTopInEntry, leastTopInList}},
#include "dwarf/codes/DwarfOperators.def"
#undef DWARF_OPERATOR
};

constexpr LocationOperators OperatorsOf(ReadingManner manner) {
    LocationOperators operators{};
    for (const KnownOperator& known : sKnownOperators) {
        if (known.since == ReadingManner::Classic || manner == ReadingManner::Full) {
            operators[known.code] = known.properties;
        }
    }
    return operators;
}

constexpr LocationOperators sClassicOperators = OperatorsOf(ReadingManner::Classic);
constexpr LocationOperators sFullOperators = OperatorsOf(ReadingManner::Full);

/// Bytes after its expression that an operand may take in the classic manner. Only LEB128 could
/// take more, and many expressions may share the same bytes.
constexpr std::int32_t sMaximumOverhang = 128;

/// The arithmetic of an evaluation in the classic manner.
struct ClassicNumbers {
    using Value = std::uint32_t;
    using SignedValue = std::int32_t;
    static constexpr const LocationOperators& sOperators = sClassicOperators;
    static constexpr bool sKnowsTombstones = false;

    static Value GetUnsignedLeb128(VElfBuffer& buffer) { return buffer.GetULEB128(); }
    static SignedValue GetSignedLeb128(VElfBuffer& buffer) { return buffer.GetSLEB128(); }
    static Value CutToAddress(Value value, const VElfBuffer& /*buffer*/) { return value; }
    /// The limit of operands. The last one may exceed the end of its expression.
    static std::int32_t EndOfOperands(std::int32_t end, const VElfBuffer& buffer) {
        return end + std::min(sMaximumOverhang, buffer.GetBufferLength() - end);
    }
};

/// The arithmetic of an evaluation in the full manner.
struct FullNumbers {
    using Value = std::uint64_t;
    using SignedValue = std::int64_t;
    static constexpr const LocationOperators& sOperators = sFullOperators;
    static constexpr bool sKnowsTombstones = true;

    static Value GetUnsignedLeb128(VElfBuffer& buffer) { return buffer.GetULEB128In64Bits(); }
    static SignedValue GetSignedLeb128(VElfBuffer& buffer) { return buffer.GetSLEB128In64Bits(); }
    /// A negative number wraps at the width of the target's addresses. Targets with 16 bits don't
    /// wrap: they page their memory, and compilers put the page into higher bits.
    static Value CutToAddress(Value value, const VElfBuffer& buffer) {
        return buffer.GetADDRESSsize() == sizeof value ? value : value & 0xFFFFFFFFU;
    }
    static std::int32_t EndOfOperands(std::int32_t end, const VElfBuffer& /*buffer*/) {
        return end;
    }
};

template <typename Numbers>
class LocationEvaluator {
    using Value = typename Numbers::Value;

public:
    LocationEvaluator(VElfBuffer& buffer, std::int32_t end, ExpressionPlace place,
                      const UnitAddresses* addresses)
        : mBuffer(buffer)
        , mAddresses(addresses)
        , mEnd(std::min(end, buffer.GetBufferLength()))
        , mEndOfOperands(Numbers::EndOfOperands(mEnd, buffer))
        , mPlace(place) {}

    VLocationResult Run() {
        bool isValid = true;
        while (isValid && mBuffer.GetOffset() < mEnd) {
            isValid = Execute(Numbers::sOperators[mBuffer.GetUByte()]);
        }
        mResult.mIsValid = isValid;
        mResult.mValue = isValid ? Numbers::CutToAddress(mStack[mTop], mBuffer) : 0;
        mResult.mIsFromTombstone = isValid && mHasTombstone && mResult.mValue != mTombstone;
        return mResult;
    }

private:
    bool Execute(const LocationOperator& operation) {
        const std::size_t leastTop =
            mPlace == ExpressionPlace::Entry ? operation.leastTopInEntry : operation.leastTopInList;
        Value operand = 0;
        return operation.action != Action::Invalid && mTop >= leastTop &&
               ReadOperand(operation.operand, operand) && Act(operation.action, operand);
    }

    bool Act(Action action, Value operand) {
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

    bool TakeBitPiece(Value bitSize) {
        Value bitOffset = 0;
        if (!ReadOperand(OperandKind::UnsignedLeb128, bitOffset)) {
            return false;
        }
        if (mPlace == ExpressionPlace::Entry) {
            mResult.mHasBitField = true;
            mResult.mBitSize = static_cast<std::uint32_t>(bitSize);
            mResult.mBitOffset = static_cast<std::uint32_t>(bitOffset);
        }
        return true;
    }

    /// False if the operand ends too late.
    bool ReadOperand(OperandKind kind, Value& value) {
        const bool isLeb128 = kind == OperandKind::UnsignedLeb128 ||
                              kind == OperandKind::SignedLeb128 ||
                              kind == OperandKind::AddressIndex;
        if (isLeb128 && !HoldsLeb128()) {
            return false;
        }
        if (kind == OperandKind::AddressIndex) {
            const std::uint32_t index = mBuffer.GetULEB128();
            const std::optional<std::uint64_t> address =
                mAddresses != nullptr ? mAddresses->At(index) : std::nullopt;
            value = static_cast<Value>(address.value_or(0));
            NoteTombstone(value);
            return address.has_value() && mBuffer.GetOffset() <= mEnd;
        }
        value = Decode(kind);
        if (kind == OperandKind::Address) {
            NoteTombstone(value);
        }
        return mBuffer.GetOffset() <= mEndOfOperands;
    }

    void NoteTombstone(Value address) {
        if (Numbers::sKnowsTombstones &&
            std::ranges::count(TombstonesOf(mBuffer.GetADDRESSsize()), address) != 0) {
            mHasTombstone = true;
            mTombstone = address;
        }
    }

    Value Decode(OperandKind kind) {
        switch (kind) {
        case OperandKind::Address:
            return static_cast<Value>(mBuffer.GetADDRESS());
        case OperandKind::Unsigned1:
            return mBuffer.GetUByte();
        case OperandKind::Signed1:
            return Extended(static_cast<std::int8_t>(mBuffer.GetUByte()));
        case OperandKind::Unsigned2:
            return mBuffer.GetUShort();
        case OperandKind::Signed2:
            return Extended(static_cast<std::int16_t>(mBuffer.GetUShort()));
        case OperandKind::Unsigned4:
            return mBuffer.GetULong();
        case OperandKind::Signed4:
            return Extended(static_cast<std::int32_t>(mBuffer.GetULong()));
        case OperandKind::EightBytes:
            return static_cast<Value>(mBuffer.GetUInt64());
        case OperandKind::UnsignedLeb128:
            return Numbers::GetUnsignedLeb128(mBuffer);
        case OperandKind::SignedLeb128:
            return static_cast<Value>(Numbers::GetSignedLeb128(mBuffer));
        default:
            return 0;
        }
    }

    static Value Extended(typename Numbers::SignedValue number) {
        return static_cast<Value>(number);
    }

    /// Many expressions may share the same bytes: none of them may read far beyond its own.
    [[nodiscard]] bool HoldsLeb128() const {
        std::int32_t offset = mBuffer.GetOffset();
        while (offset < mEndOfOperands && mBuffer[offset] < 0) {
            ++offset;
        }
        return offset < mEndOfOperands;
    }

    VElfBuffer& mBuffer;
    const UnitAddresses* mAddresses;
    std::int32_t mEnd;
    std::int32_t mEndOfOperands;
    ExpressionPlace mPlace;
    /// Element 0 is the address of the enclosing object.
    std::array<Value, 128> mStack{};
    std::size_t mTop = 0;
    bool mHasTombstone = false;
    Value mTombstone = 0;
    VLocationResult mResult;
};

} // namespace

VLocationResult EvaluateLocation(VElfBuffer& buffer, std::int32_t end, ExpressionPlace place,
                                 ReadingManner manner, const UnitAddresses* addresses) {
    return manner == ReadingManner::Full
               ? LocationEvaluator<FullNumbers>(buffer, end, place, addresses).Run()
               : LocationEvaluator<ClassicNumbers>(buffer, end, place, addresses).Run();
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
