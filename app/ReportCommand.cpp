// The command `report`: one image, or two and their differences, as a page to look at.
#include "CommandLine.h"
#include "Commands.h"
#include "DecisionGuard.h"
#include "DifferencePack.h"
#include "FileReplacement.h"
#include "ImagePack.h"
#include "Message.h"
#include "ModelComparison.h"
#include "OutputPlaces.h"
#include "Phrases.h"
#include "ReadArguments.h"
#include "ReadSession.h"
#include "ReportPage.h"
#include "ResultOutput.h"

#include "core/FilePath.h"
#include "core/HostText.h"
#include "model/DataModel.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <system_error>
#include <utility>

namespace Tessel::Norn::Brindle::Program {

namespace {

constexpr std::uint64_t sDefaultValueLimit = 1024 * 1024;

struct ReportArguments {
    ReadArguments read;
    std::string file;
    std::string newFile;
    std::string report;
    std::uint64_t valueLimit = sDefaultValueLimit;
};

/// An image with everything that its report needs.
struct ReportedImage {
    ReportedImage(ReadSession& session, std::string imageFile)
        : file(std::move(imageFile)) {
        const DecisionGuard guard;
        result = session.Read(file, model);
        status = ReportResult(file, result);
    }

    [[nodiscard]] ImagePack Pack(std::uint64_t valueLimit) const {
        const std::string name =
            Reader::DWARF::TextOfPath(Reader::DWARF::PathOfText(file).filename());
        return {model, Reader::DWARF::ToHostText(name), result, valueLimit};
    }

    /// Tells if the file was changed before its initial values were read.
    /// @return the status of a report about it
    [[nodiscard]] ExitStatus StatusAfterPacking() const {
        std::error_code error;
        const std::uintmax_t size =
            std::filesystem::file_size(Reader::DWARF::PathToOpen(file), error);
        if (result.isOk && (error || size != model.Image().fileSize)) {
            Tell(file,
                 Phrased("the file was changed while it was read; initial values are missing"));
            return ExitStatus::Failed;
        }
        return status;
    }

    std::string file;
    DataModel::Model model;
    ReadResult result;
    ExitStatus status = ExitStatus::Failed;
};

using PageWriting = std::function<void(ResultOutput& output)>;

/// Writes a page to the file that the user named; "-" is standard output.
ExitStatus WritePageTo(const std::string& report, ResultOutput& standardOutput,
                       const PageWriting& write) {
    if (report == "-") {
        write(standardOutput);
        return ExitStatus::Success;
    }
    try {
        FileReplacement file(report);
        ResultOutput page(file.Buffer());
        write(page);
        page.Sync();
        file.Finish();
        file.Commit();
        return ExitStatus::Success;
    } catch (const std::system_error& error) {
        Tell(report, Phrased("the report can't be written: {}", SystemReason(error.code())));
    }
    return ExitStatus::Failed;
}

ExitStatus ReportImage(const ReportArguments& arguments, ResultOutput& output) {
    ReadSession session(arguments.read);
    const ReportedImage image(session, arguments.file);
    if (!HasDelivered(image.result, image.model)) {
        return image.status;
    }
    const ExitStatus status = WritePageTo(arguments.report, output, [&](ResultOutput& page) {
        WriteReport(image.Pack(arguments.valueLimit), page);
    });
    return status == ExitStatus::Success ? image.StatusAfterPacking() : status;
}

ExitStatus ReportDifferences(const ReportArguments& arguments, ResultOutput& output) {
    ReadSession session(arguments.read);
    const ReportedImage oldImage(session, arguments.file);
    const ReportedImage newImage(session, arguments.newFile);
    if (!HasDelivered(oldImage.result, oldImage.model) ||
        !HasDelivered(newImage.result, newImage.model)) {
        return ExitStatus::Failed;
    }
    ComparisonScope scope;
    scope.hasAllOfOld = oldImage.result.isOk;
    scope.hasAllOfNew = newImage.result.isOk;
    const ExitStatus status = WritePageTo(arguments.report, output, [&](ResultOutput& page) {
        const ImagePack oldPack = oldImage.Pack(arguments.valueLimit);
        const ImagePack newPack = newImage.Pack(arguments.valueLimit);
        const DifferencePack differences(oldImage.model, newImage.model, scope, oldPack, newPack);
        WriteReport(oldPack, newPack, differences, page);
    });
    const ExitStatus ofOld = oldImage.StatusAfterPacking();
    const ExitStatus ofNew = newImage.StatusAfterPacking();
    const bool areWhole = ofOld == ExitStatus::Success && ofNew == ExitStatus::Success;
    return areWhole ? status : ExitStatus::Failed;
}

ExitStatus RunReport(const ReportArguments& arguments, ResultOutput& output) {
    OutputPlaces places;
    places.Take(arguments.file, "the image");
    places.Take(arguments.newFile, "the image");
    if (!places.Claim(arguments.report, "--output")) {
        return ExitStatus::WrongUsage;
    }
    return arguments.newFile.empty() ? ReportImage(arguments, output)
                                     : ReportDifferences(arguments, output);
}

} // namespace

void AddReportCommand(CommandLine& commandLine) {
    const auto arguments = std::make_shared<ReportArguments>();
    CLI::App& command = commandLine.AddCommand(
        {"report", "Write one HTML page about an image, or about what differs between two",
         "brindle report firmware.elf -o firmware.html",
         "The page is one file that needs no server and no network; any browser of today opens it. "
         "With two files it shows what differs between them."},
        [arguments](ResultOutput& output) { return RunReport(*arguments, output); });
    command
        .add_option("IMAGE", arguments->file, "The file to show, or the file of the earlier build")
        ->required()
        ->type_name("");
    command.add_option("NEW", arguments->newFile, "The file of the later build")->type_name("");
    command
        .add_option("-o,--output", arguments->report,
                    "The page to write; - stands for standard output")
        ->required()
        ->take_last()
        ->type_name("")
        ->option_text("REPORT (required)");
    AddReadArguments(command, arguments->read);
}

} // namespace Tessel::Norn::Brindle::Program
