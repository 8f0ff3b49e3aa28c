// What `dump` prints of a model filled by hand.
#include "ModelDocument.h"

#include "ReadSession.h"
#include "ResultOutput.h"

#include "support/ModelBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

namespace Tessel::Norn::Brindle::Program {
namespace {

class ModelDocumentTest : public testing::Test, protected Tests::ModelBuilder {};

// `trace` prints the same number.
TEST_F(ModelDocumentTest, BitPositionsHave32BitsWithoutSign) {
    BitField("broken", Base(DataModel::BasicTypes::UInt32, 4), Struct("S", 4), 0, 0xFFFFFFFF, 1);
    std::stringbuf text;
    ResultOutput output(text);
    WriteModelDocument("a.elf", ReadResult(), mModel, output);
    output.Sync();
    EXPECT_THAT(text.str(), testing::HasSubstr(R"("bitOffset":4294967295,"bitSize":1)"));
}

} // namespace
} // namespace Tessel::Norn::Brindle::Program
