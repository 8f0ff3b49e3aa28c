#include "host/VDWARFReader.h"

#include "core/HostText.h"
#include "core/VElfResourceManager.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

void VDWARFReader::InitLanguage(std::int32_t language) {
    VElfResourceManager::Instance().SetLanguage(language);
}

void VDWARFReader::ReadAllTypes(bool readAllTypes) {
    mReadAllTypes = readAllTypes;
}

bool VDWARFReader::IsReadAllTypes() const {
    return mReadAllTypes;
}

void VDWARFReader::SetPhase(ReadPhase phase) const {
    if (PhaseCallback) {
        PhaseCallback(phase);
    }
}

void VDWARFReader::SetRemarks(const ReadRemarks& remarks) {
    mRemarks = remarks;
}

void VDWARFReader::SetFacts(const ReadFacts& facts) {
    mFacts = facts;
}

void VDWARFReader::SetProgressValue(std::int32_t value) {
    if (SetProgressValueCallback) {
        SetProgressValueCallback(value);
    }
}

void VDWARFReader::SetProgressInterval(std::int32_t start, std::int32_t end) {
    if (SetProgressIntervalCallback) {
        SetProgressIntervalCallback(start, end);
    }
}

void VDWARFReader::SetProgressText(const char* text) {
    if (SetProgressTextCallback) {
        SetProgressTextCallback(ToHostText(text));
    }
}

void VDWARFReader::SignalError(std::int32_t severity, std::uint32_t code, const char* firstText,
                               const char* secondText) {
    if (SignalErrorCallback) {
        SignalErrorCallback(static_cast<Contract::Interfaces::ErrorSeverity>(severity), code,
                            ToHostText(firstText), ToHostText(secondText));
    }
}

void VDWARFReader::Dispose() {}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
