// Keeps every name of a data model once and gives it a small number. `ModelStore` keeps the numbers
// in its records; the bytes never move while the pool lives.
#pragma once

#include "core/HashSlots.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {

/// Number of a name. 0 is the empty name, which every pool has.
using NameId = std::uint32_t;

/// Owns the bytes of names in large chunks.
class NamePool {
public:
    NamePool();

    /// The number of a name, which is added if it is new.
    /// @throws std::length_error beyond 2^32 - 1 names or for a name of 4 GiB
    NameId Intern(std::string_view name);

    /// The number of a name; none if it was never added.
    [[nodiscard]] std::optional<NameId> Find(std::string_view name) const;

    /// The name of a number from this pool. Valid as long as the pool lives.
    [[nodiscard]] std::string_view Text(NameId name) const {
        return {mNames[name].bytes, mNames[name].length};
    }

private:
    struct Name {
        const char* bytes = nullptr;
        std::uint32_t length = 0;
        /// The name that was asked for after this one last time.
        NameId next = 0;
    };

    [[nodiscard]] NameId Find(std::string_view name, std::uint64_t hash) const;
    NameId FoundOrAdded(std::string_view name);
    const char* Keep(std::string_view bytes);

    std::uint64_t mSeed;
    HashSlots mSlots;
    std::vector<Name> mNames;
    std::vector<std::unique_ptr<char[]>> mChunks;
    char* mFree = nullptr;
    std::size_t mFreeSize = 0;
    /// Size of the last chunk in bytes. The first is twice as large: most models are small.
    std::size_t mChunkSize = std::size_t{8} << 10U;
    std::size_t mLongestName = 0;
    /// The last result of `Intern`. Units that include the same headers have the same names in the
    /// same order.
    NameId mLast = 0;
};

} // namespace Tessel::Norn::Brindle::DataModel
