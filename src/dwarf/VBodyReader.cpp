#include "dwarf/VBodyReader.h"

#include "container/VElfFile.h"
#include "dwarf/VDwarf2Section.h"
#include "nodes/VCompileUnitHeader.h"
#include "nodes/VDebugInfoNode.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

VBodyReader::VBodyReader(VDwarf2Section& section, VCompileUnitHeader& header)
    : mUnitReader(section, header)
    , mRecordsBefore(recCnt)
    , mNextNodeRecord(VDebugInfoNode::SetNextNodeRecord(0)) {
    mUnitReader.mBuffer = section.LendUnitBuffer();
    header.mUnitReader = &mUnitReader;
    if (section.LoadCompileUnit(mUnitReader)) {
        mDie.emplace(mUnitReader, NodeChoice::SkippedOfBodies);
        if (section.mElfFile->mManner == ReadingManner::Full) {
            mDie->ReadUnitFacts();
        }
    }
}

VBodyReader::~VBodyReader() {
    mUnitReader.mHeader.mUnitReader = nullptr;
    mUnitReader.mSection.TakeUnitBuffer(std::move(mUnitReader.mBuffer));
    recCnt = mRecordsBefore;
    VDebugInfoNode::SetNextNodeRecord(mNextNodeRecord);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
