#include "ResultOutput.h"

#include "a2l/Alignments.h"
#include "a2l/Export.h"
#include "a2l/ExportText.h"
#include "a2l/ExportTypes.h"
#include "a2l/Identifiers.h"
#include "a2l/SymbolIndex.h"
#include "a2l/Update.h"
#include "support/A2lFiles.h"
#include "support/ModelBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

using namespace Tessel::Norn::Brindle;
using namespace Tessel::Norn::Brindle::Program::A2l;
using DataModel::BasicTypes;

TEST(A2lExport, MakesNamesThatA2lAccepts) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"speed", "speed"},
        {"motors[1].loops[0][2].gain", "motors[1].loops[0][2].gain"},
        {"plant::gTimer", "plant.gTimer"},
        {"plant::<unnamed-namespace>::polls", "plant._unnamed_namespace_.polls"},
        {"Ring<short, 4>::sWrites", "Ring_short__4_.sWrites"},
        {"stop_motor::2::seen", "stop_motor._2.seen"},
        {"counter.0", "counter._0"},
        {"T<a[2]>::x", "T_a_2__.x"},
        {"a[b]", "a_b_"},
        {"a[1]b", "a_1_b"},
        {"\xC3\xA4", "__"},
        {"", "_"},
        {"::", "_._"},
    };
    for (const auto& [name, expected] : cases) {
        EXPECT_EQ(MakeIdentifier(name), expected) << name;
    }
    // Too long: cut, and distinguished by a hash.
    const std::string part = MakeIdentifier(std::string(200, 'a'));
    EXPECT_EQ(part.size(), 128U);
    EXPECT_NE(part, MakeIdentifier(std::string(201, 'a')));
    std::string path;
    for (int step = 0; step < 300; ++step) {
        path += "member.";
    }
    const std::string whole = MakeIdentifier(path + "x");
    EXPECT_LE(whole.size(), 1024U);
    EXPECT_NE(whole, MakeIdentifier(path + "y"));
    EXPECT_EQ(MakeIdentifier(whole), whole);
}

TEST(A2lExport, WritesDimensionsAsEachVersionHasThem) {
    struct Case {
        std::vector<std::uint64_t> dimensions;
        Version version;
        const char* expected;
    };
    const std::vector<Case> cases = {
        {{}, Version::V1_6, ""},
        {{4}, Version::V1_5_1, "ARRAY_SIZE 4"},
        {{3, 4, 2}, Version::V1_5_1, "ARRAY_SIZE 24"},
        {{4}, Version::V1_6, "MATRIX_DIM 4 1 1"},
        {{3, 4, 2}, Version::V1_6, "MATRIX_DIM 3 4 2"},
        {{3, 4, 2, 5}, Version::V1_6, "MATRIX_DIM 3 4 10"},
        {{4}, Version::V1_7_1, "MATRIX_DIM 4"},
        {{3, 4, 2, 5}, Version::V1_7_1, "MATRIX_DIM 3 4 2 5"},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(DimensionsText(one.dimensions, one.version, "ARRAY_SIZE"), one.expected);
    }
}

TEST(A2lExport, TextsReturnFromTheirQuotes) {
    for (const char* const text :
         {"", "T<'\"'>::v", "T<'\\'>::v", "\"\"", "\\\"", "end\\", "a\\f"}) {
        const std::string quoted = QuotedText(text);
        EXPECT_EQ(UnquotedText(std::string_view(quoted).substr(1, quoted.size() - 2)), text);
    }
    EXPECT_EQ(QuotedText("a\"b\nc\\"), R"("a\"b_c\\")");
    EXPECT_EQ(UnquotedText(R"(a""b\"c\\f\f\)"), R"(a"b"c\f\f\)");
}

TEST(A2lExport, LimitsBitsByTheirMask) {
    EXPECT_EQ(LimitsOf("ULONG", {}), "0 4294967295");
    EXPECT_EQ(LimitsOf("ULONG", 0x1FFE000), "0 4095");
    EXPECT_EQ(LimitsOf("A_UINT64", 0x8000000000000000), "0 1");
}

TEST(A2lExport, HoldsPackedBitsInNumbersThatAreWideEnough) {
    struct Case {
        std::uint64_t size;
        std::uint32_t bitOffset;
        std::uint64_t bitSize;
        DataModel::ByteOrder order;
        bool hasLongMasks;
        const char* datatype;
        std::uint64_t start;
        std::uint64_t mask;
    };
    constexpr auto little = DataModel::ByteOrder::Little;
    constexpr auto big = DataModel::ByteOrder::Big;
    // The field begins in byte 5 of a variable of 10 bytes.
    const std::vector<Case> cases = {
        {4, 0, 3, little, true, "ULONG", 5, 0x7},
        {1, 4, 5, little, false, "UWORD", 5, 0x1F0},
        {1, 7, 5, big, false, "UWORD", 5, 0xF80},
        {2, 6, 15, little, false, "ULONG", 4, 0x1FFFC000},
        // Further on, the number would extend beyond the variable.
        {4, 5, 29, little, true, "A_UINT64", 2, 0x1FFFFFFFULL << 29U},
        {4, 6, 29, big, true, "A_UINT64", 2, 0x7FFFFFFC0},
        {4, 6, 29, big, false, "", 0, 0},
        {8, 7, 60, little, true, "", 0, 0},
    };
    for (const Case& one : cases) {
        Member member;
        member.bitOffset = one.bitOffset;
        member.bitSize = one.bitSize;
        const auto bits =
            BitsOf(member, one.size, 0x1005, {one.order, one.hasLongMasks, 1, {0x1000, 10}});
        EXPECT_EQ(bits ? bits->datatype : "", one.datatype) << one.bitOffset;
        EXPECT_EQ(bits ? bits->place.address - 0x1000 : 0, one.start) << one.bitOffset;
        EXPECT_EQ(bits ? bits->place.mask : 0, one.mask) << one.bitOffset;
    }
}

TEST(A2lExport, FindsAlignmentsInStructures) {
    Tests::ModelBuilder image;
    const auto wide = image.Base(BasicTypes::UInt64, 8);
    const auto word = image.Base(BasicTypes::UInt32, 4);
    const auto real = image.Base(BasicTypes::Double, 8);
    // A controller that aligns 64 bits to 4 bytes, with one packed structure.
    const auto plain = image.Struct("plain", 220);
    for (std::uint32_t offset = 4; offset < 200; offset += 12) {
        image.Member("w" + std::to_string(offset), word, plain, offset);
        image.Member("q" + std::to_string(offset), wide, plain, offset + 4);
    }
    const auto packed = image.Struct("packed", 9);
    image.Member("w", word, packed, 1);
    image.Member("d", real, packed, 0);
    const Alignments found = AlignmentsOf(image.mModel);
    EXPECT_EQ(found.integers, (std::array<std::uint64_t, 4>{1, 2, 4, 4}));
    EXPECT_EQ(found.floats, (std::array<std::uint64_t, 3>{2, 4, 8}));
}

namespace {

/// Objects with another type than in the model, by name.
std::vector<std::string> DifferentObjects(const std::string& text, const DataModel::Model& model) {
    Tests::A2lFiles files(text);
    const Document document = files.Parse();
    const SymbolIndex index(model);
    const UpdateResult result = Update(document, model, index, {});
    std::vector<std::string> names;
    for (std::size_t position = 0; position < result.objects.size(); ++position) {
        if (!result.objects[position].differences.empty()) {
            names.emplace_back(document.objects[position].name.Text());
        }
    }
    return names;
}

} // namespace

TEST(A2lExport, GivesEnumerationsTheSignOfTheirType) {
    Tests::ModelBuilder image;
    const auto enumeration = [&image](const std::string& name, DataModel::ObjectId type,
                                      std::int32_t value) {
        const auto table =
            image.mModel.CreateEnumTable(name, type, Tests::ModelBuilder::sGlobalNamespace, false);
        image.mModel.AddEnumDescriptionToEnumTable(table, value, "FIRST");
        image.mModel.AddEnumDescriptionToEnumTable(table, 5, "FIVE");
        return table;
    };
    const auto integer = image.Base(BasicTypes::Int32, 4);
    const auto gear = enumeration("gear", integer, -3);
    image.Global("gear", gear, 0x1000);
    image.Global("step", enumeration("step", image.Base(BasicTypes::Char, 1), -3), 0x1004);
    image.Global("state", enumeration("state", integer, 0), 0x1008);
    // The model has the largest unsigned value as -1.
    image.Global("mask", enumeration("mask", image.Base(BasicTypes::UInt32, 4), -1), 0x100C);
    // Older compilers state only the size.
    const auto bare = image.mModel.CreateUnknownEntryType(4, Tests::ModelBuilder::sGlobalNamespace);
    image.Global("turn", enumeration("turn", bare, -3), 0x1014);
    const auto wide = enumeration("wide", image.Base(BasicTypes::UInt64, 8), -1);
    image.mModel.AddWideEnumDescriptionToEnumTable(wide, 0x1'0000'0005, "BEYOND");
    image.Global("wide", wide, 0x1018);
    const auto fields = image.Struct("fields", 4);
    image.BitField("gear", gear, fields, 0, 4, 4);
    image.Global("fields", fields, 0x1010);

    std::stringbuf buffer;
    Program::ResultOutput output(buffer);
    Export(image.mModel, {}, output);
    output.Sync();
    const std::string text = buffer.str();
    for (const char* const expected :
         {"SLONG gear 0 0 -2147483648 2147483647", "SBYTE step 0 0 -128 127", "SLONG state 0 0 -",
          "ULONG mask 0 0 0 4294967295", "SLONG turn", "-3 \"FIRST\"", "4294967295 \"FIRST\"",
          "18446744073709551615 \"FIRST\"", "5 \"FIVE\"", "4294967301 \"BEYOND\"",
          // In a field of 4 bits a tool reads -3 as 13.
          "ULONG gear_", "13 \"FIRST\""}) {
        EXPECT_THAT(text, testing::HasSubstr(expected));
    }
    EXPECT_EQ(DifferentObjects(text, image.mModel), std::vector<std::string>{});
    std::string withoutSign = text;
    for (const std::string word : {"SLONG gear", "SLONG state"}) {
        withoutSign[withoutSign.find(word)] = 'U';
    }
    EXPECT_EQ(DifferentObjects(withoutSign, image.mModel), std::vector<std::string>{"gear"});
}
