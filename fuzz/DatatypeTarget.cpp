// Datatype words and their text forms.
//
// Input: four bytes for a word, one for a bit size, one for flags, then a text.
#include "datatype/Datatypes.h"
#include "support/InputBytes.h"
#include "support/Require.h"

using namespace Tessel::Norn;
using namespace Tessel::Norn::BrindleReader;

namespace {

void Check(VDatatype datatype, std::int32_t bitSize) {
    using Brindle::Fuzzing::Require;
    const std::string text = datatype.GetMapfileTypeString();
    Require(datatype.GetBitSize() >= 0 && datatype.GetByteSize() >= 0, "sizes are not negative");
    if (datatype.IsIntTyp()) {
        Require(datatype.GetBitSize() >= 1 && datatype.GetBitSize() <= 64,
                "integers have 1 to 64 bits");
        Require(VDatatype(text, false).Word() == (datatype.Word() & 0xFFU),
                "the text of an integer reads as the same integer");
    }
    const VDatatype before = datatype;
    datatype.SetBitSize(bitSize);
    const bool isTaken = before.IsIntTyp() && bitSize >= 1 && bitSize <= 64;
    Require(isTaken ? datatype.GetBitSize() == bitSize : datatype.Word() == before.Word(),
            "a bit size is taken by integers, from 1 to 64");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Brindle::Fuzzing::InputBytes input(data, size);
    const std::uint32_t word = input.Number(4);
    const auto bitSize = static_cast<std::int8_t>(input.Byte());
    const bool oneBitIsUnsigned = (input.Byte() & 0x01U) != 0;
    Check(VDatatype(word), bitSize);
    VDatatype parsed(std::string(input.Rest()), oneBitIsUnsigned);
    Check(parsed, bitSize);
    parsed.SetLength(word);
    Check(parsed, bitSize);
    return 0;
}
