// The location attributes of a debug entry: an expression, an offset of a location list or a plain
// number becomes one static number, or the entry is marked as having none.
#include "core/AddressWidth.h"
#include "dwarf/LocationExpression.h"
#include "dwarf/UnitAddresses.h"
#include "dwarf/VAbrTab.h"
#include "dwarf/VCompileUnitReader.h"
#include "dwarf/VDie2.h"
#include "dwarf/VDwarf2Section.h"
#include "dwarf/VLocTabBuffer.h"
#include "dwarf/VLocationLists.h"
#include "nodes/VCompileUnitHeader.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// From this version on, locations in data forms are plain numbers (DWARF 4, 2.6.2).
constexpr std::int32_t sVersionOfSectionOffsets = 4;

/// `DW_OP_stack_value` (DWARF 4, 2.6.1.1.3) ends an expression that computes a value.
constexpr std::uint8_t sStackValue = 0x9F;

} // namespace

void VDie2::ReadLocation(const TDieAttribute& attribute) {
    const bool isMember = attribute.mAttribute == AttributeTarget::MemberLocation;
    (isMember ? mHasMemberLocation : mHasLocation) = true;
    std::uint64_t value = 0;
    const bool isStatic = IsBlock(attribute.mReading)
                              ? ReadLocationBlock(attribute.mReading, value)
                              : (this->*mReadLocationNumber)(attribute, value);
    value *= mBuffer->IsWordAddressedTarget() ? 2U : 1U;
    if (!isStatic) {
        mIsRegisterOrStackLocation = true;
    } else if (isMember) {
        mMemberOffset = static_cast<std::uint32_t>(value);
    } else {
        mLocationAddress = value & AddressBits(mManner);
    }
    if (!isMember && mImageBase != 0 && mLocationAddress > mImageBase) {
        mLocationAddress -= mImageBase;
    }
}

bool VDie2::ReadLocationBlock(FormReading reading, std::uint64_t& value) {
    const std::uint32_t length = ReadBlockLength(reading);
    const std::int32_t start = mBuffer->GetOffset();
    MoveBehindBlock(length);
    if (length == 0 || mBuffer->HasPassedEnd()) {
        return false;
    }
    const std::int32_t end = mBuffer->GetOffset();
    mBuffer->SetOffset(start);
    const VLocationResult location = EvaluateLocationBlock(end);
    mBuffer->SetOffset(end);
    if (location.mHasBitField) {
        mBitFieldFromLocation = true;
        mBitSize = location.mBitSize;
        mBitOffset = location.mBitOffset;
    }
    value = location.mValue;
    mIsFromTombstone = location.mIsFromTombstone;
    mIsComputed =
        !location.mIsValid && static_cast<std::uint8_t>((*mBuffer)[end - 1]) == sStackValue;
    return location.mIsValid;
}

VLocationResult VDie2::EvaluateLocationBlock(std::int32_t end) {
    if (mSection->mUnitTables == nullptr) {
        return EvaluateLocation(*mBuffer, end, ExpressionPlace::Entry, mManner);
    }
    const UnitAddresses addresses(*mSection->mUnitTables, *mUnitReader);
    return EvaluateLocation(*mBuffer, end, ExpressionPlace::Entry, mManner, &addresses);
}

std::uint64_t VDie2::ReadPlainLocation(const TDieAttribute& attribute) {
    switch (attribute.mReading) {
    case FormReading::Address:
        return mBuffer->GetADDRESS();
    case FormReading::EightBytes:
        return mBuffer->GetUInt64();
    default:
        VDieFormValue number;
        ReadFormValue(attribute, number);
        return number.mNumber;
    }
}

bool VDie2::NamesLocationList(const TDieAttribute& attribute) const {
    const bool isDataForm = attribute.mForm == DW_FORM_data4 || attribute.mForm == DW_FORM_data8;
    return attribute.mForm == DW_FORM_sec_offset ||
           (isDataForm && mUnitReader->mHeader.mDwarfVersion < sVersionOfSectionOffsets);
}

bool VDie2::IsInFunction() const {
    return !mOpenEntries.empty() && mOpenEntries.back().isInFunction;
}

bool VDie2::ReadFullLocationNumber(const TDieAttribute& attribute, std::uint64_t& value) {
    if (VDieFormValue address; GivesIndexedAddress(attribute.mReading)) {
        const bool isThere = ReadFormValue(attribute, address);
        value = address.mNumber;
        return isThere;
    }
    value = ReadPlainLocation(attribute);
    const bool isIndex = attribute.mReading == FormReading::LocationListIndex;
    if (!isIndex && !NamesLocationList(attribute)) {
        return true;
    }
    VLocationLists& lists = *mSection->mLocationLists;
    const std::optional<std::uint64_t> address =
        isIndex ? lists.AddressOfIndexed(*mUnitReader, value, IsInFunction())
                : lists.AddressOf(*mUnitReader, value, IsInFunction());
    value = address.value_or(0);
    return address.has_value();
}

bool VDie2::ReadClassicLocationNumber(const TDieAttribute& attribute, std::uint64_t& value) {
    value = ReadPlainLocation(attribute);
    if (!NamesLocationList(attribute) || !mLocTabBuffer->IsLoaded()) {
        return true;
    }
    bool isStatic = false;
    value = mLocTabBuffer->EvaluateLocationList(static_cast<std::uint32_t>(value), isStatic);
    return isStatic;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
