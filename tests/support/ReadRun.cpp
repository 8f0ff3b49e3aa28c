#include "support/ReadRun.h"

#include "host/CurrentDataModel.h"
#include "host/VDWARFReader.h"
#include "model/RecordingDataModel.h"

#include <gtest/gtest.h>
#include <sstream>

namespace Tessel::Norn::Brindle::Tests {

namespace {

using Contract::Interfaces::ErrorSeverity;

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

ReadRun ReadFile(const std::string& path, Reader::DWARF::DWARFContainerType container) {
    ReadRun run;
    run.model = std::make_unique<DataModel::DataModel>();
    DataModel::RecordingDataModel recorder(*run.model);
    const DataModel::Factory::CurrentDataModel current(recorder);
    Reader::DWARF::VDWARFReader reader;
    SetSignalCallback(reader, run);
    testing::internal::CaptureStdout();
    run.result = reader.Read(path, container);
    run.standardOutput = testing::internal::GetCapturedStdout();
    for (const DataModel::RecordedCall& call : recorder.Calls()) {
        run.calls.push_back(call.Text());
    }
    return run;
}

ReadRun ReadImage(std::string_view image, Reader::DWARF::DWARFContainerType container) {
    const TemporaryFolder folder;
    return ReadFile(folder.Write("image.elf", image), container);
}

} // namespace Tessel::Norn::Brindle::Tests
