#include "diagnostics/ProducerDump.h"

#include "core/VElfOptions.h"
#include "diagnostics/ElfLog.h"

#include <ios>
#include <ostream>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

void WriteHead(const std::string& inputPath, std::span<const std::string_view> debugFormats) {
    std::ostream& dump = VElfOptions::mDumpProducerInfoFile;
    dump << "\nDumping compile units from file: '" << inputPath
         << "'\n>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>>\n\nFile contains:";
    for (const std::string_view format : debugFormats) {
        dump << '[' << format << ']';
    }
    dump << '\n';
}

} // namespace

bool OpenDumpProducerInfoFile(const std::string& inputPath,
                              std::span<const std::string_view> debugFormats) {
    const VString& name = VElfOptions::mDumpProducerInfoFileName;
    if (name.empty() ||
        !OpenDiagnosticFile(VElfOptions::mDumpProducerInfoFile, name, inputPath, std::ios::app)) {
        return false;
    }
    WriteHead(inputPath, debugFormats);
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
