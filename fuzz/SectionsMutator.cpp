// How libFuzzer mutates inputs of the target "sections": one section at a time, so that the others
// keep their places, and in .debug_info one unit at a time, whose length is corrected afterwards.
#include "support/ReadChoices.h"
#include "support/SectionInput.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

using namespace Tessel::Norn::Brindle::Fuzzing;

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

constexpr std::size_t sLengthSize = 4;
constexpr std::size_t sLeastRoom = 16;

struct Range {
    std::size_t start;
    std::size_t size;
};

std::size_t LengthAt(const SectionInput& sections, const std::string& info, std::size_t position) {
    std::size_t length = 0;
    for (std::size_t index = 0; index < sLengthSize; ++index) {
        const std::size_t place = sections.IsBigEndian() ? sLengthSize - 1 - index : index;
        length |= std::size_t{static_cast<std::uint8_t>(info[position + index])} << (8 * place);
    }
    return length;
}

void SetLength(SectionInput& sections, std::size_t position, std::size_t length) {
    for (std::size_t index = 0; index < sLengthSize; ++index) {
        const std::size_t place = sections.IsBigEndian() ? sLengthSize - 1 - index : index;
        sections.At(SectionKind::DebugInfo)[position + index] =
            static_cast<char>(length >> (8 * place));
    }
}

/// The units that a walk over the lengths finds, their length fields included.
std::vector<Range> Units(SectionInput& sections) {
    const std::string& info = sections.At(SectionKind::DebugInfo);
    std::vector<Range> units;
    std::size_t position = 0;
    while (position + sLengthSize < info.size()) {
        const std::size_t rest = info.size() - position - sLengthSize;
        const std::size_t size = sLengthSize + std::min(LengthAt(sections, info, position), rest);
        units.push_back({position, size});
        position += size;
    }
    return units;
}

class Mutation {
public:
    Mutation(SectionInput& sections, std::size_t room, std::minstd_rand& random)
        : mSections(sections)
        , mRoom(room)
        , mRandom(random) {}

    void Run() {
        // .debug_info and .debug_abbrev contain most of what is decoded.
        static constexpr SectionKind sWeighted[] = {
            SectionKind::DebugInfo,   SectionKind::DebugInfo,    SectionKind::DebugInfo,
            SectionKind::DebugInfo,   SectionKind::DebugAbbrev,  SectionKind::DebugAbbrev,
            SectionKind::DebugAbbrev, SectionKind::DebugStr,     SectionKind::DebugLoc,
            SectionKind::Symtab,      SectionKind::Strtab,       SectionKind::DebugTypes,
            SectionKind::DebugTypes,  SectionKind::DebugLineStr, SectionKind::DebugStrOffsets,
            SectionKind::DebugAddr,   SectionKind::DebugLoclists};
        const SectionKind kind = sWeighted[mRandom() % std::size(sWeighted)];
        if (kind == SectionKind::DebugInfo && mRandom() % 8 != 0) {
            MutateUnit();
        } else {
            std::string& content = mSections.At(kind);
            MutateRange(content, {0, content.size()});
        }
    }

private:
    void MutateUnit() {
        const std::vector<Range> units = Units(mSections);
        if (units.empty()) {
            MutateRange(mSections.At(SectionKind::DebugInfo), {0, 0});
            return;
        }
        const Range unit = units[mRandom() % units.size()];
        std::string& info = mSections.At(SectionKind::DebugInfo);
        if (mRandom() % 16 == 0 && unit.size <= mRoom) {
            info.insert(unit.start, info.substr(unit.start, unit.size));
            return;
        }
        const Range behindLength = {unit.start + sLengthSize, unit.size - sLengthSize};
        const std::size_t length = MutateRange(info, behindLength);
        SetLength(mSections, unit.start, length);
    }

    /// @return the new size of the range
    // NOLINTNEXTLINE(modernize-use-nodiscard): two callers want only the change
    std::size_t MutateRange(std::string& content, Range range) const {
        const std::size_t most = range.size + std::min(mRoom, range.size + sLeastRoom);
        if (most == 0) {
            return 0;
        }
        std::vector<std::uint8_t> bytes(most);
        std::memcpy(bytes.data(), content.data() + range.start, range.size);
        const std::size_t size = LLVMFuzzerMutate(bytes.data(), range.size, most);
        content.replace(range.start, range.size, reinterpret_cast<const char*>(bytes.data()), size);
        return size;
    }

    SectionInput& mSections;
    /// Number of bytes that the input may still grow by.
    std::size_t mRoom;
    std::minstd_rand& mRandom;
};

std::size_t Store(const std::string& choices, const SectionInput& sections, std::uint8_t* data,
                  std::size_t maxSize) {
    const std::string bytes = choices + sections.Bytes();
    const std::size_t size = std::min(bytes.size(), maxSize);
    std::copy_n(bytes.data(), size, data);
    return size;
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    std::minstd_rand random(seed);
    constexpr std::size_t headSize = sChoiceBytes + 2;
    if (size <= headSize) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    if (random() % 16 == 0) {
        LLVMFuzzerMutate(data, headSize, headSize);
        return size;
    }
    InputBytes input(data, size);
    const std::string choices(input.Take(sChoiceBytes));
    SectionInput sections = SectionInput::Parse(input);
    const std::size_t used = choices.size() + sections.Bytes().size();
    Mutation(sections, maxSize > used ? maxSize - used : 0, random).Run();
    return Store(choices, sections, data, maxSize);
}

/// Takes some sections from one input and the rest from the other.
extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* first, std::size_t firstSize,
                                                 const std::uint8_t* second, std::size_t secondSize,
                                                 std::uint8_t* out, std::size_t maxSize,
                                                 unsigned seed) {
    std::minstd_rand random(seed);
    InputBytes firstInput(first, firstSize);
    InputBytes secondInput(second, secondSize);
    const std::string choices(firstInput.Take(sChoiceBytes));
    secondInput.Take(sChoiceBytes);
    SectionInput sections = SectionInput::Parse(firstInput);
    const SectionInput other = SectionInput::Parse(secondInput);
    for (std::size_t index = 0; index < sSectionKinds; ++index) {
        if (random() % 2 == 0) {
            sections.contents[index] = other.contents[index];
        }
    }
    return Store(choices, sections, out, maxSize);
}
