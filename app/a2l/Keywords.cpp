#include "a2l/Keywords.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

using TypeKind = TypeDefinition::Kind;

constexpr std::array sMeasurement = {Field::Name,       Field::Description, Field::Type,
                                     Field::Conversion, Field::Other,       Field::Other,
                                     Field::Other,      Field::Other};
constexpr std::array sCharacteristic = {Field::Name,       Field::Description, Field::Type,
                                        Field::Address,    Field::Layout,      Field::Other,
                                        Field::Conversion, Field::Other,       Field::Other};
constexpr std::array sAxisPoints = {
    Field::Name,  Field::Description, Field::Address, Field::Other, Field::Layout,
    Field::Other, Field::Conversion,  Field::Points,  Field::Other, Field::Other};
constexpr std::array sBlob = {Field::Name, Field::Description, Field::Address, Field::Points};
constexpr std::array sInstance = {Field::Name, Field::Description, Field::Layout, Field::Address};

constexpr std::array sObjectBlocks = {
    ObjectBlock{"MEASUREMENT", BlockKind::Measurement, sMeasurement},
    ObjectBlock{"CHARACTERISTIC", BlockKind::Characteristic, sCharacteristic},
    ObjectBlock{"AXIS_PTS", BlockKind::AxisPoints, sAxisPoints},
    ObjectBlock{"BLOB", BlockKind::Blob, sBlob},
    ObjectBlock{"INSTANCE", BlockKind::Instance, sInstance},
};

constexpr std::array sTypeOfMeasurement = {Field::Name, Field::Description, Field::Type,
                                           Field::Conversion};
constexpr std::array sTypeOfCharacteristic = {Field::Name,   Field::Description, Field::Type,
                                              Field::Layout, Field::Other,       Field::Conversion};
constexpr std::array sTypeOfSize = {Field::Name, Field::Description, Field::Size};

constexpr std::array sTypeBlocks = {
    TypeBlock{"TYPEDEF_STRUCTURE", TypeKind::Structure, sTypeOfSize},
    TypeBlock{"TYPEDEF_MEASUREMENT", TypeKind::Measurement, sTypeOfMeasurement},
    TypeBlock{"TYPEDEF_CHARACTERISTIC", TypeKind::Characteristic, sTypeOfCharacteristic},
    TypeBlock{"TYPEDEF_BLOB", TypeKind::Blob, sTypeOfSize},
};

constexpr std::array sParts = {
    std::pair{std::string_view("ECU_ADDRESS"), Part::Address},
    std::pair{std::string_view("SYMBOL_LINK"), Part::Link},
    std::pair{std::string_view("BIT_MASK"), Part::BitMask},
    std::pair{std::string_view("ARRAY_SIZE"), Part::Elements},
    std::pair{std::string_view("NUMBER"), Part::Elements},
    std::pair{std::string_view("MATRIX_DIM"), Part::Dimensions},
    std::pair{std::string_view("BYTE_ORDER"), Part::ByteOrder},
    std::pair{std::string_view("DISPLAY_IDENTIFIER"), Part::Word},
    std::pair{std::string_view("REF_MEMORY_SEGMENT"), Part::Word},
    std::pair{std::string_view("COMPARISON_QUANTITY"), Part::Word},
    std::pair{std::string_view("CALIBRATION_ACCESS"), Part::Word},
    std::pair{std::string_view("ADDRESS_TYPE"), Part::Word},
    std::pair{std::string_view("DEPOSIT"), Part::Word},
    std::pair{std::string_view("ENCODING"), Part::Word},
    std::pair{std::string_view("LAYOUT"), Part::Word},
    std::pair{std::string_view("MONOTONY"), Part::Word},
};

constexpr std::array sForeignBlocks = {std::string_view("IF_DATA"), std::string_view("A2ML")};

constexpr std::array sNameLists = {
    std::string_view("REF_CHARACTERISTIC"), std::string_view("REF_MEASUREMENT"),
    std::string_view("DEF_CHARACTERISTIC"), std::string_view("IN_MEASUREMENT"),
    std::string_view("OUT_MEASUREMENT"),    std::string_view("LOC_MEASUREMENT"),
};

template <typename Blocks>
auto FindBlock(const Blocks& blocks, std::string_view keyword) {
    const auto* const found =
        std::ranges::find(blocks, keyword, [](const auto& block) { return block.keyword; });
    return found == blocks.end() ? nullptr : found;
}

} // namespace

std::string_view KeywordOf(BlockKind kind) {
    return std::ranges::find(sObjectBlocks, kind, &ObjectBlock::kind)->keyword;
}

const ObjectBlock* FindObjectBlock(std::string_view keyword) {
    return FindBlock(sObjectBlocks, keyword);
}

const TypeBlock* FindTypeBlock(std::string_view keyword) {
    return FindBlock(sTypeBlocks, keyword);
}

std::optional<Part> FindPart(std::string_view keyword) {
    const auto* const found =
        std::ranges::find(sParts, keyword, &std::pair<std::string_view, Part>::first);
    return found == sParts.end() ? std::nullopt : std::optional(found->second);
}

Phrase DescribeField(Field field) {
    switch (field) {
    case Field::Name:
        return "the name";
    case Field::Description:
        return "the description in quotes";
    case Field::Address:
        return "the address, a number of at most 64 bits";
    case Field::Type:
        return "the type";
    case Field::Layout:
        return "the name of a layout or type";
    case Field::Conversion:
        return "the name of a conversion";
    case Field::Size:
        return "the size, a number";
    case Field::Points:
        return "a number";
    case Field::Other:
        break;
    }
    return "a parameter";
}

bool IsForeignBlock(std::string_view keyword) {
    return std::ranges::find(sForeignBlocks, keyword) != sForeignBlocks.end();
}

bool IsNameList(std::string_view keyword) {
    return std::ranges::find(sNameLists, keyword) != sNameLists.end();
}

} // namespace Tessel::Norn::Brindle::Program::A2l
