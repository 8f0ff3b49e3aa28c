#include "emit/BaseTypes.h"

#include "core/VElfOptions.h"
#include "diagnostics/ElfLog.h"
#include "support/ScopedReaderState.h"
#include "support/TemporaryFolder.h"

#include <array>
#include <gtest/gtest.h>
#include <vector>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

TEST(BaseTypesTest, CodeAndSizeGiveTheHostValue) {
    struct Row {
        std::uint32_t encoding;
        int code;
        /// Host values of the sizes 1, 2, 4, 8 and 3, as all others.
        std::array<int, 5> values;
    };
    constexpr std::array sizes{1, 2, 4, 8, 3};
    constexpr std::array sOfInt{11, 13, 4, 15, 10};
    constexpr std::array sOfUInt{12, 14, 5, 16, 10};
    constexpr auto sAlways = [](int value) {
        return std::array{value, value, value, value, value};
    };
    constexpr std::uint32_t none = ~0U;
    std::vector<Row> rows = {
        {0, 1, sAlways(1)},    {1, 0, sAlways(0)},          {2, 10, sAlways(7)},
        {3, 101, sAlways(10)}, {4, 8, {10, 18, 6, 10, 10}},
    };
    for (const std::uint32_t encoding : {5U, 6U, 10U, 16U}) {
        rows.push_back({encoding, 6, sOfInt});
    }
    for (const std::uint32_t encoding : {7U, 8U}) {
        rows.push_back({encoding, 7, sOfUInt});
    }
    for (const std::uint32_t encoding : {9U, 99U, 128U, 144U, 145U, 255U}) {
        rows.push_back({encoding, 0, sAlways(0)});
    }
    for (const auto& [code, value] :
         {std::pair{2, 2}, std::pair{3, 3}, std::pair{13, 8}, std::pair{14, 9}, std::pair{100, 17},
          std::pair{102, 13}, std::pair{103, 14}, std::pair{104, 15}, std::pair{105, 16}}) {
        rows.push_back({none, code, sAlways(value)});
    }
    for (const int code : {4, 5, 9, 11, 12, 15, 25, 26, 27, 28, 29, 30, 31, 106}) {
        rows.push_back({none, code, sAlways(0)});
    }
    for (const Row& row : rows) {
        for (std::size_t index = 0; index < sizes.size(); ++index) {
            const auto size = static_cast<std::uint32_t>(sizes.at(index));
            SCOPED_TRACE(testing::Message() << row.encoding << ", " << row.code << ", " << size);
            if (row.encoding != none) {
                EXPECT_EQ(static_cast<int>(BasicTypeOfEncoding(row.encoding, size)), row.code);
            }
            EXPECT_EQ(static_cast<int>(GetManagedBasicType(static_cast<BasicType>(row.code), size)),
                      row.values.at(index));
        }
    }
}

TEST(BaseTypesTest, UnsupportedEncodingIsReportedUnlessItsSizeIsOne) {
    const ScopedReaderState state;
    const TemporaryFolder folder;
    VElfOptions::mIsLogFile = 1;
    ASSERT_TRUE(CreateLogFile(folder.Path("x.elf")));
    BasicTypeOfEncoding(99, 1);
    BasicTypeOfEncoding(99, 4);
    BasicTypeOfEncoding(145, 4);
    CloseLogFile();
    EXPECT_EQ(folder.Read("x.log"), "[VDebugInfoNode::ConvertBaseTypeForSymbolProvider: "
                                    "Unsupported encoding 99 . Specified Byte size is 4.]\n");
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
