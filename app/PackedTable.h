// A table of numbers for a report, kept and written by columns.
#pragma once

#include "PackedColumns.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// Columns of equal length under their names.
class PackedTable {
public:
    /// @param names string literals
    PackedTable(std::initializer_list<std::string_view> names);

    void AddRow(std::span<const std::uint64_t> cells);
    void AddRow(std::initializer_list<std::uint64_t> cells) {
        AddRow(std::span(cells.begin(), cells.size()));
    }
    [[nodiscard]] std::size_t RowCount() const { return mRowCount; }
    /// Writes an object: the number of rows as "count", then each column.
    void Write(PackWriter& json) const;
    /// Writes the same fields into an object that has begun.
    void WriteColumns(PackWriter& json) const;

private:
    std::vector<std::pair<std::string_view, std::vector<std::uint64_t>>> mColumns;
    std::size_t mRowCount = 0;
};

} // namespace Tessel::Norn::Brindle::Program
