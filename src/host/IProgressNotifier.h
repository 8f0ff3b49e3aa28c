// What a reader reports to its host while it runs: errors and progress, through four callbacks that
// the host sets. The reader's face, `VDWARFReader`, derives from it.
#pragma once

#include "../core/Export.h"

#include <cstdint>
#include <functional>
#include <string>

namespace Tessel::Norn::Brindle::Contract::Interfaces {

/// Severity of a signalled error. The reader signals only failed reads, as `Error`.
enum class ErrorSeverity : std::int32_t {
    Information = 0,
    Warning = 1,
    Error = 2,
};

/// Severity, code, a first text that is always empty, and the message. Texts are UTF-8.
using SignalErrorDelegate =
    std::function<void(ErrorSeverity, std::uint32_t, const std::string&, const std::string&)>;
/// The phase that begins, UTF-8.
using SetProgressTextDelegate = std::function<void(const std::string&)>;
/// Start and end of the values that follow; see `ReadPhase` for their units.
using SetProgressIntervalDelegate = std::function<void(std::int32_t, std::int32_t)>;
/// How far the phase has come, between start and end.
using SetProgressValueDelegate = std::function<void(std::int32_t)>;

/// Holder of the callbacks. Each is empty until the host sets it; an empty one is not called. They
/// run on the thread of the read, and what they throw passes through `Read` to its caller.
class BRINDLE_EXPORT IProgressNotifier {
public:
    /// Receives the reason of a failed read, once, before `Read` returns false.
    SignalErrorDelegate SignalErrorCallback;
    /// Receives the name of each phase of a read that takes long enough to show.
    SetProgressTextDelegate SetProgressTextCallback;
    /// Receives the limits of the values that follow.
    SetProgressIntervalDelegate SetProgressIntervalCallback;
    /// Receives how far the phase has come.
    SetProgressValueDelegate SetProgressValueCallback;

protected:
    /// @cond
    IProgressNotifier() = default;
    ~IProgressNotifier() = default;
    IProgressNotifier(const IProgressNotifier&) = default;
    IProgressNotifier& operator=(const IProgressNotifier&) = default;
    IProgressNotifier(IProgressNotifier&&) = default;
    IProgressNotifier& operator=(IProgressNotifier&&) = default;
    /// @endcond
};

} // namespace Tessel::Norn::Brindle::Contract::Interfaces
