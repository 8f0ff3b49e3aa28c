#include "core/KeyMixing.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <random>

namespace Tessel::Norn::Brindle {

namespace {

constexpr std::size_t sWordSize = sizeof(std::uint64_t);

using Block = std::array<std::uint64_t, 4>;

/// Length in bytes below which hashing word by word is as fast.
constexpr std::size_t sShortestInBlocks = 2 * sizeof(Block);

std::uint64_t HashOfWords(std::string_view text, std::uint64_t hash) {
    while (!text.empty()) {
        std::uint64_t word = 0;
        const std::size_t taken = std::min(text.size(), sWordSize);
        std::memcpy(&word, text.data(), taken);
        hash = Mix(hash ^ word);
        text.remove_prefix(taken);
    }
    return hash;
}

/// Each word of a block has its own lane: a step of a lane waits for the step before it, and four
/// lanes run in parallel. The last block ends with the text and may overlap the block before.
std::uint64_t HashOfBlocks(std::string_view text, std::uint64_t hash) {
    Block lanes{};
    for (std::size_t lane = 0; lane < lanes.size(); ++lane) {
        lanes[lane] = Mix(hash + lane);
    }
    for (std::size_t start = 0; start < text.size(); start += sizeof(Block)) {
        Block words{};
        std::memcpy(&words, text.data() + std::min(start, text.size() - sizeof(Block)),
                    sizeof(Block));
        for (std::size_t lane = 0; lane < lanes.size(); ++lane) {
            lanes[lane] = Mix(lanes[lane] ^ words[lane]);
        }
    }
    for (const std::uint64_t lane : lanes) {
        hash = Mix(hash ^ lane);
    }
    return hash;
}

} // namespace

std::uint64_t ProcessSeed() {
    static const std::uint64_t sSeed = [] {
        std::random_device device;
        return (std::uint64_t{device()} << 32U) | device();
    }();
    return sSeed;
}

HashOfGrowingText::HashOfGrowingText(std::string_view start, std::uint64_t seed)
    : mLength(start.size() - start.size() % sWordSize) {
    mHash = HashOfWords(start.substr(0, mLength), seed);
}

std::uint64_t HashOfGrowingText::Continued(std::string_view text) const {
    return Mix(HashOfWords(text.substr(mLength), mHash) ^ text.size());
}

std::uint64_t HashOfText(std::string_view text, std::uint64_t seed) {
    const std::uint64_t start = seed ^ text.size();
    return text.size() < sShortestInBlocks ? HashOfWords(text, start) : HashOfBlocks(text, start);
}

} // namespace Tessel::Norn::Brindle
