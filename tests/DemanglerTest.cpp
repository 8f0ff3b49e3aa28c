#include "demangle/Demangler.h"

#include "demangle/NameText.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <random>
#include <sstream>
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

/// The result of one call.
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

/// Each word of the cases is a name and its result: after "=" the demangled name, after "~" a name
/// that is only cleaned. A name without either is unreadable.
void ExpectAnswers(const std::string& cases, const VDemanglingOptions& options = {}) {
    std::istringstream words(cases);
    for (std::string word; words >> word;) {
        const std::size_t end = std::min(word.find_first_of("=~"), word.size());
        const std::string text = word.substr(std::min(end + 1, word.size()));
        const Answer expected = end == word.size() ? Unreadable()
                                : word[end] == '=' ? Demangled(text)
                                                   : Cleaned(text);
        EXPECT_EQ(Demangle(word.substr(0, end), options), expected) << word;
    }
}

VDemanglingOptions Itanium() {
    VDemanglingOptions options;
    options.mIsTaskingProducer = true;
    return options;
}

/// A piece of text, repeated `count` times.
std::string Repeated(std::string_view piece, std::size_t count) {
    std::string text;
    for (std::size_t index = 0; index < count; ++index) {
        text += piece;
    }
    return text;
}

TEST(DemanglerTest, OrdinaryNamesAreLeftAlone) {
    ExpectAnswers("value _value_1 a[3].b<int> value__ __ _ZN3Foo3barEv");
    EXPECT_EQ(Demangle(""), Unreadable());
}

TEST(DemanglerTest, ForbiddenCharactersBecomeUnderscores) {
    ExpectAnswers("a-b~a_b a:b~a_b value:~value_ a::b~a::b ::b~_b a.::b~a._b a:::b~a::_b "
                  "value-__~value___ gr\xC3\xB6\xDF"
                  "e$~gr___e_");
}

TEST(DemanglerTest, OptionsChooseWhatIsReplaced) {
    ExpectAnswers("a.b<c>~a_b<c> a.::b~a_::b", {.mReplaceDot = true});
    ExpectAnswers("a.b<c>~a.b_c_", {.mReplaceAngleBrackets = true});
}

TEST(DemanglerTest, ClassNamesComeBeforeTheBaseName) {
    ExpectAnswers("value__3Foo=Foo::value f__3FooFv=FooFv::f f__3FooF-v=FooF_v::f f__03Foo=Foo::f "
                  "__3Foo=Foo:: f__3Foo__4Next=Foo::Next::f f__9Foo__3Bar=Foo::Bar::f "
                  "f__3F-o=F_o::f");
}

TEST(DemanglerTest, LengthsThatDoNotFitLeaveTheName) {
    const std::string longest(1024, 'x');
    ExpectAnswers("f__6Foo f__0Foo f__00003Foo f__6Fo-~f__6Fo_ f__3Foo__9Bar "
                  "f__99999999999999999999x f__1 f-__1~f___1 f__1025" +
                  longest + "x f__1024" + longest + "=" + longest + "::f");
    // Compared from the first digit on.
    ExpectAnswers("f__4Foo=Foo::f");
}

TEST(DemanglerTest, QualifiedListsGiveOneNameEach) {
    ExpectAnswers("f__Q2_3Foo4Bar=Foo::Bar::f value__Q2_5Outer5Inner=Outer::Inner::value "
                  "value__Q2B5Outer5Inner=Outer::Inner::value "
                  "value__Q25Outer5Inner=Outer::Inner::value f__Q1_3FooFv=Foo::f "
                  "f__Q3_3Foo=Foo::f f__Q0_3Foo f__Q2 f__Q2_=f f__Q2_3Foox f__QA_3Foo");
}

TEST(DemanglerTest, QualifiedListMayStandInPlaceOfAName) {
    ExpectAnswers("f__11Q2_3abc3def=abc::def::f f__b_Q2_3abc3def=abc::def::f__b "
                  "f__6Q1_3abctail=abctail::f f__2Qx=Qx::f f__3Q1=Q1::f f__5Q0abc");
}

TEST(DemanglerTest, NumberedNameDropsWhatFollows) {
    ExpectAnswers("name__N_3_abcrest=abc::name name__N_3_a__4b=a__::name name__N_3abcrest "
                  "name__N3_abcrest name__N_ name__N_9_abcrest=abcrest::name name__N_11_abcrest "
                  "f__8a__N_2_bcdef=a::bcdef::f");
}

TEST(DemanglerTest, TemplatePartsStayText) {
    ExpectAnswers("x__t_y=__t_y::x x__tm__2i-=__tm__2i_::x x__tm_ x__t2y "
                  "x__3Foo__t_y__3Bar=Foo__t_y__3Bar::x x__8Foo__t_y__3Bar=Foo__t_y::Bar::x");
}

TEST(DemanglerTest, RemainingDecorations) {
    ExpectAnswers("__vtbl__3Foo=Foo::__vtbl __vtb f__b_xyz=xyz::f__b f__bxyz foo__$bar=foobar "
                  "foo__$=foo foo__$bar__3Foo=Foo::foobar foo__$bar__C~foo___bar__C f__Cx f___3Foo "
                  "f__ps__x f-g__ps__x~f_g__ps__x f__3Foo__ps__x-~f__3Foo__ps__x_ "
                  "f__$g-__ps__x~f___g___ps__x");
}

TEST(DemanglerTest, SeparatorIsFreeText) {
    ExpectAnswers("a::b~ab f__Q2_1a1b=abf", {.mScopeSeparator = ""});
    ExpectAnswers("a::b~a->b f__Q2_1a1b=a->b->f", {.mScopeSeparator = "->"});
}

TEST(DemanglerTest, StripsOneUnderscoreOfTheBaseName) {
    ExpectAnswers("_value__3Foo=Foo::value __vtbl__4_Foo=_Foo::_vtbl ___3Foo _value _a-b~_a_b",
                  {.mStripUnderscore = true});
}

TEST(DemanglerTest, ItaniumNamesGiveTheirComponents) {
    ExpectAnswers("_ZN3Foo3barEv=Foo::bar _ZNK3Foo3barEv=Foo::bar _ZNVK3Foo3barEv=Foo::bar "
                  "_ZNKVK3FooE _ZNKE _ZNK _ZTV3Foo=Foo _ZTVN3Foo3BarE=Foo::Bar "
                  "_ZTVSt9type_info=type_info _ZTVNSt3Foo3BarE=Foo::Bar _ZTV __N3Foo3bar=Foo::bar "
                  "_Z3foov _ZN aZN3Foo value__3Foo",
                  Itanium());
    EXPECT_EQ(Demangle("", Itanium()), Unreadable());
}

TEST(DemanglerTest, ItaniumComponentsEndAtTheFirstThatIsNoLength) {
    ExpectAnswers("_ZN3FooIiE3barEv=Foo _ZNL3FooL3barEv=Foo::bar _ZNLL3FooE _ZN3Foo9barE=Foo "
                  "_ZN3Foo4bar=Foo::bar _ZN3Foo1=Foo _ZN3Foo0E=Foo "
                  "_ZN15_INTERNAL_1_abc3FooE=Foo _ZN3Foo9_INTERNALE=Foo _ZN9_INTERNALE "
                  "_ZN8_INTERNAL3FooE=_INTERNA::Foo _ZN1025" +
                      std::string(1100, 'x'),
                  Itanium());
}

TEST(DemanglerTest, ItaniumStripsOneUnderscoreOfTheFirstComponent) {
    VDemanglingOptions options = Itanium();
    options.mStripUnderscore = true;
    options.mScopeSeparator = ".";
    ExpectAnswers("_ZN5__Foo4_barEv=_Foo._bar _ZN1_3barEv _ZN9_INTERNAL4_FooE=Foo", options);
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
    ExpectAnswers("f__Q1_5a__4bcd f__Q2_5Outer5Inne=Outer::Inne::f f__Q1_10abc__5efg=abc::efg::f "
                  "f__Q1_10abc__6efg f__6ab__2c__3Foo=ab::c::Foo::f f__4ab__3Foo");
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

/// Names that are similar enough to mangled ones to reach every corner of the parsers.
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

    // A fixed seed, so that failures can be reproduced.
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
