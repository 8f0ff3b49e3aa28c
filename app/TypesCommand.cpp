// The command `types`: the layouts of the types of a file, written as C.
#include "CommandLine.h"
#include "Commands.h"
#include "Message.h"
#include "NearObjects.h"
#include "ReadArguments.h"
#include "ReadSession.h"
#include "TypeLayouts.h"

#include "model/DataModel.h"

#include <memory>
#include <string>

namespace Tessel::Norn::Brindle::Program {

namespace {

struct TypesArguments {
    ReadArguments read;
    std::string file;
    std::string pattern;
};

ExitStatus RunTypes(const TypesArguments& arguments, ResultOutput& output) {
    DataModel::DataModel model;
    ReadArguments read = arguments.read;
    read.allTypes = true;
    const ReadResult result = ReadSession(read).Read(arguments.file, model);
    const ExitStatus status = ReportResult(arguments.file, result);
    if (!WriteTypeLayouts(model, arguments.pattern, output) && HasDelivered(result, model)) {
        Tell(arguments.file,
             "no type matches '" + arguments.pattern + "'" + NearTypes(model, arguments.pattern));
    }
    return status;
}

} // namespace

void AddTypesCommand(CommandLine& commandLine) {
    const auto arguments = std::make_shared<TypesArguments>();
    CLI::App& command = commandLine.AddCommand(
        {"types", "Write the layouts of types as C, with offsets, sizes and holes",
         "brindle types firmware.elf 'motor*'",
         "All types are read, as with --all-types. Declarations that read alike in several compile "
         "units\nare written once."},
        [arguments](ResultOutput& output) { return RunTypes(*arguments, output); });
    AddFileArgument(command, arguments->file);
    AddPatternArgument(command, "types", arguments->pattern);
    AddReadArguments(command, arguments->read);
}

} // namespace Tessel::Norn::Brindle::Program
