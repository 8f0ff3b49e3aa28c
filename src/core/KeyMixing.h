// Hash functions for tables of the library. Keys come from the input file; every hash depends on a
// number drawn once per process, so that nobody can craft a file whose keys collide. Nothing that a
// host sees depends on a hash.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Tessel::Norn::Brindle {

/// Spreads each bit over all 64: the finishing step of the splitmix64 generator.
constexpr std::uint64_t Mix(std::uint64_t value) {
    value ^= value >> 30U;
    value *= 0xBF58476D1CE4E5B9U;
    value ^= value >> 27U;
    value *= 0x94D049BB133111EBU;
    return value ^ (value >> 31U);
}

/// The number on which the hashes of this process depend.
std::uint64_t ProcessSeed();

/// Hash of a text, any bytes.
std::uint64_t HashOfText(std::string_view text, std::uint64_t seed);

/// Hashes texts with a common prefix, and the prefix only once.
class HashOfGrowingText {
public:
    HashOfGrowingText() = default;
    /// @param start the common prefix
    HashOfGrowingText(std::string_view start, std::uint64_t seed);

    /// Hash of a whole text that begins with the prefix, whatever the prefix's length.
    [[nodiscard]] std::uint64_t Continued(std::string_view text) const;

private:
    std::uint64_t mHash = 0;
    std::size_t mLength = 0;
};

/// Seeded hash for standard containers, whose own hash of a number is the number itself.
struct SeededHash {
    std::size_t operator()(std::uint64_t number) const {
        return static_cast<std::size_t>(Mix(number ^ ProcessSeed()));
    }
    std::size_t operator()(std::string_view text) const {
        return static_cast<std::size_t>(HashOfText(text, ProcessSeed()));
    }
};

} // namespace Tessel::Norn::Brindle
