#include "diagnostics/ErrorState.h"

#include "core/HostText.h"
#include "core/ModuleInfo.h"
#include "core/OptionTable.h"
#include "core/VElfOptions.h"
#include "core/VElfResourceManager.h"
#include "core/VString.h"
#include "support/ScopedReaderState.h"

#include <gtest/gtest.h>
#include <string>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

std::string TextOf(std::int32_t code) {
    return VElfResourceManager::Instance().GetText(static_cast<ELFReadErrorEnum>(code));
}

/// FNV-1a: the same everywhere, unlike `std::hash`.
std::uint64_t HashOf(std::string_view text) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char character : text) {
        hash = (hash ^ static_cast<std::uint8_t>(character)) * 0x100000001B3;
    }
    return hash;
}

// Hosts show and compare these texts: an intended change of a text changes this number as well.
TEST(ErrorStateTest, AllTextsOfTheCatalogueStayAsTheyAre) {
    const ScopedReaderState state;
    std::string texts;
    for (const std::int32_t language : {1, 49}) {
        VElfResourceManager::Instance().SetLanguage(language);
        for (std::int32_t code = 0; code <= 25; ++code) {
            texts += TextOf(code) + '\n';
        }
    }
    EXPECT_EQ(HashOf(texts), 0xBABDED539EF9B715) << texts;
}

TEST(ErrorStateTest, LanguageChoosesTheText) {
    const ScopedReaderState state;
    VElfResourceManager::Instance().SetLanguage(49);
    EXPECT_EQ(TextOf(3), "Fehler beim Öffnen der ELF-Datei.");
    EXPECT_EQ(TextOf(26), "DWARF-Reader: No error message available for ID: 26 (Language-ID: 49)");
    VElfResourceManager::Instance().SetLanguage(7);
    EXPECT_EQ(TextOf(3), "ELF file Open has failed.");
    EXPECT_EQ(TextOf(-1), "DWARF-Reader: No error message available for ID: -1 (Language-ID: 7)");
}

TEST(ErrorStateTest, LastErrorWins) {
    const ScopedReaderState state;
    std::string text;
    ReportElfError(text);
    EXPECT_EQ(text, "Unknown error in DWARF-Reader");
    SetErrorState(ELFReadErrorEnum::ELFERR_NOT_ELF);
    SetErrorState(ELFReadErrorEnum::ELFERR_DWARF1);
    ReportElfError(text);
    EXPECT_EQ(text, TextOf(25));
}

TEST(HostTextTest, PassesUtf8ThroughAndReadsTheRestAsWindows1252) {
    struct Case {
        std::string narrow;
        std::string host;
    };
    const Case cases[] = {
        {"plain", "plain"},
        {"Größe €", "Größe €"},
        {"\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"},
        {"Gr\xF6\xDF"
         "e",
         "Größe"},
        {"\x80\x99\x81", "€™\xC2\x81"},
        // A surrogate, an overlong form, a value above U+10FFFF, a cut sequence.
        {"\xED\xA0\x80", "í\xC2\xA0€"},
        {"\xC0\x80", "À€"},
        {"\xF4\x90\x80\x80", "ô\xC2\x90€€"},
        {"\xC3", "Ã"},
        {"Größe\xFF", "GrÃ¶ÃŸeÿ"},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(ToHostText(each.narrow), each.host);
    }
}

TEST(VStringTest, TreatsNullAndZeroAsEmpty) {
    const char* none = nullptr;
    VString text(none);
    EXPECT_TRUE(text.is_null());
    text = "Aß9z";
    text.make_upper();
    EXPECT_EQ(text, "Aß9Z");
    EXPECT_TRUE(text.contains('9'));
    EXPECT_FALSE(text.contains('x'));
    text.make_lower();
    EXPECT_EQ(VString(text, 4, 9), "z");
    text = 'c';
    EXPECT_EQ(text, "c");
    text = '\0';
    EXPECT_TRUE(text.is_null());
    text = none;
    EXPECT_TRUE(text.is_null());
}

TEST(OptionTableTest, SetsOptionsFromText) {
    const ScopedReaderState state;
    const auto assign = [](std::string_view name, std::string_view text) {
        const OptionDescription* option = FindOption(name);
        return option != nullptr && AssignOption(*option, text);
    };
    EXPECT_TRUE(assign("mForceDebugSectionVersion", "-1"));
    EXPECT_EQ(VElfOptions::mForceDebugSectionVersion, -1);
    EXPECT_TRUE(assign("mElfFileReadBufferSize", "0x1000"));
    EXPECT_EQ(VElfOptions::mElfFileReadBufferSize, 4096);
    EXPECT_TRUE(assign("mModuleOffset", "0xFFFFFFFFFFFFFFFF"));
    EXPECT_EQ(ModuleInfo::GetModuleOffset(), 0xFFFF'FFFF'FFFF'FFFFU);
    EXPECT_FALSE(assign("mModuleOffset", "0x10000000000000000"));
    EXPECT_TRUE(assign("mLogAutoFlush", "true"));
    EXPECT_TRUE(VElfOptions::mLogAutoFlush);
    EXPECT_TRUE(assign("mDemanglingOptions.mScopeSeparator", "."));
    EXPECT_EQ(VElfOptions::mDemanglingOptions.mScopeSeparator, ".");

    for (const char* wrong : {"", "x", "1x", "2147483648", "-2147483649", "- 1", "0x", "1.5"}) {
        EXPECT_FALSE(assign("mElfFileReadBufferSize", wrong)) << wrong;
    }
    EXPECT_EQ(VElfOptions::mElfFileReadBufferSize, 4096);
    EXPECT_FALSE(assign("mModuleOffset", "-1"));
    EXPECT_FALSE(assign("mLogAutoFlush", "2"));
    EXPECT_EQ(FindOption("mlogautoflush"), nullptr);
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
