// The request for one read, taken over from the structures of the C interface.
#pragma once

#include "brindle.h"

#include "core/FileContent.h"
#include "host/DWARFContainerType.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::CInterface {

/// How a call ended, with a text if the status says too little.
struct Outcome {
    brindle_status status = BRINDLE_OK;
    std::string text = {};
};

/// The file of one read, and how it is read.
struct Input {
    std::string path;
    /// The file in memory; null to open the path.
    Reader::DWARF::FileContent content;
    Reader::DWARF::DWARFContainerType container = Reader::DWARF::DWARFContainerType::Container_ELF;
    /// Wait for a running read to end, rather than refuse this one.
    bool waits = false;
    /// Options for only this read, by name and value.
    std::vector<std::pair<std::string, std::string>> settings;
};

/// Takes over the host's request.
/// @return BRINDLE_OK, or why such a read is impossible
Outcome TakeInput(const brindle_input* given, Input& input);

/// Sets options for the length of one read, and restores their former values afterwards.
class SettingScope {
public:
    SettingScope() = default;
    ~SettingScope();
    SettingScope(const SettingScope&) = delete;
    SettingScope& operator=(const SettingScope&) = delete;
    SettingScope(SettingScope&&) = delete;
    SettingScope& operator=(SettingScope&&) = delete;

    /// Sets one option after the other.
    /// @return BRINDLE_OK, or the first option that doesn't exist or refuses its value
    Outcome Set(const std::vector<std::pair<std::string, std::string>>& settings);

private:
    /// Each sets an option to its former value.
    std::vector<std::function<void()>> mPutBack;
};

} // namespace Tessel::Norn::Brindle::CInterface
