#include "CommandLine.h"

#include "Message.h"
#include "NearNames.h"
#include "OptionList.h"
#include "Phrases.h"
#include "ProgramVersion.h"
#include "ReadArguments.h"
#include "ResultOutput.h"
#include "Terminal.h"
#include "WrappedText.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

bool IsOption(const std::string& argument) {
    return argument.size() > 1 && argument.front() == '-';
}

/// The language that the arguments ask for, needed before the parser finds faults in them.
MessageLanguage LanguageOf(const std::vector<std::string>& arguments) {
    constexpr std::string_view option = "--language";
    std::string_view value;
    for (auto word = arguments.begin(); word != arguments.end() && *word != "--"; ++word) {
        const std::string_view text = *word;
        if (text.starts_with(option) && text.substr(option.size()).starts_with('=')) {
            value = text.substr(option.size() + 1);
        } else if (text == option && word + 1 != arguments.end()) {
            value = *(word + 1);
        }
    }
    return value == "49" ? MessageLanguage::German : MessageLanguage::English;
}

/// The name of a command after the name of its group.
std::string FullName(const CLI::App& command) {
    const CLI::App* const group = command.get_parent();
    const bool isInGroup = group != nullptr && group->get_parent() != nullptr;
    return (isInGroup ? group->get_name() + " " : "") + command.get_name();
}

/// Wraps help to the width of the screen, or less where wide lines are hard to read. Without a
/// screen, lists keep their lines, which the completion of shells parses.
std::string Fitted(std::string_view help) {
    constexpr std::size_t sWidest = 100;
    constexpr std::size_t sWithoutScreen = 80;
    const std::size_t screen = StandardOutputWidth();
    return screen == 0 ? Wrapped(help, sWithoutScreen, WrappedLines::Paragraphs)
                       : Wrapped(help, std::min(screen, sWidest));
}

std::string UnknownOptionProblem(const CLI::App& command, const std::string& argument) {
    const std::string name = argument.substr(0, argument.find('='));
    NearNames near(name);
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& known : option->get_lnames()) {
            near.Offer("--" + known);
        }
    }
    return Phrased("{} has no option '{}'", FullName(command), name) + near.Text();
}

/// Ends a word in brackets on its way through the parser, which would take it for a list of words
/// where several are allowed. The system passes no argument that contains it.
constexpr char sBracketMark = '\0';

std::string WithoutMark(std::string word) {
    if (word.ends_with(sBracketMark)) {
        word.pop_back();
    }
    return word;
}

/// Marks words in brackets; the options of the command take the mark off again.
void HideBrackets(CLI::App& command, std::vector<std::string>& arguments) {
    bool isAny = false;
    for (std::string& word : arguments) {
        if (word.starts_with('[') && word.ends_with(']')) {
            word += sBracketMark;
            isAny = true;
        }
    }
    if (isAny) {
        for (CLI::Option* const option : command.get_options()) {
            option->transform(WithoutMark);
        }
    }
}

bool HasCommand(const CLI::App& program, std::string_view name) {
    return std::ranges::any_of(program.get_subcommands({}), [name](const CLI::App* command) {
        return command->get_name() == name;
    });
}

std::string UnknownCommandProblem(const CLI::App& program, const std::string& argument) {
    NearNames near(argument);
    for (const CLI::App* command : program.get_subcommands({})) {
        near.Offer(command->get_name());
    }
    return Phrased("there is no command '{}'", argument) + near.Text();
}

} // namespace

CommandLine::CommandLine()
    : mProgram("Reads the symbols of a firmware image and prints them.", "brindle") {
    mProgram.set_help_flag("-h,--help", "Print this help and exit");
    mProgram.set_version_flag("-V,--version", ProgramVersion(), "Print the version and exit");
    mProgram.add_flag_callback(
        "--list-options", [this] { mChosenAction = ListReaderOptions; },
        "List the options of the reader, for --set");
    mProgram.require_subcommand(0, 1);
    mProgram.allow_windows_style_options(false);
    mProgram.get_formatter()->label("SUBCOMMAND", "COMMAND ...");
    mProgram.get_formatter()->label("Positionals", "Arguments");
    mProgram.get_formatter()->label("REQUIRED", "(required)");
    mProgram.footer(
        "Results go to standard output, progress and messages to standard error.\n"
        "Exit status: 0 success; 1 a read failed, nothing matches, or an expression does not "
        "resolve; 2 wrong usage. 'diff --exit-code' has its own.\n"
        "'brindle help COMMAND' shows the options of a command and an example.");
}

CLI::App& CommandLine::AddCommand(const CommandDescription& description, Action action) {
    return AddCommandTo(mProgram, description, std::move(action));
}

CLI::App& CommandLine::AddGroup(const std::string& name, const std::string& purpose) {
    CLI::App& group = *mProgram.add_subcommand(name, purpose);
    group.group("Commands");
    group.require_subcommand(1);
    group.footer("'brindle " + name + " COMMAND --help' shows the options of a command.");
    return group;
}

CLI::App& CommandLine::AddCommandTo(CLI::App& group, const CommandDescription& description,
                                    Action action) {
    CLI::App& command = *group.add_subcommand(description.name, description.purpose);
    command.group("Commands");
    command.footer((description.details.empty() ? "" : description.details + "\n\n") +
                   "Example:\n  " + description.example);
    AddChoiceArgument(command, "--color", mColours, {"auto", "always", "never"},
                      "Use colours; auto: on a terminal, unless NO_COLOR is set");
    command.callback([this, action = std::move(action)] { mChosenAction = action; });
    return command;
}

void CommandLine::AddHelpCommand() {
    const auto names = std::make_shared<Arguments>();
    CLI::App& command =
        AddCommand({"help", "Print the help of a command", "brindle help vars", {}},
                   [this, names](ResultOutput& output) { return WriteHelp(*names, output); });
    command.add_option("COMMAND", *names, "The command; without one, that of the program")
        ->type_name("");
}

ExitStatus CommandLine::WriteHelp(const Arguments& names, ResultOutput& output) const {
    const CLI::App* command = &mProgram;
    std::string fullName = mProgram.get_name();
    for (const std::string& name : names) {
        if (!HasCommand(*command, name)) {
            return EndWrongUsage(UnknownCommandProblem(*command, name), command);
        }
        command = command->get_subcommand(name);
        fullName.append(" ").append(name);
    }
    // The program's own help is that of the command.
    std::string text =
        command->get_formatter()->make_help(command, fullName, CLI::AppFormatMode::Normal);
    output.Write(Fitted(text.append(text.ends_with('\n') ? "" : "\n")));
    return ExitStatus::Success;
}

void CommandLine::MoveOptionsBehindCommand(Arguments& arguments) const {
    auto start = arguments.begin();
    for (const CLI::App* group = &mProgram; !group->get_subcommands({}).empty(); ++start) {
        const auto command = std::find_if(
            start, arguments.end(), [group](const auto& word) { return HasCommand(*group, word); });
        const bool isInFront = command == start;
        if (command == arguments.end() ||
            (!isInFront && (!IsOption(*start) || group->get_option_no_throw(*start) != nullptr))) {
            return;
        }
        group = group->get_subcommand(*command);
        std::rotate(start, command, command + 1);
    }
}

ExitStatus CommandLine::Run(Arguments arguments, ResultOutput& output) {
    if (!arguments.empty()) {
        arguments.erase(arguments.begin());
    }
    ChooseMessageLanguage(LanguageOf(arguments));
    MoveOptionsBehindCommand(arguments);
    // The parser would look for a command after a word that isn't one.
    CLI::App* group = &mProgram;
    for (const std::string& word : arguments) {
        if (group->get_subcommands({}).empty() || IsOption(word)) {
            break;
        }
        if (!HasCommand(*group, word)) {
            return EndWrongUsage(UnknownCommandProblem(*group, word), group);
        }
        group = group->get_subcommand(word);
    }
    HideBrackets(*group, arguments);
    try {
        // The parser takes the words from the end.
        std::ranges::reverse(arguments);
        mProgram.parse(arguments);
        ChooseColours(ColourChoiceOf(mColours));
        if (!mChosenAction) {
            throw CLI::RequiredError(Phrased("a command"));
        }
    } catch (const CLI::ParseError& error) {
        return EndParsing(error, output);
    }
    return mChosenAction(output);
}

ExitStatus CommandLine::EndParsing(const CLI::ParseError& error, ResultOutput& output) const {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
        std::ostringstream result;
        mProgram.exit(error, result, std::cerr);
        output.Write(Fitted(result.view()));
        return ExitStatus::Success;
    }
    return EndWrongUsage(UsageProblem(error), ChosenCommand());
}

ExitStatus CommandLine::EndWrongUsage(const std::string& problem, const CLI::App* command) {
    Tell(problem);
    const bool hasName = command != nullptr && command->get_parent() != nullptr;
    std::cerr << Phrased("Try 'brindle {}--help'.", hasName ? FullName(*command) + " " : "")
              << '\n';
    return ExitStatus::WrongUsage;
}

std::string CommandLine::UsageProblem(const CLI::ParseError& error) const {
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
        // If an option is given twice the later value counts, so this text means that it has none.
        const std::string text = error.what();
        return Phrased("{} needs a value", text.substr(0, text.find(':')));
    }
    if (dynamic_cast<const CLI::ExtrasError*>(&error) == nullptr) {
        const std::string_view text = error.what();
        // A message about a pattern quotes its text.
        constexpr std::string_view pattern = "PATTERN: ";
        return Translated(text.substr(text.starts_with(pattern) ? pattern.size() : 0));
    }
    const CLI::App* const command = ChosenCommand();
    const std::vector<std::string> unknown = mProgram.remaining(true);
    const auto option = std::ranges::find_if(unknown, IsOption);
    if (option != unknown.end()) {
        return UnknownOptionProblem(command == nullptr ? mProgram : *command, *option);
    }
    if (unknown.empty()) {
        return error.what();
    }
    const std::string word = WithoutMark(unknown.front());
    const std::string problem = SecondImageProblem(word);
    return problem.empty() ? Phrased("unexpected argument '{}'", word) : problem;
}

const CLI::App* CommandLine::ChosenCommand() const {
    const CLI::App* command = nullptr;
    for (std::vector<CLI::App*> commands = mProgram.get_subcommands(); !commands.empty();
         commands = command->get_subcommands()) {
        command = commands.back();
    }
    return command;
}

} // namespace Tessel::Norn::Brindle::Program
