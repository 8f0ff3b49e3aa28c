// Linkers leave the debug information of a variable in place when they discard the variable itself,
// and write a tombstone for its address. Which one depends on the linker:
//
//   GNU ld, gold      0
//   lld               all ones in the width of an address, or one less
//
// All of them are valid addresses as well: the vector table of a controller lies at 0, and a port
// may. So a variable at such an address is kept if something is known to be there.
#include "container/SymbolName.h"
#include "container/VElfFile.h"
#include "core/KeyMixing.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "emit/VariableNames.h"
#include "nodes/VDebugInfoNode.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::uint32_t sAddressSizeIfUnknown = 4;

std::array<std::uint64_t, 3> TombstonesOf(std::uint32_t addressSize) {
    constexpr std::uint64_t all64Bits = std::numeric_limits<std::uint64_t>::max();
    const std::uint32_t size = addressSize != 0 ? addressSize : sAddressSizeIfUnknown;
    const std::uint64_t allOnes =
        size < sizeof all64Bits ? (std::uint64_t{1} << (size * 8)) - 1 : all64Bits;
    return {0, allOnes, allOnes - 1};
}

class DiscardedVariables {
public:
    explicit DiscardedVariables(VElfFile& file)
        : mFile(file)
        , mLongNames(file.mFileSize) {}

    void LookAt(VDebugInfoNode& variable) {
        if (!IsAtTombstone(variable)) {
            return;
        }
        if (IsInSection(variable.GetLocationAddress()) || HasSymbolThere(variable)) {
            variable.ConfirmAddress();
        } else {
            variable.DiscardLocation();
        }
    }

private:
    using NameSet = std::unordered_set<std::string_view, SeededHash>;

    [[nodiscard]] bool IsAtTombstone(const VDebugInfoNode& variable) const {
        const std::uint64_t address = variable.GetLocationAddress();
        return std::ranges::any_of(
            TombstonesOf(variable.GetCompileUnitHeader()->mTargetAddressSize),
            [&](std::uint64_t tombstone) { return address == AsDecoded(tombstone); });
    }

    /// The decoded form of an address in the file.
    [[nodiscard]] std::uint64_t AsDecoded(std::uint64_t address) const {
        const std::uint64_t inBytes = mFile.mIsWordAddressedTarget ? address * 2 : address;
        return mFile.mImageBase != 0 && inBytes > mFile.mImageBase ? inBytes - mFile.mImageBase
                                                                   : inBytes;
    }

    bool IsInSection(std::uint64_t address) {
        const auto [known, isNew] = mIsInSection.try_emplace(address, false);
        if (isNew) {
            known->second = mFile.mImage.isLinked && mFile.mImageSections.Hold(address);
        }
        return known->second;
    }

    bool HasSymbolThere(const VDebugInfoNode& variable) {
        const std::uint64_t address = variable.GetLocationAddress();
        const VariableNames names(variable);
        return IsSymbolAt(names.linkageName, address) || IsSymbolAt(names.name, address);
    }

    bool IsSymbolAt(std::string_view name, std::uint64_t address) {
        if (name.empty()) {
            return false;
        }
        // Static variables of several files may have the name.
        if (DataNamesAt(address).contains(name)) {
            return true;
        }
        const VElfSymbolAddress* symbol = mFile.FindSymbolByName(std::string(name));
        return symbol != nullptr && symbol->mAddress == address;
    }

    const NameSet& DataNamesAt(std::uint64_t address) {
        const auto [known, isNew] = mDataNames.try_emplace(address);
        if (isNew) {
            for (const Elf32_Sym& symbol : mFile.mSymbolMap.AllAt(address)) {
                known->second.insert(CutSymbolName(symbol.name, mLongNames));
            }
        }
        return known->second;
    }

    VElfFile& mFile;
    LongTextAllowance mLongNames;
    /// Results for the addresses so far; only a few occur.
    std::unordered_map<std::uint64_t, bool> mIsInSection;
    std::unordered_map<std::uint64_t, NameSet> mDataNames;
};

} // namespace

void LeaveOutDiscardedVariables(VDwarf2Section& section) {
    DiscardedVariables discarded(*section.mElfFile);
    section.mDieNodes.ForEachOf(NodeGroup::Variables, [&](VDebugInfoNode& variable) {
        if (variable.HasLocation() && !variable.IsRegisterOrStackLocation()) {
            discarded.LookAt(variable);
        }
    });
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
