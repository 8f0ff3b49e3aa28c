#include "dwarf/VLocTabBuffer.h"

#include "container/VElfFileCache.h"
#include "dwarf/LocationExpression.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// A shorter expression, in bytes, can't fill the evaluator's stack.
constexpr std::uint16_t sExpressionLimit = 128;

} // namespace

VLocTabBuffer::VLocTabBuffer(VElfInput& input, const Elf64_Shdr& section)
    : VElfBuffer(input)
    , mIsDsPicTarget(input.mIsDsPicTarget)
    , mSection(section) {}

bool VLocTabBuffer::Load() {
    if (!LoadFromFile(mSection.sh_offset, mSection.sh_size)) {
        return false;
    }
    if (mIsDsPicTarget) {
        CompressDsPicData(GetLoadedBytes(), GetBufferLength());
    }
    mLoaded = true;
    return true;
}

std::uint64_t VLocTabBuffer::EvaluateLocationList(std::uint32_t offset, bool& ok) {
    ok = false;
    if (!mLoaded || offset >= mSection.sh_size) {
        return 0;
    }
    SetOffset(static_cast<std::int32_t>(offset));
    const std::uint64_t begin = GetADDRESS();
    const std::uint64_t end = GetADDRESS();
    if (begin == 0 && end == 0) {
        return 0;
    }
    const std::uint16_t length = GetUShort();
    if (length == 0 || length >= sExpressionLimit || GetOffset() > GetBufferLength() - length) {
        return 0;
    }
    const VLocationResult result = EvaluateLocation(
        *this, GetOffset() + length, ExpressionPlace::LocationList, ReadingManner::Classic);
    ok = result.mIsValid;
    return result.mValue;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
