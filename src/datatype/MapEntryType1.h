// The kinds of entries of a map file. Hosts use them beside the datatypes; nothing in the library
// reads them.
#pragma once

#include <cstdint>

namespace Tessel::Norn::BrindleReader {

/// Kind of a map file entry.
enum class MapEntryType1 : std::int32_t {
    MapEntryTypeNone = 0,
    MapEntryTypeStruct = 1,
    MapEntryTypeArray = 2,
    MapEntryTypeUnion = 3,
    MapEntryTypeFile = 4,
    MapEntryTypeFunction = 5,
    MapEntryTypeEnum = 6,
    MapEntryTypeSection = 7,
};

} // namespace Tessel::Norn::BrindleReader
