// The first walk over `.debug_info` and `.debug_types`: from unit header to unit header, with the
// search for the next sound header where one is implausible; and the loading of one unit.
//
// Each header has the length of its unit, and the next unit follows:
//
//     0x00  length 0x6b, version 4, abbreviations 0x00, address size 4     unit 0
//     0x6f  length 0x52, version 4, abbreviations 0x3a, address size 4     unit 1
//     0xc5  three bytes of 0, since the linker aligns units
//     0xc8  length 0x40, version 4, abbreviations 0x71, address size 4     unit 2
//
// The bytes at 0xc5 are implausible as a header. So the candidate slides on byte by byte, as far as
// the section's alignment allows. If that finds nothing, the section is damaged, and the option
// `mTryReadCorruptedCompileUnits` decides: either the read fails, or the search goes back from 0xc5
// by up to 39 bytes, in case the length of unit 1 is too large, and then as far forward. A header
// that the search accepts must be sound in every field. If it finds none, the units so far are read
// and the rest is given up.
#include "container/VElfFile.h"
#include "diagnostics/ElfLog.h"
#include "diagnostics/ErrorState.h"
#include "dwarf/VAbrSectionBuffer.h"
#include "dwarf/VCompileUnitReader.h"
#include "dwarf/VDwarf2Section.h"

#include <algorithm>
#include <cinttypes>
#include <limits>
#include <new>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::uint32_t sMaximumAlignment = 32;
constexpr std::int32_t sLowestReadVersion = 2;

constexpr std::int32_t HighestReadVersion(ReadingManner manner) {
    return manner == ReadingManner::Full ? 5 : 4;
}

/// Steps of the search: backwards before the first number, then forwards up to the second.
constexpr int sFirstForwardRetry = 40;
constexpr int sLastRetry = 80;

constexpr std::int64_t sMaximumPosition = std::numeric_limits<std::int32_t>::max();

/// Where the walk goes. Positions are file positions.
struct UnitRange {
    UnitSection section = UnitSection::DebugInfo;
    std::int64_t start = 0;
    std::int64_t end = 0;
    /// Section offset of the start.
    std::uint32_t startOffset = 0;
};

/// The walk and the state of its search. Positions are file positions.
class CompileUnitMapper {
public:
    CompileUnitMapper(VDwarf2Section& section, std::int64_t slideLimit, const UnitRange& range)
        : mSection(section)
        , mFormat(UnitHeaderFormat::Of(section.mElfFile->mManner))
        , mBuffer(*section.mElfFile, VElfOptions::mElfFileReadBufferSize, section.mDebugInfoCache)
        , mSlideLimit(slideLimit)
        , mRange(range)
        , mPosition(range.start)
        , mEnd(range.end)
        , mPreviousStart(range.start - 1) {}

    MappingOutcome Run() {
        while (mPosition < mEnd) {
            const Step step = MapUnit();
            if (step != Step::Accepted) {
                return step == Step::GaveUp ? MappingOutcome::GaveUp : MappingOutcome::Failed;
            }
        }
        return MappingOutcome::Mapped;
    }

private:
    enum class Step { Candidate, NextCandidate, Accepted, GaveUp, Failed };

    /// Tries candidates until one is accepted.
    Step MapUnit() {
        mPad = -1;
        mRetry = 0;
        Step step = Step::NextCandidate;
        while (step == Step::NextCandidate) {
            step = MoveToCandidate();
            if (step == Step::Candidate) {
                step = TryCandidate(mPosition + mPad);
            }
        }
        return step;
    }

    Step MoveToCandidate() {
        if (mRetry == 0) {
            ++mPad;
            if (mPad <= mSlideLimit) {
                return Step::Candidate;
            }
            if (VElfOptions::mTryReadCorruptedCompileUnits == 0) {
                elflog("Error: Compile unit size is overflowing section size.");
                SetErrorState(ELFReadErrorEnum::ELFERR_COMPILE_UNIT_SIZE);
                return Step::Failed;
            }
            mRetry = 1;
            mRetryBase = mPosition;
        }
        if (mRetry < sFirstForwardRetry) {
            if (mPosition > mPreviousStart + 1) {
                --mPosition;
                ++mRetry;
                return Step::Candidate;
            }
            mRetry = sFirstForwardRetry;
            elflog("Retry offset %" PRId64 " reached previous compile unit %" PRId64
                   ", now search forward.",
                   mPosition, mPreviousStart + 1);
        }
        return MoveForward();
    }

    Step MoveForward() {
        if (mRetry > sLastRetry) {
            SetErrorState(ELFReadErrorEnum::ELFERR_COMPILE_UNIT_SIZE);
            elflog(">>>>Compile unit with invalid size is found. We can't process following "
                   "compile units! [Elf reader doesn't report error because the option "
                   "ELF_TRY_READ_CORRUPTED_COMPILE_UNITS is set.]");
            return Step::GaveUp;
        }
        mPosition = mRetry == sFirstForwardRetry ? mRetryBase + 1 : mPosition + 1;
        ++mRetry;
        return Step::Candidate;
    }

    Step TryCandidate(std::int64_t start) {
        if (start > sMaximumPosition) {
            SetErrorState(ELFReadErrorEnum::ELFERR_SEEK_FAILED);
            return Step::Failed;
        }
        VCompileUnitHeader unit;
        unit.mFilePos = static_cast<std::uint32_t>(start);
        const std::uint32_t firstBytes =
            mBuffer.ReadULongAtFilePos(static_cast<std::int32_t>(start));
        unit.mIs64BitDwarf = mFormat.IsEscapeValue(firstBytes, *mSection.mElfFile);
        const std::uint64_t length =
            unit.mIs64BitDwarf ? mBuffer.ReadUInt64AtFilePos(start + 4) : firstBytes;
        const std::int64_t lengthSize = unit.mIs64BitDwarf ? 12 : 4;
        if (mRetry != 0) {
            elflog("Retry No.%d: Try Read compile unit from file_pos(dec): %" PRId64 " ", mRetry,
                   start + lengthSize);
        }
        if (!IsPlausibleLength(length, lengthSize, mFormat.LeastLength(unit.mIs64BitDwarf))) {
            return Step::NextCandidate;
        }
        if (!mBuffer.LoadFromFile(static_cast<std::uint64_t>(start + lengthSize),
                                  mFormat.BytesNeeded(unit.mIs64BitDwarf, length))) {
            return Step::Failed;
        }
        const HeaderVerdict verdict = mFormat.Read(mBuffer, mRange.section, unit);
        // A header that a search finds must be sound in every field.
        if (verdict == HeaderVerdict::Implausible ||
            (verdict == HeaderVerdict::NotRead && mRetry != 0)) {
            return Step::NextCandidate;
        }
        MoveBehind(unit, static_cast<std::uint64_t>(lengthSize) + length);
        if (verdict == HeaderVerdict::NotRead) {
            ++mSection.mUnitsNotRead[unit.mDwarfVersion];
            return Step::Accepted;
        }
        unit.mHeaderSize += static_cast<std::uint32_t>(lengthSize);
        Accept(unit, length);
        return Step::Accepted;
    }

    [[nodiscard]] bool IsPlausibleLength(std::uint64_t length, std::int64_t lengthSize,
                                         std::uint64_t least) const {
        if (length < least) {
            elflog("[Skipping Compile unit: Length too short for valid compile unit]");
            return false;
        }
        const std::int64_t available = mEnd - mPosition - lengthSize;
        if (available < 0 || length > static_cast<std::uint64_t>(available)) {
            elflog("[Skipping Compile unit: Invalid length ( %" PRId64
                   " ) is overflowing section end ( %" PRId64 " )]",
                   mPosition + lengthSize, mEnd);
            return false;
        }
        return true;
    }

    /// @param total whole unit in bytes
    void MoveBehind(VCompileUnitHeader& unit, std::uint64_t total) {
        // A length beyond 32 bits becomes one that no buffer can load.
        unit.mLength = static_cast<std::uint32_t>(
            std::min<std::uint64_t>(total, std::numeric_limits<std::uint32_t>::max()));
        mPreviousStart = unit.mFilePos;
        mPosition = mPreviousStart + static_cast<std::int64_t>(total);
    }

    void Accept(VCompileUnitHeader& unit, std::uint64_t length) {
        LogUnit(unit, length);
        unit.mIndex = static_cast<std::uint32_t>(mSection.mCompileUnits.size());
        unit.mSectionOffset =
            unit.mFilePos - static_cast<std::uint32_t>(mRange.start) + mRange.startOffset;
        unit.mDebugStr = mSection.mTexts.Start();
        if (unit.mTypeOffset != 0 && unit.mTypeOffset < unit.mLength) {
            mSection.mTypeOffsets.try_emplace(unit.mTypeSignature,
                                              unit.mSectionOffset + unit.mTypeOffset);
        }
        mSection.mCompileUnits.push_back(mSection.mUnitArena.Create<VCompileUnitHeader>(unit));
    }

    void LogUnit(const VCompileUnitHeader& unit, std::uint64_t length) const {
        if (VElfOptions::mIsLogFile == 0) {
            return;
        }
        const auto count = static_cast<int>(mSection.mCompileUnits.size());
        elflog("%d.%s: %d: file_pos=0x%8.8" PRIx64 ", length=0x%8.8" PRIx64
               ", dwarf_version=%d, arbTabOffsdet=%d, targetAddressSize=%d",
               count + 1, GetLogTimeStamp(), count, static_cast<std::uint64_t>(mPosition), length,
               unit.mDwarfVersion, static_cast<std::int32_t>(unit.mAbbrevOffset),
               unit.mTargetAddressSize);
        if (mRetry != 0) {
            elflog("Try Read corrupted compile unit: begin found at offset=%d!!!",
                   mRetry < sFirstForwardRetry ? 1 - mRetry : mRetry - (sFirstForwardRetry - 1));
        }
    }

    VDwarf2Section& mSection;
    const UnitHeaderFormat& mFormat;
    VElfBuffer mBuffer;
    std::int64_t mSlideLimit;
    UnitRange mRange;
    /// End of the previous unit, moved by the search.
    std::int64_t mPosition;
    std::int64_t mEnd;
    std::int64_t mPreviousStart;
    /// Distance of the candidate from the position.
    std::int64_t mPad = -1;
    /// 0 while the candidate slides; else the number of the search step.
    int mRetry = 0;
    std::int64_t mRetryBase = 0;
};

/// True if type units are in a section of their own, as in DWARF 4. Targets whose `.debug_info` is
/// compressed have none.
bool HasTypeSection(const VElfFile& file) {
    return file.mManner == ReadingManner::Full && file.mSecDebugTypes.IsPresent() &&
           !file.mIsDsPicTarget;
}

/// Bytes of a section that the file can hold, whatever the record says.
std::uint32_t BytesInFile(const VElfFile& file, const Elf64_Shdr& record) {
    const auto fileSize = static_cast<std::uint64_t>(file.mFileSize);
    return static_cast<std::uint32_t>(
        std::min({record.sh_size, fileSize, std::uint64_t{sMaximumPosition}}));
}

} // namespace

MappingOutcome VDwarf2Section::MapUnitsOf(const Elf64_Shdr& record, UnitSection section,
                                          std::uint32_t startOffset) {
    const auto alignment = static_cast<std::uint32_t>(record.sh_addralign);
    if (alignment > sMaximumAlignment) {
        Fail(ELFReadErrorEnum::ELFERR_COMPILE_UNIT_SIZE);
        return MappingOutcome::Failed;
    }
    if (VElfOptions::mIsLogFile != 0) {
        elflog("%s: Mapping compile units...", GetLogTimeStamp());
    }
    if (record.sh_size == 0) {
        return MappingOutcome::Mapped;
    }
    if (mElfFile->mIsDsPicTarget && !LoadWholeSection(mDebugInfoCache, record)) {
        return MappingOutcome::Failed;
    }
    const std::uint64_t size = mElfFile->mIsDsPicTarget ? record.sh_size / 2 : record.sh_size;
    if (record.sh_offset > static_cast<std::uint64_t>(sMaximumPosition)) {
        Fail(ELFReadErrorEnum::ELFERR_SEEK_FAILED);
        return MappingOutcome::Failed;
    }
    const auto start = static_cast<std::int64_t>(record.sh_offset);
    const auto limit = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max() - start);
    const std::int64_t end = start + static_cast<std::int64_t>(std::min(size, limit));
    return CompileUnitMapper(*this, alignment > 0 ? alignment - 1 : 0,
                             {section, start, end, startOffset})
        .Run();
}

bool VDwarf2Section::MapCompileUnits() {
    MappingOutcome outcome = MapUnitsOf(mElfFile->mSecDebugInfo, UnitSection::DebugInfo, 0);
    if (outcome == MappingOutcome::Mapped && HasTypeSection(*mElfFile)) {
        outcome = MapUnitsOf(mElfFile->mSecDebugTypes, UnitSection::DebugTypes,
                             BytesInFile(*mElfFile, mElfFile->mSecDebugInfo));
    }
    if (mLinkage == Linkage::NothingInPlace && mCompileUnits.size() > 1) {
        // Only the first unit's abbreviations certainly lie where it says: at the section's start.
        mCompileUnits.erase(mCompileUnits.begin() + 1, mCompileUnits.end());
    }
    if (outcome == MappingOutcome::Mapped) {
        for (VCompileUnitHeader* header : mCompileUnits) {
            mCompileUnitRanges.Insert(header->mFilePos, static_cast<std::int32_t>(header->mLength),
                                      header);
        }
        mCompileUnitRanges.Sort();
    }
    return outcome != MappingOutcome::Failed;
}

bool VDwarf2Section::LoadCompileUnit(VCompileUnitReader& reader) const {
    const VCompileUnitHeader& header = reader.mHeader;
    if (!reader.mBuffer) {
        reader.mBuffer.reset(new (std::nothrow) VElfBuffer(*mElfFile, 0, mDebugInfoCache));
        if (!reader.mBuffer) {
            return Fail(ELFReadErrorEnum::ELFERR_NO_MEMORY);
        }
    }
    if (!reader.mBuffer->LoadFromFile(header.mFilePos, header.mLength)) {
        return false;
    }
    reader.mBuffer->SetOffset(static_cast<std::int32_t>(header.mHeaderSize));
    if (header.mDwarfVersion < sLowestReadVersion ||
        header.mDwarfVersion > HighestReadVersion(mElfFile->mManner)) {
        reader.mBuffer.reset();
        reader.mAbbrevTable = nullptr;
        return Fail(ELFReadErrorEnum::ELFERR_DWARF_VERSION);
    }
    if (reader.mAbbrevTable == nullptr) {
        reader.mAbbrevTable = &mAbrSectionBuffer->GetTable(header.mAbbrevOffset);
    }
    reader.mBuffer->SetADDRESSsize(header.mTargetAddressSize);
    return true;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
