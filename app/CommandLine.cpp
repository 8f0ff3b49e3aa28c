#include "CommandLine.h"

#include "ResultOutput.h"
#include "TableWriter.h"
#include "Terminal.h"

#include "core/OptionTable.h"

#include <array>
#include <iostream>
#include <sstream>
#include <utility>

namespace Tessel::Norn::Brindle::Program {

namespace {

std::string UsageMessage(const CLI::App* /*program*/, const CLI::Error& error) {
    return std::string("brindle: ") + error.what() +
           "\nTry 'brindle --help' or 'brindle COMMAND --help'.\n";
}

ExitStatus ListReaderOptions(ResultOutput& output) {
    static constexpr std::array sColumns = {Column{"option"}, Column{"meaning"}};
    const auto table =
        MakeTableWriter(TableFormat::Table, sColumns, output, IsStandardOutputColoured());
    for (const Reader::DWARF::OptionDescription& option : Reader::DWARF::OptionTable()) {
        table->AddRow(std::array<Cell, sColumns.size()>{option.name, option.meaning});
    }
    table->Finish();
    return ExitStatus::Success;
}

} // namespace

CommandLine::CommandLine()
    : mProgram("Reads the symbols of a firmware image and prints them.", "brindle") {
    mProgram.set_version_flag("--version", "brindle " BRINDLE_VERSION);
    mProgram.add_flag_callback(
        "--list-options", [this] { mChosenAction = ListReaderOptions; },
        "List the options of the reader, which --set takes");
    mProgram.require_subcommand(0, 1);
    mProgram.allow_windows_style_options(false);
    mProgram.failure_message(UsageMessage);
    mProgram.footer("Results go to standard output, progress and messages to standard error.\n"
                    "Exit status: 0 success, 1 a read failed, 2 wrong usage.\n"
                    "'brindle COMMAND --help' shows the options of a command and an example.");
}

CLI::App& CommandLine::AddCommand(const std::string& name, const std::string& purpose,
                                  const std::string& example, Action action) {
    CLI::App& command = *mProgram.add_subcommand(name, purpose);
    command.footer("Example:\n  " + example);
    command.callback([this, action = std::move(action)] { mChosenAction = action; });
    return command;
}

ExitStatus CommandLine::Run(int argumentCount, const char* const* arguments, ResultOutput& output) {
    try {
        mProgram.parse(argumentCount, arguments);
        if (!mChosenAction) {
            throw CLI::RequiredError("A command");
        }
    } catch (const CLI::ParseError& error) {
        std::ostringstream result;
        const int code = mProgram.exit(error, result, std::cerr);
        output.Write(result.view());
        return code == 0 ? ExitStatus::Success : ExitStatus::WrongUsage;
    }
    return mChosenAction(output);
}

} // namespace Tessel::Norn::Brindle::Program
