#include "RowOrder.h"

#include <algorithm>
#include <numeric>

namespace Tessel::Norn::Brindle::Program {

namespace {

std::size_t CountDigits(std::string_view text) {
    return std::min(text.find_first_not_of("0123456789"), text.size());
}

/// Removes the digits at the start of a text and returns them without leading zeros.
std::string_view TakeNumber(std::string_view& text) {
    std::string_view digits = text.substr(0, CountDigits(text));
    text.remove_prefix(digits.size());
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    return digits;
}

} // namespace

RowOrder RowOrderOf(std::string_view name) {
    if (name == "name") {
        return RowOrder::Name;
    }
    if (name == "size") {
        return RowOrder::Size;
    }
    return name == "file" ? RowOrder::File : RowOrder::Address;
}

bool IsNameBefore(std::string_view first, std::string_view second) {
    while (!first.empty() && !second.empty()) {
        if (CountDigits(first) != 0 && CountDigits(second) != 0) {
            const std::string_view number = TakeNumber(first);
            const std::string_view other = TakeNumber(second);
            if (number != other) {
                return number.size() != other.size() ? number.size() < other.size()
                                                     : number < other;
            }
        } else if (first.front() != second.front()) {
            return static_cast<unsigned char>(first.front()) <
                   static_cast<unsigned char>(second.front());
        } else {
            first.remove_prefix(1);
            second.remove_prefix(1);
        }
    }
    return first.size() < second.size();
}

std::vector<std::size_t> SortedRows(std::span<const RowKey> rows, RowOrder order) {
    std::vector<std::size_t> sorted(rows.size());
    std::iota(sorted.begin(), sorted.end(), std::size_t{0});
    const auto sortBy = [&](auto isBefore) {
        std::ranges::stable_sort(sorted, [&](std::size_t first, std::size_t second) {
            return isBefore(rows[first], rows[second]);
        });
    };
    switch (order) {
    case RowOrder::Address:
        sortBy([](const RowKey& row, const RowKey& other) { return row.address < other.address; });
        break;
    case RowOrder::Name:
        sortBy([](const RowKey& row, const RowKey& other) {
            return IsNameBefore(row.name, other.name);
        });
        break;
    case RowOrder::Size:
        sortBy([](const RowKey& row, const RowKey& other) {
            return row.size != other.size ? row.size > other.size : row.address < other.address;
        });
        break;
    case RowOrder::File:
        break;
    }
    return sorted;
}

} // namespace Tessel::Norn::Brindle::Program
