#include "dwarf/VDwarf2Section.h"

#include "container/VElfFile.h"
#include "diagnostics/ElfLog.h"
#include "diagnostics/ErrorState.h"
#include "dwarf/VAbrSectionBuffer.h"
#include "dwarf/VCompileUnitReader.h"
#include "dwarf/VLocTabBuffer.h"
#include "dwarf/VLocationLists.h"
#include "dwarf/VUnitTables.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <new>
#include <utility>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::int32_t sPrimes[] = {
    12347,    15511,    55001,    110017,   210019,   310081,   400051,   500041,
    800011,   1200007,  1400017,  1600033,  1800017,  2000003,  2500009,  3000017,
    4000037,  5000011,  6000011,  7000003,  8000009,  9000011,  10000019, 11000027,
    12000017, 13000027, 14000029, 15000017, 16000057, 17000023, 18000041, 19000013,
};

constexpr std::uint64_t sSectionBytesPerBucket = 75;

/// Room is reserved for this many entries per bucket. Unused room costs only address space.
constexpr std::uint64_t sEntriesPerBucket = 10;

/// Value of an option that the first producer text decides.
constexpr std::int32_t sAutodetect = 2;

Linkage LinkageOf(const VElfFile& file) {
    if (!file.IsUnlinked()) {
        return Linkage::Linked;
    }
    return file.mSecRelaDebugInfo.IsPresent() ? Linkage::NothingInPlace : Linkage::OffsetsInPlace;
}

} // namespace

std::uint32_t recCnt = 0;
std::int32_t gOptExt = 0;

VDwarf2Section::VDwarf2Section() = default;
VDwarf2Section::~VDwarf2Section() = default;

bool VDwarf2Section::Init(VElfFile& file, VDWARFReaderWrapper* reader) {
    mElfFile = &file;
    mReader = reader;
    gOptExt = VElfOptions::mUseCppExtensionDWARF2;
    mLinkage = LinkageOf(file);
    mForms = &DieForms::Of(file.mManner, mLinkage);
    const Elf64_Shdr& debugStr = file.mSecDebugStr;
    VElfFileCachePtr texts;
    if (debugStr.sh_offset != 0 && debugStr.sh_size != 0 && !LoadWholeSection(texts, debugStr)) {
        return false;
    }
    mTexts.Take(std::move(texts), file.mFileSize);
    recCnt = 0;
    const std::uint64_t entriesAtMost =
        std::min(file.mSecDebugInfo.sh_size, static_cast<std::uint64_t>(file.mFileSize));
    mDieNodes.Reserve(std::min(
        sEntriesPerBucket *
            static_cast<std::uint64_t>(EstimateBestHashMapBucketsCountFromDebugSectionSize()),
        entriesAtMost));
    mLocTabBuffer.reset(new (std::nothrow) VLocTabBuffer(file, file.mSecDebugLoc));
    mAbrSectionBuffer.reset(new (std::nothrow)
                                VAbrSectionBuffer(file, file.mSecDebugAbbrev, *mForms));
    if (!mLocTabBuffer || !mAbrSectionBuffer) {
        return Fail(ELFReadErrorEnum::ELFERR_NO_MEMORY);
    }
    // If the section can't be read, its lists stay unresolved.
    if (!mLocTabBuffer->Load() && IsOutOfMemory()) {
        return false;
    }
    return mAbrSectionBuffer->Load() &&
           (file.mManner == ReadingManner::Classic || LoadUnitTables(file));
}

bool VDwarf2Section::LoadUnitTables(VElfFile& file) {
    mUnitTables.reset(new (std::nothrow) VUnitTables(file));
    if (!mUnitTables) {
        return Fail(ELFReadErrorEnum::ELFERR_NO_MEMORY);
    }
    mLocationLists.reset(new (std::nothrow) VLocationLists(file, *mUnitTables));
    if (!mLocationLists) {
        return Fail(ELFReadErrorEnum::ELFERR_NO_MEMORY);
    }
    return mUnitTables->Load(file) && mLocationLists->Load(file);
}

std::uint32_t VDwarf2Section::FindTypeOfSignature(std::uint64_t signature) const {
    const auto found = mTypeOffsets.find(signature);
    return found != mTypeOffsets.end() ? found->second : 0;
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

} // namespace Tessel::Norn::Brindle::Reader::DWARF
