#include "ReadSession.h"

#include "CapturedStandardOutput.h"
#include "Message.h"
#include "Phrases.h"
#include "ReadArguments.h"
#include "ReadProblem.h"
#include "ResultOutput.h"
#include "Terminal.h"

#include "host/ContainerDetection.h"
#include "host/CurrentDataModel.h"

#include <algorithm>
#include <array>
#include <exception>
#include <iostream>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

namespace Tessel::Norn::Brindle::Program {

using Contract::Interfaces::ErrorSeverity;
using Reader::DWARF::DWARFContainerType;
using Reader::DWARF::ReadPhase;

namespace {

Phrase PhaseName(ReadPhase phase) {
    switch (phase) {
    case ReadPhase::Reading:
        return "reading";
    case ReadPhase::Resolving:
        return "resolving";
    default:
        return "delivering";
    }
}

/// True if a read failed because the file ended before something that the reader needed.
bool HasEndedEarly(std::string_view error) {
    constexpr std::array<std::string_view, 4> sErrors = {
        "ELF file Seek has failed.", "ELF file Read has failed.",
        "Fehler bei der Seek-operation in der ELF-Datei.", "Fehler beim Lesen der ELF-Datei."};
    return std::ranges::find(sErrors, error) != sErrors.end();
}

void TellRemarks(const std::string& file, const ReadResult& result) {
    for (const Reader::DWARF::ReadRemark& remark : result.remarks.All()) {
        Tell(file, remark.text);
    }
    if (result.isOk && !HasFoundAnything(result)) {
        Tell(file, Phrased("nothing to read: the file has neither debug information nor symbols; "
                           "it is stripped, damaged or of another kind"));
    } else if (const std::string text = WithoutVariablesText(result); !text.empty()) {
        Tell(file, text);
    }
}

/// Error and remark as one message. A file of another kind is not corrupt, as the reader says.
std::string MessageOf(const ReadResult& result) {
    std::string error =
        result.error.empty() ? Phrased("The file could not be read.") : result.error;
    if (result.remark.empty()) {
        return error;
    }
    return result.isForeign ? result.remark : error + " (" + result.remark + ")";
}

DWARFContainerType ChooseContainer(std::string_view choice, const std::string& file) {
    if (choice == "auto") {
        return Reader::DWARF::DetectContainer(file);
    }
    if (choice == "coff") {
        return DWARFContainerType::Container_COFF;
    }
    return choice == "pe" ? DWARFContainerType::Container_PE : DWARFContainerType::Container_ELF;
}

} // namespace

ReadSession::ReadSession(const ReadArguments& arguments, CallbackSink sink)
    : mContainer(arguments.container)
    , mIsProgressDrawn(!arguments.noProgress && IsStandardErrorTerminal())
    , mSink(std::move(sink)) {
    mReader.ReadAllTypes(arguments.allTypes);
    if (arguments.language) {
        mReader.InitLanguage(*arguments.language);
    }
    ConnectCallbacks();
}

void ReadSession::ConnectCallbacks() {
    mReader.SignalErrorCallback = [this](ErrorSeverity severity, std::uint32_t code,
                                         const std::string& firstText,
                                         const std::string& secondText) {
        mError = secondText;
        Signal({"SignalError",
                {std::int64_t{static_cast<std::int32_t>(severity)}, std::int64_t{code}, firstText,
                 secondText}});
    };
    mReader.PhaseCallback = [this](ReadPhase phase) {
        mHasPhase = true;
        if (mProgressBar) {
            mProgressBar->SetPhase(Phrased(PhaseName(phase)));
        }
    };
    mReader.SetProgressTextCallback = [this](const std::string& text) {
        Signal({"SetProgressText", {text}});
    };
    mReader.SetProgressIntervalCallback = [this](std::int32_t start, std::int32_t end) {
        if (mProgressBar) {
            mProgressBar->SetInterval(start, end);
        }
        Signal({"SetProgressInterval", {std::int64_t{start}, std::int64_t{end}}});
    };
    mReader.SetProgressValueCallback = [this](std::int32_t value) {
        if (mProgressBar) {
            mProgressBar->SetValue(value);
        }
        Signal({"SetProgressValue", {std::int64_t{value}}});
    };
}

void ReadSession::Signal(const ReaderCallback& callback) const {
    if (mSink) {
        mSink(callback);
    }
}

ReadResult ReadSession::Read(const std::string& file, DataModel::Factory::HostDataModel& model) {
    const DataModel::Factory::CurrentDataModel current(model);
    ReadResult result;
    result.container = ChooseContainer(mContainer, file);
    mError.clear();
    mHasPhase = false;
    CapturedStandardOutput captured;
    try {
        result.isOk = RunReader(file, result.container);
    } catch (const OutputError&) {
        throw;
    } catch (const std::bad_alloc&) {
        mError = Phrased("Not enough memory.");
    } catch (const std::exception& error) {
        mError = error.what();
    }
    if (!result.isOk) {
        result.error = std::exchange(mError, {});
        ExplainFailure(file, result);
        result.message = MessageOf(result);
    }
    // The reader's own message about such a file is only numbers.
    if (result.remark.empty()) {
        captured.Tell(file);
    }
    result.remarks = mReader.GetRemarks();
    result.facts = mReader.GetFacts();
    if (mTellsRemarks) {
        TellRemarks(file, result);
    }
    return result;
}

void ReadSession::ExplainFailure(const std::string& file, ReadResult& result) const {
    if (result.error.find("ELF_TRY_READ_CORRUPTED_COMPILE_UNITS") != std::string::npos) {
        result.remark = "--set mTryReadCorruptedCompileUnits=1";
        return;
    }
    result.remark = SystemProblem(file);
    if (!result.remark.empty()) {
        return;
    }
    result.remark = ForeignFileProblem(file);
    result.isForeign = !result.remark.empty();
    if (!result.isForeign) {
        result.remark = RemarkOn(result);
    }
}

std::string ReadSession::RemarkOn(const ReadResult& result) const {
    if (mContainer == "auto" && result.container == DWARFContainerType::Container_COFF) {
        return Phrased("Read as COFF, being neither ELF nor a Windows image; a raw binary or a "
                       "text has no symbols: read the linked image");
    }
    if (result.container == DWARFContainerType::Container_PE && !mHasPhase) {
        return Phrased("not a Windows image, or truncated");
    }
    return HasEndedEarly(result.error)
               ? Phrased(
                     "the file ends before its headers say: truncated, or not copied to the end")
               : std::string();
}

bool ReadSession::RunReader(const std::string& file, DWARFContainerType container) {
    std::optional<ProgressBar> progressBar;
    if (mIsProgressDrawn) {
        progressBar.emplace(std::cerr, StandardErrorWidth());
    }
    mProgressBar = progressBar ? &*progressBar : nullptr;
    return mReader.Read(file, container);
}

std::string WithoutVariablesText(const ReadResult& result) {
    const bool hasUnits = !result.facts.Units().empty() || result.facts.TypeUnits() != 0;
    const bool isBare = result.isOk && !hasUnits && result.remarks.All().empty();
    return isBare && result.container == DWARFContainerType::Container_PE
               ? Phrased("no debug information: variables of a Windows image come from it alone; "
                         "compile and link with -g, and read the file before it is stripped")
               : std::string();
}

bool HasDelivered(const ReadResult& result, const DataModel::Model& model) {
    // The global namespace exists before any delivery.
    return result.isOk || model.ObjectCount() > 1;
}

bool HasFoundAnything(const ReadResult& result) {
    return result.facts.Entries() != 0 || result.facts.Symbols() != 0 ||
           !result.remarks.All().empty();
}

ExitStatus ReportResult(const std::string& file, const ReadResult& result) {
    if (result.isOk) {
        return ExitStatus::Success;
    }
    Tell(file, result.message);
    return ExitStatus::Failed;
}

} // namespace Tessel::Norn::Brindle::Program
