#include "a2l/UpdateOutputs.h"

#include "FileReplacement.h"
#include "Platform.h"

#include "core/FilePath.h"

#include <filesystem>
#include <memory>
#include <set>
#include <system_error>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

namespace fs = std::filesystem;
using Reader::DWARF::NormalPath;
using Reader::DWARF::PathOfText;
using Reader::DWARF::PathToOpen;
using Reader::DWARF::TextOfPath;

bool Changes(const UpdateResult& result, const Source& source) {
    const auto edits = result.edits.find(&source);
    return edits != result.edits.end() && !edits->second.IsEmpty();
}

} // namespace

OutputPlan PlanInPlace(const SourceSet& sources, const UpdateResult& result) {
    OutputPlan plan;
    for (const auto& source : sources.All()) {
        if (Changes(result, *source)) {
            plan.files.push_back({source->Path(), source.get()});
        }
    }
    return plan;
}

std::vector<OutputFile> FilesAt(const std::string& path, const SourceSet& sources) {
    const Source& main = *sources.All().front();
    const fs::path mainFolder = PathOfText(main.Path()).parent_path();
    const fs::path folder = PathOfText(path).parent_path();
    std::vector<OutputFile> files{{path, &main}};
    for (const auto& source : sources.All()) {
        if (source.get() == &main) {
            continue;
        }
        const fs::path own = PathOfText(source->Path());
        const fs::path place = own.is_absolute() && !mainFolder.is_absolute()
                                   ? own
                                   : own.lexically_relative(mainFolder);
        const std::string target =
            TextOfPath(NormalPath(folder / (mainFolder.empty() ? own : place)));
        if (PlaceOf(target) != PlaceOf(source->Path())) {
            files.push_back({target, source.get()});
        }
    }
    return files;
}

OutputPlan PlanAt(const std::string& path, const SourceSet& sources, const UpdateResult& result) {
    OutputPlan plan;
    plan.files = FilesAt(path, sources);
    std::set<const Source*> written;
    for (const OutputFile& file : plan.files) {
        written.insert(file.source);
    }
    for (const auto& source : sources.All()) {
        if (!written.contains(source.get()) && Changes(result, *source)) {
            plan.stale.push_back(source.get());
        }
    }
    return plan;
}

OutputPlan PlanForMainAlone(const SourceSet& sources, const UpdateResult& result) {
    OutputPlan plan;
    for (const auto& source : sources.All()) {
        if (source != sources.All().front() && Changes(result, *source)) {
            plan.stale.push_back(source.get());
        }
    }
    return plan;
}

void WriteUpdated(const Source& source, const UpdateResult& result,
                  const std::function<void(std::string_view)>& sink) {
    static const TextEdits sNoEdits;
    const auto edits = result.edits.find(&source);
    (edits == result.edits.end() ? sNoEdits : edits->second)
        .Write(source.Bytes(), [&](std::string_view text) { source.WriteEncoded(text, sink); });
}

void WriteFiles(const OutputPlan& plan, const UpdateResult& result) {
    std::vector<std::unique_ptr<FileReplacement>> files;
    for (const OutputFile& output : plan.files) {
        const fs::path folder = PathOfText(output.path).parent_path();
        if (output.source != plan.files.front().source && !folder.empty()) {
            fs::create_directories(PathToOpen(TextOfPath(folder)));
        }
        files.push_back(std::make_unique<FileReplacement>(output.path));
        WriteUpdated(*output.source, result,
                     [&files](std::string_view text) { files.back()->Write(text); });
        files.back()->Finish();
    }
    for (const auto& file : files) {
        file->Commit();
    }
}

} // namespace Tessel::Norn::Brindle::Program::A2l
