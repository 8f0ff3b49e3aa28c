// Decoding of debug entries: the walk over a unit and the attributes of each entry. Locations are
// in DieLocation.cpp, the making of nodes is in NodeCreation.cpp.
#include "dwarf/VDie2.h"

#include "container/VElfFile.h"
#include "core/CutText.h"
#include "core/UnitName.h"
#include "diagnostics/ElfLog.h"
#include "diagnostics/ErrorState.h"
#include "dwarf/VAbrTab.h"
#include "dwarf/VCompileUnitReader.h"
#include "dwarf/VDwarf2Section.h"
#include "nodes/VCompileUnitHeader.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::size_t sMaximumProducerLength = 1024;
/// From this version on, references to entries of other units are as wide as offsets (DWARF 3,
/// 7.5.4).
constexpr std::int32_t sVersionOfOffsetReferences = 3;
constexpr std::uint32_t sNoLimit = std::numeric_limits<std::uint32_t>::max();

/// Attributes that a unit may have: this many for each byte, and a few more. Attributes that take
/// no bytes could otherwise make a small unit take very long.
constexpr std::int64_t sAttributesPerByte = 16;
constexpr std::int64_t sFreeAttributes = 0x10000;

} // namespace

VDie2::VDie2(VCompileUnitReader& reader, NodeChoice choice)
    : mBuffer(reader.mBuffer.get())
    , mAbbrevTable(reader.mAbbrevTable)
    , mLocTabBuffer(reader.mSection.mLocTabBuffer.get())
    , mSection(&reader.mSection)
    , mUnitReader(&reader)
    , mForms(reader.mSection.mForms)
    , mManner(reader.mSection.mElfFile->mManner)
    , mReadLocationNumber(mManner == ReadingManner::Full ? &VDie2::ReadFullLocationNumber
                                                         : &VDie2::ReadClassicLocationNumber)
    , mImageBase(reader.mSection.mElfFile->mImageBase)
    , mChoice(choice)
    , mAttributesLeft(sAttributesPerByte * mBuffer->GetBufferLength() + sFreeAttributes) {}

bool VDie2::ReadDieTree(VCompileUnitHeader* header) {
    do {
        ReadNextEntry(header);
    } while (!mOpenEntries.empty());
    return true;
}

void VDie2::ReadNextEntry(VCompileUnitHeader* header) {
    ++recCnt;
    switch (mBuffer->IsEOF() ? Entry::Null : ReadEntry()) {
    case Entry::Decoded:
        if (MakesSkippedNodes()) {
            MakeSkippedNode(header);
        } else {
            MapCurrentDieToNode(header, InnermostOpenNode());
        }
        if (mItem->mHasChildren == 1) {
            OpenCurrentEntry();
        }
        break;
    case Entry::Null:
        CloseEntry();
        break;
    case Entry::Skipped:
    case Entry::Unknown:
        break;
    }
}

void VDie2::CloseEntry() {
    if (mOpenEntries.empty()) {
        return;
    }
    const OpenEntry& entry = mOpenEntries.back();
    if (entry.node == nullptr && entry.type != 0) {
        NoteSkippedType(entry.type);
    }
    mOpenEntries.pop_back();
}

VDie2::Entry VDie2::ReadEntry() {
    const std::int32_t unitOffset = mBuffer->GetOffset();
    const Entry entry = ReadAbbrevCode();
    if (entry != Entry::Decoded) {
        return entry;
    }
    mAttributesLeft -= mItem->mAttributeCount;
    if (mAttributesLeft < 0) {
        elflog("Error: Compile unit has too many attributes, the rest of it is left out.");
        mBuffer->SetOffset(mBuffer->GetBufferLength());
        if (mChoice == NodeChoice::WithoutBodies) {
            mSection->RequireBodies();
        }
        return Entry::Unknown;
    }
    if (BodyEntryHere() != BodyEntry::Kept) {
        return SkipEntry(unitOffset, recCnt);
    }
    if (IsSkippedAgain(unitOffset)) {
        return SkipAgain(unitOffset, recCnt);
    }
    switch (CodeEntryHere()) {
    case CodeEntry::Skipped:
    case CodeEntry::Parameter:
    case CodeEntry::Scope:
        return SkipEntry(unitOffset, recCnt);
    case CodeEntry::Variable:
        return ReadVariableOfCode(unitOffset, recCnt);
    case CodeEntry::Kept:
        break;
    }
    const std::int32_t attributesStart = mBuffer->GetOffset();
    const TAbrTabItem* item = mItem;
    if (MakeWaitingNodes()) {
        mItem = item;
        mBuffer->SetOffset(attributesStart);
    }
    return DecodeEntry(unitOffset, recCnt);
}

/// Finds the abbreviation of the entry at the cursor and moves past its code.
VDie2::Entry VDie2::ReadAbbrevCode() {
    const std::uint32_t code = mBuffer->GetULEB128();
    if (code == 0) {
        return Entry::Null;
    }
    mItem = mAbbrevTable->Find(code);
    return mItem != nullptr ? Entry::Decoded : Entry::Unknown;
}

VDie2::Entry VDie2::DecodeEntry(std::int32_t unitOffset, std::uint32_t recordNumber) {
    Reset();
    mNode = nullptr;
    mOffset = VDwarf2Section::UnitToSectionOffset(mUnitReader->mHeader,
                                                  static_cast<std::uint32_t>(unitOffset));
    mRecordNumber = recordNumber;
    mAbbrevCode = mItem->mCode;
    mTag = mItem->mTag;
    ReadAttributes();
    return mBuffer->HasPassedEnd() ? Entry::Unknown : Entry::Decoded;
}

void VDie2::Reset() {
    if (mHasRareAttributes) {
        mRareAttributes = {};
    }
    // Copied from memory: a temporary would be written in small pieces, and reading them back in
    // large ones stalls the processor.
    static constexpr VDieAttributes sNothing;
    static_cast<VDieAttributes&>(*this) = sNothing;
}

void VDie2::ReadAttributes() {
    for (const TDieAttribute& attribute : mAbbrevTable->AttributesOf(*mItem)) {
        mBuffer->MoveOffset(attribute.mSkip);
        ReadAttribute(attribute);
        if (mBuffer->HasPassedEnd()) {
            return;
        }
    }
    if (mTag == DW_TAG_enumeration_type && !mHasByteSize) {
        RenameEnumerationWithoutSize();
    }
}

void VDie2::ReadAttribute(const TDieAttribute& attribute) {
    if (attribute.mReading == FormReading::Indirect) {
        ReadDirectAttribute(FollowIndirectForm(attribute));
    } else {
        ReadDirectAttribute(attribute);
    }
}

void VDie2::ReadDirectAttribute(const TDieAttribute& attribute) {
    switch (attribute.mAttribute) {
    case AttributeTarget::Location:
    case AttributeTarget::MemberLocation:
        ReadLocation(attribute);
        return;
    case AttributeTarget::WholeConstValue:
        ReadWholeConstant(attribute);
        return;
    default:
        break;
    }
    VDieFormValue value;
    if (ReadFormValue(attribute, value)) {
        StoreAttribute(attribute, value);
    }
}

void VDie2::ReadWholeConstant(const TDieAttribute& attribute) {
    VDieFormValue value;
    switch (attribute.mReading) {
    case FormReading::EightBytes:
        Rare().mConstValue = VAttributeValue::Integer(mBuffer->GetUInt64());
        break;
    case FormReading::UnsignedLeb128:
        Rare().mConstValue = VAttributeValue::Integer(mBuffer->GetULEB128In64Bits());
        break;
    case FormReading::SignedLeb128:
        Rare().mConstValue =
            VAttributeValue::Integer(static_cast<std::uint64_t>(mBuffer->GetSLEB128In64Bits()));
        break;
    case FormReading::Constant:
        Rare().mConstValue = VAttributeValue::Integer(attribute.mConstant);
        break;
    default:
        if (ReadFormValue(attribute, value)) {
            Rare().mConstValue = VAttributeValue::Integer(value.mNumber);
        }
        break;
    }
}

TDieAttribute VDie2::FollowIndirectForm(const TDieAttribute& attribute) {
    TDieAttribute direct = attribute;
    do {
        direct.mForm = mBuffer->GetULEB128();
        direct.mReading = mForms->ReadingOf(direct.mForm);
    } while (direct.mReading == FormReading::Indirect);
    direct.mAttribute = mForms->TargetOf(direct.mAttribute, direct.mForm);
    if (direct.mReading == FormReading::Constant) {
        direct.mConstant = static_cast<std::uint64_t>(mBuffer->GetSLEB128In64Bits());
    }
    return direct;
}

bool VDie2::ReadFormValue(const TDieAttribute& attribute, VDieFormValue& value) {
    switch (attribute.mReading) {
    case FormReading::Present:
        value.mNumber = 1;
        return true;
    case FormReading::OneByte:
        value.mNumber = mBuffer->GetUByte();
        return true;
    case FormReading::TwoBytes:
        value.mNumber = mBuffer->GetUShort();
        return true;
    case FormReading::FourBytes:
        value.mNumber = mBuffer->GetULong();
        return true;
    case FormReading::EightBytes:
        value.mNumber = static_cast<std::uint32_t>(mBuffer->GetUInt64());
        return true;
    case FormReading::Address:
        value.mNumber = static_cast<std::uint32_t>(mBuffer->GetADDRESS());
        return true;
    case FormReading::Offset:
        value.mNumber = ReadOffset();
        return true;
    case FormReading::ReferenceAddress:
        value.mNumber = ReadReferenceAddress(HasWideReferencesByOption());
        return true;
    case FormReading::ReferenceAddressByVersion:
        value.mNumber =
            ReadReferenceAddress(mUnitReader->mHeader.mDwarfVersion >= sVersionOfOffsetReferences ||
                                 HasWideReferencesByOption());
        return true;
    case FormReading::UnsignedLeb128:
        value.mNumber = mBuffer->GetULEB128();
        return true;
    case FormReading::SignedLeb128:
        value.mNumber = static_cast<std::uint32_t>(mBuffer->GetSLEB128());
        return true;
    case FormReading::Text:
        value.mString = mBuffer->GetNullTStr();
        return true;
    case FormReading::TextOffset:
        value.mString = mSection->mTexts.At(ReadOffset());
        return true;
    case FormReading::Block1:
    case FormReading::Block2:
    case FormReading::Block4:
    case FormReading::BlockLeb128:
        MoveBehindBlock(ReadBlockLength(attribute.mReading));
        value.mNumber = static_cast<std::uint32_t>(mBuffer->GetOffset());
        return true;
    case FormReading::Constant:
        value.mNumber = static_cast<std::uint32_t>(attribute.mConstant);
        return true;
    case FormReading::Unknown:
        SetErrorState(ELFReadErrorEnum::ELFERR_DWARF_FORM);
        return false;
    default:
        return ReadIndexedValue(attribute.mReading, value);
    }
}

std::uint32_t VDie2::TypeOffsetOf(const TDieAttribute& attribute,
                                  const VDieFormValue& value) const {
    return value.mNumber == 0 || GivesSectionOffset(attribute.mReading)
               ? value.mNumber
               : VDwarf2Section::UnitToSectionOffset(mUnitReader->mHeader, value.mNumber);
}

std::uint32_t VDie2::ReadBlockLength(FormReading reading) {
    switch (reading) {
    case FormReading::Block1:
        return mBuffer->GetUByte();
    case FormReading::Block2:
        return mBuffer->GetUShort();
    case FormReading::Block4:
        return mBuffer->GetULong();
    default:
        return mBuffer->GetULEB128();
    }
}

std::uint32_t VDie2::ReadOffset() {
    return mUnitReader->mHeader.mIs64BitDwarf ? static_cast<std::uint32_t>(mBuffer->GetUInt64())
                                              : mBuffer->GetULong();
}

bool VDie2::HasWideReferencesByOption() const {
    return mUnitReader->mHeader.mIs64BitDwarf || VElfOptions::mHandle_DW_FORM_REF_ADDR_AS_DW3 == 1;
}

std::uint32_t VDie2::ReadReferenceAddress(bool hasOffsetWidth) {
    const std::uint32_t reference =
        hasOffsetWidth ? ReadOffset() : static_cast<std::uint32_t>(mBuffer->GetADDRESS());
    if (VElfOptions::mFixReferencesWithFileRelativeOffset != 1) {
        return reference;
    }
    return reference - static_cast<std::uint32_t>(mSection->mElfFile->mSecDebugInfo.sh_offset);
}

void VDie2::MoveBehindBlock(std::uint32_t length) {
    const std::int64_t end = std::int64_t{mBuffer->GetOffset()} + length;
    const std::int64_t passedEnd = std::int64_t{mBuffer->GetBufferLength()} + 1;
    mBuffer->SetOffset(static_cast<std::int32_t>(std::min(end, passedEnd)));
}

void VDie2::StoreAttribute(const TDieAttribute& attribute, const VDieFormValue& value) {
    switch (attribute.mAttribute) {
    case AttributeTarget::Name:
        StoreName(value.mString);
        break;
    case AttributeTarget::ByteSize:
        mHasByteSize = true;
        mByteSize = mBuffer->IsWordAddressedTarget() ? value.mNumber * 2 : value.mNumber;
        break;
    case AttributeTarget::BitOffset:
        mBitOffset = mHasDataBitOffset ? mBitOffset : value.mNumber;
        mHasBitOffset = true;
        break;
    case AttributeTarget::DataBitOffset:
        mBitOffset = value.mNumber;
        mHasDataBitOffset = true;
        break;
    case AttributeTarget::BitSize:
        mBitSize = value.mNumber;
        break;
    case AttributeTarget::CompDir:
        if (value.mString != nullptr) {
            Rare().mCompDir = MakeAttributeString(value.mString);
        }
        break;
    case AttributeTarget::ConstValue:
        Rare().mConstValue = VAttributeValue::Integer(value.mNumber);
        break;
    case AttributeTarget::LowerBound:
        SetAttributeValue(Rare().mLowerBound, attribute, value.mNumber);
        break;
    case AttributeTarget::Producer:
        StoreProducer(value.mString);
        break;
    case AttributeTarget::UpperBound:
        SetAttributeValue(Rare().mUpperBound, attribute, value.mNumber);
        break;
    case AttributeTarget::Accessibility:
        SetAttributeValue(mAccessibility, attribute, value.mNumber);
        break;
    case AttributeTarget::Count:
        SetAttributeValue(Rare().mCount, attribute, value.mNumber);
        break;
    case AttributeTarget::Declaration:
        mIsDeclaration = value.mNumber != 0;
        break;
    case AttributeTarget::Encoding:
        mEncoding = value.mNumber;
        mHasEncoding = true;
        break;
    case AttributeTarget::External:
        mIsExternal = value.mNumber != 0;
        break;
    case AttributeTarget::Specification:
        SetAttributeValue(mSpecification, attribute, value.mNumber);
        break;
    case AttributeTarget::AbstractOrigin:
        StoreOrigin(attribute, value.mNumber);
        break;
    case AttributeTarget::Type:
        mTypeRef = value.mNumber;
        mTypeRefIsSectionOffset = GivesSectionOffset(attribute.mReading);
        break;
    case AttributeTarget::Import:
        StoreImport(attribute, value.mNumber);
        break;
    case AttributeTarget::Signature:
        StoreSignature(attribute, value.mNumber);
        break;
    case AttributeTarget::LinkageName:
        mHasLinkageName = true;
        mLinkageName =
            value.mString != nullptr ? mSection->mTexts.Allow(value.mString, sNoLimit) : VDieText{};
        break;
    default:
        StoreLayoutAttribute(attribute.mAttribute, value.mNumber);
        break;
    }
}

void VDie2::StoreLayoutAttribute(AttributeTarget target, std::uint32_t value) {
    switch (target) {
    case AttributeTarget::Endianity:
        mHasOtherByteOrder =
            value != DW_END_default && (value == DW_END_big) != mSection->mElfFile->mIsMSBData;
        break;
    case AttributeTarget::Ordering:
        Rare().mOrdering = value;
        break;
    case AttributeTarget::BitStride:
        Rare().mStrideInBits = value;
        break;
    case AttributeTarget::ByteStride:
        Rare().mStrideInBits = std::uint64_t{value} * (mBuffer->IsWordAddressedTarget() ? 16 : 8);
        break;
    case AttributeTarget::ComputedPlace:
        Rare().mHasComputedPlace = true;
        break;
    case AttributeTarget::ComputedLowerBound:
        Rare().mHasComputedLowerBound = true;
        break;
    default:
        break;
    }
}

void VDie2::StoreOrigin(const TDieAttribute& attribute, std::uint32_t origin) {
    // Parameters and inlined calls have origins by the million, which nobody asks for.
    if (mTag == DW_TAG_variable || mTag == DW_TAG_subprogram) {
        SetAttributeValue(mSpecification, attribute, origin);
        mIsAbstractOrigin = true;
    }
}

void VDie2::StoreImport(const TDieAttribute& attribute, std::uint32_t value) {
    VAttributeValue unit;
    SetAttributeValue(unit, attribute, value);
    if (mTag == DW_TAG_imported_unit && unit.IsReference()) {
        mSection->mUnitLinks.mImportedUnits.push_back(static_cast<std::uint32_t>(unit.mValue));
    }
}

void VDie2::StoreSignature(const TDieAttribute& attribute, std::uint32_t value) {
    if (attribute.mReading == FormReading::TypeSignature) {
        Rare().mSignatureType = value;
        mSection->mUnitLinks.mTypeDeclarations.push_back({mOffset, value});
    }
}

/// A forward declaration counts as a namespace; one that stands for a type is transparent like a
/// qualifier.
void VDie2::RenameEnumerationWithoutSize() {
    const std::uint32_t type = mHasRareAttributes ? mRareAttributes.mSignatureType : 0;
    mTag = type != 0 ? DW_TAG_const_type : DW_TAG_namespace;
    if (type != 0) {
        mTypeRef = type;
        mTypeRefIsSectionOffset = true;
    }
}

void VDie2::StoreName(const char* name) {
    mHasName = true;
    mName =
        name != nullptr ? mSection->mTexts.Allow(name, sMaximumNameLength) : VDieText{"unknown"};
    if (name != nullptr && mTag == DW_TAG_compile_unit) {
        if (mManner == ReadingManner::Full) {
            Rare().mUnitPath = MakeAttributeString(name);
        }
        ShortenUnitName();
    }
}

void VDie2::ShortenUnitName() {
    mName = {mSection->mArena.KeepText(ShortUnitName(mName.Get()))};
}

void VDie2::StoreProducer(const char* producer) {
    Rare().mProducer = {producer != nullptr ? CutText(producer, sMaximumProducerLength) : "<NULL>",
                        true};
    OnProducer();
}

void VDie2::OnProducer() {
    // A producer that the unit truncates decides nothing.
    if (mTag != DW_TAG_compile_unit || mBuffer->HasPassedEnd()) {
        return;
    }
    mUnitReader->mProducer = mRareAttributes.mProducer.mValue;
    mSection->AutodetectProducerOptions(mRareAttributes.mProducer.mValue, mUnitReader);
}

VAttributeString VDie2::MakeAttributeString(const char* text) const {
    return {text != nullptr ? mSection->mTexts.Measure(text) : std::string_view(), true};
}

void VDie2::SetAttributeValue(VAttributeValue& target, const TDieAttribute& attribute,
                              std::uint32_t value) const {
    if (!IsReferenceForm(attribute.mForm)) {
        target = VAttributeValue::Integer(value);
        return;
    }
    target = VAttributeValue::Reference(
        GivesSectionOffset(attribute.mReading)
            ? value
            : VDwarf2Section::UnitToSectionOffset(mUnitReader->mHeader, value));
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
