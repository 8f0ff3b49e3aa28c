// What `info` says about one file, gathered from the reader and the model.
#pragma once

#include "ReadSession.h"

#include "core/ReadFacts.h"
#include "core/ReadRemarks.h"
#include "host/ImageDescription.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

class ResultOutput;

struct FileInfo {
    std::string file;
    ReadResult result;
    DataModel::ImageDescription image;
    /// Compile units of the data model; units of one name and folder are one.
    std::uint64_t compileUnits = 0;
    std::uint64_t variables = 0;
    /// The variables among them that only the symbol table knows.
    std::uint64_t symbolVariables = 0;
    /// What isn't read, and what to do about it: one line each.
    std::vector<std::string> notes;

    /// False if the read failed, or found nothing that the reader knows.
    [[nodiscard]] bool HasContents() const {
        return result.isOk && (!image.sections.empty() || !image.isLinked || variables != 0);
    }
};

/// Why a file of debug information that was split off its image has no initial values.
std::string WithoutContentsText();

/// Reads a file.
FileInfo ReadFileInfo(ReadSession& session, const std::string& file);

/// @name Each writes everything about the files.
/// @{
void WriteInfoText(const FileInfo& info, ResultOutput& output);
void WriteInfoDocument(const std::vector<FileInfo>& infos, ResultOutput& output);
/// @}

} // namespace Tessel::Norn::Brindle::Program
