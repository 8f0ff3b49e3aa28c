#include "ReadArguments.h"

#include "ReaderOptions.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
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

void AddChoice(CLI::App& command, const std::string& name, std::string& value,
               const std::vector<std::string>& choices, const std::string& purpose) {
    command.add_option(name, value, purpose)
        ->check(CLI::IsMember(choices))
        ->option_text(CLI::detail::join(choices, "|") + " (" + value + ")");
}

} // namespace

void AddReadArguments(CLI::App& command, ReadArguments& arguments) {
    AddChoice(command, "--container", arguments.container, {"auto", "elf", "coff", "pe"},
              "Kind of the file; auto tells it from the first bytes");
    command.add_flag("--all-types", arguments.allTypes,
                     "Deliver types that no variable uses as well");
    command
        .add_option("--language", arguments.language,
                    "Language of messages: 49 is German, any other number English")
        ->type_name("N");
    AddReaderOptionArgument(command);
    command.add_flag("--no-progress", arguments.noProgress, "Draw no progress bar");
}

void AddReaderOptionArgument(CLI::App& command) {
    command
        .add_option_function<std::vector<std::string>>("--set", ApplyReaderOptions,
                                                       "Set an option of the reader; repeatable")
        ->type_name("OPTION=VALUE")
        ->allow_extra_args(false);
}

void AddFileArgument(CLI::App& command, std::string& file) {
    command.add_option("FILE", file, "The file to read")->required()->type_name("");
}

void AddFormatArgument(CLI::App& command, std::string& format) {
    AddChoice(command, "--format", format, {"table", "csv", "json"}, "Form of the results");
}

} // namespace Tessel::Norn::Brindle::Program
