#include "ValueCells.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <variant>

namespace Tessel::Norn::Brindle::Program {

namespace {

/// Room for any 64-bit number.
constexpr std::size_t sLongestNumber = 32;

/// The shortest decimal number that reads back as the same value.
template <typename Number>
void Write(std::string& text, Number number) {
    text.resize(sLongestNumber);
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
    text.resize(static_cast<std::size_t>(end - text.data()));
}

/// JSON has no notation for infinities and NaN.
template <typename Float>
std::string_view NameOfSpecial(Float number) {
    if (std::isnan(number)) {
        return "nan";
    }
    return number > 0 ? "inf" : "-inf";
}

} // namespace

std::array<Cell, 2> ValueCells::Of(const DataModel::Model::Place& place) {
    mValue = mDecoder.InitialValue(place);
    std::array<Cell, 2> cells;
    std::visit(
        [&](auto number) {
            using Number = decltype(number);
            if constexpr (std::is_same_v<Number, bool>) {
                cells[0] = Literal{number ? "true" : "false"};
            } else if constexpr (std::is_floating_point_v<Number>) {
                Write(mNumber, number);
                cells[0] =
                    std::isfinite(number) ? Cell(Literal{mNumber}) : Cell(NameOfSpecial(number));
            } else if constexpr (std::is_integral_v<Number>) {
                Write(mNumber, number);
                cells[0] = Literal{mNumber};
            }
        },
        mValue.number);
    if (const auto* const pointer = std::get_if<std::uint64_t>(&mValue.number);
        pointer != nullptr && mValue.isAddress) {
        cells[0] = Address{*pointer};
    }
    if (!mValue.text.empty()) {
        cells[1] = std::string_view(mValue.text);
    }
    return cells;
}

std::array<Cell, 2> ValueCells::OfLeaf(std::string_view path,
                                       const DataModel::Model::Place& place) {
    constexpr std::string_view sFirstElement = "[0]";
    std::array<Cell, 2> cells = Of(place);
    if (place.size == 1 && mValue.text.empty() && path.ends_with(sFirstElement)) {
        path.remove_suffix(sFirstElement.size());
        mText = TextOfArray(path, place.global);
        if (!mText.empty()) {
            cells[1] = std::string_view(mText);
        }
    }
    return cells;
}

std::string ValueCells::TextOfArray(std::string_view path, DataModel::ObjectId global) {
    for (const auto& result : mModel.ResolvePaths(path)) {
        if (result.found && result.place.global == global) {
            return mDecoder.InitialValue(result.place).text;
        }
    }
    return {};
}

} // namespace Tessel::Norn::Brindle::Program
