#include "emit/BaseTypes.h"

#include "core/VElfOptions.h"
#include "diagnostics/ElfLog.h"
#include "support/ScopedReaderState.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using Tessel::Norn::Brindle::DataModel::BasicTypes;

namespace Tessel::Norn::Brindle::Tests {
namespace {

std::int32_t HostValue(std::uint32_t encoding, std::uint32_t byteSize) {
    return static_cast<std::int32_t>(
        GetManagedBasicType(BasicTypeOfEncoding(encoding, byteSize), byteSize));
}

TEST(BaseTypesTest, EncodingAndSizeGiveTheHostValue) {
    struct Case {
        std::uint32_t encoding;
        std::uint32_t byteSize;
        std::int32_t value;
    };
    for (const Case& each :
         {Case{5, 2, 13}, Case{7, 2, 14},  Case{5, 4, 4},  Case{7, 4, 5},  Case{5, 8, 15},
          Case{7, 8, 16}, Case{6, 1, 11},  Case{8, 1, 12}, Case{4, 4, 6},  Case{4, 8, 10},
          Case{4, 2, 18}, Case{4, 16, 10}, Case{2, 4, 7},  Case{3, 8, 10}, Case{16, 2, 13},
          Case{5, 3, 10}, Case{0, 4, 1},   Case{1, 4, 0},  Case{9, 1, 0},  Case{145, 4, 0}}) {
        EXPECT_EQ(HostValue(each.encoding, each.byteSize), each.value)
            << each.encoding << " of size " << each.byteSize;
    }
    EXPECT_EQ(GetManagedBasicType(static_cast<BasicType>(9), 4), BasicTypes::NoType);
    EXPECT_EQ(GetManagedBasicType(static_cast<BasicType>(104), 1), BasicTypes::Int64);
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
