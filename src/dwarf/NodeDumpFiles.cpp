// The dump of the node tree to text files beside the input, for a person who examines a file that
// was read wrongly. Nothing reads it back. nodes/NodeDump writes the text of a node.
#include "container/VElfFile.h"
#include "core/FilePath.h"
#include "dwarf/VDwarf2Section.h"
#include "host/VDWARFReaderWrapper.h"
#include "nodes/VDebugInfoNode.h"

#include <algorithm>
#include <fstream>
#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// If a file has more bytes than this, checked after every so many nodes, another one follows.
constexpr std::streamoff sMaximumFileSize = 184320000;
constexpr std::size_t sFileSizeCheckInterval = 200;

/// Bytes that all files together may take. Summaries repeat the contents of a structure for each
/// node that refers to it: without a limit a small damaged file could fill a disk.
constexpr std::uint64_t sAlwaysDumped = std::uint64_t{1} << 30U;
constexpr std::uint64_t sDumpedPerSectionByte = 1024;

constexpr std::int32_t sNoRecord = -1;

/// Bytes in the file so far, 0 if it can't be written.
std::uint64_t LengthOf(std::ofstream& file) {
    return static_cast<std::uint64_t>(std::max(std::streamoff{file.tellp()}, std::streamoff{0}));
}

std::uint64_t MostDumpedBytes(const VElfFile& file) {
    const std::uint64_t sectionSize =
        std::min(file.mSecDebugInfo.sh_size, static_cast<std::uint64_t>(file.mFileSize));
    return sAlwaysDumped + sDumpedPerSectionByte * sectionSize;
}

} // namespace

bool VDwarf2Section::DumpDebugInfoNodes() {
    if (VElfOptions::mIsLoggingPaused) {
        return true;
    }
    std::ofstream file;
    int part = 0;
    if (!OpenNextDumpFile(file, mElfFile->GetInputPath(), part, 0)) {
        return false;
    }
    const std::uint64_t mostBytes = MostDumpedBytes(*mElfFile);
    std::uint64_t bytesInEarlierFiles = 0;
    int count = 0;
    bool isChangeDue = false;
    for (const VDebugInfoNode* node : mDieNodes.InOffsetOrder()) {
        if (static_cast<std::size_t>(count) % sFileSizeCheckInterval == 0) {
            isChangeDue = isChangeDue || file.tellp() > sMaximumFileSize;
            if (bytesInEarlierFiles + LengthOf(file) > mostBytes) {
                file << "log is too long, the rest is left out.....\n";
                break;
            }
        }
        if (isChangeDue && node->GetParent() == nullptr) {
            isChangeDue = false;
            bytesInEarlierFiles += LengthOf(file);
            if (!OpenNextDumpFile(file, mElfFile->GetInputPath(), part, node->GetNodeRecord())) {
                return false;
            }
        }
        node->DumpWithHead(file, ++count);
    }
    file.close();
    if (mReader != nullptr) {
        mReader->SetProgressText("  Done!");
    }
    return true;
}

bool VDwarf2Section::OpenNextDumpFile(std::ofstream& file, const std::string& inputName, int& part,
                                      std::int32_t record) const {
    if (file.is_open()) {
        file << "log continues in next file.....\n";
        file.close();
    }
    std::string name = inputName + ".debugInfoNodes" + std::to_string(part++);
    if (record != sNoRecord) {
        name += ".rec" + std::to_string(record);
    }
    name += ".log.txt";
    if (mReader != nullptr) {
        mReader->SetProgressText(("Writing dump file..." + name).c_str());
    }
    file.clear();
    file.open(PathToOpen(name), std::ios::binary | std::ios::trunc);
    return file.is_open();
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
