#include "model/ValueDecoder.h"

#include "model/PlaceBytes.h"
#include "support/ModelBuilder.h"

#include <gtest/gtest.h>
#include <sstream>
#include <vector>

namespace Tessel::Norn::Brindle::Tests {
namespace {

using DataModel::ObjectId;
using DataModel::ValueDecoder;
using DataModel::ValueOrigin;
using Bytes = std::vector<std::uint8_t>;
using Place = DataModel::Model::Place;

class ValueDecoderTest : public testing::Test, public ModelBuilder {
protected:
    void SetByteOrder(DataModel::ByteOrder byteOrder) {
        DataModel::ImageDescription image;
        image.byteOrder = byteOrder;
        mModel.DescribeImage(image);
    }

    /// The value of a path, such as "-2" or "3 'Third'".
    std::string Decoded(const std::string& path, const Bytes& bytes) {
        const auto resolved = mModel.ResolvePath(path);
        EXPECT_TRUE(resolved.found) << path << ": " << resolved.problem;
        const auto value = ValueDecoder(mModel).Decode(resolved.place, bytes);
        if (value.origin == ValueOrigin::Unknown) {
            return "unknown";
        }
        std::ostringstream text;
        text << std::boolalpha;
        std::visit(
            [&text]<typename Number>(Number number) {
                if constexpr (!std::is_same_v<Number, std::monostate>) {
                    text << number;
                }
            },
            value.number);
        text << (value.text.empty() ? "" : " '" + value.text + "'");
        return text.str();
    }
};

TEST_F(ValueDecoderTest, NumbersAsTheirTypesTakeThem) {
    const ObjectId mode = mModel.CreateEnumTable("Mode", Base(BasicTypes::Int8, 1), 1, false);
    mModel.AddEnumDescriptionToEnumTable(mode, -1, "Off");
    mModel.AddEnumDescriptionToEnumTable(mode, 3, "Third");
    const ObjectId flag = mModel.CreateEnumTable("Flag", Base(BasicTypes::UInt32, 4), 1, false);
    mModel.AddEnumDescriptionToEnumTable(flag, static_cast<std::int32_t>(0x80000000), "Top");
    // Only their values tell the sign.
    const ObjectId below =
        mModel.CreateEnumTable("Below", mModel.CreateUnknownEntryType(1, 1), 1, false);
    mModel.AddEnumDescriptionToEnumTable(below, -1, "Under");
    const ObjectId above =
        mModel.CreateEnumTable("Above", mModel.CreateUnknownEntryType(2, 1), 1, false);
    mModel.AddEnumDescriptionToEnumTable(above, 0xFFFF, "Over");
    const struct {
        ObjectId type;
        Bytes bytes;
        const char* value;
    } cases[] = {
        {Base(BasicTypes::Int16, 2), {0xFE, 0xFF}, "-2"},
        {Base(BasicTypes::UInt16, 2), {0xFE, 0xFF}, "65534"},
        {Typedef("Long", Base(BasicTypes::Long, 3)), {0, 0, 0x80}, "-8388608"},
        {Base(BasicTypes::UInt64, 8), Bytes(8, 0xFF), "18446744073709551615"},
        {Base(BasicTypes::Float16, 2), {0x00, 0xC5}, "-5"},
        {Base(BasicTypes::Float16, 2), {0x01, 0x00}, "5.96046e-08"},
        {Base(BasicTypes::Float16, 2), {0x00, 0x7C}, "inf"},
        {Base(BasicTypes::Float, 4), {0, 0, 0x20, 0x40}, "2.5"},
        {Base(BasicTypes::Double, 8), {0, 0, 0, 0, 0, 0, 0x04, 0xC0}, "-2.5"},
        {Base(BasicTypes::Double, 3), {1, 2, 3}, "unknown"},
        {Base(BasicTypes::Double, 16), Bytes(16, 1), "unknown"},
        {Base(BasicTypes::Bool, 1), {1}, "true"},
        {Base(BasicTypes::Bool, 1), {7}, "7"},
        {Pointer(0), {0x10, 0, 0, 0x20}, "536870928"},
        {mode, {0xFF}, "-1 'Off'"},
        {mode, {3}, "3 'Third'"},
        {mode, {4}, "4"},
        {flag, {0, 0, 0, 0x80}, "2147483648 'Top'"},
        {below, {0xFF}, "-1 'Under'"},
        {below, {0xFE}, "-2"},
        {above, {0xFF, 0xFF}, "65535 'Over'"},
        {mModel.CreateUnknownEntryType(4, 1), {1, 2, 3, 4}, "unknown"},
        {Base(BasicTypes::UInt16, 2), {1}, "unknown"},
    };
    int number = 0;
    for (const auto& [type, bytes, value] : cases) {
        const std::string name = "v" + std::to_string(++number);
        Global(name, type, 0x1000);
        EXPECT_EQ(Decoded(name, bytes), value) << name;
        SetByteOrder(DataModel::ByteOrder::Big);
        EXPECT_EQ(Decoded(name, Bytes(bytes.rbegin(), bytes.rend())), value) << name;
        SetByteOrder(DataModel::ByteOrder::Little);
    }
}

TEST_F(ValueDecoderTest, EnumeratorsHaveAllBitsOfTheirEnum) {
    const struct {
        BasicTypes type;
        std::int64_t enumerator;
        Bytes bytes;
        const char* value;
    } cases[] = {
        {BasicTypes::Int8, -1, {0xFF}, "-1 'E'"},
        {BasicTypes::Int8, 255, {0xFF}, "-1 'E'"},
        {BasicTypes::UInt8, -1, {0xFF}, "255 'E'"},
        {BasicTypes::UInt8, 256, {0}, "0"},
        {BasicTypes::UInt8, -257, {0xFF}, "255"},
        {BasicTypes::Int16, -2, {0xFE, 0xFF}, "-2 'E'"},
        {BasicTypes::UInt16, 65534, {0xFE, 0xFF}, "65534 'E'"},
        {BasicTypes::UInt16, -129, {0x7F, 0}, "127"},
        {BasicTypes::Int32, -1, Bytes(4, 0xFF), "-1 'E'"},
        {BasicTypes::UInt32, -1, Bytes(4, 0xFF), "4294967295 'E'"},
        {BasicTypes::UInt32, 0x1'0000'0005, {5, 0, 0, 0}, "5"},
        {BasicTypes::Int64, 0x1'0000'0005, {5, 0, 0, 0, 1, 0, 0, 0}, "4294967301 'E'"},
        {BasicTypes::Int64, 0x1'0000'0005, {5, 0, 0, 0, 0, 0, 0, 0}, "5"},
        {BasicTypes::Int64, 5, {5, 0, 0, 0, 5, 0, 0, 0}, "21474836485"},
        {BasicTypes::Int64, -1, Bytes(8, 0xFF), "-1 'E'"},
        {BasicTypes::UInt64, -1, Bytes(8, 0xFF), "18446744073709551615 'E'"},
        {BasicTypes::UInt64, -1, {0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}, "4294967295"},
        {BasicTypes::UInt64, 0xFFFF'FFFF, {0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}, "4294967295 'E'"},
    };
    int number = 0;
    for (const auto& [type, enumerator, bytes, value] : cases) {
        const std::string name = "v" + std::to_string(++number);
        const ObjectId table = mModel.CreateEnumTable(name, Base(type, bytes.size()), 1, false);
        mModel.AddWideEnumDescriptionToEnumTable(table, enumerator, "E");
        Global(name, table, 0x1000);
        EXPECT_EQ(Decoded(name, bytes), value) << enumerator << " in " << bytes.size();
    }
    const ObjectId fields = Struct("Fields", 4);
    for (const auto& [name, type] : {std::pair("signed", Base(BasicTypes::Int32, 4)),
                                     std::pair("unsigned", Base(BasicTypes::UInt32, 4)),
                                     std::pair("open", mModel.CreateUnknownEntryType(4, 1))}) {
        const ObjectId table = mModel.CreateEnumTable(name, type, 1, false);
        mModel.AddWideEnumDescriptionToEnumTable(table, -1, "All");
        BitField(name, table, fields, 0, 0, 3);
    }
    Global("fields", fields, 0x2000);
    EXPECT_EQ(Decoded("fields.signed", {7}), "-1 'All'");
    EXPECT_EQ(Decoded("fields.unsigned", {7}), "7");
    EXPECT_EQ(Decoded("fields.open", {7}), "-1 'All'");
}

TEST_F(ValueDecoderTest, BitFieldsFromTheBytesThatHoldThem) {
    const ObjectId fields = Struct("Fields", 9);
    BitField("low", Base(BasicTypes::UInt32, 4), fields, 0, 0, 4);
    BitField("wide", Base(BasicTypes::UInt32, 4), fields, 0, 4, 12);
    BitField("sign", Base(BasicTypes::Int32, 4), fields, 0, 16, 3);
    BitField("spread", Base(BasicTypes::UInt64, 8), fields, 0, 5, 64);
    BitField("broken", Base(BasicTypes::UInt32, 4), fields, 0, 4000, 4);
    Global("fields", fields, 0x1000);
    EXPECT_EQ(Decoded("fields.low", {0x5A}), "10");
    EXPECT_EQ(Decoded("fields.wide", {0x5A, 0xC3}), "3125");
    EXPECT_EQ(Decoded("fields.sign", {0x06}), "-2");
    EXPECT_EQ(Decoded("fields.spread", {0x20, 0, 0, 0, 0, 0, 0, 0, 0x10}), "9223372036854775809");
    EXPECT_EQ(Decoded("fields.broken", {1, 2, 3, 4}), "unknown");
    SetByteOrder(DataModel::ByteOrder::Big);
    EXPECT_EQ(Decoded("fields.wide", {0xC3, 0x5A}), "3125");
    EXPECT_EQ(Decoded("fields.spread", {0x10, 0, 0, 0, 0, 0, 0, 0, 0x20}), "9223372036854775809");
}

TEST_F(ValueDecoderTest, ArraysOfCharactersAreTexts) {
    Global("name", Array({6}, Typedef("char_t", Base(BasicTypes::UInt8, 1)), 6), 0x1000);
    Global("names", Array({2, 3}, Base(BasicTypes::Int8, 1), 6), 0x1000);
    Global("words", Array({3}, Base(BasicTypes::Int16, 2), 6), 0x1000);
    EXPECT_EQ(Decoded("name", {'M', 'o', 't', 0, 0, 0}), " 'Mot'");
    EXPECT_EQ(Decoded("name", {'g', 'r', 0xC3, 0xBC, 'n', '!'}), " 'gr\xC3\xBCn!'");
    EXPECT_EQ(Decoded("names[1]", {'a', 'b', 0}), " 'ab'");
    for (const Bytes& bytes :
         {Bytes{'M', 0, 't', 0, 0, 0}, Bytes{'g', 0xFC, 'n', 0, 0, 0}, Bytes{1, 2, 0, 0, 0, 0}}) {
        EXPECT_EQ(Decoded("name", bytes), "");
    }
    EXPECT_EQ(Decoded("words", {'M', 0, 't', 0, 0, 0}), "unknown");
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
