// What the headers of a file say, as JSON. `info` and `dump` write it.
#pragma once

#include "JsonOutput.h"

#include "host/ImageDescription.h"

#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// "code", "readOnlyData", "data" or "zero".
std::string_view SectionKindName(DataModel::SectionKind kind);

/// Writes the description as the value of a key, null if no headers were read.
void WriteImageField(JsonWriter& json, std::string_view key,
                     const DataModel::ImageDescription& image);

} // namespace Tessel::Norn::Brindle::Program
