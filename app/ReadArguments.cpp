#include "ReadArguments.h"

#include "Phrases.h"
#include "ReaderOptions.h"

#include "core/FilePath.h"
#include "model/LeafWalk.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <fstream>
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

/// @param expected the message for a text that is no such number
template <typename Number>
Number ParseNumber(const std::string& name, const std::string& text, Number least,
                   Phrase expected) {
    Number number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest != end || number < least) {
        throw CLI::ValidationError(name, Phrased(expected, text));
    }
    return number;
}

} // namespace

void AddReadArguments(CLI::App& command, ReadArguments& arguments) {
    AddChoiceArgument(command, "--container", arguments.container, {"auto", "elf", "coff", "pe"},
                      "Container of the file; auto recognises it by its first bytes");
    command.add_flag("--all-types", arguments.allTypes, "Read types too that no variable uses");
    command
        .add_option_function<std::string>(
            "--language",
            [&arguments](const std::string& text) {
                arguments.language = ParseNumber<std::int32_t>(
                    "--language", text, std::numeric_limits<std::int32_t>::min(),
                    "expected a number, got '{}'");
            },
            "Language of messages: 49 for German, any other number for English")
        ->take_last()
        ->option_text("N");
    AddReaderOptionArgument(command);
    command.add_flag("--no-progress", arguments.noProgress, "Draw no progress bar");
}

void AddReaderOptionArgument(CLI::App& command) {
    command
        .add_option_function<std::vector<std::string>>(
            "--set", ApplyReaderOptions,
            "Set an option of the reader (see --list-options); repeatable")
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
                        " whose name matches: * ? [a-z] as in a shell; a plain word may be part of "
                        "the name")
        ->each([](const std::string& text) {
            const std::string problem = SecondImageProblem(text);
            if (!problem.empty()) {
                throw CLI::ValidationError(problem);
            }
        })
        ->type_name("");
}

std::string SecondImageProblem(const std::string& text) {
    std::ifstream file(Reader::DWARF::PathToOpen(text), std::ios::binary);
    std::array<char, 4> start{};
    file.read(start.data(), start.size());
    const std::string_view bytes(start.data(), static_cast<std::size_t>(file.gcount()));
    if (!bytes.starts_with("\x7F"
                           "ELF") &&
        !bytes.starts_with("MZ")) {
        return {};
    }
    const std::string problem =
        Phrased("one file at a time: '{}' is an image too, where a pattern is expected", text);
    const bool isName = std::ranges::all_of(text, [](unsigned char character) {
        return std::isalnum(character) != 0 || character == '_';
    });
    // Brackets make a pattern of a name, and nobody calls a file so.
    return isName ? problem + Phrased("; for variables of this name, write '[{}]{}'",
                                      text.substr(0, 1), text.substr(1))
                  : problem;
}

void AddNumberArgument(CLI::App& command, const std::string& name, std::uint64_t& value,
                       std::uint64_t least, const std::string& purpose) {
    command
        .add_option_function<std::string>(
            name,
            [name, least, &value](const std::string& text) {
                value =
                    ParseNumber<std::uint64_t>(name, text, least,
                                               least == 0 ? Phrase("expected a number, got '{}'")
                                                          : "expected a number of at least 1, "
                                                            "got '{}'");
            },
            purpose)
        ->take_last()
        ->option_text("N (" + std::to_string(value) + ")");
}

void AddLeafLimitArguments(CLI::App& command, DataModel::LeafLimits& limits) {
    AddNumberArgument(command, "--max-elements", limits.arrayElements, 1,
                      "Expand this many elements of each array");
    AddNumberArgument(command, "--max-leaves", limits.leaves, 1, "Stop after this many leaves");
}

void AddChoiceArgument(CLI::App& command, const std::string& name, std::string& value,
                       const std::vector<std::string>& choices, const std::string& purpose) {
    command.add_option(name, value, purpose)
        ->check([choices](const std::string& text) {
            return std::ranges::find(choices, text) != choices.end()
                       ? std::string()
                       : Phrased("'{}' is not one of {}", text, CLI::detail::join(choices, ", "));
        })
        ->take_last()
        ->option_text(CLI::detail::join(choices, "|") + (value.empty() ? "" : " (" + value + ")"));
}

void AddFormatArgument(CLI::App& command, std::string& format) {
    AddChoiceArgument(command, "--format", format, {"table", "csv", "json"}, "Form of the results");
}

} // namespace Tessel::Norn::Brindle::Program
