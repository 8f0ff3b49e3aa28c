// Linkers leave the debug information of a variable in place when they discard the variable itself,
// and write a tombstone for its address; compilers that merge variables count from there:
//
//   DW_OP_addr 0                                 a discarded variable, or the vector table
//   DW_OP_addr 0, DW_OP_plus_uconst 4            the second of two merged variables
//
// Such a variable is kept if the symbol table knows it at its address. That a section holds the
// address proves nothing, since flash often begins at 0: it counts only in files whose symbol table
// names no data, and for no part of something merged.
//
// Variables whose value is computed from what memory holds have no place either; their symbols must
// not stand for them.
#include "container/SymbolName.h"
#include "container/VElfFile.h"
#include "core/KeyMixing.h"
#include "dwarf/Tombstones.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "emit/VariableNames.h"
#include "nodes/VDebugInfoNode.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

class DiscardedVariables {
public:
    explicit DiscardedVariables(VElfFile& file)
        : mFile(file)
        , mLongNames(file.mFileSize) {}

    void LookAt(VDebugInfoNode& variable) {
        if (!IsAtTombstone(variable)) {
            return;
        }
        if (HasSymbolThere(variable) || IsInSectionWithoutSymbols(variable)) {
            variable.ConfirmAddress();
        } else {
            variable.DiscardLocation();
        }
    }

private:
    using NameSet = std::unordered_set<std::string_view, SeededHash>;

    [[nodiscard]] bool IsAtTombstone(const VDebugInfoNode& variable) const {
        const std::uint64_t address = variable.GetLocationAddress();
        return variable.IsFromTombstone() ||
               std::ranges::any_of(
                   TombstonesOf(variable.GetCompileUnitHeader()->mTargetAddressSize),
                   [&](std::uint64_t tombstone) { return address == AsDecoded(tombstone); });
    }

    /// The decoded form of an address in the file.
    [[nodiscard]] std::uint64_t AsDecoded(std::uint64_t address) const {
        const std::uint64_t inBytes = mFile.mIsWordAddressedTarget ? address * 2 : address;
        return mFile.mImageBase != 0 && inBytes > mFile.mImageBase ? inBytes - mFile.mImageBase
                                                                   : inBytes;
    }

    bool IsInSectionWithoutSymbols(const VDebugInfoNode& variable) {
        if (!mFile.mSymbolMap.IsEmpty() || variable.IsFromTombstone()) {
            return false;
        }
        const std::uint64_t address = variable.GetLocationAddress();
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
                const std::string_view name = CutSymbolName(symbol.name, mLongNames);
                known->second.insert(name);
                known->second.insert(NameInSource(name));
            }
        }
        return known->second;
    }

    VElfFile& mFile;
    LongTextAllowance mLongNames;
    /// Results for the addresses so far. Of sections, only a few are asked.
    std::unordered_map<std::uint64_t, bool> mIsInSection;
    std::unordered_map<std::uint64_t, NameSet> mDataNames;
};

} // namespace

void LeaveOutDiscardedVariables(VDwarf2Section& section) {
    DiscardedVariables discarded(*section.mElfFile);
    section.mDieNodes.ForEachOf(NodeGroup::Variables, [&](VDebugInfoNode& variable) {
        if (variable.HasLocation() && !variable.IsRegisterOrStackLocation()) {
            discarded.LookAt(variable);
        } else if (variable.IsComputed()) {
            section.mElfFile->mDeliveredSymbols.AddValue(VariableNames(variable).name);
        }
    });
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
