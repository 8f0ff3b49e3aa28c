// Linkers leave the debug information of a variable in place when they discard the variable itself,
// and write a tombstone for its address; compilers that merge variables count from there:
//
//   DW_OP_addr 0                                 a discarded variable, or the vector table
//   DW_OP_addr 0, DW_OP_plus_uconst 4            the second of two merged variables
//
// Such a variable is kept if the symbol table knows it at its address: by one of the names that it
// may have there, and not as a thing of another source file. That a section holds the address
// proves nothing, since flash often begins at 0: it counts only in files whose symbol table names
// no data, and for no part of something merged.
//
// Variables whose value is computed from what memory holds have no place either; their symbols must
// not stand for them.
#include "container/SymbolName.h"
#include "container/VElfFile.h"
#include "core/KeyMixing.h"
#include "dwarf/Tombstones.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "emit/UnitsOfVariables.h"
#include "emit/VariableNames.h"
#include "nodes/VDebugInfoNode.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Stand for the unit of a symbol that all units know, and for some unit. No unit has such a name.
constexpr std::string_view sEveryUnit = "*";
constexpr std::string_view sSomeUnit = "?*";

struct OwnedName {
    std::string_view name;
    std::string_view owner;

    bool operator==(const OwnedName&) const = default;
};

struct OwnedNameHash {
    std::size_t operator()(const OwnedName& owned) const {
        const SeededHash hash;
        return hash(std::uint64_t{hash(owned.name)} ^ hash(owned.owner) * 3);
    }
};

/// The names of the data symbols at one address, each as variables may be called.
class DataNames {
public:
    void Add(std::string_view symbol, std::string_view owner) {
        AddForms(symbol, owner);
        AddForms(WithoutUnderscore(symbol), owner);
    }

    /// @param unit the name of a unit, or what stands for one
    [[nodiscard]] bool Know(std::string_view name, std::string_view unit) const {
        return mNames.contains({name, unit}) || mNames.contains({name, SourceUnits::sAny});
    }

private:
    void AddForms(std::string_view symbol, std::string_view owner) {
        const std::string_view nameInSource = NameInSource(symbol);
        mNames.insert({symbol, owner});
        mNames.insert({symbol, sSomeUnit});
        // A name made unique is that of a static variable, even if link-time optimisation has let
        // others refer to it.
        mNames.insert({nameInSource,
                       nameInSource != symbol && owner == sEveryUnit ? SourceUnits::sAny : owner});
    }

    std::unordered_set<OwnedName, OwnedNameHash> mNames;
};

class DiscardedVariables {
public:
    explicit DiscardedVariables(VDwarf2Section& section)
        : mSection(section)
        , mFile(*section.mElfFile)
        , mLongNames(mFile.mFileSize) {}

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
        const VDebugInfoNode* unit = mUnits.UnitOf(variable);
        const std::string_view unitName = unit != nullptr ? unit->GetName() : SourceUnits::sAny;
        const VariableNames names(variable);
        return IsSymbolAt(names.linkageName, address, unitName) ||
               IsSymbolAt(names.linkageName, address, sEveryUnit) ||
               IsSymbolAt(names.name, address, unitName) ||
               (names.isExternal ? IsExternalAt(names.name, address)
                                 : IsSymbolAt(names.name, address, sEveryUnit) &&
                                       !NamesAtTombstones().external.contains(names.name));
    }

    /// Tools that make a symbol local may put it behind those of another file.
    bool IsExternalAt(std::string_view name, std::uint64_t address) {
        return IsSymbolAt(name, address, sEveryUnit) ||
               (IsSymbolAt(name, address, sSomeUnit) &&
                !NamesAtTombstones().internal.contains(name));
    }

    bool IsSymbolAt(std::string_view name, std::uint64_t address, std::string_view unit) {
        if (name.empty()) {
            return false;
        }
        // Static variables of several files may have the name.
        if (DataNamesAt(address).Know(name, unit)) {
            return true;
        }
        const VElfSymbolAddress* symbol = mFile.FindSymbolByName(std::string(name));
        if (symbol == nullptr || symbol->mAddress != address) {
            return false;
        }
        const std::string_view owner = symbol->mReach > SymbolReach::File
                                           ? sEveryUnit
                                           : mFile.mSourceUnits.UnitOf(symbol->mSourceFile);
        return owner == unit || owner == SourceUnits::sAny || unit == sSomeUnit;
    }

    const DataNames& DataNamesAt(std::uint64_t address) {
        const auto [known, isNew] = mDataNames.try_emplace(address);
        if (isNew) {
            for (const Elf32_Sym& symbol : mFile.mSymbolMap.AllAt(address)) {
                known->second.Add(CutSymbolName(symbol.name, mLongNames), OwnerOf(symbol));
            }
        }
        return known->second;
    }

    [[nodiscard]] std::string_view OwnerOf(const Elf32_Sym& symbol) const {
        if (!symbol.IsLocal()) {
            return sEveryUnit;
        }
        return symbol.HasOwnVisibility() ? SourceUnits::sAny
                                         : mFile.mSourceUnits.UnitOf(symbol.sourceFile);
    }

    /// Names of variables at tombstones: the symbol of one kind is none of the other.
    struct KindsOfNames {
        NameSet external;
        NameSet internal;
    };

    const KindsOfNames& NamesAtTombstones() {
        if (!mAreNamesKnown) {
            mAreNamesKnown = true;
            mSection.mDieNodes.ForEachOf(
                NodeGroup::Variables, [this](const VDebugInfoNode& variable) {
                    if (variable.HasLocation() && IsAtTombstone(variable)) {
                        const VariableNames names(variable);
                        (names.isExternal ? mNames.external : mNames.internal).insert(names.name);
                    }
                });
        }
        return mNames;
    }

    VDwarf2Section& mSection;
    VElfFile& mFile;
    LongTextAllowance mLongNames;
    UnitsOfVariables mUnits;
    /// Results for the addresses so far. Of sections, only a few are asked.
    std::unordered_map<std::uint64_t, bool> mIsInSection;
    std::unordered_map<std::uint64_t, DataNames> mDataNames;
    KindsOfNames mNames;
    bool mAreNamesKnown = false;
};

void NoteValue(const VDebugInfoNode& variable, DeliveredSymbols& delivered) {
    const VDebugInfoNode* unit = variable.FindUnit();
    const std::string_view unitName = unit != nullptr ? unit->GetName() : std::string_view();
    const VariableNames names(variable);
    delivered.AddValue(names.name, unitName);
    delivered.AddValue(names.linkageName, unitName);
}

} // namespace

void LeaveOutDiscardedVariables(VDwarf2Section& section) {
    section.mDieNodes.ForEachOf(NodeGroup::CompileUnits, [&](const VDebugInfoNode& unit) {
        section.mElfFile->mSourceUnits.Add(unit.GetName());
    });
    DiscardedVariables discarded(section);
    DeliveredSymbols& delivered = section.mElfFile->mDeliveredSymbols;
    section.mDieNodes.ForEachOf(NodeGroup::Variables, [&](VDebugInfoNode& variable) {
        if (variable.HasLocation() && !variable.IsRegisterOrStackLocation()) {
            discarded.LookAt(variable);
        } else if (variable.IsComputed() && !variable.StandsInFunction()) {
            NoteValue(variable, delivered);
        }
    });
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
