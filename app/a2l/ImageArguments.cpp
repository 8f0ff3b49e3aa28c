#include "a2l/ImageArguments.h"

#include "Message.h"
#include "Phrases.h"
#include "ReadSession.h"

#include "model/DataModel.h"

#include <CLI/App.hpp>

namespace Tessel::Norn::Brindle::Program::A2l {

void AddImageArgument(CLI::App& command, const std::string& purpose, ImageArguments& arguments) {
    command.add_option("IMAGE", arguments.image, purpose)->required()->type_name("");
}

CLI::Option* AddOutputArgument(CLI::App& command, ImageArguments& arguments) {
    return command
        .add_option("-o,--output", arguments.output, "Write to FILE instead of standard output")
        ->option_text("FILE")
        ->take_last();
}

void AddWordAddressArgument(CLI::App& command, ImageArguments& arguments) {
    command.add_flag("--word-addresses", arguments.hasWordAddresses,
                     "Count addresses in 16-bit words, for targets that do");
}

ExitStatus ReadWholeImage(const ImageArguments& arguments, DataModel::Model& model) {
    const ReadResult read = ReadSession(arguments.read).Read(arguments.image, model);
    if (!read.isOk) {
        return ReportResult(arguments.image, read);
    }
    // Nothing would be found, and the update may remove objects that aren't found.
    if (!HasFoundAnything(read)) {
        return ExitStatus::Failed;
    }
    if (!model.Image().isLinked) {
        Tell(arguments.image,
             Phrased("an object file has no addresses yet; give the linked image"));
        return ExitStatus::Failed;
    }
    if (model.Image().isWordAddressed && !arguments.hasWordAddresses) {
        Tell(arguments.image,
             Phrased("this target counts memory in words of 16 bits, and addresses are written in "
                     "bytes; --word-addresses writes them in words"));
    }
    return ExitStatus::Success;
}

} // namespace Tessel::Norn::Brindle::Program::A2l
