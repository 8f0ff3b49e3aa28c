// The forms whose values are in tables that units share, and the attributes of a unit that say
// where its parts of them begin (DWARF 5, 7.5.6, 7.26 to 7.29).
#include "container/VElfFile.h"
#include "dwarf/UnitLanguage.h"
#include "dwarf/VAbrTab.h"
#include "dwarf/VCompileUnitReader.h"
#include "dwarf/VDie2.h"
#include "dwarf/VDwarf2Section.h"
#include "dwarf/VUnitTables.h"
#include "nodes/VCompileUnitHeader.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

void VDie2::ReadUnitFacts() {
    const std::int32_t start = mBuffer->GetOffset();
    if (ReadAbbrevCode() == Entry::Decoded && mItem->mAttributeCount <= mAttributesLeft) {
        for (const TDieAttribute& attribute : mAbbrevTable->AttributesOf(*mItem)) {
            mBuffer->MoveOffset(attribute.mSkip);
            const TDieAttribute direct = attribute.mReading == FormReading::Indirect
                                             ? FollowIndirectForm(attribute)
                                             : attribute;
            VDieFormValue value;
            const bool hasValue = ReadFormValue(direct, value);
            // That the attribute is present is enough.
            if (hasValue || direct.mAttribute == AttributeTarget::SplitFile) {
                StoreUnitFact(direct.mAttribute, value);
            }
        }
    }
    mBuffer->SetOffset(start);
}

void VDie2::StoreUnitFact(AttributeTarget target, const VDieFormValue& value) {
    VUnitFacts& facts = mUnitReader->mFacts;
    switch (target) {
    case AttributeTarget::TextOffsetsBase:
        facts.mTextOffsetsBase = value.mNumber;
        break;
    case AttributeTarget::AddressesBase:
        facts.mAddressesBase = value.mNumber;
        break;
    case AttributeTarget::LocationListsBase:
        facts.mLocationListsBase = value.mNumber;
        break;
    case AttributeTarget::SplitFile:
        facts.mIsSplit = true;
        break;
    case AttributeTarget::Language:
        facts.mLanguage = value.mNumber;
        facts.mDefaultLowerBound = DefaultLowerBound(value.mNumber);
        facts.mIsColumnMajor = IsColumnMajorLanguage(value.mNumber);
        break;
    default:
        break;
    }
}

VAttributeValue VDie2::DefaultLowerBoundOfUnit() const {
    const std::uint32_t bound = mUnitReader->mFacts.mDefaultLowerBound;
    return bound != 0 ? VAttributeValue::Integer(bound) : VAttributeValue();
}

bool VDie2::IsColumnMajor() const {
    return mHasRareAttributes && mRareAttributes.mOrdering
               ? *mRareAttributes.mOrdering == DW_ORD_col_major
               : mUnitReader->mFacts.mIsColumnMajor;
}

std::uint32_t VDie2::ReadIndex(FormReading reading) {
    switch (FixedWidth(reading)) {
    case 1:
        return mBuffer->GetUByte();
    case 2:
        return mBuffer->GetUShort();
    case 3:
        return mBuffer->GetUInt24();
    case 4:
        return mBuffer->GetULong();
    default:
        return mBuffer->GetULEB128();
    }
}

const char* VDie2::FindIndexedText(std::uint32_t index) {
    const std::optional<std::uint64_t> offset =
        mSection->mUnitTables->TextOffsetAt(*mUnitReader, index);
    return offset ? mSection->mTexts.At(*offset) : nullptr;
}

bool VDie2::ReadIndexedValue(FormReading reading, VDieFormValue& value) {
    switch (reading) {
    case FormReading::ThreeBytes:
        value.mNumber = mBuffer->GetUInt24();
        return true;
    case FormReading::SixteenBytes:
        mBuffer->MoveOffset(static_cast<std::int32_t>(FixedWidth(reading)));
        return false;
    case FormReading::LineTextOffset:
        value.mString = mSection->mUnitTables->LineTextAt(ReadOffset());
        return value.mString != nullptr;
    case FormReading::TextIndex1:
    case FormReading::TextIndex2:
    case FormReading::TextIndex3:
    case FormReading::TextIndex4:
    case FormReading::TextIndexLeb128:
        value.mString = FindIndexedText(ReadIndex(reading));
        return value.mString != nullptr;
    case FormReading::AddressIndex1:
    case FormReading::AddressIndex2:
    case FormReading::AddressIndex3:
    case FormReading::AddressIndex4:
    case FormReading::AddressIndexLeb128: {
        const std::optional<std::uint64_t> address =
            mSection->mUnitTables->AddressAt(*mUnitReader, ReadIndex(reading));
        value.mNumber = static_cast<std::uint32_t>(address.value_or(0));
        return address.has_value();
    }
    // The list is resolved with the locations.
    case FormReading::LocationListIndex:
        value.mNumber = mBuffer->GetULEB128();
        return true;
    case FormReading::TypeSignature:
        value.mNumber = mSection->FindTypeOfSignature(mBuffer->GetUInt64());
        return value.mNumber != 0;
    default:
        return false;
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
