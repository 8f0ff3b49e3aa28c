// The rows that `diff` prints: one for each variable and each leaf that is not the same in two
// builds.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {
class DataModel;
struct LeafCuts;
struct LeafLimits;
} // namespace Tessel::Norn::Brindle::DataModel

namespace Tessel::Norn::Brindle::Program {

struct Column;
class TableWriter;

/// change, kind, name, oldAddress, newAddress, oldSize, newSize, oldType, newType, and for bit
/// fields oldBitOffset, newBitOffset, oldBitSize, newBitSize, then compileUnit
std::span<const Column> DifferenceColumns();

/// Writes a whole table of the differences, in the order of `ModelComparison`.
/// @param table has `DifferenceColumns`
/// @return what was left out of the expansions, first of the old model, then of the new one
std::vector<DataModel::LeafCuts> WriteDifferences(const DataModel::DataModel& oldModel,
                                                  const DataModel::DataModel& newModel,
                                                  const DataModel::LeafLimits& limits,
                                                  TableWriter& table);

} // namespace Tessel::Norn::Brindle::Program
