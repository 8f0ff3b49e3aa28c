#include "dwarf/UnitHeaderFormat.h"

#include "container/VElfBuffer.h"
#include "diagnostics/ElfLog.h"
#include "dwarf/codes/DwarfConstants.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::uint8_t sHighestAddressSize = 12;

std::uint64_t GetOffset(VElfBuffer& buffer, bool is64BitDwarf) {
    return is64BitDwarf ? buffer.GetUInt64() : buffer.GetULong();
}

bool IsPlausibleAddressSize(std::uint8_t size) {
    if (size > sHighestAddressSize) {
        elflog("[Skipping Compile unit: Unsupported target address size ( %d )]", size);
        return false;
    }
    return true;
}

/// DWARF 2 to 4 (DWARF 4, 7.5.1.1). Later versions are plausible here and fail when the unit is
/// loaded.
class ClassicHeaderFormat final : public UnitHeaderFormat {
public:
    [[nodiscard]] bool IsEscapeValue(std::uint32_t value, const VElfInput& input) const override {
        return input.mIs64Bit && value >= sFirstEscapeValue;
    }
    [[nodiscard]] std::uint64_t LeastLength(bool is64BitDwarf) const override {
        return Size(is64BitDwarf) + sMoreThanHeader;
    }
    [[nodiscard]] std::uint64_t BytesNeeded(bool is64BitDwarf,
                                            std::uint64_t /*unitLength*/) const override {
        return Size(is64BitDwarf);
    }
    HeaderVerdict Read(VElfBuffer& buffer, UnitSection /*section*/,
                       VCompileUnitHeader& unit) const override {
        unit.mDwarfVersion = static_cast<std::int16_t>(buffer.GetUShort());
        unit.mAbbrevOffset = static_cast<std::uint32_t>(GetOffset(buffer, unit.mIs64BitDwarf));
        unit.mTargetAddressSize = buffer.GetUByte();
        unit.mHeaderSize = static_cast<std::uint32_t>(Size(unit.mIs64BitDwarf));
        if (unit.mDwarfVersion < sLowestMappedVersion ||
            unit.mDwarfVersion > sHighestMappedVersion) {
            elflog("[Skipping Compile unit: Unsupported DWARF version ( %d )]", unit.mDwarfVersion);
            return HeaderVerdict::Implausible;
        }
        return IsPlausibleAddressSize(unit.mTargetAddressSize) ? HeaderVerdict::Accepted
                                                               : HeaderVerdict::Implausible;
    }

private:
    static constexpr std::uint32_t sFirstEscapeValue = 0xFFFFFFF0;
    static constexpr std::int32_t sLowestMappedVersion = 2;
    static constexpr std::int32_t sHighestMappedVersion = 6;
    /// There must be room for an entry after the header.
    static constexpr std::uint64_t sMoreThanHeader = 5;

    static std::uint64_t Size(bool is64BitDwarf) { return is64BitDwarf ? 11 : 7; }
};

/// DWARF 2 to 5 with all kinds of unit (DWARF 4, 7.5.1; DWARF 5, 7.5.1).
class FullHeaderFormat final : public UnitHeaderFormat {
public:
    [[nodiscard]] bool IsEscapeValue(std::uint32_t value,
                                     const VElfInput& /*input*/) const override {
        return value == sEscapeValue;
    }
    [[nodiscard]] std::uint64_t LeastLength(bool is64BitDwarf) const override {
        return is64BitDwarf ? 11 : 7;
    }
    [[nodiscard]] std::uint64_t BytesNeeded(bool /*is64BitDwarf*/,
                                            std::uint64_t unitLength) const override {
        return std::min(unitLength, sLongestHeader);
    }
    HeaderVerdict Read(VElfBuffer& buffer, UnitSection section,
                       VCompileUnitHeader& unit) const override {
        unit.mDwarfVersion = buffer.GetUShort();
        std::uint8_t type = section == UnitSection::DebugTypes ? DW_UT_type : DW_UT_compile;
        if (unit.mDwarfVersion >= sFirstVersionOfUnitTypes) {
            type = buffer.GetUByte();
            unit.mTargetAddressSize = buffer.GetUByte();
        }
        unit.mAbbrevOffset = static_cast<std::uint32_t>(GetOffset(buffer, unit.mIs64BitDwarf));
        if (unit.mDwarfVersion < sFirstVersionOfUnitTypes) {
            unit.mTargetAddressSize = buffer.GetUByte();
        }
        if (!IsReadVersion(unit.mDwarfVersion)) {
            return unit.mDwarfVersion != 0 ? HeaderVerdict::NotRead : HeaderVerdict::Implausible;
        }
        if (!ReadKind(buffer, type, unit)) {
            return HeaderVerdict::NotRead;
        }
        unit.mHeaderSize = static_cast<std::uint32_t>(buffer.GetOffset());
        return IsPlausibleAddressSize(unit.mTargetAddressSize) && !buffer.IsOverrun()
                   ? HeaderVerdict::Accepted
                   : HeaderVerdict::Implausible;
    }

private:
    static constexpr std::uint32_t sEscapeValue = 0xFFFFFFFF;
    static constexpr std::int32_t sFirstVersionOfUnitTypes = 5;
    /// Version, type, address size, and three fields of 8 bytes.
    static constexpr std::uint64_t sLongestHeader = 28;

    static bool IsReadVersion(std::int32_t version) { return version >= 2 && version <= 5; }

    /// Reads the fields that only units of this kind have.
    /// @return false for kinds that are in no standard
    static bool ReadKind(VElfBuffer& buffer, std::uint8_t type, VCompileUnitHeader& unit) {
        switch (type) {
        case DW_UT_compile:
        case DW_UT_partial:
            return true;
        case DW_UT_skeleton:
        case DW_UT_split_compile:
            buffer.GetUInt64();
            return true;
        case DW_UT_type:
        case DW_UT_split_type:
            unit.mTypeSignature = buffer.GetUInt64();
            unit.mTypeOffset = static_cast<std::uint32_t>(GetOffset(buffer, unit.mIs64BitDwarf));
            return true;
        default:
            return false;
        }
    }
};

} // namespace

const UnitHeaderFormat& UnitHeaderFormat::Of(ReadingManner manner) {
    static const ClassicHeaderFormat sClassic;
    static const FullHeaderFormat sFull;
    if (manner == ReadingManner::Full) {
        return sFull;
    }
    return sClassic;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
