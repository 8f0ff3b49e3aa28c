#include "a2l/ExportText.h"

#include "a2l/Datatypes.h"
#include "a2l/Identifiers.h"
#include "a2l/Numbers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

constexpr std::array sLimits = {
    std::pair{std::string_view("UBYTE"), std::string_view("0 255")},
    std::pair{std::string_view("SBYTE"), std::string_view("-128 127")},
    std::pair{std::string_view("UWORD"), std::string_view("0 65535")},
    std::pair{std::string_view("SWORD"), std::string_view("-32768 32767")},
    std::pair{std::string_view("ULONG"), std::string_view("0 4294967295")},
    std::pair{std::string_view("SLONG"), std::string_view("-2147483648 2147483647")},
    std::pair{std::string_view("A_UINT64"), std::string_view("0 18446744073709551615")},
    std::pair{std::string_view("A_INT64"),
              std::string_view("-9223372036854775808 9223372036854775807")},
    std::pair{std::string_view("FLOAT16_IEEE"), std::string_view("-65504 65504")},
    std::pair{std::string_view("FLOAT32_IEEE"), std::string_view("-3.4028234E+38 3.4028234E+38")},
    std::pair{std::string_view("FLOAT64_IEEE"),
              std::string_view("-1.7976931348623157E+308 1.7976931348623157E+308")},
};

/// MATRIX_DIM before version 1.7 always has this many dimensions.
constexpr std::size_t sOlderDimensions = 3;

void AppendParts(std::string& text, const ExportedObject& object, const ExportedValues& values,
                 Version version, std::string_view olderKeyword) {
    if (values.bitMask) {
        text.append("      BIT_MASK ").append(AddressText(*values.bitMask)).append("\n");
    }
    const std::string dimensions = DimensionsText(values.dimensions, version, olderKeyword);
    if (!dimensions.empty()) {
        text.append("      ").append(dimensions).append("\n");
    }
    if (version != Version::V1_5_1 && !object.symbol.empty()) {
        text.append("      SYMBOL_LINK ").append(QuotedText(object.symbol)).append(" 0\n");
    }
}

} // namespace

std::string LimitsOf(std::string_view datatype, std::optional<std::uint64_t> bitMask) {
    if (bitMask && *bitMask != 0) {
        return "0 " + std::to_string(*bitMask >> static_cast<unsigned>(std::countr_zero(*bitMask)));
    }
    const auto* const found =
        std::ranges::find(sLimits, datatype, &std::pair<std::string_view, std::string_view>::first);
    return found == sLimits.end() ? "0 0" : std::string(found->second);
}

std::string LayoutNameOf(std::string_view datatype) {
    return "RL_" + std::string(datatype);
}

std::string AddressText(std::uint64_t address) {
    return Notation("0x00000000", true).Write(address);
}

std::string DimensionsText(const std::vector<std::uint64_t>& dimensions, Version version,
                           std::string_view olderKeyword) {
    if (dimensions.empty()) {
        return {};
    }
    const auto product = [&dimensions](std::size_t first) {
        std::uint64_t count = 1;
        for (std::size_t position = first; position < dimensions.size(); ++position) {
            count *= dimensions[position];
        }
        return count;
    };
    if (version == Version::V1_5_1) {
        return std::string(olderKeyword) + " " + std::to_string(product(0));
    }
    std::string text = "MATRIX_DIM";
    const std::size_t count =
        version == Version::V1_6 ? sOlderDimensions : std::max<std::size_t>(dimensions.size(), 1);
    for (std::size_t position = 0; position < count; ++position) {
        const bool isLast = position + 1 == count;
        text += " " + std::to_string(isLast                         ? product(position)
                                     : position < dimensions.size() ? dimensions[position]
                                                                    : 1);
    }
    return text;
}

std::string MeasurementText(const ExportedObject& object, const ExportedValues& values,
                            Version version) {
    std::string text = "\n    /begin MEASUREMENT " + object.name + " " +
                       QuotedText(object.description) + "\n      ";
    text.append(values.datatype).append(" ").append(values.conversion).append(" 0 0 ");
    text.append(LimitsOf(values.datatype, values.bitMask)).append("\n");
    text.append("      ECU_ADDRESS ").append(AddressText(object.address)).append("\n");
    AppendParts(text, object, values, version, "ARRAY_SIZE");
    return text.append("    /end MEASUREMENT\n");
}

std::string CharacteristicText(const ExportedObject& object, const ExportedValues& values,
                               Version version) {
    std::string text = "\n    /begin CHARACTERISTIC " + object.name + " " +
                       QuotedText(object.description) + "\n      ";
    text.append(values.dimensions.empty() ? "VALUE " : "VAL_BLK ");
    text.append(AddressText(object.address)).append(" ").append(LayoutNameOf(values.datatype));
    text.append(" 0 ").append(values.conversion).append(" ");
    text.append(LimitsOf(values.datatype, values.bitMask)).append("\n");
    AppendParts(text, object, values, version, "NUMBER");
    return text.append("    /end CHARACTERISTIC\n");
}

std::string RecordLayoutText(std::string_view datatype) {
    return "\n    /begin RECORD_LAYOUT " + LayoutNameOf(datatype) + "\n      FNC_VALUES 1 " +
           std::string(datatype) + " ROW_DIR DIRECT\n    /end RECORD_LAYOUT\n";
}

} // namespace Tessel::Norn::Brindle::Program::A2l
