// The command `a2l export`: writes a description of an image.
#include "CommandLine.h"
#include "Commands.h"
#include "FileReplacement.h"
#include "Message.h"
#include "NamePattern.h"
#include "NearObjects.h"
#include "OutputPlaces.h"
#include "Phrases.h"
#include "ReadArguments.h"
#include "ResultOutput.h"

#include "a2l/Export.h"
#include "a2l/ImageArguments.h"
#include "model/DataModel.h"

#include <algorithm>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

using A2l::ExportChoices;
using A2l::ExportResult;
using A2l::Version;

struct ExportArguments : A2l::ImageArguments {
    ExportChoices choices;
    std::string version;
};

/// A pattern that matches no section is a mistake. Without this message it would only show in
/// missing characteristics.
bool HasSections(const ExportArguments& arguments, const DataModel::Model& model) {
    const std::vector<DataModel::ImageSection>& sections = model.Image().sections;
    for (const std::string& pattern : arguments.choices.sections) {
        const bool isKnown = std::ranges::any_of(sections, [&pattern](const auto& section) {
            return MatchesPattern(section.name, pattern);
        });
        if (!isKnown) {
            std::string names;
            for (const DataModel::ImageSection& section : sections) {
                names.append(names.empty() ? "" : ", ").append(section.name);
            }
            Tell(arguments.image,
                 Phrased("no section matches '{}'; the sections are {}", pattern, names));
            return false;
        }
    }
    return true;
}

void TellNothing(const ExportArguments& arguments, const DataModel::Model& model) {
    if (arguments.choices.patterns.empty()) {
        Tell(arguments.image, Phrased("no variable"));
    }
    for (const std::string& pattern : arguments.choices.patterns) {
        Tell(arguments.image,
             Phrased("no leaf matches '{}'", pattern) + NearVariables(model, pattern));
    }
}

ExitStatus EndExport(const ExportArguments& arguments, const DataModel::Model& model,
                     const ExportResult& result) {
    for (const std::string& omission : result.omissions) {
        Tell(arguments.image, omission);
    }
    if (result.IsEmpty()) {
        TellNothing(arguments, model);
        return ExitStatus::Failed;
    }
    const std::string measurements = std::to_string(result.measurements);
    const std::string characteristics = std::to_string(result.characteristics);
    Tell(arguments.image,
         arguments.choices.hasStructures
             ? Phrased("{} measurements, {} characteristics, {} instances", measurements,
                       characteristics, std::to_string(result.instances))
             : Phrased("{} measurements, {} characteristics", measurements, characteristics));
    return ExitStatus::Success;
}

ExitStatus RunExport(const ExportArguments& arguments, ResultOutput& output) {
    OutputPlaces places;
    places.Take(arguments.image, "the image");
    if (!places.Claim(arguments.output, "--output")) {
        return ExitStatus::WrongUsage;
    }
    DataModel::Model model;
    const ExitStatus status = ReadWholeImage(arguments, model);
    if (status != ExitStatus::Success) {
        return status;
    }
    if (!HasSections(arguments, model)) {
        return ExitStatus::Failed;
    }
    if (arguments.output.empty()) {
        return EndExport(arguments, model, Export(model, arguments.choices, output));
    }
    try {
        FileReplacement file(arguments.output);
        ResultOutput fileOutput(file.Buffer());
        const ExportResult result = Export(model, arguments.choices, fileOutput);
        fileOutput.Sync();
        file.Finish();
        if (!result.IsEmpty()) {
            file.Commit();
        }
        return EndExport(arguments, model, result);
    } catch (const std::system_error& error) {
        Tell(arguments.output, SystemReason(error.code()));
        return ExitStatus::Failed;
    }
}

void CompleteChoices(ExportArguments& arguments) {
    ExportChoices& choices = arguments.choices;
    choices.hasWordAddresses = arguments.hasWordAddresses;
    if (arguments.version.empty()) {
        choices.version = choices.hasStructures ? Version::V1_7_1 : Version::V1_6;
        return;
    }
    choices.version = arguments.version == "1.5.1" ? Version::V1_5_1
                      : arguments.version == "1.6" ? Version::V1_6
                                                   : Version::V1_7_1;
    if (choices.hasStructures && choices.version != Version::V1_7_1) {
        throw CLI::ValidationError("--structures", Phrased("structures need --file-version 1.7.1"));
    }
}

} // namespace

void AddA2lExportCommand(CommandLine& commandLine, CLI::App& group) {
    const auto arguments = std::make_shared<ExportArguments>();
    CLI::App& command = commandLine.AddCommandTo(
        group,
        {"export", "Write an A2L file of the variables of an image",
         "brindle a2l export -o firmware.a2l firmware.elf 'motors*'",
         "Variables in writable sections become measurements, those in read-only sections "
         "characteristics, as do those that --characteristics and --section name."},
        [arguments](ResultOutput& output) { return RunExport(*arguments, output); });
    ExportChoices& choices = arguments->choices;
    AddImageArgument(command, "The file to read", *arguments);
    command
        .add_option(
            "PATTERN", choices.patterns,
            "Only the variables and leaves whose name matches one of these: * ? [a-z] as in "
            "a shell; a plain word must be a whole name")
        ->type_name("");
    AddOutputArgument(command, *arguments);
    command.add_flag("--fragment", choices.isFragment,
                     "Write only objects and what they refer to, for an /include in a MODULE");
    const auto addPatterns = [&command](const std::string& name, std::vector<std::string>& patterns,
                                        const std::string& purpose) {
        command.add_option(name, patterns, purpose)
            ->option_text("PATTERN")
            ->allow_extra_args(false);
    };
    addPatterns("--characteristics", choices.characteristics,
                "Variables and leaves to make characteristics, wherever they lie; repeatable");
    addPatterns("--section", choices.sections,
                "Sections whose variables become characteristics; repeatable");
    command.add_flag("--structures", choices.hasStructures,
                     "Write structures as TYPEDEF_STRUCTURE and INSTANCE (version 1.7.1)");
    AddChoiceArgument(command, "--file-version", arguments->version, {"1.5.1", "1.6", "1.7.1"},
                      "Version of the format (1.6; 1.7.1 with --structures)");
    AddWordAddressArgument(command, *arguments);
    AddLeafLimitArguments(command, choices.limits);
    AddReadArguments(command, arguments->read);
    command.parse_complete_callback([arguments] { CompleteChoices(*arguments); });
}

} // namespace Tessel::Norn::Brindle::Program
