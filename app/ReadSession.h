// Runs reads as the user asked for them: chooses the container, draws the progress and collects
// what the reader says. The commands that read use it; it prints no results.
#pragma once

#include "ExitStatus.h"
#include "ProgressBar.h"

#include "core/ReadFacts.h"
#include "core/ReadRemarks.h"
#include "host/DWARFContainerType.h"
#include "host/HostDataModel.h"
#include "host/VDWARFReader.h"
#include "model/DataModel.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

struct ReadArguments;

/// A callback of the reader as a value. Texts last as long as the call.
struct ReaderCallback {
    /// The callback's name without the ending `Callback`.
    std::string_view name;
    std::vector<std::variant<std::int64_t, std::string_view>> arguments;
};

struct ReadResult {
    bool isOk = false;
    /// The container that the file was read as.
    Reader::DWARF::DWARFContainerType container = Reader::DWARF::DWARFContainerType::Container_ELF;
    /// The reader's message about a failure, which may be empty; empty after success.
    std::string error;
    /// An explanation of the error, if the program knows more: why the system refuses the file, or
    /// what the file was mistaken for.
    std::string remark;
    /// The remark says that the file is of another kind: the error about it misleads.
    bool isForeign = false;
    /// Error and remark as one message; empty after success.
    std::string message;
    /// What was skipped and why.
    Reader::DWARF::ReadRemarks remarks;
    /// What was found.
    Reader::DWARF::ReadFacts facts;
};

/// One reader for any number of reads, one after the other.
class ReadSession {
public:
    using CallbackSink = std::function<void(const ReaderCallback&)>;

    /// @param sink receives each callback of the reader; may be empty
    explicit ReadSession(const ReadArguments& arguments, CallbackSink sink = {});

    /// Reads a file into a model. What was delivered before a failure stays in the model. An
    /// exception of the read counts as a failure, except that an `OutputError` passes through.
    ReadResult Read(const std::string& file, DataModel::Factory::HostDataModel& model);

    /// From now on remarks no longer go to standard error.
    void KeepRemarks() { mTellsRemarks = false; }

private:
    void ConnectCallbacks();
    void Signal(const ReaderCallback& callback) const;
    /// Fills in the remark and what it means.
    void ExplainFailure(const std::string& file, ReadResult& result) const;
    [[nodiscard]] std::string RemarkOn(const ReadResult& result) const;
    bool RunReader(const std::string& file, Reader::DWARF::DWARFContainerType container);

    std::string mContainer;
    bool mIsProgressDrawn;
    bool mTellsRemarks = true;
    CallbackSink mSink;
    Reader::DWARF::VDWARFReader mReader;
    /// The bar of the running read, null if none is drawn. Only callbacks of a read use it.
    ProgressBar* mProgressBar = nullptr;
    std::string mError;
    /// The read has reached the debug information.
    bool mHasPhase = false;
};

/// Says that a file without debug information has no variables, if it is a Windows image; empty for
/// any other file.
std::string WithoutVariablesText(const ReadResult& result);

/// False if the read failed before it delivered anything: that the model lacks something then says
/// nothing about the file.
bool HasDelivered(const ReadResult& result, const DataModel::Model& model);

/// False if a file that could be read has neither debug entries nor symbols.
bool HasFoundAnything(const ReadResult& result);

/// Reports a failure on standard error.
/// @return the exit status that the result asks for
ExitStatus ReportResult(const std::string& file, const ReadResult& result);

} // namespace Tessel::Norn::Brindle::Program
