// A reader behind a handle of the C interface: its settings, how its last call ended, and the read
// itself.
#pragma once

#include "HandleTable.h"
#include "Input.h"
#include "brindle.h"

#include "core/ReadRemarks.h"
#include "host/HostDataModel.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace Tessel::Norn::Brindle::CInterface {

/// May be used on any thread.
class ReaderState {
public:
    void SetReadAllTypes(bool readAllTypes);
    void SetCallbacks(const brindle_callbacks& callbacks);

    /// Reads a file and delivers it, unless a read runs in the process and the input doesn't wait
    /// for it. Whatever the read throws ends here.
    Outcome Read(const Input& input, DataModel::Factory::HostDataModel& model);

    /// Makes the read that runs throw `ReadCancelled` with its next callback or delivered object,
    /// and those that wait wait no longer.
    void Cancel();
    /// The flag that a data model of this reader looks at.
    [[nodiscard]] const std::atomic<bool>& IsCancelled() const { return mIsCancelled; }

    void Remember(Outcome outcome);
    [[nodiscard]] Outcome LastOutcome() const;
    /// A remark of the latest read; nothing behind the last one.
    [[nodiscard]] std::optional<Reader::DWARF::ReadRemark> RemarkAt(std::size_t index) const;

private:
    void SetRemarks(Reader::DWARF::ReadRemarks remarks);
    Outcome ReadAlone(const Input& input, DataModel::Factory::HostDataModel& model);
    Outcome RunRead(const Input& input);

    /// Protects all members below; not held during a read.
    mutable std::mutex mMutex;
    bool mReadAllTypes = false;
    brindle_callbacks mCallbacks = {};
    Outcome mLastOutcome;
    Reader::DWARF::ReadRemarks mRemarks;

    std::atomic<bool> mIsCancelled = false;
    /// Counts the calls of `Cancel`: one that came before a read began to wait is not for it.
    std::atomic<std::uint64_t> mCancelCount = 0;
};

using ReaderTable = HandleTable<brindle_reader, ReaderState>;

} // namespace Tessel::Norn::Brindle::CInterface
