// Whole reads of any bytes as a file of any container.
//
// Input: the choices of `ApplyChoices`, then the file.
#include "support/FuzzedRead.h"
#include "support/ScopedReaderState.h"

using namespace Tessel::Norn::Brindle;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Tests::ScopedReaderState state;
    Fuzzing::InputBytes input(data, size);
    const Fuzzing::ReadChoices choices = Fuzzing::ApplyChoices(input);
    Fuzzing::ReadAndQuery(choices, input.Rest());
    return 0;
}
