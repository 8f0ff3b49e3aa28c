// A reader behind a handle of the C interface: its settings, how its last call ended, and the read
// itself.
#pragma once

#include "HandleTable.h"
#include "brindle.h"

#include "core/ReadRemarks.h"
#include "host/DWARFContainerType.h"
#include "host/HostDataModel.h"

#include <atomic>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>

namespace Tessel::Norn::Brindle::CInterface {

/// How a call ended, with a text where the status alone says too little.
struct Outcome {
    brindle_status status = BRINDLE_OK;
    std::string text = {};
};

/// May be used on any thread.
class ReaderState {
public:
    void SetReadAllTypes(bool readAllTypes);
    void SetCallbacks(const brindle_callbacks& callbacks);

    /// Reads a file and delivers it, unless a read runs in the process. Whatever the read throws
    /// ends here.
    Outcome Read(const std::string& path, Reader::DWARF::DWARFContainerType container,
                 DataModel::Factory::HostDataModel& model);

    /// Makes the read that runs throw `ReadCancelled` with its next callback or delivered object.
    void Cancel() { mIsCancelled = true; }
    /// The flag that a data model of this reader looks at.
    [[nodiscard]] const std::atomic<bool>& IsCancelled() const { return mIsCancelled; }

    void Remember(Outcome outcome);
    [[nodiscard]] Outcome LastOutcome() const;
    /// A remark of the latest read; nothing behind the last one.
    [[nodiscard]] std::optional<Reader::DWARF::ReadRemark> RemarkAt(std::size_t index) const;

private:
    void SetRemarks(Reader::DWARF::ReadRemarks remarks);
    Outcome RunRead(const std::string& path, Reader::DWARF::DWARFContainerType container);

    /// Protects all members below; not held during a read.
    mutable std::mutex mMutex;
    bool mReadAllTypes = false;
    brindle_callbacks mCallbacks = {};
    Outcome mLastOutcome;
    Reader::DWARF::ReadRemarks mRemarks;

    std::atomic<bool> mIsCancelled = false;
};

using ReaderTable = HandleTable<brindle_reader, ReaderState>;

} // namespace Tessel::Norn::Brindle::CInterface
