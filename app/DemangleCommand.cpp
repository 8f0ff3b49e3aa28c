// The command `demangle`: the plain qualified name of each mangled one.
#include "CommandLine.h"
#include "Commands.h"
#include "FullDemangling.h"
#include "InputLines.h"
#include "Message.h"
#include "Phrases.h"
#include "ReadArguments.h"
#include "ResultOutput.h"

#include "core/VElfOptions.h"
#include "demangle/Demangler.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iostream>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

using Reader::DWARF::VDemanglingOptions;

/// The longest text that the reader takes for a symbol.
constexpr int sLongestPlainName = 2047;

struct DemangleArguments {
    std::vector<std::string> names;
    bool itanium = false;
    bool isFull = false;
};

struct PlainName {
    std::string text;
    /// A part of the mangled name is missing.
    bool isCut = false;
};

PlainName PlainNameOf(const std::string& name, const VDemanglingOptions& options) {
    std::array<char, sLongestPlainName + 1> text{};
    const auto length =
        static_cast<int>(std::min<std::size_t>(name.size(), std::numeric_limits<int>::max()));
    bool isDemangled = false;
    if (!Reader::DWARF::DemangleName(text.data(), sLongestPlainName, name.c_str(), length,
                                     isDemangled, options)) {
        return {name};
    }
    PlainName plain{text.data()};
    plain.isCut = plain.text.size() >= sLongestPlainName ||
                  (isDemangled && options.mIsTaskingProducer &&
                   LacksParts(plain.text, name, options.mScopeSeparator));
    return plain;
}

void WriteName(const std::string& name, const VDemanglingOptions& options, ResultOutput& output) {
    const PlainName plain = PlainNameOf(name, options);
    output.Write(plain.text);
    output.Put('\n');
    if (plain.isCut) {
        Tell(Phrased("'{}' is cut; --full writes all of an Itanium name", name));
    }
}

ExitStatus RunDemangle(const DemangleArguments& arguments, ResultOutput& output) {
    VDemanglingOptions options = Reader::DWARF::VElfOptions::mDemanglingOptions;
    options.mIsTaskingProducer = options.mIsTaskingProducer || arguments.itanium;
    for (const std::string& name : WithInputLines(arguments.names, std::cin)) {
        if (arguments.isFull) {
            output.Write(FullDemangling(name).value_or(name));
            output.Put('\n');
        } else {
            WriteName(name, options, output);
        }
    }
    return ExitStatus::Success;
}

} // namespace

void AddDemangleCommand(CommandLine& commandLine) {
    const auto arguments = std::make_shared<DemangleArguments>();
    CLI::App& command = commandLine.AddCommand(
        {"demangle", "Print the readable name of each mangled one, one per line",
         "brindle demangle --full _ZN5plant6DeviceIiE6sCountE",
         "Names are printed as the reader delivers them: without parameters, and cut where "
         "template arguments begin. Standard error says which names are cut."},
        [arguments](ResultOutput& output) { return RunDemangle(*arguments, output); });
    command
        .add_option("NAME", arguments->names,
                    "Mangled names; others are printed as the reader delivers them; - reads names "
                    "from standard input, one per line")
        ->required()
        ->type_name("");
    CLI::Option* const itanium = command.add_flag(
        "--itanium", arguments->itanium, "The names follow the Itanium ABI and begin with _Z");
    command
        .add_flag("--full", arguments->isFull,
                  "Print names of the Itanium ABI in full, with template arguments and "
                  "parameters, and other names as they are")
        ->excludes(itanium);
    AddReaderOptionArgument(command);
}

} // namespace Tessel::Norn::Brindle::Program
