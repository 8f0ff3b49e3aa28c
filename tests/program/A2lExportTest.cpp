#include "a2l/Alignments.h"
#include "a2l/ExportText.h"
#include "a2l/Identifiers.h"
#include "support/ModelBuilder.h"

#include <gtest/gtest.h>
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

TEST(A2lExport, LimitsBitsByTheirMask) {
    EXPECT_EQ(LimitsOf("ULONG", {}), "0 4294967295");
    EXPECT_EQ(LimitsOf("ULONG", 0x1FFE000), "0 4095");
    EXPECT_EQ(LimitsOf("A_UINT64", 0x8000000000000000), "0 1");
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
