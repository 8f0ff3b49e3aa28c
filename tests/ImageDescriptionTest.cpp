// What the headers of a file say to a host, and the bytes that the image gives its memory.
#include "core/ModuleInfo.h"
#include "core/VElfOptions.h"
#include "host/ContainerDetection.h"
#include "model/ValueDecoder.h"
#include "support/ElfImage.h"
#include "support/ReadRun.h"
#include "support/ScopedReaderState.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::IsEmpty;

namespace Tessel::Norn::Brindle::Tests {
namespace {

using DataModel::SectionKind;
using enum DWARFContainerType;
using Bytes = std::vector<std::uint8_t>;

class ImageDescriptionTest : public testing::Test {
protected:
    ReadRun ReadSample(const std::string& name) {
        const std::string path = std::string(BRINDLE_SAMPLE_IMAGES "/") + name;
        return ReadFile(path, DetectContainer(path));
    }

    ScopedReaderState mState;
};

Bytes BytesAt(const ReadRun& run, const std::string& path) {
    const auto place = run.model->ResolvePath(path);
    EXPECT_TRUE(place.found) << path;
    return run.model->InitialBytes(place.place.address, place.place.size);
}

SectionKind KindAt(const ReadRun& run, const std::string& path) {
    const auto place = run.model->ResolvePath(path);
    const auto* section = run.model->Image().SectionAt(place.place.address);
    EXPECT_NE(section, nullptr) << path;
    return section != nullptr ? section->kind : SectionKind::Code;
}

TEST_F(ImageDescriptionTest, EachContainerTellsTargetSectionsAndBytes) {
    struct Sample {
        std::string name;
        DWARFContainerType container;
        std::uint16_t machine;
        bool is64Bit;
        DataModel::ByteOrder byteOrder;
        Bytes machineWord;
    };
    const std::vector<Sample> samples = {
        {"arm-c-dwarf4-O0.elf",
         Container_ELF,
         40,
         false,
         DataModel::ByteOrder::Little,
         {6, 0, 0, 0}},
        {"powerpc-c-dwarf2-O0.elf",
         Container_ELF,
         20,
         false,
         DataModel::ByteOrder::Big,
         {0, 0, 0, 6}},
        {"x86_64-c-dwarf4-O0.elf",
         Container_ELF,
         62,
         true,
         DataModel::ByteOrder::Little,
         {6, 0, 0, 0, 0, 0, 0, 0}},
        {"i686-c-dwarf2-O0.exe",
         Container_PE,
         0x14C,
         false,
         DataModel::ByteOrder::Little,
         {6, 0, 0, 0}},
        {"i686-c-dwarf4-O2.dll",
         Container_PE,
         0x14C,
         false,
         DataModel::ByteOrder::Little,
         {6, 0, 0, 0}},
        {"x86_64-c-dwarf2-O2.dll",
         Container_PE,
         0x8664,
         true,
         DataModel::ByteOrder::Little,
         {6, 0, 0, 0}},
    };
    for (const Sample& sample : samples) {
        SCOPED_TRACE(sample.name);
        const ReadRun run = ReadSample(sample.name);
        const DataModel::ImageDescription& image = run.model->Image();
        EXPECT_EQ(image.container, sample.container);
        EXPECT_EQ(image.machine, sample.machine);
        EXPECT_EQ(image.is64Bit, sample.is64Bit);
        EXPECT_EQ(image.byteOrder, sample.byteOrder);
        EXPECT_TRUE(image.isLinked);
        EXPECT_EQ(BytesAt(run, "machine_word"), sample.machineWord);
        EXPECT_EQ(KindAt(run, "machine_word"), SectionKind::Data);
        EXPECT_EQ(KindAt(run, "sine"), SectionKind::ReadOnlyData);

        ModuleInfo::mModuleOffset = 0x1000'0010;
        const ReadRun moved = ReadSample(sample.name);
        EXPECT_EQ(BytesAt(moved, "machine_word"), sample.machineWord);
        EXPECT_EQ(KindAt(moved, "sine"), SectionKind::ReadOnlyData);
        ModuleInfo::mModuleOffset = 0;
    }
}

TEST_F(ImageDescriptionTest, BytesEndWithTheirSectionAndAreZeroWithoutContent) {
    const ReadRun run = ReadSample("arm-c-dwarf4-O0.elf");
    const DataModel::Model& model = *run.model;
    const auto zero = std::ranges::find(model.Image().sections, SectionKind::Zero,
                                        &DataModel::ImageSection::kind);
    ASSERT_NE(zero, model.Image().sections.end());
    EXPECT_EQ(model.InitialBytes(zero->address, 3), (Bytes{0, 0, 0}));
    EXPECT_EQ(model.InitialBytes(zero->address, zero->size).size(), zero->size);
    EXPECT_THAT(model.InitialBytes(zero->address, zero->size + 1), IsEmpty());
    EXPECT_THAT(model.InitialBytes(zero->address + 1, ~std::uint64_t{0}), IsEmpty());
    EXPECT_THAT(model.InitialBytes(zero->address, 0), IsEmpty());
    EXPECT_THAT(model.InitialBytes(0xFFFFFFFFFFFFFFFF, 2), IsEmpty());
}

// Which of two overlays is in memory, no address says. Zeros of threads take up none.
TEST_F(ImageDescriptionTest, OverlaidAddressesHaveNoBytes) {
    constexpr std::uint64_t sAllocatedThreadLocal = 0x402;
    constexpr std::uint32_t sNoBits = 8;
    const TemporaryFolder folder;
    const std::string path = folder.Path("image.elf");
    std::ofstream(path, std::ios::binary)
        << ElfImage()
               .Symbol({"main", 0x1000, 4})
               .Section(".first", "12345678", {.address = 0x2000})
               .Section(".second", "abcd", {.address = 0x2004})
               .Section(".tbss", "zero",
                        {.address = 0x2000, .flags = sAllocatedThreadLocal, .type = sNoBits})
               .Build();
    const ReadRun run = ReadFile(path);
    ASSERT_TRUE(run.result) << run.message;
    EXPECT_EQ(run.model->InitialBytes(0x2000, 2), (Bytes{'1', '2'}));
    EXPECT_THAT(run.model->InitialBytes(0x2002, 3), IsEmpty());
    EXPECT_THAT(run.model->InitialBytes(0x2004, 2), IsEmpty());
}

TEST_F(ImageDescriptionTest, AFileThatChangedItsLengthGivesNoBytes) {
    const TemporaryFolder folder;
    const std::string path = folder.Path("image.elf");
    std::filesystem::copy_file(BRINDLE_SAMPLE_IMAGES "/arm-c-dwarf4-O0.elf", path);
    const ReadRun run = ReadFile(path);
    std::ofstream(path, std::ios::app) << "more";
    EXPECT_THAT(BytesAt(run, "machine_word"), IsEmpty());
}

TEST_F(ImageDescriptionTest, AFileThatIsCutGivesNoMoreBytes) {
    const TemporaryFolder folder;
    const std::string path = folder.Path("image.elf");
    std::filesystem::copy_file(BRINDLE_SAMPLE_IMAGES "/arm-c-dwarf4-O0.elf", path);
    const ReadRun run = ReadFile(path);
    // What follows in the file is kept; `sine` comes before it.
    EXPECT_EQ(BytesAt(run, "machine_word"), (Bytes{6, 0, 0, 0}));
    std::filesystem::resize_file(path, 100);
    EXPECT_EQ(BytesAt(run, "machine_word"), (Bytes{6, 0, 0, 0}));
    EXPECT_THAT(BytesAt(run, "sine"), IsEmpty());
    EXPECT_THAT(BytesAt(run, "machine_word"), IsEmpty());
}

/// The 32-bit little-endian image with the sections that a condition chooses turned into such
/// without bytes (`SHT_NOBITS`), as `objcopy --only-keep-debug` turns all that are allocated.
template <typename Condition>
std::string WithEmptiedSections(const std::string& path, Condition isEmptied) {
    std::ifstream file(path, std::ios::binary);
    std::string image{std::istreambuf_iterator<char>(file), {}};
    const auto number = [&image](std::size_t position, std::size_t size) {
        std::uint32_t value = 0;
        std::memcpy(&value, image.data() + position, size);
        return value;
    };
    constexpr std::uint32_t allocated = 2;
    for (std::uint32_t index = 0; index < number(0x30, 2); ++index) {
        const std::size_t section = number(0x20, 4) + std::size_t{index} * 40;
        const std::uint32_t flags = number(section + 8, 4);
        if ((flags & allocated) != 0 && isEmptied(flags)) {
            image[section + 4] = 8;
        }
    }
    return image;
}

TEST_F(ImageDescriptionTest, DebugInformationSplitOffItsImageHasNoBytesRatherThanZeros) {
    const std::string path = BRINDLE_SAMPLE_IMAGES "/arm-c-dwarf4-O0.elf";
    VElfOptions::mIsFullReading = 1;
    const ReadRun split = ReadImage(WithEmptiedSections(path, [](std::uint32_t) { return true; }));
    EXPECT_FALSE(split.model->Image().hasContents);
    EXPECT_THAT(BytesAt(split, "machine_word"), IsEmpty());
    EXPECT_THAT(BytesAt(split, "sine"), IsEmpty());
    EXPECT_EQ(KindAt(split, "machine_word"), SectionKind::Data);
    EXPECT_EQ(KindAt(split, "sine"), SectionKind::ReadOnlyData);
    DataModel::ValueDecoder decoder(*split.model);
    EXPECT_EQ(decoder.InitialValue(split.model->ResolvePath("machine_word").place).origin,
              DataModel::ValueOrigin::Unknown);

    // An image may reserve memory for code that its start copies there.
    constexpr std::uint32_t executable = 4;
    const ReadRun overlay = ReadImage(
        WithEmptiedSections(path, [](std::uint32_t flags) { return (flags & executable) != 0; }));
    EXPECT_TRUE(overlay.model->Image().hasContents);
    const auto zero = std::ranges::find(overlay.model->Image().sections, SectionKind::Zero,
                                        &DataModel::ImageSection::kind);
    ASSERT_NE(zero, overlay.model->Image().sections.end());
    EXPECT_EQ(overlay.model->InitialBytes(zero->address, 1), Bytes{0});
}

TEST_F(ImageDescriptionTest, ARelocatableFileHasNoSectionsInMemory) {
    const ReadRun run = ReadSample("arm-c-dwarf4-O2-object.o");
    EXPECT_FALSE(run.model->Image().isLinked);
    EXPECT_THAT(run.model->Image().sections, IsEmpty());
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
