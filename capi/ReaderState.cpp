#include "ReaderState.h"

#include "ReadGate.h"
#include "TableDataModel.h"

#include "core/ConsoleOutput.h"
#include "core/HostText.h"
#include "host/CurrentDataModel.h"
#include "host/VDWARFReader.h"

#include <exception>
#include <new>
#include <utility>

namespace Tessel::Norn::Brindle::CInterface {

using Contract::Interfaces::ErrorSeverity;
using Reader::DWARF::VDWARFReader;

namespace {

/// Connects a reader with the callbacks of the host for one read.
class CallbackBridge {
public:
    CallbackBridge(VDWARFReader& reader, const brindle_callbacks& callbacks,
                   const std::atomic<bool>& isCancelled)
        : mCallbacks(callbacks)
        , mIsCancelled(isCancelled) {
        reader.SignalErrorCallback = [this](ErrorSeverity severity, std::uint32_t code,
                                            const std::string& firstText,
                                            const std::string& message) {
            mMessage = message;
            Tell(mCallbacks.SignalError, static_cast<std::int32_t>(severity), code,
                 firstText.c_str(), message.c_str());
        };
        reader.SetProgressTextCallback = [this](const std::string& text) {
            TellProgress(mCallbacks.SetProgressText, text.c_str());
        };
        reader.SetProgressIntervalCallback = [this](std::int32_t start, std::int32_t end) {
            TellProgress(mCallbacks.SetProgressInterval, start, end);
        };
        reader.SetProgressValueCallback = [this](std::int32_t value) {
            TellProgress(mCallbacks.SetProgressValue, value);
        };
    }

    /// What the reader said of its failure.
    [[nodiscard]] const std::string& Message() const { return mMessage; }

private:
    template <typename... Parameters, typename... Arguments>
    void Tell(void (*function)(void*, Parameters...), Arguments... arguments) const {
        if (function != nullptr) {
            function(mCallbacks.user_data, arguments...);
        }
    }

    template <typename... Parameters, typename... Arguments>
    void TellProgress(void (*function)(void*, Parameters...), Arguments... arguments) const {
        Tell(function, arguments...);
        if (mIsCancelled) {
            throw ReadCancelled();
        }
    }

    const brindle_callbacks& mCallbacks;
    const std::atomic<bool>& mIsCancelled;
    std::string mMessage;
};

} // namespace

void ReaderState::SetReadAllTypes(bool readAllTypes) {
    const std::scoped_lock lock(mMutex);
    mReadAllTypes = readAllTypes;
}

void ReaderState::SetCallbacks(const brindle_callbacks& callbacks) {
    const std::scoped_lock lock(mMutex);
    mCallbacks = callbacks;
}

void ReaderState::Remember(Outcome outcome) {
    const std::scoped_lock lock(mMutex);
    mLastOutcome = std::move(outcome);
}

Outcome ReaderState::LastOutcome() const {
    const std::scoped_lock lock(mMutex);
    return mLastOutcome;
}

std::optional<Reader::DWARF::ReadRemark> ReaderState::RemarkAt(std::size_t index) const {
    const std::scoped_lock lock(mMutex);
    const auto remarks = mRemarks.All();
    return index < remarks.size() ? std::optional(remarks[index]) : std::nullopt;
}

void ReaderState::SetRemarks(Reader::DWARF::ReadRemarks remarks) {
    const std::scoped_lock lock(mMutex);
    mRemarks = std::move(remarks);
}

void ReaderState::Cancel() {
    ++mCancelCount;
    mIsCancelled = true;
    ReadGate::Wake();
}

Outcome ReaderState::Read(const Input& input, DataModel::Factory::HostDataModel& model) {
    const std::uint64_t cancelCount = mCancelCount;
    const auto isGivenUp = [&] { return !input.waits || mCancelCount != cancelCount; };
    const ReadGate gate(isGivenUp);
    if (!gate.IsOpen()) {
        return {mCancelCount != cancelCount ? BRINDLE_CANCELLED : BRINDLE_BUSY};
    }
    mIsCancelled = mCancelCount != cancelCount;
    return ReadAlone(input, model);
}

Outcome ReaderState::ReadAlone(const Input& input, DataModel::Factory::HostDataModel& model) {
    const DataModel::Factory::CurrentDataModel current(model);
    SetRemarks({});
    const Reader::DWARF::ConsoleSilence silence;
    try {
        SettingScope settings;
        Outcome outcome = settings.Set(input.settings);
        return outcome.status == BRINDLE_OK ? RunRead(input) : outcome;
    } catch (const ReadCancelled&) {
        return {BRINDLE_CANCELLED};
    } catch (const std::bad_alloc&) {
        return {BRINDLE_OUT_OF_MEMORY};
    } catch (const std::exception& error) {
        return {BRINDLE_INTERNAL_ERROR, Reader::DWARF::ToHostText(error.what())};
    } catch (...) {
        return {BRINDLE_INTERNAL_ERROR};
    }
}

Outcome ReaderState::RunRead(const Input& input) {
    VDWARFReader reader;
    brindle_callbacks callbacks = {};
    {
        const std::scoped_lock lock(mMutex);
        reader.ReadAllTypes(mReadAllTypes);
        callbacks = mCallbacks;
    }
    const CallbackBridge bridge(reader, callbacks, mIsCancelled);
    const bool isRead = input.content != nullptr
                            ? reader.Read(input.content, input.path, input.container)
                            : reader.Read(input.path, input.container);
    SetRemarks(reader.GetRemarks());
    if (isRead) {
        return {};
    }
    return {BRINDLE_READ_FAILED, bridge.Message()};
}

} // namespace Tessel::Norn::Brindle::CInterface
