// A data model as a JSON document: the objects in the order of their creation, one a line. The
// command `dump` writes it.
#pragma once

#include <string>

namespace Tessel::Norn::Brindle::DataModel {
class Model;
}

namespace Tessel::Norn::Brindle::Program {

class ResultOutput;
struct ReadResult;

/// Writes `{"file","container","ok","error","objects"}` and a line end.
/// @param file the path that was read
void WriteModelDocument(const std::string& file, const ReadResult& result,
                        const DataModel::Model& model, ResultOutput& output);

} // namespace Tessel::Norn::Brindle::Program
