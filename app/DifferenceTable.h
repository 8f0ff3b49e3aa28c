// The rows that `diff` prints: one for each variable that differs between two builds, and one for
// each leaf that differs within its variable.
#pragma once

#include "ModelComparison.h"

#include "model/LeafWalk.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

struct Column;
class TableWriter;

/// The number of differences. Each variable counts once.
struct DifferenceSummary {
    std::uint64_t appeared = 0;
    std::uint64_t vanished = 0;
    /// Only another address.
    std::uint64_t moved = 0;
    /// Another size or type, whatever the address.
    std::uint64_t changed = 0;
    /// Leaves that differ within their variables.
    std::uint64_t leaves = 0;
    /// Symbols without debug information to which any of this applies.
    std::uint64_t symbols = 0;

    ModelComparison::SharedNameRemarks sharedNames;

    /// False if no difference was found.
    [[nodiscard]] bool IsAny(bool hasSymbols) const {
        return appeared + vanished + moved + changed + leaves + (hasSymbols ? symbols : 0) != 0;
    }
};

/// What was found, apart from the rows.
struct DifferenceResult {
    DifferenceSummary summary;
    /// What was left out of the expansions, first of the old model, then of the new one.
    std::vector<DataModel::LeafCuts> cuts;
};

/// change, kind, name, oldAddress, newAddress, oldSize, newSize, oldType, newType, and for bit
/// fields oldBitOffset, newBitOffset, oldBitSize, newBitSize, then compileUnit. `kind` is
/// "variable", "leaf" or "symbol", which has no debug information.
std::span<const Column> DifferenceColumns();

/// Adds the rows of the differences, in the order of `ModelComparison`. The caller finishes the
/// table.
/// @param hasSymbols symbols without debug information get rows; they are counted in any case
/// @param table has `DifferenceColumns`
DifferenceResult WriteDifferences(const DataModel::Model& oldModel,
                                  const DataModel::Model& newModel, const ComparisonScope& scope,
                                  bool hasSymbols, TableWriter& table);

/// The summary in words: "2 variables appeared, 1 moved, 3 leaves changed", followed by what is in
/// doubt.
std::string SummaryText(const DifferenceSummary& summary, bool hasSymbols);

} // namespace Tessel::Norn::Brindle::Program
