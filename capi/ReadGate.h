// Keeps reads of the process apart. They share options, language and error state, so that only one
// read runs at a time and nothing changes these during it.
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

namespace Tessel::Norn::Brindle::CInterface {

/// Held for the length of a read.
class ReadGate {
public:
    /// Begins a read unless another one is running.
    ReadGate()
        : ReadGate([] { return true; }) {}

    /// Waits for the running read, then begins one. Does not wait on the thread of the running
    /// read, such as in its callback: it would wait for itself.
    /// @param isGivenUp true to stop waiting; asked again after each `Wake`
    template <typename GivenUp>
    explicit ReadGate(GivenUp&& isGivenUp) {
        std::unique_lock lock(sMutex);
        if (sIsReading && sReader != std::this_thread::get_id()) {
            sChange.wait(lock, [&] { return !sIsReading || isGivenUp(); });
        }
        mIsOpen = !sIsReading;
        if (mIsOpen) {
            sIsReading = true;
            sReader = std::this_thread::get_id();
        }
    }
    ~ReadGate() {
        if (mIsOpen) {
            const std::scoped_lock lock(sMutex);
            sIsReading = false;
            sChange.notify_all();
        }
    }
    ReadGate(const ReadGate&) = delete;
    ReadGate& operator=(const ReadGate&) = delete;
    ReadGate(ReadGate&&) = delete;
    ReadGate& operator=(ReadGate&&) = delete;

    /// False if another read is running; this one then must not begin.
    [[nodiscard]] bool IsOpen() const { return mIsOpen; }

    /// Makes those that wait check whether they are given up.
    static void Wake() {
        const std::scoped_lock lock(sMutex);
        sChange.notify_all();
    }

    /// Runs `work` on the state of the process, unless a read is running. No read begins meanwhile.
    /// @return what `work` returns, or `busy`
    template <typename Result, typename Work>
    static Result BetweenReads(Result busy, Work&& work) {
        const std::scoped_lock lock(sMutex);
        return sIsReading ? busy : work();
    }

private:
    static inline std::mutex sMutex;
    static inline std::condition_variable sChange;
    static inline bool sIsReading = false;
    /// The thread of the running read.
    static inline std::thread::id sReader;
    bool mIsOpen = false;
};

} // namespace Tessel::Norn::Brindle::CInterface
