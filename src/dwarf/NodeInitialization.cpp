// How nodes take over the attributes of their decoded entry. Texts that don't outlive the entry are
// copied into the tree's arena.
#include "container/VElfFile.h"
#include "dwarf/VDie2.h"
#include "dwarf/VDwarf2Section.h"
#include "nodes/VDebugInfoNodeArray.h"
#include "nodes/VDebugInfoNodeScopes.h"
#include "nodes/VDebugInfoNodeStructures.h"
#include "nodes/VDebugInfoNodeVariable.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

bool HasStorage(const VDie2& die) {
    return die.mHasEncoding || die.mBitSize != 0 || die.mBitOffset != 0 || die.mHasDataBitOffset;
}

BitNumbering NumberingOf(const VDie2& die) {
    return die.mHasDataBitOffset                            ? BitNumbering::Structure
           : die.mHasBitOffset || die.mBitFieldFromLocation ? BitNumbering::Storage
                                                            : BitNumbering::Unsaid;
}

/// True if somebody may ask for the linkage name: for variables and the members that declare them
/// it leads to a symbol, and for entries without a name it replaces the name.
bool IsLinkageNameWanted(const VDie2& die) {
    return die.mHasLinkageName &&
           (die.mTag == DW_TAG_variable || die.mTag == DW_TAG_member || !die.mHasName ||
            *die.mName.mStart == '\0' || VElfOptions::mDumpDebugInfoNodes != 0);
}

/// Only the dump of nodes shows it.
bool IsAccessibilityWanted(const VDie2& die) {
    return die.mAccessibility.IsDefined() && VElfOptions::mDumpDebugInfoNodes != 0;
}

bool HasExtras(const VDie2& die) {
    return HasStorage(die) || die.mSpecification.IsDefined() || IsLinkageNameWanted(die) ||
           IsAccessibilityWanted(die);
}

VAttributeString Keep(const VAttributeString& text, VDwarf2Section& section) {
    return {text.mDefined ? section.mTexts.Keep(text.mValue) : std::string_view(), text.mDefined};
}

} // namespace

void VDebugInfoNode::InitFromDie(const VDie2& die, VDwarf2Section& section) {
    mTagRecord = static_cast<std::int32_t>(die.mRecordNumber);
    mByteSize = static_cast<std::int32_t>(die.mByteSize);
    mHasByteSize = die.mHasByteSize;
    mIsDeclaration = die.mIsDeclaration;
    mIsExternal = die.mIsExternal;
    mHasNameAttribute = die.mHasName;
    mBitFieldFromLocation = die.mBitFieldFromLocation;
    mType =
        VNodeReference(die.mTypeRef != 0 && !die.mTypeRefIsSectionOffset
                           ? VDwarf2Section::UnitToSectionOffset(*mCompileUnitHeader, die.mTypeRef)
                           : die.mTypeRef);
    if (HasExtras(die)) {
        mExtrasOrDelivery.Set(MakeExtras(die, section));
        mHasExtras = true;
    }
}

VNodeExtras& VDebugInfoNode::MakeExtras(const VDie2& die, VDwarf2Section& section) {
    auto* extras = section.mArena.Create<VNodeExtras>();
    extras->mHasLinkageName = die.mHasLinkageName;
    extras->mLinkageName = section.mTexts.Keep(die.mLinkageName);
    extras->mSpecification = VNodeReference(static_cast<std::uint32_t>(die.mSpecification.mValue));
    extras->mSpecificationKind = KindOf(die.mSpecification);
    extras->mIsSpecificationOrigin = die.mIsAbstractOrigin;
    extras->mAccessibility = static_cast<std::uint32_t>(die.mAccessibility.mValue);
    extras->mAccessibilityKind = KindOf(die.mAccessibility);
    if (HasStorage(die)) {
        extras->mStorage = section.mArena.Create<VNodeStorage>(
            VNodeStorage{die.mBitOffset, die.mBitSize, die.mEncoding, die.mHasEncoding,
                         die.mHasOtherByteOrder, NumberingOf(die)});
    }
    return *extras;
}

void VDebugInfoNodeCompileUnit::InitFromDie(const VDie2& die, VDwarf2Section& section) {
    VDebugInfoNode::InitFromDie(die, section);
    mCompUnitDir = Keep(die.GetRareAttributes().mCompDir, section);
    // If units overlap, the tree holds only the first; no pass visits the others.
    if (section.mElfFile->mManner == ReadingManner::Full) {
        mUnitPath = Keep(die.GetRareAttributes().mUnitPath, section);
        mFirstKindOfCompileUnit = this;
    }
}

void VDebugInfoNodeVariable::InitFromDie(const VDie2& die, VDwarf2Section& section) {
    VDebugInfoNode::InitFromDie(die, section);
    mLocationAddress = die.mLocationAddress;
    mHasLocation = die.mHasLocation;
    mIsFromTombstone = die.mIsFromTombstone;
    mIsComputed = die.mIsComputed;
    mIsRegisterOrStackLocation = die.mIsRegisterOrStackLocation;
}

void VDebugInfoNodeMember::InitFromDie(const VDie2& die, VDwarf2Section& section) {
    VDebugInfoNode::InitFromDie(die, section);
    mMemberOffset = die.mMemberOffset;
    mHasMemberOffset = die.mHasMemberLocation;
}

void VDebugInfoNodeInheritance::InitFromDie(const VDie2& die, VDwarf2Section& section) {
    VDebugInfoNode::InitFromDie(die, section);
    mMemberOffset = die.mMemberOffset;
    mHasMemberOffset = die.mHasMemberLocation;
}

void VDebugInfoNodeArray::InitFromDie(const VDie2& die, VDwarf2Section& section) {
    VDebugInfoNode::InitFromDie(die, section);
    const VRareDieAttributes& attributes = die.GetRareAttributes();
    mStrideInBits = attributes.mStrideInBits;
    mHasComputedPlace = attributes.mHasComputedPlace;
    mHasStrides = mStrideInBits != 0;
    mIsColumnMajor = die.IsColumnMajor();
}

void VDebugInfoNodeSubrange::InitFromDie(const VDie2& die, VDwarf2Section& section) {
    VDebugInfoNode::InitFromDie(die, section);
    const VRareDieAttributes& attributes = die.GetRareAttributes();
    mStrideInBits = attributes.mStrideInBits;
    mHasComputedPlace = attributes.mHasComputedPlace;
    VDebugInfoNodeArray* array = GetParent() != nullptr ? GetParent()->AsArrayNode() : nullptr;
    if (array != nullptr && (mStrideInBits != 0 || mHasComputedPlace)) {
        array->SetHasStrides();
    }
    mLowerBound =
        attributes.mLowerBound.IsDefined() ? attributes.mLowerBound : die.DefaultLowerBoundOfUnit();
    if (!attributes.mHasComputedLowerBound) {
        mUpperBound = attributes.mUpperBound;
    }
    mCount = attributes.mCount;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
