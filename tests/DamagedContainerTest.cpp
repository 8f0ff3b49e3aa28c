// Files of every container that are cut off anywhere, or that have any one byte of their headers
// damaged: each gives a message or a result, and a cut file never a variable that the whole one
// doesn't have.
#include "support/CoffImage.h"
#include "support/ElfImage.h"
#include "support/PeImage.h"
#include "support/ReadRun.h"
#include "support/ScopedReaderState.h"
#include "support/UsualEntries.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <set>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::IsEmpty;
using testing::Not;

namespace Tessel::Norn::Brindle::Tests {
namespace {

using enum DWARFContainerType;

constexpr std::size_t sCutsBehindHeaders = 100;

struct Input {
    std::string name;
    std::string content;
    DWARFContainerType container;
    std::size_t headersSize;
};

void ExpectMessageOrResult(const ReadRun& run) {
    EXPECT_EQ(run.signals.size(), run.result ? 0U : 1U);
    EXPECT_EQ(run.message.empty(), run.result);
}

void ExpectEveryCutToBeSafe(const Input& input) {
    SCOPED_TRACE(input.name);
    const ReadRun whole = ReadImage(input.content, input.container);
    const std::vector<std::string> variables = whole.Variables();
    EXPECT_THAT(variables, Not(IsEmpty()));
    const std::set<std::string> known(variables.begin(), variables.end());
    const std::size_t step =
        std::max<std::size_t>((input.content.size() - input.headersSize) / sCutsBehindHeaders, 1);
    for (std::size_t size = 0; size < input.content.size();
         size += size < input.headersSize ? 1 : step) {
        SCOPED_TRACE(size);
        const ReadRun run = ReadImage(input.content.substr(0, size), input.container);
        ExpectMessageOrResult(run);
        for (const std::string& variable : run.Variables()) {
            EXPECT_TRUE(known.contains(variable)) << variable;
        }
    }
}

std::uint32_t LittleEndian(const std::string& bytes, std::size_t position, std::size_t size) {
    std::uint32_t value = 0;
    for (std::size_t index = size; index > 0; --index) {
        value = (value << 8U) | static_cast<std::uint8_t>(bytes[position + index - 1]);
    }
    return value;
}

std::size_t HeadersSizeOfSample(const std::string& content) {
    if (content.starts_with("MZ")) {
        const std::size_t signature = LittleEndian(content, 0x3C, 4);
        return signature + 24 + LittleEndian(content, signature + 20, 2) +
               40 * std::size_t{LittleEndian(content, signature + 6, 2)};
    }
    return 64;
}

std::vector<Input> Samples() {
    std::vector<Input> samples;
    for (const auto& entry : std::filesystem::directory_iterator(BRINDLE_SAMPLE_IMAGES)) {
        if (!entry.is_regular_file()) {
            continue;
        }
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string content{std::istreambuf_iterator<char>(file), {}};
        samples.push_back({entry.path().filename().string(), content,
                           content.starts_with("MZ") ? Container_PE : Container_ELF,
                           HeadersSizeOfSample(content)});
    }
    return samples;
}

DwarfSections PumpSections(ByteOrder byteOrder, int addressSize) {
    const DieLabel number, table;
    return DwarfSections(byteOrder).Unit(DwarfUnit{
        .entries = {Die(DW_TAG_compile_unit, {Name("pump.c", DW_FORM_strp)},
                        {Int(number),
                         Die(table, DW_TAG_array_type, {Type(number)},
                             {Die(DW_TAG_subrange_type, {UpperBound(7)})}),
                         Variable("gTable", table, 0x2000), Variable("gLevel", number, 0x3000)})},
        .addressSize = addressSize});
}

/// Images of the builders; the symbols lie behind the contents in one half and before them in the
/// other one, so that cuts reach all parts.
std::vector<Input> BuiltImages() {
    std::vector<Input> images;
    for (const ByteOrder byteOrder : {ByteOrder::Little, ByteOrder::Big}) {
        const CoffImage coff = CoffImage(byteOrder).OptionalHeaderSize(28).Section(".text", "x") +
                               PumpSections(byteOrder, 4);
        const auto headersSize = coff.HeadersSize();
        images.push_back({"coff", coff.Build(), Container_COFF, headersSize});
        images.push_back({"coff, symbols first", CoffImage(coff).SymbolsFirst().Build(),
                          Container_COFF, headersSize});
    }
    for (const PeMachine machine : {PeMachine::I386, PeMachine::X86_64}) {
        const PeImage pe =
            PeImage(machine).Dll().Symbol({"main", 1, 1}).Symbol({"gLongNamedLevel", 2, 1}) +
            PumpSections(ByteOrder::Little, machine == PeMachine::X86_64 ? 8 : 4);
        const auto headersSize = pe.HeadersSize();
        images.push_back({"pe", pe.Build(), Container_PE, headersSize});
        images.push_back(
            {"pe, symbols first", PeImage(pe).SymbolsFirst().Build(), Container_PE, headersSize});
    }
    return images;
}

class DamagedContainerTest : public testing::Test {
    ScopedReaderState mState;
};

TEST_F(DamagedContainerTest, SamplesThatAreCutOff) {
    const std::vector<Input> samples = Samples();
    EXPECT_GT(samples.size(), 25U);
    for (const Input& sample : samples) {
        ExpectEveryCutToBeSafe(sample);
    }
}

TEST_F(DamagedContainerTest, BuiltImagesThatAreCutOff) {
    for (const Input& image : BuiltImages()) {
        ExpectEveryCutToBeSafe(image);
    }
}

TEST_F(DamagedContainerTest, HeadersWithOneWrongByte) {
    for (const Input& image : BuiltImages()) {
        SCOPED_TRACE(image.name);
        for (std::size_t position = 0; position < image.headersSize; ++position) {
            for (const char wrong : {'\x00', '\x01', '\x7F', '\xFF'}) {
                SCOPED_TRACE(position);
                std::string content = image.content;
                content[position] = wrong;
                ExpectMessageOrResult(ReadImage(content, image.container));
            }
        }
    }
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
