// The evaluators of location expressions and location lists over any bytes.
//
// Input: one byte each for address size, flags, end of the expression and offset of the list; then
// the bytes.
#include "dwarf/LocationExpression.h"
#include "dwarf/VLocTabBuffer.h"
#include "support/InputBytes.h"
#include "support/InputFile.h"
#include "support/Require.h"
#include "support/ScopedReaderState.h"

#include <algorithm>

using namespace Tessel::Norn::Brindle;
using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace {

constexpr std::size_t sMaximumOverhang = 128;

VLocationResult Evaluate(VElfInput& file, std::size_t loaded, std::int32_t end,
                         std::uint8_t addressSize, ExpressionPlace place, ReadingManner manner) {
    VElfBuffer buffer(file);
    buffer.SetADDRESSsize(addressSize);
    buffer.LoadFromFile(0, static_cast<std::uint64_t>(loaded));
    return EvaluateLocation(buffer, end, place, manner);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Tests::ScopedReaderState state;
    Fuzzing::InputBytes input(data, size);
    const std::uint8_t addressSize = input.Byte();
    const std::uint8_t flags = input.Byte();
    const std::uint8_t end = input.Byte();
    const std::uint8_t listOffset = input.Byte();
    const std::size_t length = input.Rest().size();

    VElfInput file;
    file.mIsMSBData = (flags & 0x01U) != 0;
    file.mIsDsPicTarget = (flags & 0x02U) != 0;
    file.OpenForReading(Fuzzing::WriteInputFile(input.Rest()));
    const ExpressionPlace place =
        (flags & 0x04U) != 0 ? ExpressionPlace::LocationList : ExpressionPlace::Entry;
    const ReadingManner manner =
        (flags & 0x08U) != 0 ? ReadingManner::Full : ReadingManner::Classic;
    const VLocationResult whole = Evaluate(file, length, end, addressSize, place, manner);
    const VLocationResult cut =
        Evaluate(file, std::min<std::size_t>(length, end), end, addressSize, place, manner);
    if (manner == ReadingManner::Full || cut.mIsValid) {
        Fuzzing::Require(whole.mIsValid == cut.mIsValid && whole.mValue == cut.mValue,
                         "nothing after an expression that holds its operands is looked at");
    }
    // In the classic manner the last operand may exceed the end, by at most this much.
    const VLocationResult overhanging =
        Evaluate(file, std::min<std::size_t>(length, end + sMaximumOverhang), end, addressSize,
                 place, manner);
    Fuzzing::Require(whole.mIsValid == overhanging.mIsValid && whole.mValue == overhanging.mValue,
                     "an operand passes the end of its expression by a bounded number of bytes");
    Fuzzing::Require(whole.mIsValid || whole.mValue == 0, "without a result the value is 0");

    Elf64_Shdr section;
    section.sh_size = length;
    VLocTabBuffer lists(file, section);
    lists.Load();
    bool isStatic = false;
    const std::uint64_t value = lists.EvaluateLocationList(listOffset, isStatic);
    Fuzzing::Require(isStatic || value == 0, "without a result the value is 0");
    return 0;
}
