// The first walk over `.debug_info`: from unit header to unit header (DWARF 4, 7.5.1.1), with the
// search for the next sound header where one makes no sense; and the loading of one unit.
#include "container/VElfFile.h"
#include "core/ErrorState.h"
#include "diagnostics/ElfLog.h"
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
/// First 4 bytes of a unit in 64-bit DWARF, at least.
constexpr std::uint32_t sEscapeValue = 0xFFFFFFF0;
/// Bytes of the header behind its length, and room for the first entry.
constexpr std::uint64_t sRestSize32 = 7;
constexpr std::uint64_t sRestSize64 = 11;
constexpr std::uint64_t sRoomForEntry = 4;
constexpr std::int32_t sLowestMappedVersion = 2;
constexpr std::int32_t sHighestMappedVersion = 6;
constexpr std::int32_t sHighestReadVersion = 4;
constexpr std::uint8_t sHighestAddressSize = 12;

/// Steps of the search: backwards up to the first number, then forwards up to the second.
constexpr int sFirstForwardRetry = 40;
constexpr int sLastRetry = 80;

constexpr std::int64_t sMaximumPosition = std::numeric_limits<std::int32_t>::max();

/// The walk and the state of its search. Positions are file positions.
class CompileUnitMapper {
public:
    CompileUnitMapper(VDwarf2Section& section, std::int64_t slideLimit, std::int64_t start,
                      std::int64_t end)
        : mSection(section)
        , mBuffer(*section.mElfFile, VElfOptions::mElfFileReadBufferSize, section.mDebugInfoCache)
        , mSlideLimit(slideLimit)
        , mPosition(start)
        , mEnd(end)
        , mPreviousStart(start - 1) {}

    enum class Outcome { Mapped, GaveUp, Failed };

    Outcome Run() {
        while (mPosition < mEnd) {
            const Step step = MapUnit();
            if (step != Step::Accepted) {
                return step == Step::GaveUp ? Outcome::GaveUp : Outcome::Failed;
            }
        }
        return Outcome::Mapped;
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
        std::uint64_t length = mBuffer.ReadULongAtFilePos(static_cast<std::int32_t>(start));
        unit.mIs64BitDwarf = mSection.mElfFile->mIs64Bit && length >= sEscapeValue;
        if (unit.mIs64BitDwarf) {
            length = mBuffer.ReadUInt64AtFilePos(start + 4);
        }
        const std::int64_t lengthSize = unit.mIs64BitDwarf ? 12 : 4;
        const std::uint64_t restSize = unit.mIs64BitDwarf ? sRestSize64 : sRestSize32;
        if (mRetry != 0) {
            elflog("Retry No.%d: Try Read compile unit from file_pos(dec): %" PRId64 " ", mRetry,
                   start + lengthSize);
        }
        if (!IsPlausibleLength(length, lengthSize, restSize)) {
            return Step::NextCandidate;
        }
        if (!mBuffer.LoadFromFile(static_cast<std::uint64_t>(start + lengthSize), restSize)) {
            return Step::Failed;
        }
        ReadHeader(unit);
        if (!IsPlausibleHeader(unit)) {
            return Step::NextCandidate;
        }
        unit.mHeaderSize =
            static_cast<std::uint32_t>(static_cast<std::uint64_t>(lengthSize) + restSize);
        Accept(unit, length, static_cast<std::uint64_t>(lengthSize) + length);
        return Step::Accepted;
    }

    [[nodiscard]] bool IsPlausibleLength(std::uint64_t length, std::int64_t lengthSize,
                                         std::uint64_t restSize) const {
        if (length <= restSize + sRoomForEntry) {
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

    void ReadHeader(VCompileUnitHeader& unit) {
        unit.mDwarfVersion = static_cast<std::int16_t>(mBuffer.GetUShort());
        unit.mAbbrevOffset = unit.mIs64BitDwarf ? static_cast<std::uint32_t>(mBuffer.GetUInt64())
                                                : mBuffer.GetULong();
        unit.mTargetAddressSize = mBuffer.GetUByte();
    }

    static bool IsPlausibleHeader(const VCompileUnitHeader& unit) {
        if (unit.mDwarfVersion < sLowestMappedVersion ||
            unit.mDwarfVersion > sHighestMappedVersion) {
            elflog("[Skipping Compile unit: Unsupported DWARF version ( %d )]", unit.mDwarfVersion);
            return false;
        }
        if (unit.mTargetAddressSize > sHighestAddressSize) {
            elflog("[Skipping Compile unit: Unsupported target address size ( %d )]",
                   unit.mTargetAddressSize);
            return false;
        }
        return true;
    }

    void Accept(VCompileUnitHeader& unit, std::uint64_t length, std::uint64_t total) {
        // A length beyond 32 bits stays one that no buffer can load.
        unit.mLength = static_cast<std::uint32_t>(
            std::min<std::uint64_t>(total, std::numeric_limits<std::uint32_t>::max()));
        mPreviousStart = unit.mFilePos;
        mPosition = mPreviousStart + static_cast<std::int64_t>(total);
        LogUnit(unit, length);
        unit.mIndex = static_cast<std::uint32_t>(mSection.mCompileUnits.size());
        unit.mSectionOffset =
            unit.mFilePos - static_cast<std::uint32_t>(mSection.mElfFile->mSecDebugInfo.sh_offset);
        unit.mDebugStr = mSection.mDebugStr.data();
        mSection.mCompileUnits.push_back(mSection.mArena.Create<VCompileUnitHeader>(unit));
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
    VElfBuffer mBuffer;
    std::int64_t mSlideLimit;
    /// End of the previous unit, moved by the search.
    std::int64_t mPosition;
    std::int64_t mEnd;
    std::int64_t mPreviousStart;
    /// Distance of the candidate from the position.
    std::int64_t mPad = -1;
    /// 0 while the candidate slides; else a count of the search.
    int mRetry = 0;
    std::int64_t mRetryBase = 0;
};

} // namespace

bool VDwarf2Section::MapCompileUnits() {
    const Elf64_Shdr& debugInfo = mElfFile->mSecDebugInfo;
    const auto alignment = static_cast<std::uint32_t>(debugInfo.sh_addralign);
    if (alignment > sMaximumAlignment) {
        return Fail(ELFReadErrorEnum::ELFERR_COMPILE_UNIT_SIZE);
    }
    if (VElfOptions::mIsLogFile != 0) {
        elflog("%s: Mapping compile units...", GetLogTimeStamp());
    }
    if (debugInfo.sh_size == 0) {
        return true;
    }
    if (mElfFile->mIsDsPicTarget && !LoadWholeSection(mDebugInfoCache, debugInfo)) {
        return false;
    }
    const std::uint64_t size = mElfFile->mIsDsPicTarget ? debugInfo.sh_size / 2 : debugInfo.sh_size;
    if (debugInfo.sh_offset > static_cast<std::uint64_t>(sMaximumPosition)) {
        return Fail(ELFReadErrorEnum::ELFERR_SEEK_FAILED);
    }
    const auto start = static_cast<std::int64_t>(debugInfo.sh_offset);
    const auto limit = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max() - start);
    const std::int64_t end = start + static_cast<std::int64_t>(std::min(size, limit));
    CompileUnitMapper mapper(*this, alignment > 0 ? alignment - 1 : 0, start, end);
    const CompileUnitMapper::Outcome outcome = mapper.Run();
    if (outcome == CompileUnitMapper::Outcome::Mapped) {
        for (VCompileUnitHeader* header : mCompileUnits) {
            mCompileUnitRanges.Insert(header->mFilePos, static_cast<std::int32_t>(header->mLength),
                                      header);
        }
        mCompileUnitRanges.Sort();
    }
    return outcome != CompileUnitMapper::Outcome::Failed;
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
    if (header.mDwarfVersion < sLowestMappedVersion || header.mDwarfVersion > sHighestReadVersion) {
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
