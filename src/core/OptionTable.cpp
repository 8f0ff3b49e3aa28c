#include "core/OptionTable.h"

#include "core/ModuleInfo.h"
#include "core/VElfOptions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <concepts>
#include <limits>
#include <optional>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

using Options = VElfOptions;

struct ParsedNumber {
    bool isNegative = false;
    std::uint64_t magnitude = 0;
};

/// A number in decimal, or in hexadecimal after 0x; with a sign if it is negative.
std::optional<ParsedNumber> ParseNumber(std::string_view text) {
    ParsedNumber number;
    number.isNegative = text.starts_with('-');
    if (number.isNegative) {
        text.remove_prefix(1);
    }
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (isHexadecimal) {
        text.remove_prefix(2);
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(),
                                              number.magnitude, isHexadecimal ? 16 : 10);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

template <std::integral Number>
bool Assign(Number* variable, std::string_view text) {
    using Limits = std::numeric_limits<Number>;
    const std::optional<ParsedNumber> number = ParseNumber(text);
    if (!number) {
        return false;
    }
    const std::uint64_t limit =
        number->isNegative ? 0 - static_cast<std::uint64_t>(Limits::min()) : Limits::max();
    if (number->magnitude > limit) {
        return false;
    }
    *variable = static_cast<Number>(number->isNegative ? 0 - number->magnitude : number->magnitude);
    return true;
}

bool Assign(bool* variable, std::string_view text) {
    const bool isTrue = text == "1" || text == "true";
    if (!isTrue && text != "0" && text != "false") {
        return false;
    }
    *variable = isTrue;
    return true;
}

bool Assign(std::string* variable, std::string_view text) {
    *variable = text;
    return true;
}

} // namespace

std::span<const OptionDescription> OptionTable() {
    static const std::array sTable = {
        OptionDescription{"mIsFullReading", &Options::mIsFullReading,
                          "0: classic reading; non-zero: full reading"},
        OptionDescription{"mElfForceSymbolTable", &Options::mElfForceSymbolTable,
                          "1: symbol table only; 2: symbol table after the debug sections"},
        OptionDescription{"mForceDebugSectionVersion", &Options::mForceDebugSectionVersion,
                          "which debug sections are read: 0, 1, 2, 3 or -1"},
        OptionDescription{"mElfFileReadBufferSize", &Options::mElfFileReadBufferSize,
                          "read-ahead window of the compile unit mapping in bytes"},
        OptionDescription{"mTryReadCorruptedCompileUnits", &Options::mTryReadCorruptedCompileUnits,
                          "non-zero: search for the next valid unit after a damaged one"},
        OptionDescription{"mSymTabSearchMode", &Options::mSymTabSearchMode,
                          "non-zero: keep symbols of no type, prefer agreeing names"},
        OptionDescription{"mRemoveLeadingUnderscore", &Options::mRemoveLeadingUnderscore,
                          "non-zero: drop one leading underscore of symbol names"},
        OptionDescription{"mDemangleSymTabNames", &Options::mDemangleSymTabNames,
                          "2 or more: demangle symbol names"},
        OptionDescription{"mFixClassNameScopeSepar", &Options::mFixClassNameScopeSepar,
                          "2 or more: demangle symbol names"},
        OptionDescription{"mDemanglingOptions.mScopeSeparator",
                          &Options::mDemanglingOptions.mScopeSeparator,
                          "text between the parts of a demangled name"},
        OptionDescription{"mDemanglingOptions.mIsTaskingProducer",
                          &Options::mDemanglingOptions.mIsTaskingProducer,
                          "read names of the second family"},
        OptionDescription{"mDemanglingOptions.mReplaceDot",
                          &Options::mDemanglingOptions.mReplaceDot, "replace dots in names"},
        OptionDescription{"mDemanglingOptions.mReplaceAngleBrackets",
                          &Options::mDemanglingOptions.mReplaceAngleBrackets,
                          "replace angle brackets in names"},
        OptionDescription{"mDemanglingOptions.mStripUnderscore",
                          &Options::mDemanglingOptions.mStripUnderscore,
                          "remove one leading underscore of the base name"},
        OptionDescription{"mCoffDwarfAddressMode", &Options::mCoffDwarfAddressMode,
                          "word addressing of COFF files: 0: by target, 16: on, else off"},
        OptionDescription{"mHandle_DW_FORM_REF_ADDR_AS_DW3",
                          &Options::mHandle_DW_FORM_REF_ADDR_AS_DW3,
                          "DW_FORM_ref_addr: 2: by producer, 1: 4 bytes, 0: address size"},
        OptionDescription{"mFixReferencesWithFileRelativeOffset",
                          &Options::mFixReferencesWithFileRelativeOffset,
                          "references relative to the file: 2: by producer, 1: on, 0: off"},
        OptionDescription{"mIsLogFile", &Options::mIsLogFile,
                          "non-zero: write a log file beside the input"},
        OptionDescription{"mLogAutoFlush", &Options::mLogAutoFlush,
                          "flush the log after each line"},
        OptionDescription{"mDumpProducerInfoFileName", &Options::mDumpProducerInfoFileName,
                          "path of the producer dump"},
        OptionDescription{"mDumpDebugInfoNodes", &Options::mDumpDebugInfoNodes,
                          "non-zero: dump the node tree to files beside the input"},
        OptionDescription{"mModuleOffset", &ModuleInfo::mModuleOffset,
                          "subtracted from the address of each global"},
    };
    return sTable;
}

const OptionDescription* FindOption(std::string_view name) {
    const std::span<const OptionDescription> table = OptionTable();
    const auto found = std::ranges::find(table, name, &OptionDescription::name);
    return found == table.end() ? nullptr : &*found;
}

bool AssignOption(const OptionDescription& option, std::string_view text) {
    return std::visit([text](auto* variable) { return Assign(variable, text); }, option.variable);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
