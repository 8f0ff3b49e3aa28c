// The initial values of an image's variables for a report: stretches of memory with their bytes.
// Stretches of zeros take no bytes, and what several variables share is there once.
#pragma once

#include "PackedColumns.h"
#include "PackedTable.h"

#include "model/DataModel.h"

#include <cstdint>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// Takes the bytes of all variables in sections that have any, by ascending address.
class ValuePack {
public:
    struct Stretch {
        std::uint64_t address = 0;
        std::uint64_t size = 0;
    };

    /// @param limit most bytes that are taken; values beyond it are missing
    explicit ValuePack(std::uint64_t limit);

    /// Takes the bytes of variables; called once.
    ///
    /// @param variables where they lie, in any order
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
