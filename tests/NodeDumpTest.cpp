// The dump of the tree of nodes: its files and their lines, as a person reads them.
#include "core/VElfOptions.h"
#include "support/ElfImage.h"
#include "support/ReadRun.h"
#include "support/ScopedReaderState.h"
#include "support/TemporaryFolder.h"
#include "support/UsualEntries.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace Tessel::Norn::Brindle::Tests {
namespace {

const std::string sFirstFile = "image.elf.debugInfoNodes0.rec0.log.txt";

std::string Hex(std::uint64_t value) {
    char text[20];
    std::snprintf(text, sizeof text, "0x%08llx", static_cast<unsigned long long>(value));
    return text;
}

class NodeDumpTest : public testing::Test {
protected:
    NodeDumpTest() { VElfOptions::mDumpDebugInfoNodes = 1; }

    ReadRun Read(const DwarfSections& sections, const ElfImage& image = WithSymbolTable()) {
        return ReadFile(mFolder.Write("image.elf", (image + sections).Build()));
    }

    /// A function creates a symbol table from which nothing is delivered.
    static ElfImage WithSymbolTable() { return ElfImage().Symbol({"main", 0x8000, 4, sFunction}); }

    /// The entries of the dump by their order, without indent and the two head lines.
    [[nodiscard]] std::vector<std::string> Entries() const {
        const std::string text = std::regex_replace(mFolder.Read(sFirstFile), std::regex("\t"), "");
        std::vector<std::string> entries;
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = text.find("\n\n", start);
            const std::string entry = text.substr(start, end + 1 - start);
            const std::size_t secondLine = entry.find('\n') + 1;
            entries.push_back(entry.substr(entry.find('\n', secondLine) + 1));
            start = end + 2;
        }
        return entries;
    }

    /// The summary of an entry, whose running number is `record`.
    static std::string Summary(const DwarfSections& sections, DieLabel label,
                               const std::string& tag, int record, const std::string& name,
                               const std::string& parent) {
        const auto padded = [](const std::string& text) {
            return "'" + std::string(16 - text.size(), ' ') + text + "'";
        };
        return Hex(sections.OffsetOf(label)) + " " + tag + ", tag-rec.: " + std::to_string(record) +
               ", Name:" + padded(name) + ", Parent:" + padded(parent);
    }

    ScopedReaderState mState;
    TemporaryFolder mFolder;
};

TEST_F(NodeDumpTest, HeadLinesAndIndent) {
    const DieLabel unit, structure, member, vendor;
    DwarfSections sections;
    sections.Unit({Die(unit, DW_TAG_compile_unit, {Name("a.c")},
                       {Die(structure, DW_TAG_structure_type, {Name("s")},
                            {Die(member, DW_TAG_member, {Name("m")})}),
                        Die(vendor, 0x4105)})});
    EXPECT_TRUE(Read(sections).result);
    const std::string text = std::regex_replace(mFolder.Read(sFirstFile),
                                                std::regex(R"(node-rec\.: \d+)"), "node-rec.: #");
    const auto head = [&](const std::string& indent, DieLabel label, int count, int record,
                          const std::string& tag) {
        return indent + Hex(sections.OffsetOf(label)).substr(2) + " {" + std::to_string(count) +
               ". node-rec.: #; tag-rec.: " + std::to_string(record) + "; )}\n" + indent + tag +
               ">\n";
    };
    EXPECT_EQ(text, head("", unit, 1, 1, "DW_TAG_compile_unit(0x11)") +
                        "  Name..............: \"a_c\" [Parent name \"\"]\n"
                        "  Compile Directory : \"<none>\"\n\n" +
                        head("\t", structure, 2, 2, "DW_TAG_structure_type(0x13)") +
                        "\t  Name..............: \"s\" [Parent name \"a_c\"]\n"
                        "\t  Byte-size.........: 0\n\n" +
                        head("\t\t", member, 3, 3, "DW_TAG_member(0xd)") +
                        "\t\t  Name..............: \"m\" [Parent name \"s\"]\n\n" +
                        // Null entries count too.
                        head("\t", vendor, 4, 5, "DW_TAG_..unknown ID=16645(0x4105)(0x4105)") +
                        "\n");
}

TEST_F(NodeDumpTest, IndentEndsAtTwentyEight) {
    Die nested(DW_TAG_namespace, {Name("innermost")});
    for (int level = 0; level < 29; ++level) {
        nested = Die(DW_TAG_namespace, {}, {nested});
    }
    EXPECT_TRUE(Read(Unit({nested})).result);
    const std::string text = mFolder.Read(sFirstFile);
    EXPECT_THAT(text,
                HasSubstr("\n" + std::string(28, '\t') + "  Name..............: \"innermost"));
}

TEST_F(NodeDumpTest, TypesAndMembers) {
    const DieLabel number, structure, alias, declared, pointer, definition, bits;
    const DwarfSections sections = Unit({
        Int(number),
        Struct(structure, "s", 8,
               {
                   Die(DW_TAG_typedef, {Name("inner"), Type(number)}),
                   Member("a", number, 0xFFFFFFFC),
                   Die(bits, DW_TAG_member,
                       {Name("b"), Type(number), BitSize(3), BitOffset(2), MemberOffset(4)}),
                   Die(DW_TAG_member, {Type(number)}),
               }),
        Typedef(alias, "aVeryLongNameOfAType", structure),
        Die(declared, DW_TAG_class_type, {Name("d"), Declaration()}),
        Die(pointer, DW_TAG_pointer_type, {Name("p"), Type(alias)}),
        Die(definition, DW_TAG_class_type, {Name("d"), ByteSize(1)},
            {Die(DW_TAG_member, {Name("only"), MemberOffset(0)}),
             Die(DW_TAG_member, {Name("next"), MemberOffset(1)})}),
    });
    EXPECT_TRUE(Read(sections).result);
    const std::vector<std::string> entries = Entries();
    ASSERT_EQ(entries.size(), 13U);
    const std::string numberOffset = Hex(sections.OffsetOf(number));
    const std::string numberSummary =
        Summary(sections, number, "DW_TAG_base_type", 2, "int", "a_c");
    EXPECT_EQ(entries[1], "  Name..............: \"int\" [Parent name \"a_c\"]\n"
                          "  Byte-size.........: 4\n"
                          "  Encoding..........: DW_ATE_signed\n");
    EXPECT_THAT(entries[4], HasSubstr("  Address Offset....: 0xfffffffffffffffc\n"));
    EXPECT_EQ(entries[5], "  Name..............: \"b\" [Parent name \"s\"]\n"
                          "  Type-Reference....: " +
                              numberOffset +
                              " -> {(<base_type) int}\n"
                              "  Address Offset....: 0x00000004\n"
                              "  Byte-size.........: 4\n"
                              "  Bit size..........: 3\n"
                              "  Bit offset........: 27\n"
                              "  [Byte-size resolved from type-reference]\n"
                              "  [1LNr offset: " +
                              Hex(sections.OffsetOf(bits)) +
                              " DW_TAG_member '               b' type->" + numberSummary + "]\n");
    EXPECT_THAT(entries[7],
                HasSubstr("  [1LNr offset: " + Hex(sections.OffsetOf(alias)) +
                          " DW_TAG_typedef 'aVeryLongNameOfA' type->" +
                          Summary(sections, structure, "DW_TAG_structure_type", 3, "s", "a_c") +
                          ", children: 4, members: 3 {, 'a', 'b', ''}]\n"));
    EXPECT_EQ(entries[8], "  Name..............: \"d\" [Parent name \"a_c\"]\n"
                          "  Byte-size.........: 0\n"
                          "  Declaration       : Yes\n"
                          "  Declaration Resolv:" +
                              Summary(sections, definition, "DW_TAG_class_type", 12, "d", "a_c") +
                              ", children: 2, members: 2 {'only', 'next'}\n");
    EXPECT_THAT(entries[9], StartsWith("  Name..............: \"\" [Parent name \"a_c\"]\n"
                                       "  Type-Reference....: " +
                                       Hex(sections.OffsetOf(alias)) +
                                       " -> {(<typedef) aVeryLongNameOfAType}\n"));
}

TEST_F(NodeDumpTest, VariablesTellWhereTheyAreAndWhy) {
    const DieLabel number, declared, completing, anonymous;
    const DwarfSections sections = Unit({
        Int(number),
        Die(declared, DW_TAG_variable, {Name("v"), Type(number), Declaration()}),
        Die(completing, DW_TAG_variable, {Specification(declared), External(), Address(0x1000)}),
        Die(DW_TAG_variable, {Name("v"), Type(number), Address(0x1000)}),
        Die(DW_TAG_variable, {Name("r"), Type(number), Location({{DW_OP_reg0}})}),
        Die(DW_TAG_variable, {Name("e"), Type(number), LinkageName("linked")}),
        Die(anonymous, DW_TAG_structure_type, {ByteSize(4)}),
        Die(DW_TAG_variable, {Name("a"), Type(anonymous), Address(0x2000)}),
        Die(DW_TAG_variable, {Name("lost"), Number(DW_AT_type, DW_FORM_ref4, 0x7777)}),
    });
    EXPECT_TRUE(Read(sections, WithSymbolTable().Symbol({"linked", 0x3000, 4})).result);
    const std::vector<std::string> entries = Entries();
    ASSERT_EQ(entries.size(), 10U);
    const auto endingWith = [](const std::string& lines) {
        return testing::EndsWith("]\n" + lines);
    };
    EXPECT_THAT(entries[2], endingWith("  Has Location      : No\n"));
    EXPECT_EQ(entries[3], "  Specification.....: " + Hex(sections.OffsetOf(declared)) +
                              " -> {(<base_type) intv;// variable specification }\n"
                              "  External(global)  : Yes\n"
                              "  [1LNr offset: " +
                              Hex(sections.OffsetOf(completing)) +
                              " DW_TAG_variable '                ' specification-type->" +
                              Summary(sections, declared, "DW_TAG_variable", 3, "v", "a_c") +
                              "]\n"
                              "  Has Location      : Yes\n"
                              "  Address (location): 0x00001000  \n"
                              "  Is-Redundant-Decl.: Yes\n");
    EXPECT_THAT(entries[4], endingWith("  Has Location      : Yes\n"
                                       "  Address (location): 0x00001000  \n"));
    EXPECT_THAT(entries[5], endingWith("  Has Location      : Yes\n"
                                       "  Address (location): 0x00000000 "
                                       "[REGISTER/STACK ADDRESS]\n"));
    EXPECT_THAT(entries[6], endingWith("  Has Location      : Yes\n"
                                       "  Address (location): 0x00003000  \n"
                                       "  Addr. from.symtab : Yes\n"));
    EXPECT_EQ(entries[7], "  Byte-size.........: 4\n  [Has ANONYMOUS (generated) name]\n");
    EXPECT_EQ(entries[9], "  Name..............: \"lost\" [Parent name \"a_c\"]\n"
                          "  Type-Reference....: 0x00007777"
                          " -> { <referenced debug info node not found/resolved yet!!!>}\n"
                          "  Has Location      : No\n");
}

// Nothing else uses them, so that only the dump makes the reader settle what they are.
TEST_F(NodeDumpTest, ParametersTellTheirTypeSizeAndReadableName) {
    const DieLabel number, parameter;
    const DwarfSections sections = Unit({
        Int(number),
        Die(DW_TAG_subprogram, {Name("f")},
            {Die(parameter, DW_TAG_formal_parameter, {Name("value__3Foo"), Type(number)})}),
    });
    EXPECT_TRUE(Read(sections).result);
    EXPECT_EQ(Entries().at(3), "  Name..............: \"Foo::value\" [Parent name \"f\"]\n"
                               "  Type-Reference....: " +
                                   Hex(sections.OffsetOf(number)) +
                                   " -> {(<base_type) int}\n"
                                   "  Byte-size.........: 4\n"
                                   "  [Byte-size resolved from type-reference]\n"
                                   "  [1LNr offset: " +
                                   Hex(sections.OffsetOf(parameter)) +
                                   " DW_TAG_formal_parameter '      Foo::value' type->" +
                                   Summary(sections, number, "DW_TAG_base_type", 2, "int", "a_c") +
                                   "]\n");
}

TEST_F(NodeDumpTest, BoundsOfSubrangesAndKindsOfUnits) {
    const DieLabel number, variable, first;
    DwarfSections sections;
    sections.Unit({Die(first, DW_TAG_compile_unit, {Name("x/a.c"), CompDir("/d")},
                       {
                           Int(number),
                           Die(variable, DW_TAG_variable, {Name("n"), Address(0x1000)}),
                           Die(DW_TAG_array_type, {Type(number)},
                               {Die(DW_TAG_subrange_type,
                                    {Count(3), LowerBound(1),
                                     Reference(DW_AT_upper_bound, DW_FORM_ref4, variable)})}),
                       })});
    sections.Unit({Die(DW_TAG_compile_unit, {Name("y/a.c"), CompDir("/d")})});
    EXPECT_TRUE(Read(sections).result);
    const std::vector<std::string> entries = Entries();
    ASSERT_EQ(entries.size(), 6U);
    EXPECT_EQ(entries[4], "  Lower Bound Value: 1\n  Upper Bound Reference...: " +
                              Hex(sections.OffsetOf(variable)) +
                              "\n  Array Items Count Value: 3\n");
    EXPECT_EQ(entries[0], "  Name..............: \"a_c\" [Parent name \"\"]\n"
                          "  Compile Directory : \"/d\"\n");
    EXPECT_EQ(entries[5], entries[0] + "  First-Kind-Of c.u.: " + Hex(sections.OffsetOf(first)) +
                              " [name = \"a_c\"]\n");
}

TEST_F(NodeDumpTest, StandsBesideItsInputAndIsAnnounced) {
    // Deep enough for a path longer than the file names that the reader keeps.
    std::string path;
    for (int level = 0; level < 3; ++level) {
        path += std::string(100, 'd') + "/";
        std::filesystem::create_directory(mFolder.Path(path));
    }
    path += "image.elf";
    const std::string image = mFolder.Write(path, (WithSymbolTable() + Unit({})).Build());
    const ReadRun run = ReadFile(image);
    EXPECT_TRUE(run.result);
    const std::string dump = image + ".debugInfoNodes0.rec0.log.txt";
    ASSERT_GT(run.progress.size(), 3U);
    EXPECT_THAT(std::vector(run.progress.end() - 3, run.progress.end()),
                ElementsAre("Post-Processing...", "Writing dump file..." + dump, "  Done!"));
    EXPECT_TRUE(std::filesystem::exists(dump));
    VElfOptions::mDumpDebugInfoNodes = 0;
    std::filesystem::remove(dump);
    EXPECT_TRUE(ReadFile(image).result);
    EXPECT_FALSE(std::filesystem::exists(dump));
}

TEST_F(NodeDumpTest, ALongDumpGoesOnInAnotherFileAtTheNextUnit) {
    // Each variable lists all members of its type: 184,320,000 bytes need only hundreds of them.
    constexpr std::size_t sMemberCount = 256;
    constexpr std::size_t sVariableCount = 700;
    const std::string longName(2047, 'm');
    const DieLabel structure;
    std::vector<Die> entries{
        Struct(structure, "s", 1,
               std::vector<Die>(sMemberCount, Die(DW_TAG_member, {Name(longName, DW_FORM_strp)})))};
    entries.insert(entries.end(), sVariableCount, Die(DW_TAG_variable, {Type(structure)}));
    const DwarfSections sections =
        Unit(entries).Unit({Die(DW_TAG_compile_unit, {Name("b.c")}, {Die(DW_TAG_namespace)})});
    EXPECT_TRUE(Read(sections).result);
    std::vector<std::string> others;
    for (const auto& file : std::filesystem::directory_iterator(mFolder.Path(""))) {
        const std::string name = file.path().filename().string();
        if (name != "image.elf" && name != sFirstFile) {
            others.push_back(name);
        }
    }
    ASSERT_EQ(others.size(), 1U);
    const std::string second = mFolder.Read(others[0]);
    std::smatch head;
    ASSERT_TRUE(std::regex_search(second, head,
                                  std::regex(R"(^[0-9a-f]{8} \{(\d+)\. node-rec\.: (\d+);)")));
    EXPECT_EQ(head.position(), 0);
    EXPECT_EQ(head[1], std::to_string(2 + sMemberCount + sVariableCount + 1));
    EXPECT_EQ(others[0], "image.elf.debugInfoNodes1.rec" + head[2].str() + ".log.txt");
    EXPECT_THAT(second, HasSubstr("\"b_c\""));
    EXPECT_THAT(second, Not(HasSubstr("log continues")));
    EXPECT_GT(std::filesystem::file_size(mFolder.Path(sFirstFile)), 184'320'000U);
    const std::string ending = "  Has Location      : No\n\nlog continues in next file.....\n";
    std::ifstream first(mFolder.Path(sFirstFile));
    first.seekg(-static_cast<std::streamoff>(ending.size()), std::ios::end);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(first), {}), ending);
}

TEST_F(NodeDumpTest, FilesThatCannotBeWrittenCostNothing) {
    const DieLabel number;
    const DwarfSections sections =
        Unit({Int(number), Die(DW_TAG_variable, {Name("v"), Type(number), Address(0x1000)})});
    const std::string dump = mFolder.Path(sFirstFile);
    const auto readsOn = [&] {
        const ReadRun run = Read(sections);
        EXPECT_TRUE(run.result);
        EXPECT_THAT(run.Variables(), ElementsAre("v@1000:4"));
        EXPECT_THAT(run.signals, testing::IsEmpty());
        EXPECT_EQ(run.standardOutput, "");
    };
    std::filesystem::create_directory(dump);
    readsOn();
    std::filesystem::remove(dump);
    readsOn();
    EXPECT_THAT(mFolder.Read(sFirstFile), HasSubstr("\"v\""));
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
