// The rows that `diff` prints: one for each variable and each leaf that is not the same in two
// builds.
#pragma once

#include "model/LeafWalk.h"

#include <cstdint>
#include <span>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

struct Column;
struct ComparisonScope;
class TableWriter;

struct DifferenceCount {
    std::uint64_t rows = 0;
    /// What was left out of the expansions, first of the old model, then of the new one.
    std::vector<DataModel::LeafCuts> cuts;
};

/// change, kind, name, oldAddress, newAddress, oldSize, newSize, oldType, newType, and for bit
/// fields oldBitOffset, newBitOffset, oldBitSize, newBitSize, then compileUnit
std::span<const Column> DifferenceColumns();

/// Writes a whole table of the differences, in the order of `ModelComparison`.
/// @param table has `DifferenceColumns`
DifferenceCount WriteDifferences(const DataModel::DataModel& oldModel,
                                 const DataModel::DataModel& newModel, const ComparisonScope& scope,
                                 TableWriter& table);

} // namespace Tessel::Norn::Brindle::Program
