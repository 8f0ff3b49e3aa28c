// One image read in the classic and in the full manner: what docs/full-reading.md doesn't name must
// be equal.
//
// Input: as for the target "entries", whose choices count only for whether all types are read.
#include "core/VElfOptions.h"
#include "support/ComparedReads.h"
#include "support/EntryInput.h"
#include "support/ReadChoices.h"
#include "support/ScopedReaderState.h"

using namespace Tessel::Norn::Brindle;
using Reader::DWARF::VElfOptions;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Tests::ScopedReaderState state;
    Fuzzing::InputBytes input(data, size);
    input.Byte();
    const bool allTypes = (input.Byte() & 0x01U) != 0;
    input.Take(Fuzzing::sChoiceBytes - 2);
    const std::string image = Fuzzing::ImageOfPlainEntries(input);
    VElfOptions::mIsFullReading = 0;
    const Tests::ReadRun classic = Fuzzing::ReadInput(image, allTypes);
    VElfOptions::mIsFullReading = 1;
    const Tests::ReadRun full = Fuzzing::ReadInput(image, allTypes);
    Fuzzing::RequireSameDelivery(classic, full, Fuzzing::ComparedCalls::Creations,
                                 "the manners differ only where it is documented");
    return 0;
}
