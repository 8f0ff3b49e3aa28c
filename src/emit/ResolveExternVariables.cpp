// A unit may declare a variable whose definition has no debug information, because it is in a
// library or in a file of assembly language.
//
//     // a.cpp, with -g                           // b.cpp, without
//     namespace motor { extern int total; }       namespace motor { int total = 1; }
//     int* first = &motor::total;
//
// The declaration has name and type, and the linker's symbol `_ZN5motor5totalE` has the address.
// This pass brings the two together; without it the variable would have an unknown type. A
// declaration that another entry completes is left alone: that entry has the address.
#include "container/VElfFile.h"
#include "diagnostics/ElfLog.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "nodes/VDebugInfoNode.h"

#include <cinttypes>
#include <cstdint>
#include <string>
#include <unordered_set>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// The walk over the variables without location.
class ExternVariables {
public:
    explicit ExternVariables(VDwarf2Section& section)
        : mFile(*section.mElfFile) {
        section.mDieNodes.ForEachOf(NodeGroup::Variables, [&](const VDebugInfoNode& variable) {
            if (const VDebugInfoNode* specification = variable.GetSpecificationNode()) {
                mCompleted.insert(specification);
            }
        });
        section.mSkipped.ForEachCompleted(
            section.mDieNodes,
            [this](const VDebugInfoNode& specification) { mCompleted.insert(&specification); });
    }

    void Resolve(VDebugInfoNode& variable) {
        if (mCompleted.contains(&variable)) {
            LogCompleted(variable);
            return;
        }
        const VElfSymbolAddress* symbol = FindSymbol(variable);
        if (symbol != nullptr) {
            variable.SetLocationFromSymbolTable(symbol->mAddress);
        } else {
            LogMissing(variable);
        }
    }

private:
    const VElfSymbolAddress* FindSymbol(const VDebugInfoNode& variable) {
        if (const VAttributeString linkageName = variable.GetLinkageNameAttribute();
            linkageName.mDefined) {
            if (const VElfSymbolAddress* symbol =
                    mFile.FindSymbolByName(std::string(linkageName.mValue))) {
                return symbol;
            }
        }
        // A symbol without a name can't be assigned.
        const char* name = variable.GetNameOrNull();
        return name != nullptr
                   ? mFile.mSymbolNamesMap.FindByName(std::string(variable.GetName()).c_str())
                   : nullptr;
    }

    void LogCompleted(const VDebugInfoNode& variable) {
        if (VElfOptions::mIsLogFile != 0) {
            elflog("%d. Resolving Extern Variable without location attribute. (section offset: "
                   "0x%8.8" PRIx64 "): Variable is used as specification. OK! ",
                   mLineNumber++, std::uint64_t{variable.GetOffset()});
        }
    }

    void LogMissing(const VDebugInfoNode& variable) {
        if (VElfOptions::mIsLogFile != 0) {
            elflog("%d. Resolving Extern Variable without location attribute. (section offset: "
                   "0x%8.8" PRIx64 "): Failed!: Variable '%s' not found in symbol table!! ",
                   mLineNumber++, std::uint64_t{variable.GetOffset()},
                   std::string(variable.GetName()).c_str());
        }
    }

    VElfFile& mFile;
    /// Variables that another one refers to as its specification.
    std::unordered_set<const VDebugInfoNode*> mCompleted;
    int mLineNumber = 0;
};

} // namespace

void ResolveExternVariables(VDwarf2Section& section) {
    ExternVariables variables(section);
    section.mDieNodes.ForEachOf(NodeGroup::Variables, [&](VDebugInfoNode& variable) {
        if (!variable.HasLocation()) {
            variables.Resolve(variable);
        }
    });
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
