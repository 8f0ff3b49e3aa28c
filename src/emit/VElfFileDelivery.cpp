// What a file delivers itself: it makes the factory through which everything is delivered, and
// delivers the data symbols that no debug information describes.
#include "container/SymbolName.h"
#include "container/VElfFile.h"
#include "core/LongTextAllowance.h"
#include "core/ModuleInfo.h"
#include "diagnostics/ElfLog.h"
#include "diagnostics/ErrorState.h"
#include "emit/SymbolOnlyEmission.h"
#include "emit/VCLIFactoryWrapper.h"

#include <optional>
#include <string_view>
#include <utility>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::size_t sMaximumFileNameLength = 260;

/// The units of local symbols; nothing for other symbols. Symbols of one file follow each other.
class UnitsOfSymbols {
public:
    explicit UnitsOfSymbols(const SourceUnits& units)
        : mUnits(units) {}

    std::optional<std::string_view> Of(const Elf32_Sym& symbol) {
        if (!symbol.IsLocal()) {
            return std::nullopt;
        }
        if (symbol.sourceFile != mSourceFile) {
            mSourceFile = symbol.sourceFile;
            mUnit = mUnits.UnitOf(mSourceFile);
        }
        return mUnit;
    }

private:
    const SourceUnits& mUnits;
    const char* mSourceFile = nullptr;
    std::string_view mUnit = SourceUnits::sAny;
};

} // namespace

VElfFile::VElfFile(const std::string& path, VDWARFReaderWrapper* reader, FileContent content)
    : mFactory(std::make_unique<VCLIFactoryWrapper>())
    , mReader(reader)
    , mPath(path)
    , mFileName(path, 0, sMaximumFileNameLength) {
    mContent = std::move(content);
}

VElfFile::~VElfFile() = default;

bool VElfFile::ProcessSymTabSection(bool onlyDumpToLog) {
    if (!mStrTabBuffer) {
        elfelog("String table not loaded!\n\n");
        return false;
    }
    if (mSecSymtab.sh_entsize == 0) {
        SetErrorState(ELFReadErrorEnum::ELFERR_SECTION_ITEM_SIZE);
        elfelog("There is not symbol table in this file!\n\n");
        return false;
    }
    SymbolOnlyEmission emission(*mFactory);
    if (!emission.Begin()) {
        return false;
    }
    LongTextAllowance longNames(mFileSize);
    UnitsOfSymbols units(mSourceUnits);
    return ForEachDeliverableSymbol([&](const Elf32_Sym& symbol) {
        const std::string_view rawName = CutSymbolName(symbol.name, longNames);
        char name[sSymbolNameBufferSize];
        name[rawName.copy(name, sSymbolNameBufferSize - 1)] = '\0';
        ProcessSymbolTableEntryName(name, sizeof name, symbol.st_name);
        if (onlyDumpToLog || !sCheckIsValidVariableType_FromMangledName(name)) {
            return;
        }
        if (mManner == ReadingManner::Classic) {
            emission.DeliverVariable(name, symbol.st_value, symbol.st_size);
        } else if (mDeliveredSymbols.AddSymbol(symbol.st_value, rawName, units.Of(symbol))) {
            const std::uint64_t address = symbol.st_value - ModuleInfo::GetModuleOffset();
            emission.CreateVariable(name, address, symbol.st_size);
        }
    });
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
