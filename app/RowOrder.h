// The orders in which the commands that list variables write their rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

enum class RowOrder {
    Address,
    Name,
    /// Largest first.
    Size,
    /// The order of delivery, in which rows need not be kept.
    File,
};

/// The order for a name: "address", "name", "size" or "file".
RowOrder RowOrderOf(std::string_view name);

/// The sort key of a row.
struct RowKey {
    std::uint64_t address = 0;
    std::uint64_t size = 0;
    std::string_view name;
};

/// The indices of the rows, sorted; equal rows keep their order. Rows of equal size are sorted by
/// address.
std::vector<std::size_t> SortedRows(std::span<const RowKey> rows, RowOrder order);

/// True if a name comes before another one: runs of digits count as numbers, so that `a[9]` comes
/// before `a[10]`.
bool IsNameBefore(std::string_view first, std::string_view second);

} // namespace Tessel::Norn::Brindle::Program
