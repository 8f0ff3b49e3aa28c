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

    /// Reads a file and delivers it, unless another read is running and the input doesn't wait for
    /// it. Exceptions of the read end here.
    Outcome Read(const Input& input, DataModel::Factory::HostDataModel& model);

    /// Makes the running read throw `ReadCancelled` at its next callback or delivered object, and
    /// waiting reads give up.
    void Cancel();
    /// The flag that a data model of this reader checks.
    [[nodiscard]] const std::atomic<bool>& IsCancelled() const { return mIsCancelled; }

    void Remember(Outcome outcome);
    [[nodiscard]] Outcome LastOutcome() const;
    /// A remark of the latest read; nothing for an index after the last one.
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
    /// Number of calls of `Cancel`: a call made before a read began to wait doesn't apply to it.
    std::atomic<std::uint64_t> mCancelCount = 0;
};

using ReaderTable = HandleTable<brindle_reader, ReaderState>;

} // namespace Tessel::Norn::Brindle::CInterface
