// Files of every container that are cut at any position, or in which one byte of the headers is
// damaged: each gives a message or a result, and a cut file never a variable that the whole one
// doesn't have.
#include "support/CoffImage.h"
#include "support/ElfImage.h"
#include "support/PeImage.h"
#include "support/ReadRun.h"
#include "support/ScopedReaderState.h"
#include "support/TemporaryFolder.h"
#include "support/UsualEntries.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <iterator>
#include <set>
#include <string_view>
#include <utility>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::IsEmpty;
using testing::Not;

namespace Tessel::Norn::Brindle::Tests {
namespace {

using enum DWARFContainerType;

constexpr std::size_t sCutsBehindHeaders = 30;
constexpr std::size_t sFirstHeaderSize = 64;
constexpr std::size_t sStepInHeaders = 8;

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

/// Cuts at each byte of the first header, then at every eighth one, which includes the ends of all
/// headers of a table, then at some of the rest.
std::size_t NextCut(const Input& input, std::size_t size) {
    if (size < std::min(sFirstHeaderSize, input.headersSize)) {
        return size + 1;
    }
    if (size < input.headersSize) {
        return size + 1 + (input.headersSize - size - 1) % sStepInHeaders;
    }
    return size + std::max<std::size_t>(
                      (input.content.size() - input.headersSize) / sCutsBehindHeaders, 1);
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

/// Images of the builders; the symbols follow the contents in one half and precede them in the
/// other, so that cuts reach all parts.
std::vector<Input> BuiltImages() {
    const auto coffOf = [](ByteOrder byteOrder) {
        return CoffImage(byteOrder).OptionalHeaderSize(28).Section(".text", "x") +
               PumpSections(byteOrder, 4);
    };
    const auto peOf = [](PeMachine machine, int addressSize) {
        return PeImage(machine).Dll().Symbol({"main", 1, 1}).Symbol({"gLongNamedLevel", 2, 1}) +
               PumpSections(ByteOrder::Little, addressSize);
    };
    const CoffImage coff = coffOf(ByteOrder::Little);
    const CoffImage bigCoff = coffOf(ByteOrder::Big).SymbolsFirst();
    const PeImage pe = peOf(PeMachine::I386, 4).SymbolsFirst();
    const PeImage widePe = peOf(PeMachine::X86_64, 8);
    return {{"coff", coff.Build(), Container_COFF, coff.HeadersSize()},
            {"big coff", bigCoff.Build(), Container_COFF, bigCoff.HeadersSize()},
            {"pe", pe.Build(), Container_PE, pe.HeadersSize()},
            {"wide pe", widePe.Build(), Container_PE, widePe.HeadersSize()}};
}

/// True for a byte of a header in a row of zeros, where the header has no meaning.
bool IsPadding(const std::string& content, std::size_t position) {
    static const std::string sZeros(8, '\0');
    return content.compare(position / sZeros.size() * sZeros.size(), sZeros.size(), sZeros) == 0;
}

/// Thousands of reads: they share one file, and standard output is shown only after a failure.
class DamagedContainerTest : public testing::Test {
protected:
    DamagedContainerTest() { testing::internal::CaptureStdout(); }
    void TearDown() override {
        const std::string output = testing::internal::GetCapturedStdout();
        if (HasFailure()) {
            std::cout << output;
        }
    }

    [[nodiscard]] ReadRun Read(std::string_view content, const Input& input) const {
        return ReadFileUncaptured(mFolder.Write("image", content), input.container);
    }

    void ExpectEveryCutToBeSafe(const Input& input) const {
        SCOPED_TRACE(input.name);
        const std::vector<std::string> variables = Read(input.content, input).Variables();
        EXPECT_THAT(variables, Not(IsEmpty()));
        const std::set<std::string> known(variables.begin(), variables.end());
        for (std::size_t size = 0; size < input.content.size(); size = NextCut(input, size)) {
            SCOPED_TRACE(size);
            const ReadRun run = Read(std::string_view(input.content).substr(0, size), input);
            ExpectMessageOrResult(run);
            for (const std::string& variable : run.Variables()) {
                EXPECT_TRUE(known.contains(variable)) << variable;
            }
        }
    }

private:
    ScopedReaderState mState;
    TemporaryFolder mFolder;
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
            const std::string wrongBytes =
                IsPadding(image.content, position) ? "\xFF" : std::string("\x00\x01\x7F\xFF", 4);
            for (const char wrong : wrongBytes) {
                SCOPED_TRACE(position);
                std::string content = image.content;
                if (std::exchange(content[position], wrong) != wrong) {
                    ExpectMessageOrResult(Read(content, image));
                }
            }
        }
    }
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
