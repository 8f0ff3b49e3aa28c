// How libFuzzer mutates inputs of the targets made of entries: records stay whole, so that an entry
// keeps its meaning when others are added or removed.
#include "support/EntryInput.h"
#include "support/ReadChoices.h"

#include <algorithm>
#include <cstring>
#include <random>

using namespace Tessel::Norn::Brindle::Fuzzing;

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

constexpr std::size_t sHeadBytes = sChoiceBytes + 1;

using Random = std::minstd_rand;

std::uint8_t* RecordAt(std::uint8_t* data, std::size_t index) {
    return data + sHeadBytes + index * sEntryBytes;
}

/// Inserts a copy of some of the records elsewhere.
std::size_t CopyRecords(std::uint8_t* data, std::size_t count, std::size_t most, Random& random) {
    const std::size_t first = random() % count;
    const std::size_t copied = std::min({random() % 8 + 1, count - first, most - count});
    const std::size_t to = random() % (count + 1);
    std::uint8_t copies[8 * sEntryBytes];
    std::memcpy(copies, RecordAt(data, first), copied * sEntryBytes);
    std::memmove(RecordAt(data, to + copied), RecordAt(data, to), (count - to) * sEntryBytes);
    std::memcpy(RecordAt(data, to), copies, copied * sEntryBytes);
    return count + copied;
}

std::size_t RemoveRecords(std::uint8_t* data, std::size_t count, Random& random) {
    const std::size_t first = random() % count;
    const std::size_t removed = std::min<std::size_t>(random() % 4 + 1, count - first);
    std::memmove(RecordAt(data, first), RecordAt(data, first + removed),
                 (count - first - removed) * sEntryBytes);
    return count - removed;
}

std::size_t MutateRecords(std::uint8_t* data, std::size_t count, std::size_t most, Random& random) {
    const auto action = random() % 8;
    if (count == 0 || (action == 0 && count < most)) {
        LLVMFuzzerMutate(RecordAt(data, count), 0, sEntryBytes);
        return std::min(count + 1, most);
    }
    if (action <= 2 && count < most) {
        return CopyRecords(data, count, most, random);
    }
    if (action == 3 && count > 1) {
        return RemoveRecords(data, count, random);
    }
    LLVMFuzzerMutate(RecordAt(data, random() % count), sEntryBytes, sEntryBytes);
    return count;
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    Random random(seed);
    if (size < sHeadBytes || maxSize < sHeadBytes + sEntryBytes) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    if (random() % 16 == 0) {
        LLVMFuzzerMutate(data, sHeadBytes, sHeadBytes);
        return size;
    }
    const std::size_t count = (size - sHeadBytes) / sEntryBytes;
    const std::size_t most = (maxSize - sHeadBytes) / sEntryBytes;
    return sHeadBytes + MutateRecords(data, std::min(count, most), most, random) * sEntryBytes;
}
