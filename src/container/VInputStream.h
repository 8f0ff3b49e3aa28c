// The stream behind an input file: positioned reads of bytes, and nothing else. It knows no format
// and sets no error state; its users know what a failure means. Small reads close to each other, as
// the walk over unit headers makes them by the million, are served from one read of the file. A
// file that a host holds in memory is read where it lies.
#pragma once

#include "core/FileContent.h"

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// A file opened for reading, without text translation. Positions and lengths are in bytes.
class VInputStream {
public:
    /// Opens a file in place of the one that was open. A directory counts as a file that can't be
    /// opened, and so does a pipe, whose opening would wait for a writer.
    /// @param name UTF-8 where the system's paths are wide
    /// @return 0, or the system's error code
    int Open(const std::string& name);
    /// Takes a file in memory in place of the one that was open.
    /// @param content not null
    void Open(FileContent content);

    /// Length of the file, -1 if the system can't say.
    std::int64_t Length();
    /// True if a read gave fewer bytes than the length that was told: the file was cut meanwhile,
    /// or the system can't read it.
    [[nodiscard]] bool IsCut() const { return mIsCut; }

    /// Moves to a position, which may lie beyond the end.
    bool Seek(std::uint64_t filePosition);

    /// Reads up to `size` bytes and moves past them.
    /// @return the number of bytes read; fewer than `size` at the end of the file or on a fault
    std::size_t Read(void* destination, std::size_t size);

private:
    [[nodiscard]] bool IsOpen() const { return mContent != nullptr || mStream.is_open(); }
    std::size_t ReadContent(void* destination, std::size_t size);
    std::size_t ReadFile(std::uint64_t filePosition, void* destination, std::size_t size);
    [[nodiscard]] bool WindowHolds(std::size_t size) const;

    std::ifstream mStream;
    /// The file in memory, which is read instead of the stream; null if there is none.
    FileContent mContent;
    /// The length that was told; 0 before.
    std::uint64_t mLength = 0;
    bool mIsCut = false;
    /// File position of the next read.
    std::uint64_t mPosition = 0;
    /// Bytes of the file from `mWindowStart` on.
    std::vector<char> mWindow;
    std::uint64_t mWindowStart = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
