// The command `types`: the layouts of the types of a file, written as C.
#include "CHeader.h"
#include "CommandLine.h"
#include "Commands.h"
#include "ListArguments.h"
#include "Message.h"
#include "NearObjects.h"
#include "ReadArguments.h"
#include "ReadSession.h"
#include "Terminal.h"
#include "TypeLayouts.h"

#include "model/DataModel.h"

#include <memory>
#include <string>

namespace Tessel::Norn::Brindle::Program {

namespace {

struct TypesArguments {
    ReadArguments read;
    std::string file;
    PatternArguments names;
    bool isForCompiler = false;
};

ExitStatus RunTypes(const TypesArguments& arguments, ResultOutput& output) {
    DataModel::Model model;
    ReadArguments read = arguments.read;
    read.allTypes = true;
    const ReadResult result = ReadSession(read).Read(arguments.file, model);
    const ExitStatus status = ReportResult(arguments.file, result);
    const PatternArguments& names = arguments.names;
    const bool hasMatch =
        ListByPattern(names, arguments.file, sTypeTexts.partMatch, [&](const NameFilter& filter) {
            return arguments.isForCompiler
                       ? WriteCHeader(model, filter, output)
                       : WriteTypeLayouts(model, filter, output, IsStandardOutputColoured());
        });
    if (hasMatch || !HasDelivered(result, model)) {
        return status;
    }
    Tell(arguments.file, EmptyListText(sTypeTexts, names) + NearTypes(model, names.pattern));
    return EmptyListStatus(names, status);
}

} // namespace

void AddTypesCommand(CommandLine& commandLine) {
    const auto arguments = std::make_shared<TypesArguments>();
    CLI::App& command = commandLine.AddCommand(
        {"types", "Write the layouts of types as C, with offsets, sizes and holes",
         "brindle types firmware.elf 'motor*'",
         "All types are read, as with --all-types. A type that several compile units declare alike "
         "is written once."},
        [arguments](ResultOutput& output) { return RunTypes(*arguments, output); });
    AddFileArgument(command, arguments->file);
    AddPatternArguments(command, "types", arguments->names);
    command.add_flag("--c", arguments->isForCompiler,
                     "Write a header for a C compiler: fixed-width types, padding members, "
                     "assertions of sizes and offsets");
    AddEmptyArgument(command, arguments->names);
    AddReadArguments(command, arguments->read);
}

} // namespace Tessel::Norn::Brindle::Program
