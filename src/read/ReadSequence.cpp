#include "read/ReadSequence.h"

#include "container/VElfFile.h"
#include "diagnostics/ElfLog.h"
#include "diagnostics/ErrorState.h"
#include "diagnostics/ProducerDump.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/VCLIFactoryWrapper.h"
#include "host/VDWARFReader.h"
#include "host/VDWARFReaderWrapper.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::int32_t sErrorTextSize = 1024;
constexpr std::int32_t sErrorSeverity = 2;
constexpr std::uint32_t sReadFailedCode = 4112;

/// What is read of a file, in this order.
struct ReadSelection {
    bool dwarf2 = false;
    bool dwarf1 = false;
    bool nec = false;

    [[nodiscard]] bool IsEmpty() const { return !dwarf2 && !dwarf1 && !nec; }
};

void StartLog(const std::string& path) {
    if (VElfOptions::mIsLogFile == 0) {
        return;
    }
    s_initElfLogTimer();
    if (!CreateLogFile(path)) {
        VElfOptions::mIsLogFile = 0;
    }
}

/// Closes log and dump on every way out of a run, an exception of the host included.
class DiagnosticsCloser {
public:
    DiagnosticsCloser() = default;
    ~DiagnosticsCloser() {
        CloseLogFile();
        CloseDumpProducerInfoFile(nullptr);
    }
    DiagnosticsCloser(const DiagnosticsCloser&) = delete;
    DiagnosticsCloser& operator=(const DiagnosticsCloser&) = delete;
    DiagnosticsCloser(DiagnosticsCloser&&) = delete;
    DiagnosticsCloser& operator=(DiagnosticsCloser&&) = delete;
};

void StoreErrorText(const std::string& text, char* errorText, std::int32_t errorTextSize) {
    if (errorText == nullptr || errorTextSize <= 0) {
        return;
    }
    errorText[text.copy(errorText, static_cast<std::size_t>(errorTextSize) - 1)] = '\0';
}

ReadSelection SelectFirstPresent(const VElfFile& file) {
    ReadSelection selection;
    selection.dwarf2 = file.mSecDebugInfo.IsPresent();
    selection.dwarf1 = !selection.dwarf2 && file.mSecDebug.IsPresent();
    selection.nec = !selection.dwarf2 && !selection.dwarf1 && file.mSecVdebug.IsPresent();
    return selection;
}

ReadSelection SelectDebugSections(const VElfFile& file) {
    switch (VElfOptions::mForceDebugSectionVersion) {
    case 0:
        return SelectFirstPresent(file);
    case 1:
        return {.dwarf1 = file.mSecDebug.IsPresent()};
    case 2:
        VElfOptions::mUseCppExtensionDWARF2 = 1;
        return {.dwarf2 = file.mSecDebugInfo.IsPresent()};
    case 3:
        return {.nec = file.mSecVdebug.IsPresent()};
    case -1:
        VElfOptions::mUseCppExtensionDWARF2 = 1;
        return {.dwarf2 = file.mSecDebugInfo.IsPresent(),
                .dwarf1 = file.mSecDebug.IsPresent(),
                .nec = file.mSecVdebug.IsPresent()};
    default:
        return {};
    }
}

bool ReadSymbolTable(VElfFile& file) {
    // Symbols that aren't linked yet have no addresses.
    if (file.IsUnlinked()) {
        return true;
    }
    if (!file.LoadStrTabSection() || !file.ProcessSymTabSection(false)) {
        return false;
    }
    _CleanProcessingMaps(file);
    return true;
}

bool ReadSymbolTableStep(DWARFContainerType container, VElfFile& file) {
    if (container == DWARFContainerType::Container_PE) {
        _CleanProcessingMaps(file);
        return true;
    }
    return ReadSymbolTable(file);
}

bool FinishWithoutDebugSection(DWARFContainerType container, VElfFile& file,
                               bool isSymbolTableWanted) {
    switch (container) {
    case DWARFContainerType::Container_COFF:
        return Fail(ELFReadErrorEnum::ELFERR_COFF_NO_DWARF);
    case DWARFContainerType::Container_ELF:
        return ReadSymbolTable(file);
    default:
        return !isSymbolTableWanted || ReadSymbolTableStep(container, file);
    }
}

bool ReadPEHeaders(VElfFile& file) {
    if (!file.ReadPEFileDwarfSections()) {
        return false;
    }
    file.mIsMSBData = false;
    VElfOptions::mUseCppExtensionDWARF2 = 1;
    // The debug information is worth having even without the symbols.
    file.ReadPEFileSymbolTable();
    return true;
}

/// Opens the producer dump with the formats that the file has, whether they are read or not.
void StartProducerDump(const VElfFile& file) {
    std::vector<std::string_view> formats;
    const auto addPresent = [&](const Elf64_Shdr& section, std::string_view format) {
        if (section.IsPresent()) {
            formats.push_back(format);
        }
    };
    addPresent(file.mSecDebugInfo, "DWARF2");
    addPresent(file.mSecDebug, "DWARF1");
    addPresent(file.mSecVdebug, "NEC");
    OpenDumpProducerInfoFile(file.GetInputPath(), formats);
}

bool RunPhases(DWARFContainerType container, VElfFile& file, VDWARFReaderWrapper* wrapper) {
    if (!_ReadElfAndSectionHeaders(container, file)) {
        return false;
    }
    file.mFactory->DescribeImage(file.DescribeImage(container));
    if (!VElfOptions::mDumpProducerInfoFileName.empty()) {
        StartProducerDump(file);
    }
    if (!_ReadoutSymbolTablesAndDebugSections(container, file, wrapper)) {
        return false;
    }
    // Tables that couldn't be loaded counted as missing, which is right for damaged headers only.
    return file.mManner == ReadingManner::Classic || !file.mFile.IsCut() ||
           Fail(ELFReadErrorEnum::ELFERR_READ_FAILED);
}

} // namespace

bool VDWARFReader::Read(const std::string& path, DWARFContainerType container) {
    return ReadInput(path, nullptr, container);
}

bool VDWARFReader::Read(const FileContent& content, const std::string& name,
                        DWARFContainerType container) {
    return ReadInput(name, content, container);
}

bool VDWARFReader::ReadInput(const std::string& path, const FileContent& content,
                             DWARFContainerType container) {
    VDWARFReaderWrapperBridge bridge(*this);
    VDWARFReaderWrapper wrapper(&bridge);
    char errorText[sErrorTextSize] = {};
    mRemarks = {};
    mFacts = {};
    if (DWARF2StdImpl(&wrapper, path, errorText, sErrorTextSize, container, content)) {
        return true;
    }
    SignalError(sErrorSeverity, sReadFailedCode, "", errorText);
    return false;
}

bool DWARF2StdImpl(VDWARFReaderWrapper* wrapper, const std::string& path, char* errorText,
                   std::int32_t errorTextSize, DWARFContainerType container,
                   const FileContent& content) {
    VElfOptions::mGlobalVarInfoSource = 0;
    const DiagnosticsCloser diagnosticsCloser;
    StartLog(path);
    tag_alignment.clear();
    VElfFile file(path, wrapper, content);
    const bool result = RunPhases(container, file, wrapper);
    if (wrapper != nullptr) {
        wrapper->SetRemarks(file.mRemarks);
        wrapper->SetFacts(file.mFacts);
    }
    if (!result) {
        std::string message;
        ReportElfError(message);
        StoreErrorText(message, errorText, errorTextSize);
        CloseDumpProducerInfoFile(message.c_str());
    }
    return result;
}

bool _ReadElfAndSectionHeaders(DWARFContainerType container, VElfFile& file) {
    switch (container) {
    case DWARFContainerType::Container_COFF: {
        VCoffFileHeader header;
        return file.ReadCoffHeader(header) && file.ReadCoffSectionHeader(header);
    }
    case DWARFContainerType::Container_PE:
        return ReadPEHeaders(file);
    default:
        return file.ReadElfHeader() && file.LoadSectionInfos();
    }
}

bool _ReadoutSymbolTablesAndDebugSections(DWARFContainerType container, VElfFile& file,
                                          VDWARFReaderWrapper* wrapper) {
    if (VElfOptions::mElfForceSymbolTable == 1) {
        return ReadSymbolTableStep(container, file);
    }
    bool isSymbolTableWanted = VElfOptions::mElfForceSymbolTable == 2;
    const ReadSelection selection = SelectDebugSections(file);
    if (selection.IsEmpty()) {
        return FinishWithoutDebugSection(container, file, isSymbolTableWanted);
    }
    if (selection.dwarf2) {
        if (!_ReadDWARF2Section(file, wrapper)) {
            return false;
        }
        isSymbolTableWanted = isSymbolTableWanted || container == DWARFContainerType::Container_ELF;
    }
    if (selection.dwarf1 && !_ReadDWARF1Section(file)) {
        return false;
    }
    if (selection.nec && !_ReadNECDebugSection(file)) {
        return false;
    }
    return !isSymbolTableWanted || ReadSymbolTableStep(container, file);
}

bool _ReadDWARF2Section(VElfFile& file, VDWARFReaderWrapper* wrapper) {
    VDwarf2Section section;
    if (!section.Init(file, wrapper)) {
        return false;
    }
    // Decoding asks for symbols by address, so they must be loaded before the first entry.
    const bool hasSymbols =
        file.mSecSymtab.IsPresent() && file.mSecStrtab.IsPresent() && !file.IsUnlinked();
    if (hasSymbols && !(file.LoadStrTabSection() && file.LoadSymbolMap(file.mSymbolMap))) {
        return false;
    }
    if (!section.ProcessDebugSection()) {
        return false;
    }
    _CleanProcessingMaps(file);
    return true;
}

bool _ReadDWARF1Section(VElfFile& /*file*/) {
    gElfReaderErrorFlag = ELFReadErrorEnum::ELFERR_DWARF1;
    return false;
}

bool _ReadNECDebugSection(VElfFile& /*file*/) {
    return false;
}

void _CleanProcessingMaps(VElfFile& file) {
    file.mNamesObjectMap.Clear();
    file.mSymbolMap.Clear();
    file.mSymbolNamesMap.Clear();
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
