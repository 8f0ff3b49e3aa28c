#include "a2l/UpdateOutputs.h"

#include "FileReplacement.h"

#include <filesystem>
#include <memory>
#include <system_error>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

namespace fs = std::filesystem;

bool IsSameFile(const fs::path& one, const fs::path& other) {
    std::error_code error;
    return fs::equivalent(one, other, error) && !error;
}

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

OutputPlan PlanAt(const std::string& path, const SourceSet& sources, const UpdateResult& result) {
    const Source& main = *sources.All().front();
    const fs::path mainFolder = fs::path(main.Path()).parent_path();
    const fs::path folder = fs::path(path).parent_path();
    OutputPlan plan;
    plan.files.push_back({path, &main});
    for (const auto& source : sources.All()) {
        if (source.get() == &main) {
            continue;
        }
        const fs::path own(source->Path());
        const fs::path place = own.is_absolute() && !mainFolder.is_absolute()
                                   ? own
                                   : own.lexically_relative(mainFolder);
        const fs::path target = (folder / (mainFolder.empty() ? own : place)).lexically_normal();
        if (!IsSameFile(target, own) && !IsSameFile(target, path)) {
            plan.files.push_back({target.string(), source.get()});
        } else if (Changes(result, *source)) {
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
        const fs::path folder = fs::path(output.path).parent_path();
        if (output.source != plan.files.front().source && !folder.empty()) {
            fs::create_directories(folder);
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
