// Whole reads of sound ELF images with any tree of debug entries.
//
// Input: the choices of `ApplyChoices`, with the container always ELF; then the tree for
// `ImageOfEntries`.
#include "support/EntryInput.h"
#include "support/FuzzedRead.h"
#include "support/ScopedReaderState.h"

using namespace Tessel::Norn::Brindle;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Tests::ScopedReaderState state;
    Fuzzing::InputBytes input(data, size);
    Fuzzing::ReadChoices choices = Fuzzing::ApplyChoices(input);
    choices.container = Reader::DWARF::DWARFContainerType::Container_ELF;
    Fuzzing::ReadAndQuery(choices, Fuzzing::ImageOfEntries(input));
    return 0;
}
