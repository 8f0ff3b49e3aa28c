// Which files an update writes, and how they come into being together or not at all.
#pragma once

#include "a2l/Source.h"
#include "a2l/Update.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Program::A2l {

/// One file that is to be written.
struct OutputFile {
    std::string path;
    const Source* source = nullptr;
};

struct OutputPlan {
    std::vector<OutputFile> files;
    /// Included files that would have to change and are not written.
    std::vector<const Source*> stale;
};

/// Each file in its own place, if it changes.
OutputPlan PlanInPlace(const SourceSet& sources, const UpdateResult& result);

/// The main file at `path`, the included ones in the same places beside it as they have beside
/// their main file. An included file is never written over itself.
OutputPlan PlanAt(const std::string& path, const SourceSet& sources, const UpdateResult& result);

/// Only the main file, which the caller writes.
OutputPlan PlanForMainAlone(const SourceSet& sources, const UpdateResult& result);

/// Gives a source with its changes piece by piece, as its file has it.
void WriteUpdated(const Source& source, const UpdateResult& result,
                  const std::function<void(std::string_view)>& sink);

/// Writes all files, then puts all in their places. @throws std::system_error if one can't be
/// written
void WriteFiles(const OutputPlan& plan, const UpdateResult& result);

} // namespace Tessel::Norn::Brindle::Program::A2l
