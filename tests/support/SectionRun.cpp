#include "support/SectionRun.h"

#include "diagnostics/ElfLog.h"
#include "dwarf/codes/DwarfNames.h"
#include "nodes/VDebugInfoNode.h"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>

namespace Tessel::Norn::Brindle::Tests {

using namespace Reader::DWARF;

namespace {

/// A time stamp of the log, digits written as "d".
constexpr std::string_view sTimeStamp = "dddd/dd/dd dd:dd:dd ";

bool BeginsWithTimeStamp(std::string_view text) {
    return text.size() >= sTimeStamp.size() &&
           std::equal(sTimeStamp.begin(), sTimeStamp.end(), text.begin(),
                      [](char pattern, char character) {
                          return pattern == 'd'
                                     ? std::isdigit(static_cast<unsigned char>(character)) != 0
                                     : pattern == character;
                      });
}

} // namespace

SectionRun::SectionRun(const ElfImage& image)
    : mPath(mFolder.Write("image.elf", image.Build()))
    , mFile(mPath, nullptr) {
    if (VElfOptions::mIsLogFile != 0) {
        CreateLogFile(mPath);
    }
    EXPECT_TRUE(mFile.ReadElfHeader() && mFile.LoadSectionInfos());
}

SectionRun::~SectionRun() {
    CloseLogFile();
}

bool SectionRun::Read() {
    mSection.KeepAllEntries();
    return ReadWithoutCode();
}

bool SectionRun::ReadWithoutCode() {
    testing::internal::CaptureStdout();
    const bool result = Init() && mSection.MapCompileUnits() && mSection.ProcessCompileUnits();
    testing::internal::GetCapturedStdout();
    return result;
}

const VDebugInfoNode& SectionRun::At(std::uint32_t sectionOffset) const {
    const VDebugInfoNode* node = mSection.mDieNodes.Find(sectionOffset);
    EXPECT_NE(node, nullptr) << "no entry at " << sectionOffset;
    static const VDebugInfoNode sNone(0, 0, nullptr, nullptr);
    return node != nullptr ? *node : sNone;
}

std::vector<std::string> SectionRun::Outline() const {
    constexpr std::size_t prefixLength = std::string_view("DW_TAG_").size();
    std::vector<std::string> outline;
    for (const VDebugInfoNode* node : mSection.mDieNodes.InOffsetOrder()) {
        outline.push_back(std::to_string(node->GetDepth()) + ":" +
                          std::string(GetDwarfTagName(node->GetTag())).substr(prefixLength) + " " +
                          std::string(node->GetName()));
    }
    return outline;
}

std::vector<std::string> SectionRun::Units() const {
    std::vector<std::string> units;
    for (const VCompileUnitHeader* unit : mSection.mCompileUnits) {
        units.push_back(std::to_string(unit->mFilePos - mFile.mSecDebugInfo.sh_offset) + "+" +
                        std::to_string(unit->mLength));
    }
    return units;
}

std::string SectionRun::Log() const {
    VElfOptions::mLogFile.flush();
    const std::string raw = mFolder.Read("image.log");
    std::string log;
    for (std::string_view rest = raw; !rest.empty();) {
        const bool isTimeStamp = BeginsWithTimeStamp(rest);
        log += isTimeStamp ? '@' : rest.front();
        rest.remove_prefix(isTimeStamp ? sTimeStamp.size() : 1);
    }
    return log;
}

} // namespace Tessel::Norn::Brindle::Tests
