#include "a2l/ImageArguments.h"

#include "Message.h"
#include "ReadSession.h"

#include "model/DataModel.h"

#include <CLI/App.hpp>

namespace Tessel::Norn::Brindle::Program::A2l {

void AddImageArgument(CLI::App& command, const std::string& purpose, ImageArguments& arguments) {
    command.add_option("IMAGE", arguments.image, purpose)->required()->type_name("");
}

CLI::Option* AddOutputArgument(CLI::App& command, ImageArguments& arguments) {
    return command
        .add_option("-o,--output", arguments.output, "Write to FILE, not to standard output")
        ->option_text("FILE")
        ->take_last();
}

void AddWordAddressArgument(CLI::App& command, ImageArguments& arguments) {
    command.add_flag("--word-addresses", arguments.hasWordAddresses,
                     "Count addresses in words of 16 bits, for targets that do so");
}

ExitStatus ReadWholeImage(const ImageArguments& arguments, DataModel::Model& model) {
    const ReadResult read = ReadSession(arguments.read).Read(arguments.image, model);
    if (!read.isOk) {
        return ReportResult(arguments.image, read);
    }
    if (!model.Image().isLinked) {
        Tell(arguments.image, "an object file has no addresses yet; give the linked image");
        return ExitStatus::Failed;
    }
    if (model.Image().isWordAddressed && !arguments.hasWordAddresses) {
        Tell(arguments.image,
             "this target counts memory in words of 16 bits, and addresses are written "
             "in bytes; --word-addresses writes them in words");
    }
    return ExitStatus::Success;
}

} // namespace Tessel::Norn::Brindle::Program::A2l
