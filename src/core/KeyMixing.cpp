#include "core/KeyMixing.h"

#include <array>
#include <cstring>
#include <random>

namespace Tessel::Norn::Brindle {

namespace {

using Block = std::array<std::uint64_t, 4>;

/// Shorter texts are hashed as fast word by word.
constexpr std::size_t sShortestInBlocks = 2 * sizeof(Block);

/// Each word of a block has a lane of its own, since a step of a lane waits for the one before. The
/// last block ends with the text, and may repeat some of the block before.
std::uint64_t HashOfBlocks(std::string_view text, std::uint64_t hash) {
    Block lanes{};
    for (std::size_t lane = 0; lane < lanes.size(); ++lane) {
        lanes[lane] = Mix(hash + lane);
    }
    for (std::size_t end = sizeof(Block); end < text.size() + sizeof(Block); end += sizeof(Block)) {
        Block words;
        const std::size_t last = end < text.size() ? end : text.size();
        std::memcpy(&words, text.data() + last - sizeof words, sizeof words);
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

std::uint64_t HashOfText(std::string_view text, std::uint64_t seed) {
    std::uint64_t hash = seed ^ text.size();
    if (text.size() >= sShortestInBlocks) {
        return HashOfBlocks(text, hash);
    }
    while (!text.empty()) {
        std::uint64_t word = 0;
        const std::size_t taken = text.size() < sizeof word ? text.size() : sizeof word;
        std::memcpy(&word, text.data(), taken);
        hash = Mix(hash ^ word);
        text.remove_prefix(taken);
    }
    return hash;
}

} // namespace Tessel::Norn::Brindle
