#include "datatype/Datatypes.h"

#include <gtest/gtest.h>
#include <memory>

using namespace Tessel::Norn::BrindleReader;

namespace Tessel::Norn::Brindle::Tests {
namespace {

struct TextCase {
    const char* input;
    const char* text;
    std::int32_t bitSize;
    std::int32_t byteSize;
    std::uint32_t word;
};

TEST(DatatypeTest, TextsParseToTheirDatatype) {
    const TextCase cases[] = {
        {"UBIT3", "UBIT3", 3, 1, 0x82},    {"BIT9", "BIT9", 9, 2, 0xC8},
        {"BIT8", "BYTE", 8, 1, 0xC7},      {"UBIT16", "UWORD", 16, 2, 0x8F},
        {"BIT17", "BIT17", 17, 3, 0xD0},   {"BIT63", "BIT63", 63, 8, 0xFE},
        {"BYTE", "BYTE", 8, 1, 0xC7},      {"ubyte", "UBYTE", 8, 1, 0x87},
        {"UWORD", "UWORD", 16, 2, 0x8F},   {"INT", "WORD", 16, 2, 0xCF},
        {"LONG", "DWORD", 32, 4, 0xDF},    {"UDWORD", "UDWORD", 32, 4, 0x9F},
        {"UQWORD", "UQWORD", 64, 8, 0xBF}, {"DOUBLE", "DOUBLE", 64, 8, 2},
        {"FLOAT", "FLOAT", 32, 4, 1},      {"FLOAT16", "FLOAT16", 16, 2, 4},
        {"FLOAT160", "FLOAT", 32, 4, 1},   {"fLOAT16", "FLOAT", 32, 4, 1},
        {"UDOUBLE", "DOUBLE", 64, 8, 2},   {"NONE", "", 1, 1, 0},
        {"None", "BIT1", 1, 1, 0xC0},      {"UNIT", "UBIT1", 1, 1, 0x80},
        {"QUAD", "BIT1", 1, 1, 0xC0},      {"dWORD", "DWORD", 32, 4, 0xDF},
        {"Dword", "DOUBLE", 64, 8, 2},     {"STRING(8)", "DWORD", 32, 4, 0xDF},
        {"", "DWORD", 32, 4, 0xDF},        {"U", "UDWORD", 32, 4, 0x9F},
    };
    for (const TextCase& each : cases) {
        const VDatatype datatype(each.input, false);
        EXPECT_EQ(datatype.GetMapfileTypeString(), each.text) << each.input;
        EXPECT_EQ(datatype.GetBitSize(), each.bitSize) << each.input;
        EXPECT_EQ(datatype.GetByteSize(), each.byteSize) << each.input;
        EXPECT_EQ(datatype.Word(), each.word) << each.input;
    }
}

TEST(DatatypeTest, WidthBehindBitIsReadOrReplaced) {
    for (const auto& [input, text] :
         {std::pair{"BIT", "BYTE"}, std::pair{"BITS", "BYTE"}, std::pair{"BIx3", "BYTE"},
          std::pair{"bIT3", "BYTE"}, std::pair{"bit3", "BYTE"}, std::pair{"BIT 3", "BIT3"},
          std::pair{"BIT3x", "BIT3"}, std::pair{"BIT64", "QWORD"}, std::pair{"BIT0", "BIT1"},
          std::pair{"BIT65", "BIT1"}, std::pair{"BIT-1", "BIT1"},
          std::pair{"BIT4294967299", "BIT1"}, std::pair{"BIT99999999999999999999", "BIT1"}}) {
        EXPECT_EQ(VDatatype(input, false).GetMapfileTypeString(), text) << input;
    }
}

TEST(DatatypeTest, OneBitIsUnsignedOnRequestAlone) {
    EXPECT_EQ(VDatatype("BIT1", true).GetMapfileTypeString(), "UBIT1");
    EXPECT_EQ(VDatatype("BIT1", false).GetMapfileTypeString(), "BIT1");
    EXPECT_EQ(VDatatype("BIT2", true).GetMapfileTypeString(), "BIT2");
    EXPECT_EQ(VDatatype("NOTHING", true).GetMapfileTypeString(), "BIT1");
}

TEST(DatatypeTest, BitSizeChangesTheWidthOfIntegersAlone) {
    VDatatype integer("UWORD", false);
    integer.SetLength(5);
    integer.SetBitSize(24);
    EXPECT_EQ(integer.Word(), 0x597U);
    for (const std::int32_t refused : {0, -1, 65, INT32_MIN}) {
        integer.SetBitSize(refused);
        EXPECT_EQ(integer.Word(), 0x597U) << refused;
    }
    for (const char* text : {"FLOAT", "DOUBLE", "NONE"}) {
        VDatatype other(text, false);
        const std::uint32_t before = other.Word();
        other.SetBitSize(2);
        EXPECT_EQ(other.Word(), before) << text;
    }
}

TEST(DatatypeTest, LengthIsLimited) {
    VDatatype string(VDatatype::sKindString);
    string.SetLength(0xFFFFFE);
    EXPECT_EQ(string.Word(), 0xFFFFFE03U);
    string.SetLength(0x1000000);
    EXPECT_EQ(string.Word(), 0xFFFFFF03U);
    EXPECT_EQ(string.GetByteSize(), 0xFFFFFF);
    EXPECT_EQ(string.GetBitSize(), 0x7FFFFF8);
}

TEST(DatatypeTest, UnknownKindIsFourUnsignedBytes) {
    for (const std::uint32_t kind : {5U, 0x3FU, 0x40U, 0x7FU}) {
        const VDatatype datatype(kind);
        EXPECT_EQ(datatype.GetBitSize(), 32);
        EXPECT_EQ(datatype.GetByteSize(), 4);
        EXPECT_EQ(datatype.GetMapfileTypeString(), "UDWORD");
        EXPECT_FALSE(datatype.IsSigned());
    }
}

TEST(DatatypeTest, HostFormsAnswerAsTheDatatype) {
    VDatatype string(VDatatype::sKindString);
    string.SetLength(8);
    const std::unique_ptr<IDataType> object = std::make_unique<VDatatypeWrapper>(string);
    EXPECT_EQ(object->Name(), "STRING(8)");
    EXPECT_EQ(object->Type(), 3U);
    EXPECT_EQ(object->Length(), 8U);

    VDatatypeNET value;
    EXPECT_EQ(value.GetMapfileTypeString(), "");
    value.AssignNativeDataType(VDatatype("BIT9", false));
    EXPECT_EQ(value.mTypAndLen, 0xC8U);
    EXPECT_EQ(value.Typ(), 0xC8U);
    EXPECT_EQ(value.Len(), 0U);
    EXPECT_EQ(value.GetBitSize(), 9);
    EXPECT_EQ(value.GetByteSize(), 2);
    EXPECT_TRUE(value.IsIntTyp());
    EXPECT_TRUE(value.IsSigned());
    EXPECT_FALSE(VDatatypeNET(VDatatype("UBIT9", false)).IsSigned());
    EXPECT_FALSE(VDatatypeNET(string).IsIntTyp());
}

TEST(DatatypeTest, PropertiesOfTheWrapperCannotBeSet) {
    VDatatypeWrapper wrapper(VDatatype("UBIT3", false));
    wrapper.SetName("FLOAT");
    wrapper.SetType(1);
    wrapper.SetLength(7);
    wrapper.SetByteSize(7);
    wrapper.Dispose();
    EXPECT_EQ(wrapper.mTypAndLen, 0x82U);
    EXPECT_EQ(wrapper.ByteSize(), 1);
    EXPECT_EQ(wrapper.Name(), "UBIT3");
}

TEST(DatatypeTest, MapEntryTypesKeepTheirNumbers) {
    EXPECT_EQ(static_cast<int>(MapEntryType1::MapEntryTypeNone), 0);
    EXPECT_EQ(static_cast<int>(MapEntryType1::MapEntryTypeFunction), 5);
    EXPECT_EQ(static_cast<int>(MapEntryType1::MapEntryTypeSection), 7);
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
