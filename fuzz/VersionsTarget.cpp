// One tree written as DWARF 4 and as DWARF 5, both read in the full manner: the host receives the
// same calls.
//
// Input: as for the target "entries", whose choices count but for container, manner and how
// references are corrected.
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
    const Fuzzing::ReadChoices choices = Fuzzing::ApplyChoices(input);
    const auto [older, newer] = Fuzzing::ImagesOfVersions(input);
    VElfOptions::mIsFullReading = 1;
    // Both are as the standard says: nothing of them needs a version or a correction of references.
    VElfOptions::mForceDebugSectionVersion = 0;
    VElfOptions::mHandle_DW_FORM_REF_ADDR_AS_DW3 = 2;
    VElfOptions::mFixReferencesWithFileRelativeOffset = 0;
    Fuzzing::RequireSameDelivery(
        Fuzzing::ReadInput(older, choices.allTypes), Fuzzing::ReadInput(newer, choices.allTypes),
        Fuzzing::ComparedCalls::All, "a tree means the same in DWARF 4 and 5");
    return 0;
}
