// The run of the section reader: what it does first and last, and the reading of each unit. The
// steps themselves are elsewhere.
#include "container/VElfFile.h"
#include "diagnostics/ElfLog.h"
#include "dwarf/VCompileUnitReader.h"
#include "dwarf/VDie2.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/VCLIFactoryWrapper.h"
#include "host/VDWARFReaderWrapper.h"

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

void VDwarf2Section::CreateUnknownEntryTypes() {
    VCLIFactoryWrapper& factory = *mElfFile->mFactory;
    const std::uint64_t globalNamespace = factory.GetGlobalNamespace();
    for (std::size_t index = 0; index < mUnknownEntryTypes.size(); ++index) {
        mUnknownEntryTypes[index] = sGetSymbolTableBaseEntryTypeObjId(
            factory, globalNamespace, kUnknownEntryTypeSizes[index]);
    }
}

bool VDwarf2Section::ProcessCompileUnits() {
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

bool VDwarf2Section::ProcessCompileUnit(VCompileUnitHeader& header) {
    VCompileUnitReader reader(*this, header);
    reader.mBuffer = std::move(mUnitBuffer);
    header.mUnitReader = &reader;
    bool result = LoadCompileUnit(reader);
    if (result) {
        VDie2 root(reader);
        if (mElfFile->mManner == ReadingManner::Full) {
            root.ReadUnitFacts();
            mSplitUnitCount += reader.mFacts.mIsSplit ? 1 : 0;
        }
        while (result && !reader.mBuffer->IsEOF()) {
            result = root.ReadDieTree(&header);
        }
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

} // namespace Tessel::Norn::Brindle::Reader::DWARF
