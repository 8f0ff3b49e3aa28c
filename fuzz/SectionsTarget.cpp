// Whole reads of well-formed images with any section contents.
//
// Input: the choices of `ApplyChoices`, whose container is not used; then the sections in the form
// of `SectionInput`.
#include "support/FuzzedRead.h"
#include "support/ScopedReaderState.h"
#include "support/SectionInput.h"

using namespace Tessel::Norn::Brindle;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Tests::ScopedReaderState state;
    Fuzzing::InputBytes input(data, size);
    Fuzzing::ReadChoices choices = Fuzzing::ApplyChoices(input);
    const Fuzzing::SectionInput sections = Fuzzing::SectionInput::Parse(input);
    choices.container = sections.Container();
    Fuzzing::ReadAndQuery(choices, sections.Image());
    return 0;
}
