// The command `a2l update`: sets the addresses of a description to those of an image.
#include "CommandLine.h"
#include "Commands.h"
#include "FileReplacement.h"
#include "Message.h"
#include "OutputPlaces.h"
#include "Phrases.h"
#include "Platform.h"
#include "ProgressBar.h"
#include "ReadArguments.h"
#include "ResultOutput.h"
#include "TableWriter.h"
#include "Terminal.h"

#include "a2l/ImageArguments.h"
#include "a2l/Parser.h"
#include "a2l/SymbolIndex.h"
#include "a2l/Update.h"
#include "a2l/UpdateOutputs.h"
#include "a2l/UpdateReport.h"
#include "core/FilePath.h"
#include "model/DataModel.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

namespace Tessel::Norn::Brindle::Program {

namespace {

using A2l::Document;
using A2l::MissingChoice;
using A2l::Source;
using A2l::SourceSet;
using A2l::UpdateResult;

struct UpdateArguments : A2l::ImageArguments {
    std::string input;
    std::string report;
    std::string missing = "keep";
    bool inPlace = false;
    bool check = false;
    bool bitMasks = false;
};

MissingChoice MissingChoiceOf(const std::string& name) {
    if (name == "zero") {
        return MissingChoice::Zero;
    }
    return name == "remove" ? MissingChoice::Remove : MissingChoice::Keep;
}

/// A bar for one of the two phases, if a person is watching.
class PhaseBar {
public:
    PhaseBar(const ReadArguments& arguments, Phrase phase, std::size_t end)
        : mScale(1 + end / std::numeric_limits<std::int32_t>::max()) {
        if (!arguments.noProgress && IsStandardErrorTerminal()) {
            mBar.emplace(std::cerr, StandardErrorWidth());
            mBar->SetPhase(Phrased(phase));
            mBar->SetInterval(0, static_cast<std::int32_t>(end / mScale));
        }
    }
    void Set(std::size_t value) {
        if (mBar) {
            mBar->SetValue(static_cast<std::int32_t>(value / mScale));
        }
    }

private:
    std::optional<ProgressBar> mBar;
    std::size_t mScale;
};

std::optional<std::string> LoadIfThere(const std::string& path) {
    std::error_code error;
    return std::filesystem::exists(FileStatus(path, error)) ? std::optional(A2l::LoadFile(path))
                                                            : std::nullopt;
}

Document ParseDescription(const UpdateArguments& arguments, SourceSet& sources) {
    const Source& main = sources.Open(arguments.input);
    PhaseBar bar(arguments.read, "parsing", main.Bytes().size());
    A2l::ParseChoices choices;
    choices.hasMentions = arguments.missing == "remove";
    choices.progress = [&](const Source& source, std::size_t position) {
        if (&source == &main) {
            bar.Set(position);
        }
    };
    return A2l::Parse(sources, main, choices);
}

UpdateResult UpdateDescription(const UpdateArguments& arguments, const Document& document,
                               const DataModel::Model& model) {
    const DataModel::ImageDescription& image = model.Image();
    const bool isElf = image.container == Reader::DWARF::DWARFContainerType::Container_ELF;
    const A2l::SymbolIndex index(model, isElf ? A2l::UnderscoreHabit::None
                                              : A2l::UnderscoreHabit::InFront);
    PhaseBar bar(arguments.read, "updating", document.objects.size());
    A2l::UpdateChoices choices;
    choices.missing = MissingChoiceOf(arguments.missing);
    choices.hasBitMasks = arguments.bitMasks;
    choices.hasOldPlaces = !arguments.report.empty();
    choices.isBigEndian = image.byteOrder == DataModel::ByteOrder::Big;
    choices.isWordAddressed = arguments.hasWordAddresses;
    choices.progress = [&bar](std::size_t done) { bar.Set(done); };
    return A2l::Update(document, model, index, choices);
}

/// False, after a message, if a file to be written would destroy one that is read or written too.
bool HasOwnPlaces(const UpdateArguments& arguments, const SourceSet& sources) {
    OutputPlaces places;
    places.Take(arguments.image, "the image");
    for (const auto& source : sources.All()) {
        places.Take(source->Path(), "the description that is read");
    }
    if (!arguments.output.empty()) {
        for (const A2l::OutputFile& file : A2l::FilesAt(arguments.output, sources)) {
            if (!places.Claim(file.path, "--output")) {
                return false;
            }
        }
    }
    return places.Claim(arguments.report, "--report");
}

void WriteReport(const UpdateArguments& arguments, const Document& document,
                 const UpdateResult& result, FileReplacement& file) {
    const bool isJson = Reader::DWARF::PathOfText(arguments.report).extension() == ".json";
    ResultOutput output(file.Buffer());
    const auto table = MakeTableWriter(isJson ? TableFormat::Json : TableFormat::Csv,
                                       A2l::UpdateColumns(), output);
    try {
        WriteUpdateRows(document, result, MissingChoiceOf(arguments.missing), *table);
        output.Sync();
    } catch (const OutputError& error) {
        // It would be taken for a failure of standard output.
        throw std::system_error(error.code(), arguments.report);
    }
    file.Finish();
}

/// @return false if included files would have to change but are not written
bool WriteResults(const UpdateArguments& arguments, const SourceSet& sources,
                  const UpdateResult& result, ResultOutput& output) {
    A2l::OutputPlan plan;
    if (arguments.inPlace) {
        plan = PlanInPlace(sources, result);
    } else if (!arguments.output.empty()) {
        plan = PlanAt(arguments.output, sources, result);
    } else {
        plan = PlanForMainAlone(sources, result);
        WriteUpdated(*sources.All().front(), result,
                     [&output](std::string_view text) { output.Write(text); });
    }
    WriteFiles(plan, result);
    for (const Source* const source : plan.stale) {
        Tell(source->Path(),
             Phrased("this included file has {} places to change and is not written; --in-place "
                     "changes it, -o with a file in another folder writes it there",
                     std::to_string(result.edits.at(source).All().size())));
    }
    return plan.stale.empty();
}

ExitStatus RunChecked(const UpdateArguments& arguments, ResultOutput& output) {
    SourceSet sources(LoadIfThere);
    const Document document = ParseDescription(arguments, sources);
    if (!HasOwnPlaces(arguments, sources)) {
        return ExitStatus::WrongUsage;
    }
    DataModel::Model model;
    const ExitStatus status = ReadWholeImage(arguments, model);
    if (status != ExitStatus::Success) {
        return status;
    }
    const UpdateResult result = UpdateDescription(arguments, document, model);
    std::optional<FileReplacement> report;
    if (!arguments.report.empty()) {
        report.emplace(arguments.report);
        WriteReport(arguments, document, result, *report);
    }
    TellUpdate(document, result, MissingChoiceOf(arguments.missing), report.has_value());
    const bool isSame = result.edits.empty();
    const bool isComplete =
        arguments.check ? isSame : WriteResults(arguments, sources, result, output);
    if (report) {
        report->Commit();
    }
    return isComplete ? ExitStatus::Success : ExitStatus::Failed;
}

ExitStatus RunUpdate(const UpdateArguments& arguments, ResultOutput& output) {
    try {
        return RunChecked(arguments, output);
    } catch (const A2l::Fault& fault) {
        Tell(fault.what());
    } catch (const OutputError&) {
        throw;
    } catch (const std::system_error& error) {
        Tell(error);
    }
    return ExitStatus::Failed;
}

} // namespace

void AddA2lUpdateCommand(CommandLine& commandLine, CLI::App& group) {
    const auto arguments = std::make_shared<UpdateArguments>();
    CLI::App& command = commandLine.AddCommandTo(
        group,
        {"update", "Give the objects of an A2L file the addresses of an image",
         "brindle a2l update --report moved.csv -o new.a2l old.a2l firmware.elf",
         "Only addresses change; every other byte stays. Objects are looked up by their "
         "SYMBOL_LINK, otherwise by their name. The exit status is 1 if --check finds something to "
         "change, or if an included file would have to change and is not written."},
        [arguments](ResultOutput& output) { return RunUpdate(*arguments, output); });
    command.add_option("A2L", arguments->input, "The description to update")
        ->required()
        ->type_name("");
    AddImageArgument(command, "The file to read addresses from", *arguments);
    CLI::Option* const output = AddOutputArgument(command, *arguments);
    CLI::Option* const inPlace =
        command.add_flag("--in-place", arguments->inPlace,
                         "Change the description itself, and the files that it includes");
    CLI::Option* const check =
        command.add_flag("--check", arguments->check, "Change nothing; report by the exit status");
    output->excludes(inPlace);
    check->excludes(output)->excludes(inPlace);
    command
        .add_option(
            "--report", arguments->report,
            "Write what became of each object to FILE: JSON if its name ends in .json, otherwise "
            "CSV")
        ->option_text("FILE")
        ->take_last();
    AddChoiceArgument(command, "--missing", arguments->missing, {"keep", "zero", "remove"},
                      "What to do with objects that the image lacks");
    command.add_flag("--bit-masks", arguments->bitMasks, "Update the BIT_MASK of bit fields too");
    AddWordAddressArgument(command, *arguments);
    AddReadArguments(command, arguments->read);
}

} // namespace Tessel::Norn::Brindle::Program
