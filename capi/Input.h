// What one read of the C interface is asked for, taken over from the host's words.
#pragma once

#include "brindle.h"

#include "core/FileContent.h"
#include "host/DWARFContainerType.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::CInterface {

/// How a call ended, with a text where the status alone says too little.
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
    /// Wait for a read that runs, rather than refuse this one.
    bool waits = false;
    /// Options of this read alone, by name and value.
    std::vector<std::pair<std::string, std::string>> settings;
};

/// Takes over what a host asks for.
/// @return BRINDLE_OK, or why there is no such read
Outcome TakeInput(const brindle_input* given, Input& input);

/// Sets options for the length of one read, and puts their former values back.
class SettingScope {
public:
    SettingScope() = default;
    ~SettingScope();
    SettingScope(const SettingScope&) = delete;
    SettingScope& operator=(const SettingScope&) = delete;
    SettingScope(SettingScope&&) = delete;
    SettingScope& operator=(SettingScope&&) = delete;

    /// Sets one option after the other.
    /// @return BRINDLE_OK, or which one there is not, or takes no such value
    Outcome Set(const std::vector<std::pair<std::string, std::string>>& settings);

private:
    /// Each sets an option to its former value.
    std::vector<std::function<void()>> mPutBack;
};

} // namespace Tessel::Norn::Brindle::CInterface
