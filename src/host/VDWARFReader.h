// The one object that a host sees: it reads one file per call of `Read` and delivers what it finds
// into the data model that the host has made current.
#pragma once

#include "../core/Export.h"
#include "../core/FileContent.h"
#include "../core/ReadFacts.h"
#include "../core/ReadRemarks.h"
#include "../host/DWARFContainerType.h"
#include "../host/IProgressNotifier.h"
#include "../host/ReadPhase.h"

#include <cstdint>
#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Reader of ELF, TI-COFF and PE files.
///
/// Order of calls: construct; optionally `InitLanguage` and `ReadAllTypes`; set the callbacks; make
/// a data model current; `Read`, as often as wanted; `Dispose`. The options of the read are the
/// class variables of `VElfOptions`. At most one `Read` may run in a process at a time.
class BRINDLE_EXPORT VDWARFReader : public Contract::Interfaces::IProgressNotifier {
public:
    /// @name Reading
    /// Implemented in read/ReadSequence.
    /// @{

    /// Reads the file at `path`, which is UTF-8 on Windows and bytes elsewhere, and delivers it.
    ///
    /// On failure `SignalErrorCallback` receives severity 2, code 4112, an empty first text and the
    /// message in the language of `InitLanguage`; what was delivered before stays delivered. An
    /// exception of a callback or of the data model passes through.
    /// @return true if the file was read to its end
    bool Read(const std::string& path, DWARFContainerType container);

    /// Reads a file that the host holds in memory, like `Read` of its path. The content is shared
    /// until the read ends, or as long as a data model keeps the description of the image.
    /// @param content not null
    /// @param name names the file in the description of the image and in messages; a log is written
    ///     beside a file of this name
    /// @return true if the file was read to its end
    bool Read(const FileContent& content, const std::string& name, DWARFContainerType container);
    /// @}

    /// What the latest read skipped and why. Empty before the first read, and after one in the
    /// classic manner.
    [[nodiscard]] const ReadRemarks& GetRemarks() const { return mRemarks; }

    /// What the latest read found: counts of units, producers, entries and symbols. Empty before
    /// the first read.
    [[nodiscard]] const ReadFacts& GetFacts() const { return mFacts; }

    /// Language of the messages by telephone country code: 49 is German, anything else English.
    /// Holds for the process, from the next message on.
    void InitLanguage(std::int32_t language);

    /// Sets whether types that no delivered variable uses are delivered too. Off at the start;
    /// keeps its value across calls of `Read`.
    void ReadAllTypes(bool readAllTypes);
    /// What `ReadAllTypes` was last called with.
    [[nodiscard]] bool IsReadAllTypes() const;

    /// @name Signals to the host
    /// For a running read. Each calls the callback of its name if that is set. Texts are narrow;
    /// the callback gets UTF-8.
    /// @{

    /// Calls `SetProgressValueCallback`.
    void SetProgressValue(std::int32_t value);
    /// Calls `SetProgressIntervalCallback`.
    void SetProgressInterval(std::int32_t start, std::int32_t end);
    /// Calls `SetProgressTextCallback`.
    void SetProgressText(const char* text);
    /// Calls `SignalErrorCallback`.
    void SignalError(std::int32_t severity, std::uint32_t code, const char* firstText,
                     const char* secondText);
    /// @}

    /// Called on the thread of `Read` when a phase of a read with debug information begins; may be
    /// empty. Progress and its texts do not depend on it.
    PhaseDelegate PhaseCallback;
    /// Calls `PhaseCallback`.
    void SetPhase(ReadPhase phase) const;
    /// Replaces what `GetRemarks` gives.
    void SetRemarks(const ReadRemarks& remarks);
    /// Replaces what `GetFacts` gives.
    void SetFacts(const ReadFacts& facts);

    /// Ends the use of the object. The reader holds nothing beyond a run, so nothing is released.
    void Dispose();

private:
    bool ReadInput(const std::string& path, const FileContent& content,
                   DWARFContainerType container);

    bool mReadAllTypes = false;
    ReadRemarks mRemarks;
    ReadFacts mFacts;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
