#include "support/ReadRun.h"

#include "host/CurrentDataModel.h"
#include "host/VDWARFReader.h"
#include "model/RecordingDataModel.h"

#include <gtest/gtest.h>
#include <sstream>

namespace Tessel::Norn::Brindle::Tests {

namespace {

using Contract::Interfaces::ErrorSeverity;

void SetProgressCallbacks(Reader::DWARF::VDWARFReader& reader, ReadRun& run) {
    reader.SetProgressTextCallback = [&run](const std::string& text) {
        run.progress.push_back(text);
    };
    reader.SetProgressIntervalCallback = [&run](std::int32_t start, std::int32_t end) {
        run.progress.push_back(std::to_string(start) + '-' + std::to_string(end));
    };
    reader.SetProgressValueCallback = [&run](std::int32_t value) {
        run.progress.push_back(std::to_string(value));
    };
}

void SetSignalCallback(Reader::DWARF::VDWARFReader& reader, ReadRun& run) {
    reader.SignalErrorCallback = [&run](ErrorSeverity severity, std::uint32_t code,
                                        const std::string& firstText,
                                        const std::string& secondText) {
        std::ostringstream signal;
        signal << static_cast<std::int32_t>(severity) << ' ' << code << " '" << firstText << "' '"
               << secondText << '\'';
        run.signals.push_back(signal.str());
        run.message = secondText;
    };
}

} // namespace

std::vector<std::string> ReadRun::Variables() const {
    std::vector<std::string> variables;
    model->ForEach(DataModel::ObjectKind::Global, [&](const DataModel::ModelObject& variable) {
        std::ostringstream text;
        text << variable.name << '@' << std::hex << variable.address << ':' << std::dec
             << model->SizeOf(variable.id);
        variables.push_back(text.str());
    });
    return variables;
}

ReadRun ReadFile(const std::string& path, Reader::DWARF::DWARFContainerType container,
                 bool allTypes) {
    testing::internal::CaptureStdout();
    ReadRun run = ReadFileUncaptured(path, container, allTypes);
    run.standardOutput = testing::internal::GetCapturedStdout();
    return run;
}

ReadRun ReadFileUncaptured(const std::string& path, Reader::DWARF::DWARFContainerType container,
                           bool allTypes) {
    ReadRun run;
    run.model = std::make_unique<DataModel::Model>();
    DataModel::RecordingDataModel recorder(*run.model);
    const DataModel::Factory::CurrentDataModel current(recorder);
    Reader::DWARF::VDWARFReader reader;
    SetSignalCallback(reader, run);
    SetProgressCallbacks(reader, run);
    reader.ReadAllTypes(allTypes);
    run.result = reader.Read(path, container);
    for (const Reader::DWARF::ReadRemark& remark : reader.GetRemarks().All()) {
        run.remarks.push_back(remark.text);
    }
    for (const DataModel::RecordedCall& call : recorder.Calls()) {
        run.calls.push_back(call.Text());
    }
    return run;
}

ReadRun ReadImage(std::string_view image, Reader::DWARF::DWARFContainerType container,
                  bool allTypes) {
    const TemporaryFolder folder;
    return ReadFile(folder.Write("image.elf", image), container, allTypes);
}

} // namespace Tessel::Norn::Brindle::Tests
