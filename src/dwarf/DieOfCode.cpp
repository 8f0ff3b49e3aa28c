// How the walk over a unit skips the entries of code, and how it reads them after all when one of
// them is referred to. CodeEntries.h defines these entries.
#include "dwarf/VAbrTab.h"
#include "dwarf/VCompileUnitReader.h"
#include "dwarf/VDie2.h"
#include "dwarf/VDwarf2Section.h"
#include "nodes/VCompileUnitHeader.h"
#include "nodes/VDebugInfoNode.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

CodeEntry VDie2::CodeEntryHere() const {
    return mChoice == NodeChoice::WithoutCode || mChoice == NodeChoice::WithoutBodies
               ? CodeEntryBySurroundings()
               : CodeEntry::Kept;
}

CodeEntry VDie2::CodeEntryBySurroundings() const {
    if (mOpenEntries.empty()) {
        return CodeEntry::Kept;
    }
    switch (mOpenEntries.back().surroundings) {
    case Surroundings::Function:
    case Surroundings::FunctionOfBody:
        return mItem->mCodeEntry;
    case Surroundings::CodeOfFunction:
        return mItem->mCodeEntry != CodeEntry::Parameter ? mItem->mCodeEntry : CodeEntry::Kept;
    default:
        return CodeEntry::Kept;
    }
}

bool VDie2::SkipAttributes(std::uint32_t& type) {
    VDieFormValue skipped;
    for (const TDieAttribute& step : mAbbrevTable->SkippingStepsOf(*mItem)) {
        mBuffer->MoveOffset(step.mSkip);
        if (ReadFormValue(step, skipped) && step.mAttribute == AttributeTarget::Type) {
            type = TypeOffsetOf(step, skipped);
        }
        if (mBuffer->HasPassedEnd()) {
            break;
        }
    }
    return !mBuffer->HasPassedEnd();
}

VDie2::Entry VDie2::SkipEntry(std::int32_t unitOffset, std::uint32_t recordNumber) {
    std::uint32_t type = 0;
    if (!SkipAttributes(type)) {
        return Entry::Unknown;
    }
    mSection->mSkipped.Add();
    if (mItem->mBodyEntry != BodyEntry::Kept) {
        mSection->mSkipped.NoteInBody();
    }
    const std::uint32_t nodeRecord = VDebugInfoNode::TakeNodeRecord();
    if (mItem->mHasChildren == 1) {
        mOpenEntries.push_back({.surroundings = SurroundingsInSkipped(),
                                .isInFunction = true,
                                .unitOffset = unitOffset,
                                .recordNumber = recordNumber,
                                .nodeRecord = nodeRecord,
                                .type = type});
    } else if (type != 0) {
        NoteSkippedType(type);
    }
    return Entry::Skipped;
}

bool VDie2::IsSkippedAgain(std::int32_t unitOffset) const {
    return mChoice == NodeChoice::SkippedOfBodies && CodeEntryBySurroundings() != CodeEntry::Kept &&
           mSection->mDieNodes.Find(VDwarf2Section::UnitToSectionOffset(
               mUnitReader->mHeader, static_cast<std::uint32_t>(unitOffset))) == nullptr;
}

VDie2::Entry VDie2::SkipAgain(std::int32_t unitOffset, std::uint32_t recordNumber) {
    std::uint32_t type = 0;
    // The abbreviation of a variable has no steps for skipping it.
    const bool isSkipped = mItem->mCodeEntry == CodeEntry::Variable
                               ? DecodeEntry(unitOffset, recordNumber) == Entry::Decoded
                               : SkipAttributes(type);
    if (!isSkipped) {
        return Entry::Unknown;
    }
    static_cast<void>(VDebugInfoNode::TakeNodeRecord());
    if (mItem->mHasChildren == 1) {
        mOpenEntries.push_back(
            {.surroundings = Surroundings::CodeOfFunction, .isInFunction = true});
    }
    return Entry::Skipped;
}

VDie2::Entry VDie2::ReadVariableOfCode(std::int32_t unitOffset, std::uint32_t recordNumber) {
    const std::int32_t attributesStart = mBuffer->GetOffset();
    const TAbrTabItem* item = mItem;
    const Entry entry = DecodeEntry(unitOffset, recordNumber);
    if (entry != Entry::Decoded) {
        return entry;
    }
    if (mHasLocation && mIsRegisterOrStackLocation) {
        SkipVariable();
        return Entry::Skipped;
    }
    if (!MakeWaitingNodes()) {
        return entry;
    }
    mItem = item;
    mBuffer->SetOffset(attributesStart);
    return DecodeEntry(unitOffset, recordNumber);
}

void VDie2::SkipVariable() {
    mSection->mSkipped.Add();
    static_cast<void>(VDebugInfoNode::TakeNodeRecord());
    VSkippedVariable variable{.mOffset = mOffset};
    if (mSpecification.IsReference()) {
        variable.mSpecification = static_cast<std::uint32_t>(mSpecification.mValue);
    }
    if (mTypeRef != 0) {
        variable.mType = mTypeRefIsSectionOffset
                             ? mTypeRef
                             : VDwarf2Section::UnitToSectionOffset(mUnitReader->mHeader, mTypeRef);
    }
    if (variable.mSpecification != 0 || (variable.mType != 0 && mManner == ReadingManner::Full)) {
        mSection->mSkipped.AddVariable(variable);
    }
}

bool VDie2::MakeWaitingNodes() {
    if (mOpenEntries.empty() || mOpenEntries.back().node != nullptr) {
        return false;
    }
    VCompileUnitHeader* header = &mUnitReader->mHeader;
    // Code is in a function, which has a node. Searched from the inside, since entries nest deeply.
    auto waiting = mOpenEntries.end();
    while ((waiting - 1)->node == nullptr) {
        --waiting;
    }
    for (; waiting != mOpenEntries.end(); ++waiting) {
        mBuffer->SetOffset(waiting->unitOffset);
        ReadAbbrevCode();
        DecodeEntry(waiting->unitOffset, waiting->recordNumber);
        mSection->mSkipped.Remove();
        const std::uint32_t next = VDebugInfoNode::SetNextNodeRecord(waiting->nodeRecord);
        MapCurrentDieToNode(header, (waiting - 1)->node);
        VDebugInfoNode::SetNextNodeRecord(next);
        waiting->node = mNode;
    }
    return true;
}

void VDie2::OpenCurrentEntry() {
    OpenEntry entry{.node = mNode};
    const Surroundings outer =
        mOpenEntries.empty() ? Surroundings::Other : mOpenEntries.back().surroundings;
    const bool isOuterCode = outer != Surroundings::Other && outer != Surroundings::Body;
    entry.isInFunction = !mOpenEntries.empty() && mOpenEntries.back().isInFunction;
    if (mTag == DW_TAG_subprogram) {
        entry.surroundings = Surroundings::Function;
        entry.isInFunction = true;
    } else if (isOuterCode && IsCodeScope(mTag)) {
        entry.surroundings = Surroundings::CodeOfFunction;
    } else if (TellsBodiesApart() && HasBody(mTag)) {
        entry.surroundings = Surroundings::Body;
    }
    if (MakesSkippedNodes() && entry.surroundings != Surroundings::Other) {
        TakeOffChildren(*mNode);
    }
    mOpenEntries.push_back(entry);
}

void VDie2::TakeOffChildren(VDebugInfoNode& node) {
    for (VDebugInfoNode* children = node.DetachChildren(); children != nullptr;) {
        VDebugInfoNode::TakeNext(children);
    }
}

void VDie2::MakeSkippedNode(VCompileUnitHeader* header) {
    VDebugInfoNode* parent = InnermostOpenNode();
    mNode = mSection->mDieNodes.Find(mOffset);
    if (mNode == nullptr) {
        mNode = CreateNode(header, parent);
        mSection->mSkipped.Remove();
        mMadeNodes.push_back(mNode);
        return;
    }
    VDebugInfoNode::SetNextNodeRecord(static_cast<std::uint32_t>(mNode->GetNodeRecord()) + 1);
    if (!mOpenEntries.empty() && mOpenEntries.back().surroundings != Surroundings::Other &&
        mTag != DW_TAG_compile_unit) {
        parent->AddChild(mNode);
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
