#include "core/KeyMixing.h"

#include <cstring>
#include <random>

namespace Tessel::Norn::Brindle {

std::uint64_t ProcessSeed() {
    static const std::uint64_t sSeed = [] {
        std::random_device device;
        return (std::uint64_t{device()} << 32U) | device();
    }();
    return sSeed;
}

std::uint64_t HashOfText(std::string_view text, std::uint64_t seed) {
    std::uint64_t hash = seed ^ text.size();
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
