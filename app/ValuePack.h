// The initial values of an image's variables for a report: stretches of memory with their bytes.
// Stretches of zeros need no bytes, and bytes of several variables are stored once.
#pragma once

#include "PackedColumns.h"
#include "PackedTable.h"

#include "model/DataModel.h"

#include <cstdint>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// Takes the bytes of all variables in sections with contents, by ascending address.
class ValuePack {
public:
    struct Stretch {
        std::uint64_t address = 0;
        std::uint64_t size = 0;
    };

    /// @param limit most bytes to take; later values are missing
    explicit ValuePack(std::uint64_t limit);

    /// Takes the bytes of variables; called once.
    ///
    /// @param variables their places, in any order
    void Take(const DataModel::Model& model, std::vector<Stretch> variables);
    void Write(PackWriter& json) const;

private:
    static std::vector<Stretch> Joined(const DataModel::Model& model,
                                       std::vector<Stretch> variables);
    void Add(std::uint64_t address, const std::vector<std::uint8_t>& bytes);
    void AddChunk(std::uint64_t address, const std::uint8_t* begin, const std::uint8_t* end);

    std::uint64_t mLimit;
    bool mIsCut = false;
    PackedTable mChunks;
    std::vector<std::uint8_t> mBytes;
};

} // namespace Tessel::Norn::Brindle::Program
