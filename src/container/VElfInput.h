// The opened input file and what its headers say about the target: all that a buffer needs of
// a `VElfFile`, which derives from this class.
#pragma once

#include "container/VInputStream.h"

#include <cstdint>
#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Input stream and target flags of one file.
class VElfInput {
public:
    /// Opens the file, or takes the one in memory if there is one, and takes its length. Sets no
    /// error state.
    /// @return 0, or the system's error code
    int OpenForReading(const std::string& path);

    /// The file in memory; null if it is read by its path.
    FileContent mContent;
    VInputStream mFile;
    /// Length of the input file in bytes.
    std::int64_t mFileSize = 0;
    /// Target data is big-endian.
    bool mIsMSBData = false;
    /// ELF class 64.
    bool mIs64Bit = false;
    /// The target counts memory in units of 16 bits.
    bool mIsWordAddressedTarget = false;
    /// The debug sections hold one data byte in two file bytes.
    bool mIsDsPicTarget = false;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
