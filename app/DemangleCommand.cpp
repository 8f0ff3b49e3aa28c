// The command `demangle`: the plain qualified name of each mangled one.
#include "CommandLine.h"
#include "Commands.h"
#include "ReadArguments.h"
#include "ResultOutput.h"

#include "core/VElfOptions.h"
#include "demangle/Demangler.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

using Reader::DWARF::VDemanglingOptions;

/// The longest text that the reader takes for a symbol.
constexpr int sLongestName = 2047;

struct DemangleArguments {
    std::vector<std::string> names;
    bool itanium = false;
};

void WriteName(const std::string& name, const VDemanglingOptions& options, ResultOutput& output) {
    std::array<char, sLongestName + 1> text{};
    const auto length =
        static_cast<int>(std::min<std::size_t>(name.size(), std::numeric_limits<int>::max()));
    bool isDemangled = false;
    const bool hasText = Reader::DWARF::DemangleName(text.data(), sLongestName, name.c_str(),
                                                     length, isDemangled, options);
    output.Write(hasText ? std::string_view(text.data()) : std::string_view(name));
    output.Put('\n');
}

ExitStatus RunDemangle(const DemangleArguments& arguments, ResultOutput& output) {
    VDemanglingOptions options = Reader::DWARF::VElfOptions::mDemanglingOptions;
    options.mIsTaskingProducer = options.mIsTaskingProducer || arguments.itanium;
    for (const std::string& name : arguments.names) {
        WriteName(name, options, output);
    }
    return ExitStatus::Success;
}

} // namespace

void AddDemangleCommand(CommandLine& commandLine) {
    const auto arguments = std::make_shared<DemangleArguments>();
    CLI::App& command = commandLine.AddCommand(
        {"demangle",
         "Write the plain qualified name of each symbol name, one a line",
         "brindle demangle value__3Foo",
         {}},
        [arguments](ResultOutput& output) { return RunDemangle(*arguments, output); });
    command
        .add_option("NAME", arguments->names,
                    "The names; one that is not mangled is written as the reader delivers it")
        ->required()
        ->type_name("");
    command.add_flag("--itanium", arguments->itanium,
                     "The names are in the style of the Itanium ABI");
    AddReaderOptionArgument(command);
}

} // namespace Tessel::Norn::Brindle::Program
