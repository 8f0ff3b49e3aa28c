// Which variables without location get an address from the symbol table, in the full manner:
//
//   extern int total;          declared external: the symbol `total` that all files know
//   int f(void) { int n; }     a local without location, optimized away: no static variable
//   static int count;          of a compiler that writes no locations: the symbol `count` of its
//                              own file, unless another variable of that name has a place
//   static const int b = 5;    of any other compiler: optimized away, unless it was folded into a
//                              variable of its file, which then lies at the symbol `b` too
//
// A wrong address is worse than none. So a name without linkage name counts with its scope, and a
// symbol that only its own file knows never serves a declaration in another one. Source files of
// one name, or assembler files that the symbol table doesn't name, may have a symbol `count` too.
#include "container/SymbolName.h"
#include "container/VElfFile.h"
#include "core/KeyMixing.h"
#include "core/UnitName.h"
#include "diagnostics/ElfLog.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/OfLastScope.h"
#include "emit/ResolutionPasses.h"
#include "emit/UnitsOfVariables.h"
#include "emit/VariableNames.h"
#include "nodes/VDebugInfoNode.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Scopes that a name may have; only damaged files have more.
constexpr std::size_t sMaximumScopes = 100;

bool IsNamedScope(const VDebugInfoNode& scope) {
    const auto tag = scope.GetTag();
    return tag == DW_TAG_namespace || tag == DW_TAG_class_type || tag == DW_TAG_structure_type ||
           tag == DW_TAG_union_type;
}

/// What C++ writes before a name in a scope: "" for none, as in functions, and "outer::inner::".
std::string PrefixOf(const VDebugInfoNode* scope) {
    std::array<std::string_view, sMaximumScopes> names;
    std::size_t count = 0;
    for (; count < names.size() && scope != nullptr && IsNamedScope(*scope);
         scope = scope->GetParent()) {
        names[count++] = scope->GetName();
    }
    std::string prefix;
    while (count > 0 && prefix.size() < sSymbolNameBufferSize) {
        prefix.append(names[--count]).append("::");
    }
    return prefix;
}

/// The compiler without its options, which differ from unit to unit.
std::string_view CompilerOf(const VDebugInfoNode& unit) {
    const std::string_view producer = unit.GetProducer().mValue;
    return producer.substr(0, producer.find(" -"));
}

/// Which compilers give each variable that has a place of its own a location.
class LocatingCompilers {
public:
    /// @param unit of a variable with a location; may be null
    void Note(const VDebugInfoNode* unit) {
        if (unit != nullptr && unit != mLastUnit) {
            mCompilers.insert(CompilerOf(*unit));
            mLastUnit = unit;
        }
    }

    [[nodiscard]] bool HaveMade(const VDebugInfoNode& unit) const {
        const std::string_view compiler = CompilerOf(unit);
        return mCompilers.contains(compiler) ||
               std::ranges::any_of(sKnownToLocate, [=](std::string_view known) {
                   return compiler.find(known) != std::string_view::npos;
               });
    }

private:
    static constexpr std::string_view sKnownToLocate[] = {"GNU ", "clang", "LLVM", "rustc"};

    std::unordered_set<std::string_view, SeededHash> mCompilers;
    const VDebugInfoNode* mLastUnit = nullptr;
};

class DeclaredVariables {
public:
    explicit DeclaredVariables(VDwarf2Section& section)
        : mSection(section)
        , mFile(*section.mElfFile) {
        section.mDieNodes.ForEachOf(NodeGroup::Variables, [&](const VDebugInfoNode& variable) {
            if (const VDebugInfoNode* specification = variable.GetSpecificationNode()) {
                mCompleted.insert(specification);
            }
            if (HasOwnPlace(variable)) {
                mPlacedNames.insert(VariableNames(variable).name);
                mLocating.Note(mUnits.UnitOf(variable));
            }
        });
        section.mSkipped.ForEachCompleted(
            section.mDieNodes,
            [this](const VDebugInfoNode& specification) { mCompleted.insert(&specification); });
    }

    void Resolve(VDebugInfoNode& variable) {
        if (mCompleted.contains(&variable)) {
            Log(variable, "Variable is used as specification. OK!");
            return;
        }
        const VariableNames names(variable);
        if (!names.isExternal && StandsInFunction(variable)) {
            return;
        }
        const VElfSymbolAddress* symbol = FindSymbol(variable, names);
        if (symbol != nullptr) {
            variable.SetLocationFromSymbolTable(symbol->mAddress);
            variable.ConfirmAddress();
        } else {
            Log(variable, "Failed!: Not found in symbol table!!");
        }
    }

private:
    const VElfSymbolAddress* FindSymbol(const VDebugInfoNode& variable,
                                        const VariableNames& names) {
        if (!names.isExternal && mPlacedNames.contains(names.name)) {
            return nullptr;
        }
        const std::string name = !names.linkageName.empty() ? std::string(names.linkageName)
                                                            : QualifiedName(variable, names.name);
        const VElfSymbolAddress* symbol = !name.empty() ? mFile.FindSymbolByName(name) : nullptr;
        return symbol != nullptr && IsKnownTo(*symbol, variable, names) ? symbol : nullptr;
    }

    bool StandsInFunction(const VDebugInfoNode& variable) {
        return mIsFunction.Get(variable.GetParent(), [&](const VDebugInfoNode* /*scope*/) {
            return variable.StandsInFunction();
        });
    }

    /// The name as C++ writes it; only the plain name for a variable in a function or in no scope.
    /// Empty if it is longer than names of symbols may be.
    std::string QualifiedName(const VDebugInfoNode& variable, std::string_view name) {
        const VDebugInfoNode* completed = variable.GetSpecificationNode();
        const VDebugInfoNode& placed = completed != nullptr ? *completed : variable;
        const std::string& prefix = mPrefix.Get(placed.GetParent(), PrefixOf);
        return prefix.size() + name.size() < sSymbolNameBufferSize ? prefix + std::string(name)
                                                                   : std::string();
    }

    /// True if the symbol may name the variable.
    bool IsKnownTo(const VElfSymbolAddress& symbol, const VDebugInfoNode& variable,
                   const VariableNames& names) {
        if (names.isExternal) {
            return symbol.mReach > SymbolReach::File;
        }
        if (symbol.mReach > SymbolReach::File) {
            return variable.IsDeclaration();
        }
        const VDebugInfoNode* unit = mUnits.UnitOf(variable);
        const bool isFileKnown = symbol.mSourceFile != nullptr;
        if (unit == nullptr ||
            (isFileKnown && ShortUnitName(symbol.mSourceFile) != unit->GetName())) {
            return false;
        }
        const bool isLocating = mIsLocating.Get(
            unit, [this](const VDebugInfoNode* of) { return mLocating.HaveMade(*of); });
        return !isLocating || (isFileKnown && HasPlaceAt(*unit, symbol.mAddress));
    }

    /// True if the unit has a variable whose location is this address.
    bool HasPlaceAt(const VDebugInfoNode& unit, std::uint64_t address) {
        if (!mArePlacesKnown) {
            mArePlacesKnown = true;
            mSection.mDieNodes.ForEachOf(
                NodeGroup::Variables, [this](const VDebugInfoNode& variable) {
                    const VDebugInfoNode* of =
                        HasOwnPlace(variable) ? mUnits.UnitOf(variable) : nullptr;
                    if (of != nullptr) {
                        mPlaces.emplace_back(of->GetOffset(), variable.GetLocationAddress());
                    }
                });
            std::ranges::sort(mPlaces);
        }
        return std::ranges::binary_search(mPlaces, Place(unit.GetOffset(), address));
    }

    static bool HasOwnPlace(const VDebugInfoNode& variable) {
        return variable.HasLocation() && !variable.IsRegisterOrStackLocation() &&
               !variable.IsAddressFromSymbolTable();
    }

    void Log(const VDebugInfoNode& variable, const char* outcome) {
        if (VElfOptions::mIsLogFile != 0) {
            elflog("%d. Resolving Extern Variable without location attribute. (section offset: "
                   "0x%8.8" PRIx64 "): '%s': %s ",
                   mLineNumber++, std::uint64_t{variable.GetOffset()},
                   std::string(VariableNames(variable).name).c_str(), outcome);
        }
    }

    /// Section offset of a unit, and an address.
    using Place = std::pair<std::uint32_t, std::uint64_t>;

    VDwarf2Section& mSection;
    VElfFile& mFile;
    /// Variables that another one refers to as its specification.
    std::unordered_set<const VDebugInfoNode*> mCompleted;
    /// Names of all variables whose place is in the debug information.
    std::unordered_set<std::string_view, SeededHash> mPlacedNames;
    UnitsOfVariables mUnits;
    LocatingCompilers mLocating;
    OfLastScope<bool> mIsLocating;
    OfLastScope<bool> mIsFunction;
    OfLastScope<std::string> mPrefix;
    /// Ascending, once known. Few files ask.
    std::vector<Place> mPlaces;
    bool mArePlacesKnown = false;
    int mLineNumber = 0;
};

} // namespace

void ResolveDeclaredVariables(VDwarf2Section& section) {
    DeclaredVariables variables(section);
    section.mDieNodes.ForEachOf(NodeGroup::Variables, [&](VDebugInfoNode& variable) {
        if (!variable.HasLocation()) {
            variables.Resolve(variable);
        }
    });
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
