// The stream behind an input file: positioned reads of bytes, and nothing else. It knows no format
// and sets no error state; its users tell what a failure means.
#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// A file opened for reading, without text translation. Positions and lengths are in bytes.
class VInputStream {
public:
    /// Opens a file; a directory counts as a file that can't be opened.
    /// @return 0, or the system's error code
    int Open(const std::string& path);

    /// Length of the file, -1 if the system doesn't tell it.
    std::int64_t Length();

    /// Moves to a position, which may lie beyond the end.
    bool Seek(std::uint64_t filePosition);

    /// Reads up to `size` bytes and moves behind them.
    /// @return the number of bytes read; fewer than `size` at the end of the file or on a fault
    std::size_t Read(void* destination, std::size_t size);

private:
    std::ifstream mStream;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
