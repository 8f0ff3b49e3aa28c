// A whole file in memory. It is read, not mapped: others may change a mapped file, and access to
// one that shrank ends the process. It sets no error state.
#pragma once

#include "core/FileContent.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The bytes of one file as they were when it was read. They keep their place until the next `Load`
/// or the end of the object.
class VWholeFile {
public:
    /// Reads a file, in place of one that was read before.
    /// @return false if the file can't be opened or read to its end, has no content or doesn't fit
    ///         into memory; there are no bytes then
    bool Load(const std::string& path);

    /// Takes a file in memory, in place of one that was read before.
    /// @return false if it is null or has no content; there are no bytes then
    bool Take(FileContent content);

    [[nodiscard]] std::span<const std::uint8_t> Bytes() const { return mView; }

private:
    std::unique_ptr<std::uint8_t[]> mBytes;
    FileContent mContent;
    /// The file's bytes, in whichever of the two holds them.
    std::span<const std::uint8_t> mView;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
