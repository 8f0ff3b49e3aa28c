// Whole reads of the same debug information in each container: what is delivered, which phases run,
// and what the reader says when the file is of another kind than the host named.
#include "core/VElfOptions.h"
#include "core/VElfResourceManager.h"
#include "diagnostics/ErrorState.h"
#include "support/CoffImage.h"
#include "support/ElfImage.h"
#include "support/PeImage.h"
#include "support/ReadRun.h"
#include "support/ScopedReaderState.h"
#include "support/UsualEntries.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace Tessel::Norn::Brindle::Tests {
namespace {

using enum DWARFContainerType;

/// `gMotor` at 0x10001000 with the members `speed` at 0 and `limit` at 4, and `gCount` at 0x500.
DwarfSections MotorSections(ByteOrder byteOrder = ByteOrder::Little, int addressSize = 4,
                            std::uint64_t motorAddress = 0x10001000) {
    const DieLabel number, motor;
    const DwarfUnit unit{
        .entries = {Die(
            DW_TAG_compile_unit, {Name("motor.c", DW_FORM_strp)},
            {Int(number),
             Die(motor, DW_TAG_structure_type, {Name("motor", DW_FORM_strp), ByteSize(8)},
                 {Member("speed", number, 0), Member("limit", number, 4)}),
             Variable("gMotor", motor, motorAddress), Variable("gCount", number, 0x500)})},
        .addressSize = addressSize};
    return DwarfSections(byteOrder).Unit(unit);
}

/// Variables and the members of structures, as "name@address:size" and "name+offset".
std::vector<std::string> LayoutOf(const ReadRun& run) {
    EXPECT_TRUE(run.result) << run.message;
    EXPECT_THAT(run.signals, IsEmpty());
    EXPECT_EQ(run.standardOutput, "");
    std::vector<std::string> layout = run.Variables();
    run.model->ForEach(DataModel::ObjectKind::Member, [&](const DataModel::ModelObject& member) {
        layout.push_back(std::string(member.name) + "+" + std::to_string(member.offset));
    });
    return layout;
}

template <typename Image>
ReadRun ReadAs(DWARFContainerType container, const Image& image) {
    return ReadImage(image.Build(), container);
}

class ContainerReadTest : public testing::Test {
protected:
    ScopedReaderState mState;
};

TEST_F(ContainerReadTest, DebugInformationIsDeliveredAlikeFromEveryContainer) {
    const auto isTheMotor = ElementsAre("gMotor@10001000:8", "gCount@500:4", "speed+0", "limit+4");
    for (const ByteOrder byteOrder : {ByteOrder::Little, ByteOrder::Big}) {
        const DwarfSections sections = MotorSections(byteOrder);
        EXPECT_THAT(LayoutOf(ReadAs(
                        Container_ELF,
                        ElfImage(ElfClass::Class32, byteOrder).Symbol({"main", 1, 4, sFunction}) +
                            sections)),
                    isTheMotor);
        EXPECT_THAT(LayoutOf(ReadAs(Container_COFF, CoffImage(byteOrder) + sections)), isTheMotor);
        EXPECT_THAT(
            LayoutOf(ReadAs(Container_COFF,
                            CoffImage(byteOrder).OptionalHeaderSize(28).SymbolsFirst() + sections)),
            isTheMotor);
    }
    EXPECT_THAT(LayoutOf(ReadAs(Container_PE, PeImage() + MotorSections())), isTheMotor);
    EXPECT_THAT(LayoutOf(ReadAs(Container_PE, PeImage(PeMachine::X86_64).SymbolsFirst() +
                                                  MotorSections(ByteOrder::Little, 8))),
                isTheMotor);
}

TEST_F(ContainerReadTest, WordAddressedTargetsAreDeliveredInBytes) {
    const CoffImage image = CoffImage().Target(sCoffTargetC2800) + MotorSections();
    EXPECT_THAT(LayoutOf(ReadAs(Container_COFF, image)),
                ElementsAre("gMotor@20002000:16", "gCount@a00:8", "speed+0", "limit+8"));
    VElfOptions::mCoffDwarfAddressMode = 1;
    EXPECT_THAT(LayoutOf(ReadAs(Container_COFF, image)),
                ElementsAre("gMotor@10001000:8", "gCount@500:4", "speed+0", "limit+4"));
}

TEST_F(ContainerReadTest, VariablesOfALibraryAreRelativeToItsImageBase) {
    const auto variables = [](const PeImage& image, const DwarfSections& sections) {
        return ReadAs(Container_PE, image + sections).Variables();
    };
    const PeImage library = PeImage().Dll().ImageBase(0x10000000);
    EXPECT_THAT(variables(library, MotorSections()), ElementsAre("gMotor@1000:8", "gCount@500:4"));
    EXPECT_THAT(variables(PeImage().ImageBase(0x10000000), MotorSections()),
                ElementsAre("gMotor@10001000:8", "gCount@500:4"));
    // An address at the base itself isn't above it.
    EXPECT_THAT(variables(library, MotorSections(ByteOrder::Little, 4, 0x10000000)),
                ElementsAre("gMotor@10000000:8", "gCount@500:4"));
}

TEST_F(ContainerReadTest, OnlyTheFullMannerKeepsAddressesAbove4GiB) {
    const PeImage library = PeImage(PeMachine::X86_64).Dll().ImageBase(0x180000000) +
                            MotorSections(ByteOrder::Little, 8, 0x180001000);
    const PeImage program = PeImage(PeMachine::X86_64).ImageBase(0x140000000) +
                            MotorSections(ByteOrder::Little, 8, 0x140001000);
    const ElfImage elf = ElfImage(ElfClass::Class64)
                             .Symbol({"gFar", 0x2'0000'1000, 4})
                             .Symbol({"gHuge", 0x3'0000'0000, 0x1'0000'0000}) +
                         MotorSections(ByteOrder::Little, 8, 0x1'0000'1000);
    // In 32 bits none of the addresses is above the base, and a symbol of 4 GiB is an error.
    EXPECT_THAT(ReadAs(Container_PE, library).Variables(),
                ElementsAre("gMotor@80001000:8", "gCount@500:4"));
    EXPECT_THAT(ReadAs(Container_PE, program).Variables(),
                ElementsAre("gMotor@40001000:8", "gCount@500:4"));
    EXPECT_FALSE(ReadAs(Container_ELF, elf).result);

    VElfOptions::mIsFullReading = 1;
    EXPECT_THAT(ReadAs(Container_PE, library).Variables(),
                ElementsAre("gMotor@1000:8", "gCount@500:4"));
    EXPECT_THAT(ReadAs(Container_PE, program).Variables(),
                ElementsAre("gMotor@140001000:8", "gCount@500:4"));
    EXPECT_THAT(ReadAs(Container_ELF, elf).Variables(),
                ElementsAre("gMotor@100001000:8", "gCount@500:4", "gFar@200001000:4",
                            "gHuge@300000000:4294967296"));
}

/// The outcome of a read: "D" for the debug information, "S" for the scope of the symbols, and the
/// error state if it failed; 21 stands for the state before the read.
std::string OutcomeOf(DWARFContainerType container, const std::string& image) {
    gElfReaderErrorFlag = ELFReadErrorEnum::ELFERR_CANCELLED;
    VElfOptions::mUseCppExtensionDWARF2 = 0;
    const ReadRun run = ReadImage(image, container);
    const std::vector<std::string> variables = run.Variables();
    const auto has = [&](const char* name) {
        return std::ranges::find(variables, name) != variables.end();
    };
    const std::string error = std::to_string(static_cast<int>(gElfReaderErrorFlag));
    EXPECT_EQ(run.result, run.message.empty());
    EXPECT_EQ(std::ranges::any_of(run.calls,
                                  [](const std::string& call) {
                                      return call.find("_Symbol_Table_BKR_") != std::string::npos;
                                  }),
              has("gOther@5000:4"));
    return std::string(has("gMotor@10001000:8") ? "D" : "") + (has("gOther@5000:4") ? "S" : "") +
           (run.result ? "" : error);
}

TEST_F(ContainerReadTest, OptionsChooseWhatIsReadOfAFileWithSectionsOfAllFormats) {
    const std::string elf =
        (ElfImage().Symbol({"gOther", 0x5000, 4}).Section(".debug", "x").Section(".vdebug", "x") +
         MotorSections())
            .Build();
    const std::string coff =
        (CoffImage().Section(".debug", "x").Section(".vdebug", "x") + MotorSections()).Build();
    const std::string pe =
        (PeImage().Section(".debug", "x").Section(".vdebug", "x").Symbol({"gOther", 0x4000, 1}) +
         MotorSections())
            .Build();
    struct Row {
        std::int32_t debugSection;
        std::int32_t symbolTable;
        const char* elf;
        const char* coff;
        const char* pe;
    };
    constexpr Row rows[] = {
        {0, 0, "DS", "D", "D"},       {0, 1, "S", "14", ""},  {0, 2, "DS", "D14", "D"},
        {1, 0, "25", "25", "25"},     {1, 1, "S", "14", ""},  {1, 2, "25", "25", "25"},
        {2, 0, "DS", "D", "D"},       {2, 1, "S", "14", ""},  {2, 2, "DS", "D14", "D"},
        {3, 0, "21", "23", ""},       {3, 1, "S", "14", ""},  {3, 2, "21", "23", ""},
        {-1, 0, "D25", "D25", "D25"}, {-1, 1, "S", "14", ""}, {-1, 2, "D25", "D25", "D25"},
        {4, 0, "S", "23", ""},        {4, 1, "S", "14", ""},  {4, 2, "S", "23", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.debugSection << ", " << row.symbolTable);
        VElfOptions::mForceDebugSectionVersion = row.debugSection;
        VElfOptions::mElfForceSymbolTable = row.symbolTable;
        const int usesExtension =
            row.symbolTable != 1 && (row.debugSection == 2 || row.debugSection == -1) ? 1 : 0;
        EXPECT_EQ(OutcomeOf(Container_ELF, elf), row.elf);
        EXPECT_EQ(VElfOptions::mUseCppExtensionDWARF2, usesExtension);
        EXPECT_EQ(OutcomeOf(Container_COFF, coff), row.coff);
        EXPECT_EQ(VElfOptions::mUseCppExtensionDWARF2, usesExtension);
        EXPECT_EQ(OutcomeOf(Container_PE, pe), row.pe);
        EXPECT_EQ(VElfOptions::mUseCppExtensionDWARF2, 1);
    }
    // Without the other sections, only the NEC format is read, and it fails without a reason.
    VElfOptions::mForceDebugSectionVersion = 0;
    VElfOptions::mElfForceSymbolTable = 0;
    EXPECT_EQ(OutcomeOf(Container_ELF, ElfImage().Section(".vdebug", "x").Build()), "21");
}

TEST_F(ContainerReadTest, SectionsNamedLikeElfSymbolTablesHaveNoEntrySize) {
    const CoffImage coff = CoffImage().Section(".symtab", "x").Section(".strtab", "x");
    const PeImage pe = PeImage().Section(".symtab", "x").Section(".strtab", "x");
    for (const ReadRun& run : {ReadAs(Container_COFF, coff + MotorSections()),
                               ReadAs(Container_PE, pe + MotorSections())}) {
        EXPECT_EQ(run.message, "Section item size is unknown.");
        EXPECT_THAT(run.Variables(), IsEmpty());
    }
    EXPECT_TRUE(
        ReadAs(Container_COFF, CoffImage().Section(".symtab", "x") + MotorSections()).result);
}

TEST_F(ContainerReadTest, FilesWithoutDebugInformation) {
    const ReadRun pe = ReadAs(Container_PE, PeImage().Section(".text", "x").Symbol({"main", 1, 1}));
    EXPECT_TRUE(pe.result);
    EXPECT_THAT(pe.calls, IsEmpty());
    EXPECT_EQ(VElfOptions::mUseCppExtensionDWARF2, 1);

    for (const CoffImage& image :
         {CoffImage(), CoffImage().Section(".text", "x"), CoffImage().Section(".vdebug", "x")}) {
        EXPECT_EQ(ReadAs(Container_COFF, image).message,
                  "COFF/DWARF: Input file is missing (DWARF) debug information. Please use COFF "
                  "reader without DWARF extension to read the file.");
    }
    const auto isOld = HasSubstr("deprecated DWARF1 format");
    EXPECT_THAT(ReadAs(Container_COFF, CoffImage().Section(".debug", "x")).message, isOld);
    EXPECT_THAT(ReadAs(Container_PE, PeImage().Section(".debug", "x")).message, isOld);
}

TEST_F(ContainerReadTest, EveryWrongPairingHasItsMessage) {
    const std::string elf = (ElfImage().Symbol({"main", 1}) + MotorSections()).Build();
    const std::string coff = (CoffImage() + MotorSections()).Build();
    const std::string pe = (PeImage() + MotorSections()).Build();
    struct Case {
        std::string file;
        DWARFContainerType container;
        std::string message;
    };
    const std::string notElf = "The file is not in ELF format.";
    const std::string notOpened = "ELF file Open has failed.";
    const Case cases[] = {
        {elf, Container_COFF,
         "The file contains ELF format, Please use ELF reader to read the file."},
        {elf, Container_PE, notOpened},
        {coff, Container_ELF, notElf},
        {coff, Container_PE, notOpened},
        {pe, Container_ELF, notElf},
        {std::string(100, 't'), Container_ELF, notElf},
        {std::string(100, 't'), Container_COFF, "File is corrupted!"},
        {std::string(100, 't'), Container_PE, notOpened},
        {"", Container_COFF, "ELF file Seek has failed."},
        {"", Container_PE, notOpened},
        {std::string(23, 't'), Container_COFF, "ELF file Read has failed."},
    };
    for (const Case& each : cases) {
        const ReadRun run = ReadImage(each.file, each.container);
        EXPECT_FALSE(run.result);
        EXPECT_THAT(run.signals, ElementsAre("2 4112 '' '" + each.message + "'"));
        EXPECT_THAT(run.calls, IsEmpty());
    }
    VElfResourceManager::Instance().SetLanguage(49);
    EXPECT_EQ(ReadImage(elf, Container_COFF).message,
              "Die Datei enthält ELF Format. Nehmen Sie den ELF reader zum Lesen der Datei.");
}

TEST_F(ContainerReadTest, TheLogKeepsTheReasonOfAFailure) {
    const TemporaryFolder folder;
    VElfOptions::mIsLogFile = 1;
    // The old format is refused without a line.
    const std::string old = ElfImage().Section(".debug", "x").Build();
    EXPECT_FALSE(ReadFile(folder.Write("old.elf", old)).result);
    EXPECT_EQ(gElfReaderErrorFlag, ELFReadErrorEnum::ELFERR_DWARF1);
    EXPECT_EQ(folder.Read("old.log"), "");
    EXPECT_FALSE(ReadFile(folder.Write("text.exe", "text"), Container_PE).result);
    EXPECT_EQ(folder.Read("text.log"), "Error occurred: 'Unsupported file type.'\n"
                                       "Error occurred: 'ELF file Open has failed.'\n");
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
