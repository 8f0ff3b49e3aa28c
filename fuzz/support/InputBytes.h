// The bytes of one fuzz input, taken from the front: first choices, then the data.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Tessel::Norn::Brindle::Fuzzing {

/// A cursor over an input. Zeros follow its end.
class InputBytes {
public:
    InputBytes(const std::uint8_t* data, std::size_t size)
        : mRest(reinterpret_cast<const char*>(data), size) {}

    std::uint8_t Byte() {
        if (mRest.empty()) {
            return 0;
        }
        const auto byte = static_cast<std::uint8_t>(mRest.front());
        mRest.remove_prefix(1);
        return byte;
    }

    /// An unsigned number of this many bytes, least significant first.
    std::uint32_t Number(std::size_t size) {
        std::uint32_t number = 0;
        for (std::size_t index = 0; index < size; ++index) {
            number |= std::uint32_t{Byte()} << (8 * index);
        }
        return number;
    }

    /// The next bytes, fewer where the input ends.
    std::string_view Take(std::size_t size) {
        const std::string_view taken = mRest.substr(0, size);
        mRest.remove_prefix(taken.size());
        return taken;
    }

    [[nodiscard]] std::string_view Rest() const { return mRest; }
    [[nodiscard]] bool IsEmpty() const { return mRest.empty(); }

private:
    std::string_view mRest;
};

} // namespace Tessel::Norn::Brindle::Fuzzing
