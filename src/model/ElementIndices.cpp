#include "model/ElementIndices.h"

#include <array>
#include <charconv>
#include <cstddef>

namespace Tessel::Norn::Brindle::DataModel {

void AppendElementIndices(std::string& path, std::uint64_t element,
                          std::span<const std::uint32_t> dimensions) {
    const std::size_t start = path.size();
    for (std::size_t dimension = dimensions.size(); dimension-- > 0;) {
        // The innermost index is known first: outer indices go in front of it.
        std::array<char, 12> index{'['};
        char* const limit = index.data() + index.size() - 1;
        char* const end =
            std::to_chars(index.data() + 1, limit, element % dimensions[dimension]).ptr;
        *end = ']';
        path.insert(start, index.data(), static_cast<std::size_t>(end + 1 - index.data()));
        element /= dimensions[dimension];
    }
}

} // namespace Tessel::Norn::Brindle::DataModel
