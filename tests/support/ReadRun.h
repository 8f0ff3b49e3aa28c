// One read of an image as a test sees it: its result, its message, every call that reached the data
// model, and the model.
#pragma once

#include "host/DWARFContainerType.h"
#include "model/DataModel.h"
#include "support/TemporaryFolder.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Tests {

struct ReadRun {
    bool result = false;
    /// Signals of the run as "severity code 'first text' 'second text'".
    std::vector<std::string> signals;
    /// Message of the last signal; empty if there was none.
    std::string message;
    /// What the reader wrote to standard output.
    std::string standardOutput;
    /// The calls in order, as `RecordingDataModel` words them.
    std::vector<std::string> calls;
    /// The reported progress: an interval as "0-99", a value, a text.
    std::vector<std::string> progress;
    /// Texts of the reader's remarks.
    std::vector<std::string> remarks;
    std::unique_ptr<DataModel::Model> model;

    /// "name@address:size" for each variable in the order of delivery, the address hexadecimal.
    [[nodiscard]] std::vector<std::string> Variables() const;
};

/// Reads the file of a path.
ReadRun ReadFile(
    const std::string& path,
    Reader::DWARF::DWARFContainerType container = Reader::DWARF::DWARFContainerType::Container_ELF,
    bool allTypes = false);

/// The same, but the reader's standard output isn't captured: for very many reads, since each
/// captured output needs a file.
ReadRun ReadFileUncaptured(const std::string& path, Reader::DWARF::DWARFContainerType container,
                           bool allTypes = false);

/// Reads an image from a temporary file.
ReadRun ReadImage(
    std::string_view image,
    Reader::DWARF::DWARFContainerType container = Reader::DWARF::DWARFContainerType::Container_ELF,
    bool allTypes = false);

} // namespace Tessel::Norn::Brindle::Tests
