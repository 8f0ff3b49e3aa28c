#include "ReadSession.h"

#include "CapturedStandardOutput.h"
#include "Message.h"
#include "ReadArguments.h"
#include "ResultOutput.h"
#include "Terminal.h"

#include "host/ContainerDetection.h"
#include "host/CurrentDataModel.h"

#include <exception>
#include <iostream>
#include <new>
#include <optional>
#include <utility>

namespace Tessel::Norn::Brindle::Program {

using Contract::Interfaces::ErrorSeverity;
using Reader::DWARF::DWARFContainerType;

namespace {

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
    mReader.SetProgressTextCallback = [this](const std::string& text) {
        if (mProgressBar) {
            mProgressBar->SetText(text);
        }
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
    try {
        result.isOk = RunReader(file, result.container);
    } catch (const OutputError&) {
        throw;
    } catch (const std::bad_alloc&) {
        mError = "Not enough memory.";
    } catch (const std::exception& error) {
        mError = error.what();
    }
    if (!result.isOk) {
        result.error = std::exchange(mError, {});
    }
    return result;
}

bool ReadSession::RunReader(const std::string& file, DWARFContainerType container) {
    const CapturedStandardOutput captured;
    std::optional<ProgressBar> progressBar;
    if (mIsProgressDrawn) {
        progressBar.emplace(std::cerr);
    }
    mProgressBar = progressBar ? &*progressBar : nullptr;
    return mReader.Read(file, container);
}

ExitStatus ReportResult(const std::string& file, const ReadResult& result) {
    if (result.isOk) {
        return ExitStatus::Success;
    }
    Tell(file, result.error.empty() ? "The file could not be read." : result.error);
    return ExitStatus::Failed;
}

} // namespace Tessel::Norn::Brindle::Program
