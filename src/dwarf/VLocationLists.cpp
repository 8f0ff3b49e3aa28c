#include "dwarf/VLocationLists.h"

#include "container/VElfFile.h"
#include "dwarf/LocationExpression.h"
#include "dwarf/UnitAddresses.h"
#include "dwarf/VCompileUnitReader.h"
#include "nodes/VCompileUnitHeader.h"

#include <algorithm>
#include <array>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// From this version on, lists have entries of several kinds and a section of their own.
constexpr std::int32_t sVersionOfListKinds = 5;

/// The bytes read for lists are limited to this multiple of the sections' size and a little more.
constexpr std::int64_t sReadingsOfSections = 16;
constexpr std::int64_t sFreeListBytes = 0x10000;

enum class Operand : std::uint8_t { None, Leb128, Address };

/// How the two operands of an entry show that it covers nothing.
enum class Emptiness : std::uint8_t { Never, IfEqual, IfSecondIsZero };

/// One kind of entry: its operands and its use.
struct EntryKind {
    Operand first = Operand::None;
    Operand second = Operand::None;
    bool hasExpression = false;
    Emptiness emptiness = Emptiness::Never;
};

enum : std::uint8_t {
    DW_LLE_end_of_list = 0x00,
    DW_LLE_base_addressx = 0x01,
    DW_LLE_startx_endx = 0x02,
    DW_LLE_startx_length = 0x03,
    DW_LLE_offset_pair = 0x04,
    DW_LLE_default_location = 0x05,
    DW_LLE_base_address = 0x06,
    DW_LLE_start_end = 0x07,
    DW_LLE_start_length = 0x08,
    DW_LLE_GNU_view_pair = 0x09,
};

constexpr auto sEntryKinds = [] {
    std::array<EntryKind, DW_LLE_GNU_view_pair + 1> kinds{};
    kinds[DW_LLE_base_addressx] = {Operand::Leb128};
    kinds[DW_LLE_startx_endx] = {Operand::Leb128, Operand::Leb128, true, Emptiness::IfEqual};
    kinds[DW_LLE_startx_length] = {Operand::Leb128, Operand::Leb128, true,
                                   Emptiness::IfSecondIsZero};
    kinds[DW_LLE_offset_pair] = {Operand::Leb128, Operand::Leb128, true, Emptiness::IfEqual};
    kinds[DW_LLE_default_location] = {Operand::None, Operand::None, true};
    kinds[DW_LLE_base_address] = {Operand::Address};
    kinds[DW_LLE_start_end] = {Operand::Address, Operand::Address, true, Emptiness::IfEqual};
    kinds[DW_LLE_start_length] = {Operand::Address, Operand::Leb128, true,
                                  Emptiness::IfSecondIsZero};
    kinds[DW_LLE_GNU_view_pair] = {Operand::Leb128, Operand::Leb128};
    return kinds;
}();

bool CoversNothing(Emptiness emptiness, std::uint64_t first, std::uint64_t second) {
    switch (emptiness) {
    case Emptiness::IfEqual:
        return first == second;
    case Emptiness::IfSecondIsZero:
        return second == 0;
    default:
        return false;
    }
}

/// All ones in the width of an address: as a begin address it selects a base.
std::uint64_t HighestAddress(std::uint8_t addressSize) {
    const std::uint32_t bits = addressSize == 0 ? 32 : 8U * addressSize;
    return bits < 64 ? (std::uint64_t{1} << bits) - 1 : ~std::uint64_t{0};
}

} // namespace

/// One list while it is being read.
class VLocationLists::ListReading {
public:
    ListReading(VElfBuffer& section, const UnitAddresses& addresses, std::uint8_t addressSize)
        : mSection(section)
        , mAddresses(addresses)
        , mAddressSize(addressSize) {
        mSection.SetADDRESSsize(addressSize);
    }

    /// Reads a list of entries by their kind. Without an end of its own it ends with the section.
    void ReadKinds() {
        while (!mSection.IsEOF()) {
            const std::uint8_t code = mSection.GetUByte();
            if (code == DW_LLE_end_of_list || code >= sEntryKinds.size()) {
                mIsSound = code == DW_LLE_end_of_list;
                return;
            }
            const EntryKind& kind = sEntryKinds[code];
            const std::uint64_t first = Read(kind.first);
            const std::uint64_t second = Read(kind.second);
            if (kind.hasExpression) {
                const VLocationResult location = Evaluate(mSection.GetULEB128());
                if (code == DW_LLE_default_location) {
                    mDefault = location;
                    mHasDefault = true;
                } else if (!CoversNothing(kind.emptiness, first, second)) {
                    Take(location);
                }
            }
        }
        mIsSound = false;
    }

    /// Reads a list of pairs of addresses.
    void ReadPairs() {
        const std::uint64_t baseSelection = HighestAddress(mAddressSize);
        while (!mSection.IsEOF()) {
            const std::uint64_t begin = mSection.GetADDRESS();
            const std::uint64_t end = mSection.GetADDRESS();
            if (mSection.HasPassedEnd()) {
                break;
            }
            if (begin == 0 && end == 0) {
                return;
            }
            if (begin == baseSelection) {
                continue;
            }
            const VLocationResult location = Evaluate(mSection.GetUShort());
            if (begin != end) {
                Take(location);
            }
            if (mIsManifold) {
                return;
            }
        }
        mIsSound = false;
    }

    [[nodiscard]] std::optional<std::uint64_t> Result(bool isInFunction) const {
        if (!mIsSound || (isInFunction && !mHasDefault)) {
            return std::nullopt;
        }
        if (mHasDefault) {
            return AddressIn(mDefault);
        }
        return mHasCommon && !mIsManifold ? AddressIn(mCommon) : std::nullopt;
    }

private:
    static std::optional<std::uint64_t> AddressIn(const VLocationResult& location) {
        return location.mIsValid ? std::optional<std::uint64_t>(location.mValue) : std::nullopt;
    }

    std::uint64_t Read(Operand operand) {
        switch (operand) {
        case Operand::Leb128:
            return mSection.GetULEB128();
        case Operand::Address:
            return mSection.GetADDRESS();
        default:
            return 0;
        }
    }

    /// Evaluates the expression of this length at the cursor and moves past it.
    VLocationResult Evaluate(std::uint32_t length) {
        const std::int64_t left = std::int64_t{mSection.GetBufferLength()} - mSection.GetOffset();
        if (mSection.IsEOF() || length == 0 || std::int64_t{length} > left) {
            mSection.MoveOffset(static_cast<std::int32_t>(
                std::clamp<std::int64_t>(length, 0, std::max<std::int64_t>(left, 0))));
            return {};
        }
        const std::int32_t end = mSection.GetOffset() + static_cast<std::int32_t>(length);
        const VLocationResult location = EvaluateLocation(
            mSection, end, ExpressionPlace::LocationList, ReadingManner::Full, &mAddresses);
        mSection.SetOffset(end);
        return location;
    }

    void Take(const VLocationResult& location) {
        if (!mHasCommon) {
            mCommon = location;
            mHasCommon = true;
        }
        mIsManifold = mIsManifold || !location.mIsValid || location.mValue != mCommon.mValue;
    }

    VElfBuffer& mSection;
    const UnitAddresses& mAddresses;
    std::uint8_t mAddressSize;
    // No `std::optional`: compilers report its value as uninitialized after inlining.
    VLocationResult mCommon;
    VLocationResult mDefault;
    bool mHasCommon = false;
    bool mHasDefault = false;
    /// Entries give different places, or one that isn't static.
    bool mIsManifold = false;
    bool mIsSound = true;
};

VLocationLists::VLocationLists(VElfFile& file, VUnitTables& tables)
    : mTables(tables)
    , mLists(file)
    , mIndexedLists(file) {}

bool VLocationLists::Load(const VElfFile& file) {
    if (!mLists.LoadOrLeaveEmpty(file.mSecDebugLoc) ||
        !mIndexedLists.LoadOrLeaveEmpty(file.mSecDebugLoclists)) {
        return false;
    }
    const std::int64_t size =
        std::int64_t{mLists.GetBufferLength()} + mIndexedLists.GetBufferLength();
    mBytesLeft = sReadingsOfSections * size + sFreeListBytes;
    return true;
}

std::optional<std::uint64_t> VLocationLists::AddressOf(const VCompileUnitReader& unit,
                                                       std::uint64_t offset, bool isInFunction) {
    const bool hasKinds = unit.mHeader.mDwarfVersion >= sVersionOfListKinds;
    VElfBuffer& section = hasKinds ? mIndexedLists : mLists;
    if (offset >= static_cast<std::uint64_t>(section.GetBufferLength()) || mBytesLeft < 0) {
        return std::nullopt;
    }
    section.SetOffset(static_cast<std::int32_t>(offset));
    const UnitAddresses addresses(mTables, unit);
    ListReading list(section, addresses, unit.mHeader.mTargetAddressSize);
    if (hasKinds) {
        list.ReadKinds();
    } else {
        list.ReadPairs();
    }
    mBytesLeft -= section.GetOffset() - static_cast<std::int64_t>(offset);
    return list.Result(isInFunction);
}

std::optional<std::uint64_t> VLocationLists::AddressOfIndexed(const VCompileUnitReader& unit,
                                                              std::uint64_t index,
                                                              bool isInFunction) {
    const std::optional<std::uint64_t> base = unit.mFacts.mLocationListsBase;
    const std::uint8_t width = unit.mHeader.mIs64BitDwarf ? 8 : 4;
    const std::optional<std::uint64_t> offset =
        base ? mIndexedLists.NumberAt(*base, index, width) : std::nullopt;
    return offset ? AddressOf(unit, *base + *offset, isInFunction) : std::nullopt;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
