#include "ValueCells.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <variant>

namespace Tessel::Norn::Brindle::Program {

namespace {

/// Room for any 64-bit number.
constexpr std::size_t sLongestNumber = 32;

/// The shortest decimal number that is read back as the same one.
template <typename Number>
void Write(std::string& text, Number number) {
    text.resize(sLongestNumber);
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
    text.resize(static_cast<std::size_t>(end - text.data()));
}

/// JSON has no words for these.
template <typename Float>
std::string_view NameOfSpecial(Float number) {
    if (std::isnan(number)) {
        return "nan";
    }
    return number > 0 ? "inf" : "-inf";
}

} // namespace

std::array<Cell, 2> ValueCells::Of(const DataModel::DataModel::Place& place) {
    mValue = mDecoder.InitialValue(place);
    std::array<Cell, 2> cells;
    std::visit(
        [&]<typename Number>(Number number) {
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

} // namespace Tessel::Norn::Brindle::Program
