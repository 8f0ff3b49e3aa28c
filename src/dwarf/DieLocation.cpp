// The location attributes of a debug entry: an expression, an offset of a location list or a plain
// number becomes one static number, or the entry is marked as having none.
#include "core/AddressWidth.h"
#include "dwarf/LocationExpression.h"
#include "dwarf/VAbrTab.h"
#include "dwarf/VCompileUnitHeader.h"
#include "dwarf/VCompileUnitReader.h"
#include "dwarf/VDie2.h"
#include "dwarf/VLocTabBuffer.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// From this version on, locations in data forms are plain numbers (DWARF 4, 2.6.2).
constexpr std::int32_t sVersionOfSectionOffsets = 4;

} // namespace

void VDie2::ReadLocation(const TDieAttribute& attribute) {
    const bool isMember = attribute.mAttribute == AttributeTarget::MemberLocation;
    (isMember ? mHasMemberLocation : mHasLocation) = true;
    std::uint64_t value = 0;
    const bool isStatic = IsBlock(attribute.mReading) ? ReadLocationBlock(attribute.mReading, value)
                                                      : ReadLocationNumber(attribute, value);
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
    const VLocationResult location =
        EvaluateLocation(*mBuffer, end, ExpressionPlace::Entry, mManner);
    mBuffer->SetOffset(end);
    if (location.mHasBitField) {
        mBitFieldFromLocation = true;
        mBitSize = location.mBitSize;
        mBitOffset = location.mBitOffset;
    }
    value = location.mValue;
    return location.mIsValid;
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

bool VDie2::ReadLocationNumber(const TDieAttribute& attribute, std::uint64_t& value) {
    value = ReadPlainLocation(attribute);
    const bool isDataForm = attribute.mForm == DW_FORM_data4 || attribute.mForm == DW_FORM_data8;
    const bool isListOffset =
        attribute.mForm == DW_FORM_sec_offset ||
        (isDataForm && mUnitReader->mHeader.mDwarfVersion < sVersionOfSectionOffsets);
    if (!isListOffset || !mLocTabBuffer->IsLoaded()) {
        return true;
    }
    bool isStatic = false;
    value = mLocTabBuffer->EvaluateLocationList(static_cast<std::uint32_t>(value), isStatic);
    return isStatic;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
