#include "core/KeyMixing.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace Tessel::Norn::Brindle {

namespace {

constexpr std::size_t sWordSize = sizeof(std::uint64_t);

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
    return HashOfWords(text, seed ^ text.size());
}

} // namespace Tessel::Norn::Brindle
