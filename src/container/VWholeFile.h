// A whole file in memory. It is read, not mapped: a mapping follows what others do to the file, and
// one whose file shrinks ends the process. It sets no error state.
#pragma once

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

    [[nodiscard]] std::span<const std::uint8_t> Bytes() const { return {mBytes.get(), mSize}; }

private:
    std::unique_ptr<std::uint8_t[]> mBytes;
    std::size_t mSize = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
