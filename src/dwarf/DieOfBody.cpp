// How the walk over a unit skips the entries in the bodies of types, and how it reads a body
// later. BodyEntries.h defines these entries.
#include "dwarf/VAbrTab.h"
#include "dwarf/VCompileUnitReader.h"
#include "dwarf/VDie2.h"
#include "dwarf/VDwarf2Section.h"
#include "nodes/VCompileUnitHeader.h"
#include "nodes/VDebugInfoNode.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

bool StandsInSubprogram(const VDebugInfoNode& node) {
    const VDebugInfoNode* parent = node.GetParent();
    // Passes that move entries of a damaged file into other scopes may close a circle.
    for (int link = 0; link < sMaximumChainLength && parent != nullptr; ++link) {
        if (parent->GetTag() == DW_TAG_subprogram) {
            return true;
        }
        parent = parent->GetParent();
    }
    return false;
}

} // namespace

BodyEntry VDie2::BodyEntryHere() const {
    if (mChoice != NodeChoice::WithoutBodies || mOpenEntries.empty()) {
        return BodyEntry::Kept;
    }
    const BodyEntry entry = mItem->mBodyEntry;
    switch (mOpenEntries.back().surroundings) {
    case Surroundings::Body:
        return entry != BodyEntry::Argument ? entry : BodyEntry::Kept;
    case Surroundings::FunctionOfBody:
        return entry == BodyEntry::Argument ? entry : BodyEntry::Kept;
    default:
        return BodyEntry::Kept;
    }
}

VDie2::Surroundings VDie2::SurroundingsInSkipped() const {
    return mItem->mBodyEntry == BodyEntry::Kept ? Surroundings::CodeOfFunction
                                                : Surroundings::FunctionOfBody;
}

bool VDie2::TellsBodiesApart() const {
    return mChoice == NodeChoice::WithoutBodies ||
           (MakesSkippedNodes() && mSection->LeavesBodies());
}

void VDie2::NoteSkippedType(std::uint32_t offset) {
    if (mManner == ReadingManner::Full) {
        mSection->mSkipped.References().Note(offset);
    }
}

std::uint32_t VDie2::ReadBody(VDebugInfoNode& type) {
    VCompileUnitHeader* header = &mUnitReader->mHeader;
    recCnt = static_cast<std::uint32_t>(type.GetTagRecord());
    VDebugInfoNode::SetNextNodeRecord(static_cast<std::uint32_t>(type.GetNodeRecord()) + 1);
    const auto unitOffset =
        static_cast<std::int32_t>(VDwarf2Section::SectionToUnitOffset(*header, type.GetOffset()));
    mBuffer->SetOffset(unitOffset);
    if (ReadAbbrevCode() == Entry::Decoded && DecodeEntry(unitOffset, recCnt) == Entry::Decoded &&
        mItem->mHasChildren == 1) {
        mNode = &type;
        OpenCurrentEntry();
        mOpenEntries.back().isInFunction = StandsInSubprogram(type);
        while (!mOpenEntries.empty()) {
            ReadNextEntry(header);
        }
    }
    return VDwarf2Section::UnitToSectionOffset(*header,
                                               static_cast<std::uint32_t>(mBuffer->GetOffset()));
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
