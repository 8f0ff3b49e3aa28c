#include "diagnostics/ProducerDump.h"

#include "container/VElfFile.h"
#include "core/VElfOptions.h"
#include "diagnostics/ElfLog.h"

#include <ios>
#include <ostream>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

void WriteFormat(const Elf64_Shdr& section, const char* format) {
    if (section.IsPresent()) {
        VElfOptions::mDumpProducerInfoFile << format;
    }
}

void WriteHead(const VElfFile& file) {
    VElfOptions::mDumpProducerInfoFile
        << "\nDumping compile units from file: '" << file.GetInputPath()
        << "'\n>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>\n\nFile contains:";
    WriteFormat(file.mSecDebugInfo, "[DWARF2]");
    WriteFormat(file.mSecDebug, "[DWARF1]");
    WriteFormat(file.mSecVdebug, "[NEC]");
    VElfOptions::mDumpProducerInfoFile << '\n';
}

} // namespace

bool OpenDumpProducerInfoFile(const VElfFile& file) {
    const VString& name = VElfOptions::mDumpProducerInfoFileName;
    if (name.empty() || !OpenDiagnosticFile(VElfOptions::mDumpProducerInfoFile, name,
                                            file.GetInputPath(), std::ios::app)) {
        return false;
    }
    WriteHead(file);
    return true;
}

void CloseDumpProducerInfoFile(const char* message) {
    if (!VElfOptions::mDumpProducerInfoFile.is_open()) {
        return;
    }
    if (message != nullptr) {
        VElfOptions::mDumpProducerInfoFile << "\nError: " << message << " \n";
    }
    VElfOptions::mDumpProducerInfoFile.close();
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
