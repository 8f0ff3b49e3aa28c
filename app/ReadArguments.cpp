#include "ReadArguments.h"

#include "ReaderOptions.h"

#include "model/LeafWalk.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>
#include <system_error>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

void ApplyReaderOptions(const std::vector<std::string>& settings) {
    for (const std::string& setting : settings) {
        const std::string problem = ApplyReaderOption(setting);
        if (!problem.empty()) {
            throw CLI::ValidationError("--set", problem);
        }
    }
}

/// @param expected what the number should be, for the message
template <typename Number>
Number ParseNumber(const std::string& name, const std::string& text, Number least,
                   std::string_view expected) {
    Number number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest != end || number < least) {
        throw CLI::ValidationError(
            name, std::string("'").append(text).append("' is no ").append(expected));
    }
    return number;
}

void AddLimit(CLI::App& command, const std::string& name, std::uint64_t& limit,
              const std::string& purpose) {
    command
        .add_option_function<std::string>(
            name,
            [name, &limit](const std::string& text) {
                limit = ParseNumber<std::uint64_t>(name, text, 1, "number from 1 on");
            },
            purpose)
        ->take_last()
        ->option_text("N (" + std::to_string(limit) + ")");
}

} // namespace

void AddReadArguments(CLI::App& command, ReadArguments& arguments) {
    AddChoiceArgument(command, "--container", arguments.container, {"auto", "elf", "coff", "pe"},
                      "Kind of the file; auto tells it from the first bytes");
    command.add_flag("--all-types", arguments.allTypes,
                     "Deliver types that no variable uses as well");
    command
        .add_option_function<std::string>(
            "--language",
            [&arguments](const std::string& text) {
                arguments.language = ParseNumber<std::int32_t>(
                    "--language", text, std::numeric_limits<std::int32_t>::min(), "number");
            },
            "Language of messages: 49 is German, any other number English")
        ->take_last()
        ->option_text("N");
    AddReaderOptionArgument(command);
    command.add_flag("--no-progress", arguments.noProgress, "Draw no progress bar");
}

void AddReaderOptionArgument(CLI::App& command) {
    command
        .add_option_function<std::vector<std::string>>(
            "--set", ApplyReaderOptions,
            "Set an option of the reader, which --list-options lists; repeatable")
        ->option_text("OPTION=VALUE")
        ->allow_extra_args(false);
}

void AddFileArgument(CLI::App& command, std::string& file) {
    command.add_option("FILE", file, "The file to read")->required()->type_name("");
}

void AddPatternArgument(CLI::App& command, const std::string& things, std::string& pattern) {
    command
        .add_option("PATTERN", pattern,
                    "Only the " + things +
                        " whose name fits: * stands for any characters, ? for one")
        ->type_name("");
}

void AddLeafLimitArguments(CLI::App& command, DataModel::LeafLimits& limits) {
    AddLimit(command, "--max-elements", limits.arrayElements,
             "Expand this many elements of each array");
    AddLimit(command, "--max-leaves", limits.leaves, "Expand to this many leaves in all");
}

void AddChoiceArgument(CLI::App& command, const std::string& name, std::string& value,
                       const std::vector<std::string>& choices, const std::string& purpose) {
    command.add_option(name, value, purpose)
        ->check([choices](const std::string& text) {
            return std::ranges::find(choices, text) != choices.end()
                       ? std::string()
                       : "'" + text + "' is none of " + CLI::detail::join(choices, ", ");
        })
        ->take_last()
        ->option_text(CLI::detail::join(choices, "|") + " (" + value + ")");
}

void AddFormatArgument(CLI::App& command, std::string& format) {
    AddChoiceArgument(command, "--format", format, {"table", "csv", "json"}, "Form of the results");
}

} // namespace Tessel::Norn::Brindle::Program
