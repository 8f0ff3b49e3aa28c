// The way back from a running read to the host's reader. The read sees only the wrapper; wrapper
// and bridge live on the stack of one `VDWARFReader::Read`.
#pragma once

#include "host/ReadPhase.h"

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class ReadFacts;
class ReadRemarks;
class VDWARFReader;

/// Refers to the reader for the length of one read.
class VDWARFReaderWrapperBridge {
public:
    explicit VDWARFReaderWrapperBridge(VDWARFReader& reader)
        : mReader(reader) {}

    [[nodiscard]] VDWARFReader& GetReader() const { return mReader; }

private:
    VDWARFReader& mReader;
};

/// What a read asks and reports of its reader. Each operation calls its namesake there.
class VDWARFReaderWrapper {
public:
    /// Borrows the bridge.
    explicit VDWARFReaderWrapper(VDWARFReaderWrapperBridge* bridge)
        : mBridge(bridge) {}

    [[nodiscard]] bool IsReadAllTypes() const;
    void SetProgressValue(std::int32_t value);
    void SetProgressInterval(std::int32_t start, std::int32_t end);
    void SetProgressText(const char* text);
    void SetPhase(ReadPhase phase);
    void SetRemarks(const ReadRemarks& remarks);
    void SetFacts(const ReadFacts& facts);

private:
    VDWARFReaderWrapperBridge* mBridge;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
