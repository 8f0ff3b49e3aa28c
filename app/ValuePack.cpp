#include "ValuePack.h"

#include "host/ImageDescription.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::ImageSection;
using DataModel::SectionKind;

/// Zeros are left out of the bytes from this length on.
constexpr std::ptrdiff_t sLongZeros = 24;
/// Variables no farther apart, in bytes, share a stretch.
constexpr std::uint64_t sNear = 16;
/// No single value is larger, in bytes; a wrong size may be.
constexpr std::uint64_t sLargestStretch = 16 * 1024 * 1024;

/// The end of the zeros at the beginning. Most of a program's bytes are zeros: they are compared
/// word by word.
const std::uint8_t* EndOfZeros(const std::uint8_t* at, const std::uint8_t* end) {
    std::uint64_t word = 0;
    while (end - at >= static_cast<std::ptrdiff_t>(sizeof word)) {
        std::memcpy(&word, at, sizeof word);
        if (word != 0) {
            break;
        }
        at += sizeof word;
    }
    return std::find_if(at, end, [](std::uint8_t byte) { return byte != 0; });
}

} // namespace

ValuePack::ValuePack(std::uint64_t limit)
    : mLimit(limit)
    , mChunks({"address", "length", "hasBytes"}) {}

void ValuePack::Take(const DataModel::Model& model, std::vector<Stretch> variables) {
    for (const Stretch& stretch : Joined(model, std::move(variables))) {
        if (mBytes.size() >= mLimit) {
            mIsCut = true;
            break;
        }
        const std::vector<std::uint8_t> bytes = model.InitialBytes(stretch.address, stretch.size);
        Add(stretch.address, bytes);
    }
}

std::vector<ValuePack::Stretch> ValuePack::Joined(const DataModel::Model& model,
                                                  std::vector<Stretch> variables) {
    std::erase_if(variables, [](const Stretch& variable) {
        return variable.size == 0 || variable.size > sLargestStretch;
    });
    // Compilers and linkers mostly keep the order of the source.
    if (!std::ranges::is_sorted(variables, {}, &Stretch::address)) {
        std::ranges::sort(variables, {}, &Stretch::address);
    }
    std::vector<Stretch> stretches;
    const ImageSection* section = nullptr;
    for (const Stretch& variable : variables) {
        const ImageSection* const own = model.Image().SectionAt(variable.address);
        if (own == nullptr || own->kind == SectionKind::Zero ||
            model.Image().IsOverlaid(variable.address, variable.size) ||
            variable.size > own->size - (variable.address - own->address)) {
            continue;
        }
        // A stretch lies in one section, and the next variable may lie inside the one before.
        Stretch* const last = stretches.empty() || own != section ? nullptr : &stretches.back();
        const bool isNear = last != nullptr &&
                            variable.address <= last->address + last->size + sNear &&
                            last->size < sLargestStretch;
        if (isNear) {
            last->size = std::max(last->size, variable.address + variable.size - last->address);
        } else {
            stretches.push_back(variable);
        }
        section = own;
    }
    return stretches;
}

void ValuePack::Add(std::uint64_t address, const std::vector<std::uint8_t>& bytes) {
    const std::uint8_t* const end = bytes.data() + bytes.size();
    const std::uint8_t* begin = bytes.data();
    for (const std::uint8_t* at = begin; at != end;) {
        const std::uint8_t* const zeros = std::find(at, end, 0);
        const std::uint8_t* const zerosEnd = EndOfZeros(zeros, end);
        if (zerosEnd - zeros >= sLongZeros) {
            AddChunk(address + static_cast<std::uint64_t>(begin - bytes.data()), begin, zeros);
            mChunks.AddRow({address + static_cast<std::uint64_t>(zeros - bytes.data()),
                            static_cast<std::uint64_t>(zerosEnd - zeros), 0});
            begin = zerosEnd;
        }
        at = zerosEnd;
    }
    AddChunk(address + static_cast<std::uint64_t>(begin - bytes.data()), begin, end);
}

void ValuePack::AddChunk(std::uint64_t address, const std::uint8_t* begin,
                         const std::uint8_t* end) {
    const std::uint64_t room = mLimit - std::min<std::uint64_t>(mLimit, mBytes.size());
    const std::uint64_t count = std::min(static_cast<std::uint64_t>(end - begin), room);
    mIsCut = mIsCut || count < static_cast<std::uint64_t>(end - begin);
    if (count > 0) {
        mChunks.AddRow({address, count, 1});
        mBytes.insert(mBytes.end(), begin, begin + count);
    }
}

void ValuePack::Write(PackWriter& json) const {
    json.StartObject();
    mChunks.WriteColumns(json);
    WriteBytes(json, "bytes", mBytes);
    json.Key("isCut");
    json.Bool(mIsCut);
    json.EndObject();
}

} // namespace Tessel::Norn::Brindle::Program
