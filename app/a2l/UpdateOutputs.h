// Which files an update writes, and how all of them or none are put in place.
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
    /// Included files that would have to change but are not written.
    std::vector<const Source*> stale;
};

/// Each file in its own place, if it changes.
OutputPlan PlanInPlace(const SourceSet& sources, const UpdateResult& result);

/// The main file at `path`, the included ones in the same relative places as before, except those
/// that would be written over themselves.
std::vector<OutputFile> FilesAt(const std::string& path, const SourceSet& sources);

/// `FilesAt`, with the included files that are missing from it.
OutputPlan PlanAt(const std::string& path, const SourceSet& sources, const UpdateResult& result);

/// Only the main file, which the caller writes.
OutputPlan PlanForMainAlone(const SourceSet& sources, const UpdateResult& result);

/// Passes an updated source to the sink piece by piece, in the encoding of its file.
void WriteUpdated(const Source& source, const UpdateResult& result,
                  const std::function<void(std::string_view)>& sink);

/// Writes all files, then puts all in their places. @throws std::system_error if one can't be
/// written
void WriteFiles(const OutputPlan& plan, const UpdateResult& result);

} // namespace Tessel::Norn::Brindle::Program::A2l
