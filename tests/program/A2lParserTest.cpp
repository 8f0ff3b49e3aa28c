#include "a2l/Numbers.h"
#include "support/A2lFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace Tessel::Norn::Brindle;
using namespace Tessel::Norn::Brindle::Program::A2l;
using Tests::A2lFiles;
using Tests::InModule;

namespace {

/// What the parser finds about an object, in one line.
std::string Summary(const Object& object) {
    std::string text = std::string(KeywordOf(object.kind)) + " " + std::string(object.name.Text());
    text.append(" @").append(object.address.span.Text());
    if (object.link.IsSet()) {
        text.append(" link ")
            .append(object.link.Text())
            .append("+")
            .append(std::to_string(object.linkOffset));
    }
    if (object.bitMask.span.IsSet()) {
        text.append(" mask ").append(object.bitMask.span.Text());
    }
    if (object.elements != 0) {
        text.append(" elements ").append(std::to_string(object.elements));
    }
    if (object.points != 0) {
        text.append(" points ").append(std::to_string(object.points));
    }
    return text;
}

std::vector<std::string> Summaries(const Document& document) {
    std::vector<std::string> texts;
    for (const Object& object : document.objects) {
        texts.push_back(Summary(object));
    }
    return texts;
}

std::string ProblemOf(const std::string& main,
                      const std::map<std::string, std::string>& files = {}) {
    try {
        A2lFiles(main, files).Parse();
    } catch (const Fault& fault) {
        return fault.what();
    }
    return "none";
}

} // namespace

TEST(A2lParser, FindsEveryKindOfObjectInEachVersion) {
    struct Case {
        const char* text;
        const char* expected;
    };
    const std::vector<Case> cases = {
        // 1.5.1
        {R"(/begin MEASUREMENT speed "" UWORD CM 0 0 0 65535 ECU_ADDRESS 0x8840 /end MEASUREMENT)",
         "MEASUREMENT speed @0x8840"},
        {R"(/begin MEASUREMENT list "" UBYTE CM 0 0 0 255 ARRAY_SIZE 4 BIT_MASK 0x0F
            ECU_ADDRESS 4096 /end MEASUREMENT)",
         "MEASUREMENT list @4096 mask 0x0F elements 4"},
        {R"(/begin CHARACTERISTIC k "text" VALUE 0x810000 RL 0 CM 0 1 /end CHARACTERISTIC)",
         "CHARACTERISTIC k @0x810000"},
        {R"(/begin CHARACTERISTIC text "" ASCII 0x10 RL 0 CM 0 1 NUMBER 8 /end CHARACTERISTIC)",
         "CHARACTERISTIC text @0x10 elements 8"},
        {R"(/begin CHARACTERISTIC map "" MAP 0x7140 RL 100.0 CM 0.0 5000.0
            /begin AXIS_DESCR STD_AXIS N CM 13 0.0 5800.0 MAX_GRAD 20.0 /end AXIS_DESCR
            /begin AXIS_DESCR COM_AXIS N CM 4 0 1 AXIS_PTS_REF x /end AXIS_DESCR
            /end CHARACTERISTIC)",
         "CHARACTERISTIC map @0x7140 points 52"},
        {R"(/begin AXIS_PTS axis "" 0x9876 N DAMOS 100.0 CM 21 0.0 5800.0 /end AXIS_PTS)",
         "AXIS_PTS axis @0x9876 points 21"},
        // 1.6
        {R"(/begin MEASUREMENT a[1].b._2_ "" UBYTE CM 0 0 0 1 ECU_ADDRESS /* here */ 0X0a
            SYMBOL_LINK "a.b" /* offset */ -0x10 MATRIX_DIM 2 4 0 FORMAT "%4.2" /end MEASUREMENT)",
         "MEASUREMENT a[1].b._2_ @0X0a link a.b+-16 elements 8"},
        {R"(/begin MEASUREMENT noLink "" UBYTE CM 0 0 0 1 SYMBOL_LINK "x" ECU_ADDRESS 1
            /end MEASUREMENT)",
         "MEASUREMENT noLink @1 link x+0"},
        // 1.7.1
        {R"(/begin BLOB raw "" 0x4000 64 ADDRESS_TYPE DIRECT /end BLOB)",
         "BLOB raw @0x4000 points 64"},
        {R"(/begin INSTANCE motor "" motor_t 0x20000000 MATRIX_DIM 3
            /begin OVERWRITE gain 0 CONVERSION CM /end OVERWRITE /end INSTANCE)",
         "INSTANCE motor @0x20000000 elements 3"},
        // A value may look like a keyword, and vendors' blocks are their own.
        {R"(/begin MEASUREMENT v "ECU_ADDRESS 0x1" UBYTE CM 0 0 0 1 DISPLAY_IDENTIFIER ECU_ADDRESS
            /begin IF_DATA CANAPE_EXT LINK_MAP "v" 0x1 0 0 ECU_ADDRESS 0x2
              /begin MEASUREMENT x /end MEASUREMENT /end IF_DATA
            ECU_ADDRESS 0x3 // ECU_ADDRESS 0x4
            /* ECU_ADDRESS 0x5 */ /end MEASUREMENT)",
         "MEASUREMENT v @0x3"},
        {R"(/begin MEASUREMENT virtual "" UBYTE CM 0 0 0 1 /begin VIRTUAL a b /end VIRTUAL
            /end MEASUREMENT)",
         "MEASUREMENT virtual @"},
    };
    for (const Case& one : cases) {
        A2lFiles files(InModule(one.text));
        EXPECT_THAT(Summaries(files.Parse()), testing::ElementsAre(one.expected)) << one.text;
    }
}

TEST(A2lParser, PassesOverWhatItDoesNotKnow) {
    A2lFiles files(InModule(R"(
        /begin A2ML block "IF_DATA" struct { /include "missing.aml" }; // "
        /end A2ML
        /begin GROUP g "" ROOT /begin REF_MEASUREMENT a b /end REF_MEASUREMENT /end GROUP
        /begin FUTURE 1 2 "three \" \\" "" /begin INNER /end INNER /end FUTURE
        /begin USER_RIGHTS MEASUREMENT /end USER_RIGHTS
        /begin MEASUREMENT last "doubled "" quote" UBYTE CM 0 0 0 1 ECU_ADDRESS 7 /end MEASUREMENT)"));
    EXPECT_THAT(Summaries(files.Parse()), testing::ElementsAre("MEASUREMENT last @7"));
}

TEST(A2lParser, FollowsIncludesWhereverTheyStand) {
    A2lFiles files("/begin PROJECT p \"\" /begin MODULE m \"\" /include objects.a2l /end MODULE "
                   "/end PROJECT",
                   {{"objects.a2l",
                     "/begin BLOB one \"\" 1 1 /end BLOB\n"
                     "/begin MEASUREMENT two \"\" UBYTE CM 0 0 0 1 /include \"parts/rest.a2l\""},
                    {"parts/rest.a2l", "ECU_ADDRESS 2 /end MEASUREMENT"}});
    EXPECT_THAT(Summaries(files.Parse()),
                testing::ElementsAre("BLOB one @1 points 1", "MEASUREMENT two @2"));
}

TEST(A2lParser, SaysWhereTheTextIsWrongAndWhatWasExpected) {
    struct Case {
        const char* text;
        const char* problem;
    };
    const std::vector<Case> cases = {
        {"", "main.a2l:1: expected /begin PROJECT, but the file has no block at all"},
        {"int main() {}", "main.a2l:1: expected ASAP2_VERSION or /begin PROJECT, got 'int'"},
        {"\x7F"
         "ELF\2\1\1",
         "main.a2l:1: expected ASAP2_VERSION or /begin PROJECT"},
        {"\xFF\xFE/", "main.a2l: the file begins as UTF-16 or UTF-32 and has bytes that aren't"},
        {"/begin PROJECT p \"\"\n/begin MODULE m \"\"\n/end PROJECT",
         "main.a2l:3: expected /end MODULE of line 2, got /end PROJECT"},
        {"/begin PROJECT p \"\"\n",
         "main.a2l:2: expected /end PROJECT of line 1, got the end of the"},
        {"/begin PROJECT p \"\" /end PROJECT\n/end MODULE",
         "main.a2l:2: there is no block to /end here"},
        {"/begin PROJECT p\n\n\"no end",
         "main.a2l:3: the text that begins here has no end, expected"},
        {"/begin PROJECT\n/* no end",
         "main.a2l:2: the comment that begins here has no end, expected"},
        {"/begin BLOB b \"\"\nADDRESS 4 /end BLOB",
         "main.a2l:2: expected the address, a number of at most 64 bits of BLOB, got 'ADDRESS'"},
        {"/begin BLOB b \"\" 0x1FFFFFFFFFFFFFFFF 4 /end BLOB", "main.a2l:1: expected the address"},
        {"/begin BLOB b 4 4 /end BLOB", "main.a2l:1: expected the description in quotes of BLOB"},
        {"/begin MEASUREMENT m \"\" UBYTE\n/end MEASUREMENT",
         "main.a2l:2: expected the name of a conversion of MEASUREMENT, got '/end'"},
        {"/begin MEASUREMENT m \"\" UBYTE C 0 0 0 0\nECU_ADDRESS /end MEASUREMENT",
         "main.a2l:2: expected a number of at most 64 bits after ECU_ADDRESS, got '/end'"},
        {"/begin MEASUREMENT m \"\" UBYTE C 0 0 0 0\nSYMBOL_LINK m 0 /end MEASUREMENT",
         "main.a2l:2: expected a symbol in quotes after SYMBOL_LINK, got 'm'"},
        {"/begin PROJECT p \"\"\n/include \"main.a2l\"", "main.a2l:2: 'main.a2l' includes itself"},
        {"/begin PROJECT p \"\"\n/include none.a2l /end PROJECT",
         "main.a2l:2: the included file 'none.a2l' can't be read"},
        {"/begin PROJECT p \"\" /include", "expected the name of a file after /include"},
        {"/begin", "main.a2l:1: expected a keyword after /begin, got the end of the file"},
    };
    for (const Case& one : cases) {
        EXPECT_THAT(ProblemOf(one.text), testing::HasSubstr(one.problem)) << one.text;
    }
    const std::string zeros("/\0b\0e\0g\0", 8);
    EXPECT_THAT(ProblemOf(zeros),
                testing::HasSubstr("looks like UTF-16 without its byte order mark"));
    EXPECT_THAT(ProblemOf(std::string("\x7F"
                                      "ELF\1\1\1\0\0",
                                      9)),
                testing::HasSubstr("a binary file"));
}

TEST(A2lParser, EndsSoonWhereFilesIncludeEachOtherManyTimes) {
    std::map<std::string, std::string> files;
    for (int file = 0; file < 40; ++file) {
        const std::string next = "/include f" + std::to_string(file + 1) + "\n";
        files["f" + std::to_string(file)] = next + next;
    }
    files["f40"] = "";
    EXPECT_THAT(ProblemOf("/include f0", files), testing::HasSubstr("is included too often"));
}

TEST(A2lParser, LimitsWhatIsIncludedAgainByItsSize) {
    const auto description = [](int includes) {
        std::string text = "/begin PROJECT p \"\" /begin MODULE m \"\"\n";
        for (int count = 0; count < includes; ++count) {
            text += "/include part\n";
        }
        return text + "/end MODULE /end PROJECT";
    };
    const std::map<std::string, std::string> small = {{"part", "/* a few words */\n"}};
    EXPECT_EQ(ProblemOf(description(20'000), small), "none");
    const std::map<std::string, std::string> large = {
        {"part", "/*" + std::string(3 << 20, ' ') + "*/"}};
    EXPECT_EQ(ProblemOf(description(9), large), "none");
    EXPECT_THAT(ProblemOf(description(11), large), testing::HasSubstr("is included too often"));
}

TEST(A2lNumbers, AreWrittenAsTheOlderOnes) {
    struct Case {
        const char* older;
        std::uint64_t number;
        const char* expected;
    };
    const std::vector<Case> cases = {
        {"0x20000050", 0x200000AC, "0x200000AC"},
        {"0x200000ac", 0x200000BD, "0x200000bd"},
        {"0X00AB", 0xCD, "0X00CD"},
        {"0x8840", 0x20000000, "0x20000000"},
        {"0x0", 0, "0x0"},
        {"0x00000000FF", 0x10, "0x0000000010"},
        {"4096", 8192, "8192"},
        {"0", 536870912, "536870912"},
        {"00004096", 8192, "00008192"},
        {"0x1", 0xFFFFFFFFFFFFFFFF, "0xFFFFFFFFFFFFFFFF"},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(Notation(one.older, true).Write(one.number), one.expected) << one.older;
    }
    EXPECT_EQ(Notation("0x20", false).Write(0xAB), "0xab");
}

TEST(A2lEncoding, GivesAnyTextBackAsItWas) {
    using namespace std::string_literals;
    struct Case {
        std::string bytes;
        Encoding encoding;
        std::string text;
    };
    // Beside whole characters, lone surrogates and reversed pairs.
    const std::vector<Case> cases = {
        {"\xFF\xFE"
         "a\0\xE9\0\x3D\xD8\x00\xDE"s,
         Encoding::Utf16Little, "\uFEFFa\u00E9\U0001F600"},
        {"\xFE\xFF\0a\xD8\x3D\0b\xDE\0\xD8\x3D"s, Encoding::Utf16Big,
         "\uFEFFa\xED\xA0\xBD"
         "b\xED\xB8\x80\xED\xA0\xBD"},
        {"\xFF\xFE\0\0\x00\xF6\x01\0\xFF\xFF\x10\0"s, Encoding::Utf32Little,
         "\uFEFF\U0001F600\U0010FFFF"},
        {"\0\0\xFE\xFF\0\0\xD8\x3D\0\0\xDE\0"s, Encoding::Utf32Big,
         "\uFEFF\xED\xA0\xBD\xED\xB8\x80"},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(EncodingOf(one.bytes), one.encoding);
        const std::optional<std::string> text = Decode(one.bytes, one.encoding);
        EXPECT_EQ(text, one.text);
        EXPECT_EQ(Encode(*text, one.encoding), one.bytes);
    }
    EXPECT_EQ(EncodingOf("\xEF\xBB\xBF/"), Encoding::Bytes);
    EXPECT_EQ(Decode("abc", Encoding::Utf16Big), std::nullopt);
    EXPECT_EQ(Decode("\0\x11\0\0"s, Encoding::Utf32Big), std::nullopt);
}
