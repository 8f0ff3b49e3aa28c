// Keeps reads of the process apart: options, language and error state belong to all of them, so
// that one read runs at a time and nothing changes these meanwhile.
#pragma once

#include <mutex>

namespace Tessel::Norn::Brindle::CInterface {

/// Held for the length of a read.
class ReadGate {
public:
    /// Begins a read unless one runs.
    ReadGate() {
        const std::scoped_lock lock(sMutex);
        mIsOpen = !sIsReading;
        sIsReading = true;
    }
    ~ReadGate() {
        if (mIsOpen) {
            const std::scoped_lock lock(sMutex);
            sIsReading = false;
        }
    }
    ReadGate(const ReadGate&) = delete;
    ReadGate& operator=(const ReadGate&) = delete;
    ReadGate(ReadGate&&) = delete;
    ReadGate& operator=(ReadGate&&) = delete;

    /// False if another read ran; this one then must not begin.
    [[nodiscard]] bool IsOpen() const { return mIsOpen; }

    /// Runs `work` on the state of the process, unless a read runs. No read begins meanwhile.
    /// @return what `work` returns, or `busy`
    template <typename Result, typename Work>
    static Result BetweenReads(Result busy, Work&& work) {
        const std::scoped_lock lock(sMutex);
        return sIsReading ? busy : work();
    }

private:
    static inline std::mutex sMutex;
    static inline bool sIsReading = false;
    bool mIsOpen = false;
};

} // namespace Tessel::Norn::Brindle::CInterface
