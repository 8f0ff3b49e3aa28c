// The run of the section reader: what it does first and last, and the reading of each unit. The
// steps themselves are elsewhere.
#include "container/VElfFile.h"
#include "diagnostics/ElfLog.h"
#include "dwarf/VCompileUnitReader.h"
#include "dwarf/VDie2.h"
#include "dwarf/VDwarf2Section.h"
#include "host/VDWARFReaderWrapper.h"
#include "nodes/VDebugInfoNode.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Time of the log's clock when the section was begun.
double gLogBeginSectionTimer = 0;

void TellPhase(VDWARFReaderWrapper* reader, ReadPhase phase) {
    if (reader != nullptr) {
        reader->SetPhase(phase);
    }
}

} // namespace

bool VDwarf2Section::ProcessDebugSection() {
    const Elf64_Shdr& debugInfo = mElfFile->mSecDebugInfo;
    TellPhase(mReader, ReadPhase::Reading);
    if (mReader != nullptr) {
        mReader->SetProgressInterval(0, static_cast<std::int32_t>(debugInfo.sh_size));
    }
    if (VElfOptions::mIsLogFile != 0) {
        elflog("%s: Processing DWARF2 Debug Section: sh_offset = 0x%8.8x, sh_size = 0x%8.8x",
               GetLogTimeStamp(), static_cast<std::uint32_t>(debugInfo.sh_offset),
               static_cast<std::uint32_t>(debugInfo.sh_size));
        gLogBeginSectionTimer = GetLogTimeMs();
    }
    CreateUnknownEntryTypes();
    const bool isRead = MapCompileUnits() && ProcessCompileUnits();
    mElfFile->mFacts.SetEntries(recCnt);
    AddRemarks();
    if (!isRead) {
        return false;
    }
    TellPhase(mReader, ReadPhase::Resolving);
    ResolveNodes();
    TellPhase(mReader, ReadPhase::Delivering);
    if (EmitNodes() && VElfOptions::mIsLogFile != 0) {
        elflog("\n%s: End of DWARF2 Debug Section (dt:%.3f ms) ", GetLogTimeStamp(),
               GetLogTimeMs() - gLogBeginSectionTimer);
        elfelog("\n");
    }
    return true;
}

bool VDwarf2Section::ProcessCompileUnits() {
    // Where units overlap, the first of several entries at one place counts, whatever it is.
    mKeepsAllEntries =
        mKeepsAllEntries || VElfOptions::mDumpDebugInfoNodes != 0 || !AreUnitsApart();
    // NOLINTNEXTLINE(readability-use-anyofallof): reading is no question
    for (VCompileUnitHeader* header : mCompileUnits) {
        if (!ProcessCompileUnit(*header)) {
            if (VElfOptions::mIsLogFile != 0) {
                elflog("%s: Failed to process debug section.", GetLogTimeStamp());
            }
            return false;
        }
    }
    mUnitBuffer.reset();
    return true;
}

bool VDwarf2Section::AreUnitsApart() const {
    return std::ranges::adjacent_find(mCompileUnits, [](const auto* unit, const auto* next) {
               return std::uint64_t{unit->mSectionOffset} + unit->mLength > next->mSectionOffset;
           }) == mCompileUnits.end();
}

bool VDwarf2Section::ProcessCompileUnit(VCompileUnitHeader& header) {
    const std::size_t passedBefore = mDieNodes.PassedCount();
    std::vector<VDebugInfoNode*> made;
    const bool result =
        ReadUnit(header, mKeepsAllEntries ? NodeChoice::All : NodeChoice::WithoutCode, made);
    header.mHasPassedEntries = mDieNodes.PassedCount() != passedBefore;
    return result;
}

void VDwarf2Section::NoteReferencesOfPassed() const {
    for (const VPassedVariable& variable : mPassedVariables) {
        if (mDieNodes.Peek(variable.mOffset) == nullptr) {
            mDieNodes.NoteReferred(variable.mSpecification);
            mDieNodes.NoteReferred(variable.mType);
        }
    }
}

bool VDwarf2Section::ReadUnit(VCompileUnitHeader& header, NodeChoice choice,
                              std::vector<VDebugInfoNode*>& made) {
    VCompileUnitReader reader(*this, header);
    reader.mBuffer = std::move(mUnitBuffer);
    header.mUnitReader = &reader;
    bool result = LoadCompileUnit(reader);
    if (result) {
        VDie2 root(reader, choice);
        if (mElfFile->mManner == ReadingManner::Full) {
            root.ReadUnitFacts();
            mSplitUnitCount += reader.mFacts.mIsSplit && choice != NodeChoice::Missing ? 1 : 0;
        }
        while (result && !reader.mBuffer->IsEOF()) {
            result = root.ReadDieTree(&header);
        }
        made.insert(made.end(), root.GetMadeNodes().begin(), root.GetMadeNodes().end());
    }
    if (header.mTypeOffset != 0) {
        mElfFile->mFacts.AddTypeUnit();
    } else {
        mElfFile->mFacts.AddUnit(header.mDwarfVersion, reader.mFacts.mLanguage, reader.mProducer);
    }
    header.mUnitReader = nullptr;
    mUnitBuffer = std::move(reader.mBuffer);
    return result;
}

std::vector<VDebugInfoNode*>
VDwarf2Section::ReadPassedEntries(std::span<const std::uint32_t> offsets) {
    std::vector<VCompileUnitHeader*> units;
    for (const std::uint32_t offset : offsets) {
        const auto behind = std::ranges::upper_bound(mCompileUnits, offset, {},
                                                     &VCompileUnitHeader::mSectionOffset);
        if (behind != mCompileUnits.begin()) {
            units.push_back(*std::prev(behind));
        }
    }
    return ReadPassedEntriesOf(units);
}

std::vector<VDebugInfoNode*> VDwarf2Section::ReadAllPassedEntries() {
    return ReadPassedEntriesOf(mCompileUnits);
}

std::vector<VDebugInfoNode*>
VDwarf2Section::ReadPassedEntriesOf(const std::vector<VCompileUnitHeader*>& units) {
    const std::uint32_t recordsBefore = recCnt;
    const std::uint32_t nextNodeRecord = VDebugInfoNode::SetNextNodeRecord(0);
    std::vector<VDebugInfoNode*> made;
    for (VCompileUnitHeader* unit : units) {
        if (unit->mHasPassedEntries) {
            unit->mHasPassedEntries = false;
            ReadUnit(*unit, NodeChoice::Missing, made);
        }
    }
    mUnitBuffer.reset();
    recCnt = recordsBefore;
    VDebugInfoNode::SetNextNodeRecord(nextNodeRecord);
    for (VDebugInfoNode* node : made) {
        mDieNodes.Insert(node->GetOffset(), node);
    }
    return made;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
