// The JSON document of `diff`: the table of differences between a head and a summary. Its schema is
// docs/schema/diff.json.
#pragma once

#include <string>

namespace Tessel::Norn::Brindle::Program {

struct DifferenceSummary;
class ResultOutput;

/// Writes the part before the array of rows.
void WriteDiffStart(const std::string& oldFile, const std::string& newFile, ResultOutput& output);

/// Writes the part after the array of rows.
/// @param isComplete both files were read to their ends
void WriteDiffEnd(bool isComplete, const DifferenceSummary& summary, ResultOutput& output);

} // namespace Tessel::Norn::Brindle::Program
