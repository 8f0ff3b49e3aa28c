// The run of the section reader: its first and last steps, and the reading of each unit. The other
// steps are elsewhere.
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

/// Time of the log's clock at the start of the section.
double gLogBeginSectionTimer = 0;

/// The sample that decides whether skipping bodies pays: one part of so many, large enough to
/// predict the rest and small enough that reading it again costs little.
constexpr std::uint64_t sShareOfSample = 32;
constexpr std::uint64_t sLargestShareOfSample = 8;
constexpr std::uint64_t sSmallestSample = std::uint64_t{64} * 1024;

/// If variables lead to this many of ten entries in bodies, all bodies are read at once.
constexpr std::size_t sMostOfTen = 6;

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
    bool isRead = MapCompileUnits();
    if (isRead) {
        if (mReader != nullptr && !mReader->IsReadAllTypes()) {
            LeaveBodies();
        }
        isRead = ProcessCompileUnits();
    }
    mElfFile->mFacts.SetEntries(recCnt);
    AddRemarks();
    if (!isRead) {
        return false;
    }
    TellPhase(mReader, ReadPhase::Resolving);
    ResolveNodes();
    if (mRequiresBodies) {
        ForgetEntries();
        if (!ProcessCompileUnits()) {
            return false;
        }
        ResolveNodes();
    }
    TellPhase(mReader, ReadPhase::Delivering);
    if (EmitNodes() && VElfOptions::mIsLogFile != 0) {
        elflog("\n%s: End of DWARF2 Debug Section (dt:%.3f ms) ", GetLogTimeStamp(),
               GetLogTimeMs() - gLogBeginSectionTimer);
        elfelog("\n");
    }
    return true;
}

bool VDwarf2Section::CanLeaveBodies() const {
    // Type units link bodies before it is known which of them are needed. The log shows the order
    // of events.
    return !KeepsAllEntries() && VElfOptions::mIsLogFile == 0 &&
           std::ranges::none_of(mCompileUnits,
                                [](const auto* unit) { return unit->mTypeOffset != 0; });
}

bool VDwarf2Section::KeepsAllEntries() const {
    // If units overlap, the first of several entries at one place counts, whatever it is.
    return mKeepsAllEntries || VElfOptions::mDumpDebugInfoNodes != 0 || !AreUnitsApart();
}

bool VDwarf2Section::HasReadSample(std::size_t unitCount) const {
    if (mIsReadAgain || unitCount == mCompileUnits.size()) {
        return false;
    }
    const std::uint64_t sectionSize = mElfFile->mSecDebugInfo.sh_size;
    const std::uint64_t size = mCompileUnits[unitCount]->mSectionOffset;
    return size >= sectionSize / sShareOfSample && size >= sSmallestSample &&
           size <= sectionSize / sLargestShareOfSample;
}

bool VDwarf2Section::DoVariablesLeadToMostBodies() {
    mDieNodes.Complete();
    const std::size_t skipped = mSkipped.Count();
    ResolveNodes();
    const std::size_t made = skipped - mSkipped.Count();
    return mRequiresBodies || made > mSkipped.CountInBodies() / 10 * sMostOfTen;
}

void VDwarf2Section::ForgetEntries() {
    mDieNodes.Clear();
    mArena.Clear();
    mSkipped = {};
    mUnitLinks = {};
    mTexts.Restart();
    if (mElfFile->mManner == ReadingManner::Classic) {
        // The result there depends on whether a linkage name was looked up before.
        mElfFile->mSymbolNamesMap.Restart();
    }
    VDebugInfoNode::SetNextNodeRecord(mFirstNodeRecord);
    recCnt = 0;
    mLeavesBodies = false;
    mRequiresBodies = false;
    mIsReadAgain = true;
}

void VDwarf2Section::TellProgress(std::uint32_t sectionOffset) {
    if (mReader == nullptr || (mIsReadAgain && sectionOffset <= mToldOffset)) {
        return;
    }
    mReader->SetProgressValue(static_cast<std::int32_t>(sectionOffset));
    mToldOffset = sectionOffset;
}

bool VDwarf2Section::ProcessCompileUnits() {
    mFirstNodeRecord = VDebugInfoNode::NextNodeRecord();
    mKeepsAllEntries = KeepsAllEntries();
    for (std::size_t next = 0; next < mCompileUnits.size();) {
        if (!ProcessCompileUnit(*mCompileUnits[next++])) {
            mDieNodes.Complete();
            if (VElfOptions::mIsLogFile != 0) {
                elflog("%s: Failed to process debug section.", GetLogTimeStamp());
            }
            return false;
        }
        if (mLeavesBodies && HasReadSample(next)) {
            const bool leavesBodies = !DoVariablesLeadToMostBodies();
            ForgetEntries();
            mLeavesBodies = leavesBodies;
            next = 0;
        }
    }
    mUnitBuffer.reset();
    mDieNodes.Complete();
    return true;
}

bool VDwarf2Section::AreUnitsApart() const {
    return std::ranges::adjacent_find(mCompileUnits, [](const auto* unit, const auto* next) {
               return std::uint64_t{unit->mSectionOffset} + unit->mLength > next->mSectionOffset;
           }) == mCompileUnits.end();
}

bool VDwarf2Section::ProcessCompileUnit(VCompileUnitHeader& header) {
    const std::size_t skippedBefore = mSkipped.Count();
    std::vector<VDebugInfoNode*> made;
    const NodeChoice choice = mKeepsAllEntries ? NodeChoice::All
                              : mLeavesBodies  ? NodeChoice::WithoutBodies
                                               : NodeChoice::WithoutCode;
    const bool countsReferences = mLeavesBodies && mElfFile->mManner == ReadingManner::Full;
    if (countsReferences) {
        mSkipped.References().EnterUnit(header);
    }
    const bool result = ReadUnit(header, choice, made);
    header.mHasSkippedEntries = mSkipped.Count() != skippedBefore;
    if (countsReferences) {
        mSkipped.References().LeaveUnit(mDieNodes);
    }
    return result;
}

std::size_t VDwarf2Section::EntriesBefore(std::size_t index) const {
    // Where entries are skipped, they come in the order of their offsets.
    const auto nodes = mDieNodes.InOffsetOrder();
    return mSkipped.Count() == 0 ? index
                                 : static_cast<std::uint32_t>(nodes[index]->GetNodeRecord()) -
                                       static_cast<std::uint32_t>(nodes.front()->GetNodeRecord());
}

bool VDwarf2Section::ReadUnit(VCompileUnitHeader& header, NodeChoice choice,
                              std::vector<VDebugInfoNode*>& made) {
    const bool isFirstTime = choice != NodeChoice::Skipped && header.mIndex >= mCountedUnits;
    mCountedUnits = std::max(mCountedUnits, header.mIndex + 1);
    VCompileUnitReader reader(*this, header);
    reader.mBuffer = std::move(mUnitBuffer);
    header.mUnitReader = &reader;
    bool result = LoadCompileUnit(reader);
    if (result) {
        VDie2 root(reader, choice);
        if (mElfFile->mManner == ReadingManner::Full) {
            root.ReadUnitFacts();
            mSplitUnitCount += reader.mFacts.mIsSplit && isFirstTime ? 1 : 0;
        }
        while (result && !reader.mBuffer->IsEOF()) {
            result = root.ReadDieTree(&header);
        }
        made.insert(made.end(), root.GetMadeNodes().begin(), root.GetMadeNodes().end());
    }
    if (isFirstTime && header.mTypeOffset != 0) {
        mElfFile->mFacts.AddTypeUnit();
    } else if (isFirstTime) {
        mElfFile->mFacts.AddUnit(header.mDwarfVersion, reader.mFacts.mLanguage, reader.mProducer);
    }
    header.mUnitReader = nullptr;
    mUnitBuffer = std::move(reader.mBuffer);
    return result;
}

std::unique_ptr<VElfBuffer> VDwarf2Section::LendUnitBuffer() {
    return std::move(mUnitBuffer);
}

void VDwarf2Section::TakeUnitBuffer(std::unique_ptr<VElfBuffer> buffer) {
    mUnitBuffer = std::move(buffer);
}

std::vector<VDebugInfoNode*>
VDwarf2Section::ReadSkippedEntries(std::span<const std::uint32_t> offsets) {
    std::vector<VCompileUnitHeader*> units;
    for (const std::uint32_t offset : offsets) {
        const auto behind = std::ranges::upper_bound(mCompileUnits, offset, {},
                                                     &VCompileUnitHeader::mSectionOffset);
        if (behind != mCompileUnits.begin()) {
            units.push_back(*std::prev(behind));
        }
    }
    return ReadSkippedEntriesOf(units);
}

std::vector<VDebugInfoNode*> VDwarf2Section::ReadAllSkippedEntries() {
    return ReadSkippedEntriesOf(mCompileUnits);
}

std::vector<VDebugInfoNode*>
VDwarf2Section::ReadSkippedEntriesOf(const std::vector<VCompileUnitHeader*>& units) {
    const std::uint32_t recordsBefore = recCnt;
    const std::uint32_t nextNodeRecord = VDebugInfoNode::SetNextNodeRecord(0);
    std::vector<VDebugInfoNode*> made;
    for (VCompileUnitHeader* unit : units) {
        if (unit->mHasSkippedEntries) {
            unit->mHasSkippedEntries = false;
            ReadUnit(*unit, NodeChoice::Skipped, made);
        }
    }
    mUnitBuffer.reset();
    recCnt = recordsBefore;
    VDebugInfoNode::SetNextNodeRecord(nextNodeRecord);
    std::vector<VDebugInfoNode*> inOffsetOrder = made;
    std::ranges::sort(inOffsetOrder, {}, &VDebugInfoNode::GetOffset);
    mDieNodes.InsertAll(inOffsetOrder);
    return made;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
