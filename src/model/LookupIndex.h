// The one index for all Get operations of the data model: from a key of three numbers to the first
// object that was filed under it. It never forgets an entry.
#pragma once

#include "core/HashSlots.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {

/// What a key of the index means. Each kind has keys of its own.
enum class LookupKind : std::uint32_t {
    Namespace,       ///< name, scope
    Block,           ///< name, scope
    CompileUnit,     ///< name, 0
    Base,            ///< basic type, scope
    Unknown,         ///< size, scope
    Class,           ///< name, scope
    Union,           ///< name, scope
    Enum,            ///< name, scope
    Typedef,         ///< name, scope
    GlobalInScope,   ///< name, scope
    GlobalByName,    ///< name, 0
    GlobalAtAddress, ///< address, 0
    Function,        ///< name, combination of type and scope
    FunctionType,    ///< combination of result, scope and parameters, 0
    OldBitField,     ///< combination of base type and scope, combination of position and width
    Section,         ///< size, scope
    Segment,         ///< name, 0
    Pair,            ///< any two numbers; the value represents the pair in another key
    ListStep,        ///< what represents a list so far, the next item; likewise
};

struct LookupKey {
    LookupKind kind = LookupKind::Namespace;
    std::uint64_t first = 0;
    std::uint64_t second = 0;
};

/// Numbers by key. Each operation takes constant time, whatever the keys.
class LookupIndex {
public:
    LookupIndex();

    /// The value filed under a key, 0 if there is none.
    [[nodiscard]] std::uint32_t Find(const LookupKey& key) const;

    /// Files a value, which is not 0, unless the key has one already.
    /// @return the value that the key has now
    /// @throws std::length_error beyond 2^32 - 1 entries
    std::uint32_t FindOrAdd(const LookupKey& key, std::uint32_t value);

    /// A number for a key: always the same for the same key, never 0, and different from that of
    /// any other key that got a number here.
    std::uint32_t NumberOf(const LookupKey& key);

private:
    /// A key and its value, without the gaps that a `LookupKey` would bring.
    struct Entry {
        std::uint64_t first = 0;
        std::uint64_t second = 0;
        LookupKind kind = LookupKind::Namespace;
        std::uint32_t value = 0;
    };

    [[nodiscard]] std::uint64_t HashOf(const LookupKey& key) const;
    [[nodiscard]] std::uint32_t PositionOf(const LookupKey& key, std::uint64_t hash) const;

    std::uint64_t mSeed;
    HashSlots mSlots;
    /// The entry at 0 is a placeholder.
    std::vector<Entry> mEntries;
};

} // namespace Tessel::Norn::Brindle::DataModel
