#include "host/VDWARFReaderWrapper.h"

#include "host/VDWARFReader.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

bool VDWARFReaderWrapper::IsReadAllTypes() const {
    return mBridge->GetReader().IsReadAllTypes();
}

void VDWARFReaderWrapper::SetProgressValue(std::int32_t value) {
    mBridge->GetReader().SetProgressValue(value);
}

void VDWARFReaderWrapper::SetProgressInterval(std::int32_t start, std::int32_t end) {
    mBridge->GetReader().SetProgressInterval(start, end);
}

void VDWARFReaderWrapper::SetProgressText(const char* text) {
    mBridge->GetReader().SetProgressText(text);
}

void VDWARFReaderWrapper::SetRemarks(const ReadRemarks& remarks) {
    mBridge->GetReader().SetRemarks(remarks);
}

void VDWARFReaderWrapper::SetFacts(const ReadFacts& facts) {
    mBridge->GetReader().SetFacts(facts);
}

void VDWARFReaderWrapper::SetPhase(ReadPhase phase) {
    mBridge->GetReader().SetPhase(phase);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
