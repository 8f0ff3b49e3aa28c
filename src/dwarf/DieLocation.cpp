// The location attributes of a debug entry: an expression, an offset of a location list or a plain
// number becomes one static number, or the entry is marked as having none.
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
    std::uint32_t value = 0;
    const bool isStatic = IsBlock(attribute.mReading) ? ReadLocationBlock(attribute.mReading, value)
                                                      : ReadLocationNumber(attribute, value);
    if (isStatic) {
        std::uint32_t& target = isMember ? mMemberOffset : mLocationAddress;
        target = mBuffer->IsWordAddressedTarget() ? value * 2 : value;
    } else {
        mIsRegisterOrStackLocation = true;
    }
    if (!isMember && mImageBase != 0 && mLocationAddress > mImageBase) {
        mLocationAddress -= static_cast<std::uint32_t>(mImageBase);
    }
}

bool VDie2::ReadLocationBlock(FormReading reading, std::uint32_t& value) {
    const std::uint32_t length = ReadBlockLength(reading);
    const std::int32_t start = mBuffer->GetOffset();
    MoveBehindBlock(length);
    if (length == 0 || mBuffer->HasPassedEnd()) {
        return false;
    }
    const std::int32_t end = mBuffer->GetOffset();
    mBuffer->SetOffset(start);
    const VLocationResult location = EvaluateLocation(*mBuffer, end, ExpressionPlace::Entry);
    mBuffer->SetOffset(end);
    if (location.mHasBitField) {
        mBitFieldFromLocation = true;
        mBitSize = location.mBitSize;
        mBitOffset = location.mBitOffset;
    }
    value = location.mValue;
    return location.mIsValid;
}

bool VDie2::ReadLocationNumber(const TDieAttribute& attribute, std::uint32_t& value) {
    VDieFormValue number;
    ReadFormValue(attribute, number);
    value = number.mNumber;
    const bool isDataForm = attribute.mForm == DW_FORM_data4 || attribute.mForm == DW_FORM_data8;
    const bool isListOffset =
        attribute.mForm == DW_FORM_sec_offset ||
        (isDataForm && mUnitReader->mHeader.mDwarfVersion < sVersionOfSectionOffsets);
    if (!isListOffset || !mLocTabBuffer->IsLoaded()) {
        return true;
    }
    bool isStatic = false;
    value = mLocTabBuffer->EvaluateLocationList(value, isStatic);
    return isStatic;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
