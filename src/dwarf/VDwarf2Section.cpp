#include "dwarf/VDwarf2Section.h"

#include "container/VElfFile.h"
#include "core/CutText.h"
#include "core/ErrorState.h"
#include "diagnostics/ElfLog.h"
#include "dwarf/VAbrSectionBuffer.h"
#include "dwarf/VCompileUnitReader.h"
#include "dwarf/VLocTabBuffer.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::int32_t sPrimes[] = {
    12347,    15511,    55001,    110017,   210019,   310081,   400051,   500041,
    800011,   1200007,  1400017,  1600033,  1800017,  2000003,  2500009,  3000017,
    4000037,  5000011,  6000011,  7000003,  8000009,  9000011,  10000019, 11000027,
    12000017, 13000027, 14000029, 15000017, 16000057, 17000023, 18000041, 19000013,
};

constexpr std::uint64_t sSectionBytesPerBucket = 75;

/// Value of an option that is to be decided by the first producer text.
constexpr std::int32_t sAutodetect = 2;

/// Longer texts may have this many characters for each byte of the file.
constexpr std::uint64_t sLongTextPerByte = 16;

/// True if one of the terminated texts is longer than `kOrdinaryTextLength`. Looks at a few bytes
/// of each block, since a text of that length fills one.
bool HasLongText(std::string_view texts) {
    constexpr std::size_t block = (kOrdinaryTextLength + 1) / 2;
    for (std::size_t start = 0; start + block <= texts.size(); start += block) {
        if (std::memchr(texts.data() + start, 0, block) != nullptr) {
            continue;
        }
        const std::size_t before = texts.rfind('\0', start);
        const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
        if (std::min(texts.find('\0', start), texts.size()) - begin > kOrdinaryTextLength) {
            return true;
        }
    }
    return false;
}

} // namespace

std::uint32_t recCnt = 0;

VDwarf2Section::VDwarf2Section() = default;
VDwarf2Section::~VDwarf2Section() = default;

bool VDwarf2Section::Init(VElfFile& file, VDWARFReaderWrapper* reader) {
    mElfFile = &file;
    mReader = reader;
    mLongTextBudget =
        sLongTextPerByte * static_cast<std::uint64_t>(std::max<std::int64_t>(file.mFileSize, 0));
    const Elf64_Shdr& debugStr = file.mSecDebugStr;
    if (debugStr.sh_offset != 0 && debugStr.sh_size != 0 &&
        !LoadWholeSection(mDebugStrCache, debugStr)) {
        return false;
    }
    if (mDebugStrCache != nullptr) {
        mDebugStr = mDebugStrCache->GetBytes();
        mHasLongTexts = HasLongText(mDebugStr);
    }
    recCnt = 0;
    const std::uint64_t entriesAtMost =
        std::min(file.mSecDebugInfo.sh_size, static_cast<std::uint64_t>(file.mFileSize));
    mDieNodes.Reserve(
        std::min(static_cast<std::uint64_t>(EstimateBestHashMapBucketsCountFromDebugSectionSize()),
                 entriesAtMost));
    mLocTabBuffer.reset(new (std::nothrow) VLocTabBuffer(file, file.mSecDebugLoc));
    mAbrSectionBuffer.reset(new (std::nothrow) VAbrSectionBuffer(file, file.mSecDebugAbbrev));
    if (!mLocTabBuffer || !mAbrSectionBuffer) {
        return Fail(ELFReadErrorEnum::ELFERR_NO_MEMORY);
    }
    // A section that can't be read leaves its lists unresolved.
    if (!mLocTabBuffer->Load() && IsOutOfMemory()) {
        return false;
    }
    return mAbrSectionBuffer->Load();
}

bool VDwarf2Section::LoadWholeSection(VElfFileCachePtr& cache, const Elf64_Shdr& section) const {
    constexpr std::uint64_t maximum = std::numeric_limits<std::int32_t>::max();
    if (section.sh_offset > maximum) {
        return Fail(ELFReadErrorEnum::ELFERR_SEEK_FAILED);
    }
    if (section.sh_size > maximum) {
        return Fail(ELFReadErrorEnum::ELFERR_READ_FAILED);
    }
    const auto size = static_cast<std::int32_t>(section.sh_size);
    cache.reset(new VElfFileCache(*mElfFile, size));
    return cache->LoadRange(static_cast<std::int32_t>(section.sh_offset), size,
                            mElfFile->mIsDsPicTarget);
}

std::int32_t VDwarf2Section::EstimateBestHashMapBucketsCountFromDebugSectionSize() const {
    const auto wanted =
        static_cast<std::int32_t>(mElfFile->mSecDebugInfo.sh_size / sSectionBytesPerBucket);
    const auto* const prime = std::ranges::upper_bound(sPrimes, wanted);
    return prime != std::end(sPrimes) ? *prime : *std::prev(std::end(sPrimes));
}

std::uint32_t VDwarf2Section::UnitToSectionOffset(const VCompileUnitHeader& unit,
                                                  std::uint32_t unitOffset) const {
    return unitOffset +
           (unit.mFilePos - static_cast<std::uint32_t>(mElfFile->mSecDebugInfo.sh_offset));
}

std::uint32_t VDwarf2Section::SectionToUnitOffset(const VCompileUnitHeader& unit,
                                                  std::uint32_t sectionOffset) const {
    return sectionOffset +
           (static_cast<std::uint32_t>(mElfFile->mSecDebugInfo.sh_offset) - unit.mFilePos);
}

void VDwarf2Section::AutodetectProducerOptions(std::string_view producer,
                                               VCompileUnitReader* reader) {
    if (!mAutodetectPending) {
        return;
    }
    mAutodetectPending = false;
    const std::string text(producer);
    if (VElfOptions::mFixReferencesWithFileRelativeOffset == sAutodetect) {
        AutodetectFileRelativeReferences(text);
    }
    if (VElfOptions::mHandle_DW_FORM_REF_ADDR_AS_DW3 == sAutodetect && reader != nullptr) {
        AutodetectReferenceWidth(text, reader->mHeader);
    }
}

void VDwarf2Section::AutodetectFileRelativeReferences(const std::string& producer) {
    const bool isKnown = producer == "ICCRL78";
    VElfOptions::mFixReferencesWithFileRelativeOffset = isKnown ? 1 : 0;
    if (isKnown) {
        elflog("Autodetect: Activating option mFixReferencesWithFileRelativeOffset base on compile "
               "unit producer: %s",
               producer.c_str());
    }
}

void VDwarf2Section::AutodetectReferenceWidth(const std::string& producer,
                                              const VCompileUnitHeader& unit) {
    if (unit.mDwarfVersion != 2 || unit.mTargetAddressSize != 8) {
        return;
    }
    const bool isKnown = producer.find("GHS C++ 2018.1.4") != std::string::npos ||
                         producer.find("GHS C 2018.1.4") != std::string::npos;
    VElfOptions::mHandle_DW_FORM_REF_ADDR_AS_DW3 = isKnown ? 1 : 0;
    if (isKnown) {
        elflog("Autodetect GHS 2018.1.4 compiler: The attribute DW_FORM_REF_ADDR will be handled "
               "according DWARF3 specification : %s",
               producer.c_str());
    }
}

const char* VDwarf2Section::KeepText(const char* text, std::size_t limit) {
    return IsInDebugStr(text) ? text : mArena.KeepText(CutText(text, limit));
}

std::string_view VDwarf2Section::KeepText(std::string_view text) {
    return IsInDebugStr(text.data()) ? text : std::string_view(mArena.KeepText(text), text.size());
}

VKeptText VDwarf2Section::MeasureLater(const char* text) {
    if (text == nullptr) {
        return {.mDefined = true};
    }
    if (!mHasLongTexts && IsInDebugStr(text)) {
        return {text, VKeptText::kUnmeasured, true};
    }
    const std::string_view measured = MeasureText(text);
    return {measured.data(), static_cast<std::uint32_t>(measured.size()), true};
}

VKeptText VDwarf2Section::KeepText(const VKeptText& text) {
    if (text.mLength == VKeptText::kUnmeasured || !text.mDefined) {
        return text;
    }
    const std::string_view kept = KeepText(std::string_view(text.mStart, text.mLength));
    return {kept.data(), text.mLength, true};
}

std::string_view VDwarf2Section::MeasureText(const char* text) {
    const std::string_view ordinary = CutText(text, kOrdinaryTextLength);
    if (ordinary.size() < kOrdinaryTextLength || mLongTextBudget == 0) {
        return ordinary;
    }
    // Every entry may name the same text, and measuring it costs its length each time.
    const std::string_view whole = CutText(text, kOrdinaryTextLength + mLongTextBudget);
    mLongTextBudget -= whole.size() - kOrdinaryTextLength;
    return whole;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
