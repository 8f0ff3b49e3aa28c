#include "demangle/Demangler.h"

#include "demangle/NameText.h"

#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

using namespace std::string_literals;

constexpr int sOutSize = 2047;
constexpr char sGuard = '\x5A';

/// What one call said.
struct Answer {
    bool result = false;
    bool demangled = false;
    std::string text;

    bool operator==(const Answer&) const = default;
};

Answer Unreadable() {
    return {};
}

Answer Cleaned(std::string text) {
    return {true, false, std::move(text)};
}

Answer Demangled(std::string text) {
    return {true, true, std::move(text)};
}

std::ostream& operator<<(std::ostream& stream, const Answer& answer) {
    return stream << std::boolalpha << "result " << answer.result << ", demangled "
                  << answer.demangled << ", text \"" << answer.text << '"';
}

/// Demangles the bytes of a buffer that has no terminator and no byte to spare.
Answer Demangle(std::string_view name, const VDemanglingOptions& options = {},
                int outSize = sOutSize) {
    const auto exactName = std::make_unique<char[]>(name.size());
    name.copy(exactName.get(), name.size());
    const auto roomOfOut = static_cast<std::size_t>(outSize) + 1;
    const auto out = std::make_unique<char[]>(roomOfOut);
    out[0] = sGuard;
    Answer answer;
    answer.demangled = true;
    answer.result = DemangleName(out.get(), outSize, exactName.get(), static_cast<int>(name.size()),
                                 answer.demangled, options);
    EXPECT_TRUE(MayBeMangled(name, options) || !answer.demangled) << name;
    if (answer.result) {
        answer.text = out.get();
    }
    return answer;
}

void ExpectAnswers(const std::vector<std::pair<std::string, Answer>>& cases,
                   const VDemanglingOptions& options = {}) {
    for (const auto& [name, expected] : cases) {
        EXPECT_EQ(Demangle(name, options), expected) << name;
    }
}

VDemanglingOptions Itanium() {
    VDemanglingOptions options;
    options.mIsTaskingProducer = true;
    return options;
}

/// A piece of text, some number of times over.
std::string Repeated(std::string_view piece, std::size_t count) {
    std::string text;
    for (std::size_t index = 0; index < count; ++index) {
        text += piece;
    }
    return text;
}

TEST(DemanglerTest, OrdinaryNamesAreLeftAlone) {
    ExpectAnswers({{"", Unreadable()},
                   {"value", Unreadable()},
                   {"_value_1", Unreadable()},
                   {"a[3].b<int>", Unreadable()},
                   {"value__", Unreadable()},
                   {"__", Unreadable()},
                   {"_ZN3Foo3barEv", Unreadable()}});
}

TEST(DemanglerTest, ForbiddenCharactersBecomeUnderscores) {
    ExpectAnswers({{"a-b", Cleaned("a_b")},
                   {"a:b", Cleaned("a_b")},
                   {"value:", Cleaned("value_")},
                   {"gr\xC3\xB6\xDF"
                    "e$",
                    Cleaned("gr___e_")},
                   {"a::b", Cleaned("a::b")},
                   {"::b", Cleaned("_b")},
                   {"a.::b", Cleaned("a._b")},
                   {"a:::b", Cleaned("a::_b")},
                   {"value-__", Cleaned("value___")}});
}

TEST(DemanglerTest, OptionsChooseWhatIsReplaced) {
    VDemanglingOptions dots;
    dots.mReplaceDot = true;
    ExpectAnswers({{"a.b<c>", Cleaned("a_b<c>")}, {"a.::b", Cleaned("a_::b")}}, dots);
    VDemanglingOptions brackets;
    brackets.mReplaceAngleBrackets = true;
    ExpectAnswers({{"a.b<c>", Cleaned("a.b_c_")}}, brackets);
}

TEST(DemanglerTest, ClassNamesComeBeforeTheBaseName) {
    ExpectAnswers({{"value__3Foo", Demangled("Foo::value")},
                   {"f__3FooFv", Demangled("FooFv::f")},
                   {"f__3FooF-v", Demangled("FooF_v::f")},
                   {"f__03Foo", Demangled("Foo::f")},
                   {"__3Foo", Demangled("Foo::")},
                   {"f__3Foo__4Next", Demangled("Foo::Next::f")},
                   {"f__9Foo__3Bar", Demangled("Foo::Bar::f")},
                   {"f__3F-o", Demangled("F_o::f")}});
}

TEST(DemanglerTest, LengthsThatDoNotFitLeaveTheName) {
    ExpectAnswers({{"f__6Foo", Unreadable()},
                   {"f__0Foo", Unreadable()},
                   {"f__00003Foo", Unreadable()},
                   {"f__6Fo-", Cleaned("f__6Fo_")},
                   {"f__3Foo__9Bar", Unreadable()},
                   {"f__1025" + std::string(1100, 'x'), Unreadable()},
                   {"f__99999999999999999999x", Unreadable()},
                   // Compared from the first digit on.
                   {"f__4Foo", Demangled("Foo::f")},
                   {"f__1", Unreadable()},
                   {"f-__1", Cleaned("f___1")}});
    const std::string longest(1024, 'x');
    EXPECT_EQ(Demangle("f__1024" + longest), Demangled(longest + "::f"));
}

TEST(DemanglerTest, QualifiedListsGiveOneNameEach) {
    ExpectAnswers({{"f__Q2_3Foo4Bar", Demangled("Foo::Bar::f")},
                   {"value__Q2_5Outer5Inner", Demangled("Outer::Inner::value")},
                   {"value__Q2B5Outer5Inner", Demangled("Outer::Inner::value")},
                   {"value__Q25Outer5Inner", Demangled("Outer::Inner::value")},
                   {"f__Q1_3FooFv", Demangled("Foo::f")},
                   {"f__Q3_3Foo", Demangled("Foo::f")},
                   {"f__Q0_3Foo", Unreadable()},
                   {"f__Q2", Unreadable()},
                   {"f__Q2_", Demangled("f")},
                   {"f__Q2_3Foox", Unreadable()},
                   {"f__QA_3Foo", Unreadable()}});
}

TEST(DemanglerTest, QualifiedListMayStandInPlaceOfAName) {
    ExpectAnswers({{"f__11Q2_3abc3def", Demangled("abc::def::f")},
                   {"f__b_Q2_3abc3def", Demangled("abc::def::f__b")},
                   {"f__6Q1_3abctail", Demangled("abctail::f")},
                   {"f__2Qx", Demangled("Qx::f")},
                   {"f__3Q1", Demangled("Q1::f")},
                   {"f__5Q0abc", Unreadable()}});
}

TEST(DemanglerTest, NumberedNameDropsWhatFollows) {
    ExpectAnswers({{"name__N_3_abcrest", Demangled("abc::name")},
                   {"name__N_3_a__4b", Demangled("a__::name")},
                   {"name__N_3abcrest", Unreadable()},
                   {"name__N3_abcrest", Unreadable()},
                   {"name__N_", Unreadable()},
                   {"name__N_9_abcrest", Demangled("abcrest::name")},
                   {"name__N_11_abcrest", Unreadable()},
                   {"f__8a__N_2_bcdef", Demangled("a::bcdef::f")}});
}

TEST(DemanglerTest, TemplatePartsStayText) {
    ExpectAnswers({{"x__t_y", Demangled("__t_y::x")},
                   {"x__tm__2i-", Demangled("__tm__2i_::x")},
                   {"x__tm_", Unreadable()},
                   {"x__t2y", Unreadable()},
                   {"x__3Foo__t_y__3Bar", Demangled("Foo__t_y__3Bar::x")},
                   {"x__8Foo__t_y__3Bar", Demangled("Foo__t_y::Bar::x")}});
}

TEST(DemanglerTest, RemainingDecorations) {
    ExpectAnswers({{"__vtbl__3Foo", Demangled("Foo::__vtbl")},
                   {"__vtb", Unreadable()},
                   {"f__b_xyz", Demangled("xyz::f__b")},
                   {"f__bxyz", Unreadable()},
                   {"foo__$bar", Demangled("foobar")},
                   {"foo__$", Demangled("foo")},
                   {"foo__$bar__3Foo", Demangled("Foo::foobar")},
                   {"foo__$bar__C", Cleaned("foo___bar__C")},
                   {"f__Cx", Unreadable()},
                   {"f___3Foo", Unreadable()},
                   {"f__ps__x", Unreadable()},
                   {"f-g__ps__x", Cleaned("f_g__ps__x")},
                   {"f__3Foo__ps__x-", Cleaned("f__3Foo__ps__x_")},
                   {"f__$g-__ps__x", Cleaned("f___g___ps__x")}});
}

TEST(DemanglerTest, SeparatorIsFreeText) {
    VDemanglingOptions options;
    options.mScopeSeparator = "";
    ExpectAnswers({{"a::b", Cleaned("ab")}, {"f__Q2_1a1b", Demangled("abf")}}, options);
    options.mScopeSeparator = "->";
    ExpectAnswers({{"a::b", Cleaned("a->b")}, {"f__Q2_1a1b", Demangled("a->b->f")}}, options);
}

TEST(DemanglerTest, StripsOneUnderscoreOfTheBaseName) {
    VDemanglingOptions options;
    options.mStripUnderscore = true;
    ExpectAnswers({{"_value__3Foo", Demangled("Foo::value")},
                   {"__vtbl__4_Foo", Demangled("_Foo::_vtbl")},
                   {"___3Foo", Unreadable()},
                   {"_value", Unreadable()},
                   {"_a-b", Cleaned("_a_b")}},
                  options);
}

TEST(DemanglerTest, ItaniumNamesGiveTheirComponents) {
    ExpectAnswers({{"_ZN3Foo3barEv", Demangled("Foo::bar")},
                   {"_ZNK3Foo3barEv", Demangled("Foo::bar")},
                   {"_ZNVK3Foo3barEv", Demangled("Foo::bar")},
                   {"_ZNKVK3FooE", Unreadable()},
                   {"_ZNKE", Unreadable()},
                   {"_ZNK", Unreadable()},
                   {"_ZTV3Foo", Demangled("Foo")},
                   {"_ZTVN3Foo3BarE", Demangled("Foo::Bar")},
                   {"_ZTVSt9type_info", Demangled("type_info")},
                   {"_ZTVNSt3Foo3BarE", Demangled("Foo::Bar")},
                   {"_ZTV", Unreadable()},
                   {"__N3Foo3bar", Demangled("Foo::bar")},
                   {"_Z3foov", Unreadable()},
                   {"_ZN", Unreadable()},
                   {"aZN3Foo", Unreadable()},
                   {"value__3Foo", Unreadable()},
                   {"", Unreadable()}},
                  Itanium());
}

TEST(DemanglerTest, ItaniumComponentsEndAtTheFirstThatIsNoLength) {
    ExpectAnswers({{"_ZN3FooIiE3barEv", Demangled("Foo")},
                   {"_ZNL3FooL3barEv", Demangled("Foo::bar")},
                   {"_ZNLL3FooE", Unreadable()},
                   {"_ZN3Foo9barE", Demangled("Foo")},
                   {"_ZN3Foo4bar", Demangled("Foo::bar")},
                   {"_ZN3Foo1", Demangled("Foo")},
                   {"_ZN3Foo0E", Demangled("Foo")},
                   {"_ZN15_INTERNAL_1_abc3FooE", Demangled("Foo")},
                   {"_ZN3Foo9_INTERNALE", Demangled("Foo")},
                   {"_ZN9_INTERNALE", Unreadable()},
                   {"_ZN8_INTERNAL3FooE", Demangled("_INTERNA::Foo")},
                   {"_ZN1025" + std::string(1100, 'x'), Unreadable()}},
                  Itanium());
}

TEST(DemanglerTest, ItaniumStripsOneUnderscoreOfTheFirstComponent) {
    VDemanglingOptions options = Itanium();
    options.mStripUnderscore = true;
    options.mScopeSeparator = ".";
    ExpectAnswers({{"_ZN5__Foo4_barEv", Demangled("_Foo._bar")},
                   {"_ZN1_3barEv", Unreadable()},
                   {"_ZN9_INTERNAL4_FooE", Demangled("Foo")}},
                  options);
}

TEST(DemanglerTest, NamesDeeperThanTheTablesAreUnreadable) {
    EXPECT_EQ(Demangle("f" + Repeated("__1a", 15)), Demangled(Repeated("a::", 15) + "f"));
    EXPECT_EQ(Demangle("f" + Repeated("__1a", 16)), Unreadable());
    EXPECT_EQ(Demangle("f__$" + Repeated("__1a", 16)), Unreadable());
    EXPECT_EQ(Demangle("f" + Repeated("__b_", 16)), Unreadable());
    EXPECT_EQ(Demangle("f" + Repeated("__Q1_", 16) + "1a"), Unreadable());
    EXPECT_EQ(Demangle("_ZN" + Repeated("1a", 16), Itanium()),
              Demangled(Repeated("a::", 15) + "a"));
    EXPECT_EQ(Demangle("_ZN" + Repeated("1a", 17), Itanium()), Unreadable());
}

TEST(DemanglerTest, FullSegmentDropsTheRest) {
    constexpr int sLargeOut = 10000;
    const std::string full(2047, 'x');
    EXPECT_EQ(Demangle("-" + Repeated("x", 3000), {}, sLargeOut), Cleaned("_" + full.substr(1)));
    EXPECT_EQ(Demangle(full + "yy__3Foo", {}, sLargeOut), Demangled("Foo::" + full));
    EXPECT_EQ(Demangle(full.substr(1) + "::yy", {}, sLargeOut), Cleaned(full.substr(1) + ":"));
    EXPECT_EQ(Demangle(full.substr(3) + "__b_y", {}, sLargeOut),
              Demangled("y::" + full.substr(3) + "__b"));
    EXPECT_EQ(Demangle(full.substr(2) + "__b_y", {}, sLargeOut), Demangled("y::" + full.substr(2)));
    EXPECT_EQ(Demangle("f__3Foo" + full, {}, sLargeOut), Demangled("Foo" + full.substr(3) + "::f"));
}

TEST(DemanglerTest, OutSizeCutsTheResult) {
    EXPECT_EQ(Demangle("value__3Foo", {}, 7), Demangled("Foo::va"));
    EXPECT_EQ(Demangle("value__3Foo", {}, 4), Demangled("Foo:"));
    EXPECT_EQ(Demangle("a-b", {}, 2), Cleaned("a_"));
    EXPECT_EQ(Demangle("a-b", {}, 0), Cleaned(""));
    EXPECT_EQ(Demangle("_ZN3Foo3barEv", Itanium(), 2), Demangled("Fo"));
    bool demangled = true;
    EXPECT_FALSE(DemangleName(nullptr, -1, "a-b", 3, demangled, {}));
    EXPECT_FALSE(demangled);
}

TEST(DemanglerTest, NameEndsAtItsTerminatorOrLength) {
    EXPECT_EQ(Demangle("value__3Foo\0Fv"s), Demangled("Foo::value"));
    EXPECT_EQ(Demangle("_ZN3Foo3bar\0003baz"s, Itanium()), Demangled("Foo::bar"));
    EXPECT_EQ(Demangle(std::string_view("a-b__3Foo").substr(0, 3)), Cleaned("a_b"));
}

TEST(DemanglerTest, NestedFramesMayPromiseMoreThanThereIs) {
    ExpectAnswers({{"f__Q1_5a__4bcd", Unreadable()},
                   {"f__Q2_5Outer5Inne", Demangled("Outer::Inne::f")},
                   {"f__Q1_10abc__5efg", Demangled("abc::efg::f")},
                   {"f__Q1_10abc__6efg", Unreadable()},
                   {"f__6ab__2c__3Foo", Demangled("ab::c::Foo::f")},
                   {"f__4ab__3Foo", Unreadable()}});
}

TEST(NameTextTest, LengthCountsItsDigits) {
    const std::string tail(1024, 'x');
    const std::vector<std::tuple<std::string, int, int>> cases = {
        {"3abc", 3, 1},           {"4abc", 4, 1},        {"5abc", 0, 1},
        {"0003abc", 3, 4},        {"abc", 0, 0},         {"", 0, 0},
        {"1024" + tail, 1024, 4}, {"1025" + tail, 0, 4}, {"4294967297" + tail, 0, 10}};
    for (const auto& [text, length, expectedDigits] : cases) {
        int digits = -1;
        EXPECT_EQ(ParseNameLength(text.data(), text.data() + text.size(), digits), length) << text;
        EXPECT_EQ(digits, expectedDigits) << text;
    }
    const std::string reversed = "12345";
    int digits = -1;
    EXPECT_EQ(ParseNameLength(reversed.data() + 3, reversed.data(), digits), 0);
    EXPECT_EQ(digits, 0);
}

TEST(NameTextTest, CopiesKeepCharactersWhole) {
    struct CopyCase {
        std::string present;
        std::string added;
        int limit;
        std::string expected;
    };
    const std::string euro = "\xE2\x82\xAC";
    for (const CopyCase& singleCase :
         {CopyCase{"", "abc", 3, "abc"}, CopyCase{"", "abc", 2, "ab"},
          CopyCase{"ab", "cd", 3, "abc"}, CopyCase{"abc", "d", 3, "abc"},
          CopyCase{"", "a" + euro, 3, "a"}, CopyCase{"", "a" + euro, 4, "a" + euro},
          CopyCase{euro, euro + "b", 5, euro}, CopyCase{"", "\xE2\x82z", 2, "\xE2\x82"},
          CopyCase{"", "\xE9\xE9", 1, "\xE9"}, CopyCase{"", "abc", 0, ""}}) {
        const auto size = static_cast<std::size_t>(singleCase.limit) + 1;
        const auto out = std::make_unique<char[]>(size);
        utStrNCpy(out.get(), singleCase.present, singleCase.limit);
        AppendText(out.get(), singleCase.added, singleCase.limit);
        EXPECT_EQ(out.get(), singleCase.expected) << singleCase.added;
    }
    std::string overfull = "abcdef";
    AppendText(overfull.data(), "g", 3);
    AppendText(overfull.data(), "g", -1);
    EXPECT_EQ(overfull, "abcdef");
}

TEST(DemanglerTest, HostileNamesTakeLinearTime) {
    constexpr std::size_t sMany = 1U << 20U;
    for (const std::string_view piece :
         {"__", "_", "__vtbl", "__$", "__3", "__1024", "9", "__Q9_", "__N_3_", "__t_", "__b_",
          "::", "a.::", "_ZN", "1a", "L"}) {
        const std::string name = "a" + Repeated(piece, sMany / piece.size());
        Demangle(name);
        Demangle("_ZN" + name, Itanium());
        Demangle("x__3Foo" + name);
    }
    const std::string zeros(sMany, '0');
    EXPECT_EQ(Demangle("f__Q1_" + zeros + "3Foo"), Demangled("Foo::f"));
    EXPECT_EQ(Demangle("f__N_" + zeros + "3_Foo"), Demangled("Foo::f"));
    EXPECT_EQ(Demangle("_ZN" + zeros + "3Foo", Itanium()), Demangled("Foo"));
}

/// Names that look enough like mangled ones to reach every corner of the parsers.
class RandomNames {
public:
    std::string NextName() {
        std::string name = Pick(60) < 20 ? "_ZN" : "";
        for (std::size_t count = Pick(40); count > 0; --count) {
            name += NextPiece();
        }
        return name;
    }

    VDemanglingOptions NextOptions() {
        VDemanglingOptions options;
        options.mScopeSeparator = Pick(4) == 0 ? "" : "::";
        options.mIsTaskingProducer = Pick(4) == 0;
        options.mReplaceDot = Pick(2) == 0;
        options.mReplaceAngleBrackets = Pick(2) == 0;
        options.mStripUnderscore = Pick(2) == 0;
        return options;
    }

    std::size_t Pick(std::size_t below) { return mGenerator() % below; }

private:
    std::string NextPiece() {
        static const std::vector<std::string> sPieces = {"__",   "__Q",    "__Q2_", "__N_",
                                                         "__t_", "__b_",   "__3",   "__12",
                                                         "__$",  "__vtbl", "tm__",  "Q1"};
        static constexpr std::string_view sCharacters =
            "_QNtbvC0123456789$:.<>-ZSTKL[]\x80\xC3\xE2\xFF";
        return Pick(3) == 0 ? sPieces[Pick(sPieces.size())]
                            : std::string(1, sCharacters[Pick(sCharacters.size())]);
    }

    // A fixed seed, so that a failure comes again.
    std::mt19937 mGenerator{20240611};
};

TEST(DemanglerTest, RandomNamesKeepTheContract) {
    constexpr int sRuns = 100000;
    RandomNames random;
    for (int run = 0; run < sRuns; ++run) {
        const std::string name = random.NextName();
        const VDemanglingOptions options = random.NextOptions();
        const Answer whole = Demangle(name, options);
        ASSERT_TRUE(whole.result || !whole.demangled) << name;
        ASSERT_EQ(Demangle(name + '\0' + "__3Foo-", options), whole) << name;
        const int outSize = static_cast<int>(random.Pick(24));
        const Answer cut = Demangle(name, options, outSize);
        ASSERT_EQ(cut.result, whole.result) << name;
        ASSERT_EQ(cut.demangled, whole.demangled) << name;
        if (options.mIsTaskingProducer) {
            continue;
        }
        ASSERT_EQ(cut.text, whole.text.substr(0, static_cast<std::size_t>(outSize))) << name;
        const std::string allowed = "_QNtbvCmlZSTKL0123456789[]:"s +
                                    (options.mReplaceDot ? "" : ".") +
                                    (options.mReplaceAngleBrackets ? "" : "<>");
        ASSERT_EQ(whole.text.find_first_not_of(allowed), std::string::npos) << name;
        ASSERT_TRUE(!whole.result || whole.demangled || name.find("::") != std::string::npos ||
                    whole.text != name);
    }
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
