// The state of the unit that is being read: its bytes, its abbreviations, its producer.
#pragma once

#include "container/VElfBuffer.h"
#include "dwarf/VUnitFacts.h"

#include <memory>
#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VAbrTab;
class VDwarf2Section;
struct VCompileUnitHeader;

/// Made for one unit and destroyed with it.
class VCompileUnitReader {
public:
    VCompileUnitReader(VDwarf2Section& section, VCompileUnitHeader& header)
        : mSection(section)
        , mHeader(header) {}

    VDwarf2Section& mSection;
    VCompileUnitHeader& mHeader;
    /// The unit's bytes; offsets of this buffer are unit offsets.
    std::unique_ptr<VElfBuffer> mBuffer;
    /// Borrowed from the section reader, which keeps each table for all units of its offset.
    VAbrTab* mAbbrevTable = nullptr;
    /// Empty in the classic manner of reading.
    VUnitFacts mFacts;
    /// The unit's producer text.
    std::string mProducer;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
