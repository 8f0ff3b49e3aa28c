// All settings of the reader, and the run state beside them. They are class variables of
// `VElfFile`, which derives from this class; code that needs a setting but no file uses this
// class.
#pragma once

#include "../core/Export.h"
#include "../core/VDemanglingOptions.h"
#include "../core/VString.h"

#include <cstdint>
#include <fstream>
#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The options, process-wide and without locks. A host assigns them before `VDWARFReader::Read`;
/// they keep their values from one read to the next.
class BRINDLE_EXPORT VElfOptions {
public:
    /// @name Options
    /// @{

    /// Manner of reading. 0: the classic reading, which long-standing hosts rely on; non-zero: the
    /// full reading, which also reads what compilers of today write by default.
    static inline std::int32_t mIsFullReading = 0;
    /// 1: read only the symbol table, no debug section; 2: read the symbol table in every container
    /// after the debug sections; else: as is usual for the container.
    static inline std::int32_t mElfForceSymbolTable = 0;
    /// Which debug sections are read. 0: the first present of `.debug_info`, `.debug`, `.vdebug`;
    /// 1, 2, 3: only `.debug`, `.debug_info`, `.vdebug`; -1: every present one; else none.
    static inline std::int32_t mForceDebugSectionVersion = 0;
    /// Read-ahead window of the compile unit mapping in bytes; 0: none.
    static inline std::int32_t mElfFileReadBufferSize = 0;
    /// Non-zero: after a damaged compile unit the reader searches for the next valid one.
    static inline std::int32_t mTryReadCorruptedCompileUnits = 0;
    /// Non-zero: symbols of no type are kept as well, and a lookup by address prefers a symbol
    /// whose name agrees.
    static inline std::int32_t mSymTabSearchMode = 0;
    /// Non-zero: one leading "_" is dropped from delivered symbol names.
    static inline std::int32_t mRemoveLeadingUnderscore = 0;
    /// 2 or more: delivered symbol names are demangled.
    static inline std::int32_t mDemangleSymTabNames = 1;
    /// 2 or more: delivered symbol names are demangled, as by `mDemangleSymTabNames`.
    static inline std::int32_t mFixClassNameScopeSepar = 0;
    /// Settings of the demangler for symbol names.
    static inline VDemanglingOptions mDemanglingOptions;
    /// Word addressing of COFF files. 0: decided by the target id; 16: on; else: off.
    static inline std::int32_t mCoffDwarfAddressMode = 0;
    /// Width of `DW_FORM_ref_addr` in DWARF 2. 2: decided from the first producer text; 1: 4 bytes;
    /// 0: the address size.
    static inline std::int32_t mHandle_DW_FORM_REF_ADDR_AS_DW3 = 2;
    /// References that count from the start of the file. 2: decided from the first producer text;
    /// 1: on; 0: off.
    static inline std::int32_t mFixReferencesWithFileRelativeOffset = 0;
    /// Non-zero: a log file is written beside the input. Cleared when it can't be created.
    static inline std::int32_t mIsLogFile = 0;
    /// The log is flushed after each line.
    static inline bool mLogAutoFlush = false;
    /// Path of the dump of producer texts; empty: none.
    static inline VString mDumpProducerInfoFileName;
    /// Non-zero: the node tree is dumped to files beside the input after delivery.
    static inline std::int32_t mDumpDebugInfoNodes = 0;

    /// @}
    /// @name Run state
    /// Written by the reader itself.
    /// @{

    /// Set by reads that take `.debug_info` in the extended sense; stays set.
    static inline std::int32_t mUseCppExtensionDWARF2 = 0;
    /// Set to 0 at the start of each read.
    static inline std::int32_t mGlobalVarInfoSource = 0;
    /// Set to 0 by COFF files of word-addressed targets.
    static inline std::int32_t mIncrementBitFieldAddress = 1;
    /// The log while a read with a log runs; closed otherwise.
    static inline std::ofstream mLogFile;
    /// Path of the last log that was opened.
    static inline std::string mLogFileName;
    /// While this is set, the node tree isn't dumped. Cleared with each new log.
    static inline bool mIsLoggingPaused = false;
    /// Indentation of the indented log lines.
    static inline std::int8_t mLogNestLevel = 0;
    /// The producer dump while a read with one runs; closed otherwise.
    static inline std::ofstream mDumpProducerInfoFile;

    /// @}
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
