// A whole file as read-only memory: mapped where the system maps files, else read. The only part of
// the library that knows the system; it sets no error state.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The bytes of one file. They keep their place until the next `Map` or the end of the object.
class VFileMapping {
public:
    VFileMapping() = default;
    ~VFileMapping();
    VFileMapping(const VFileMapping&) = delete;
    VFileMapping& operator=(const VFileMapping&) = delete;
    VFileMapping(VFileMapping&&) = delete;
    VFileMapping& operator=(VFileMapping&&) = delete;

    /// Maps a file, in place of one that was mapped before.
    /// @return false if the file can't be opened or has no content; there are no bytes then
    bool Map(const std::string& path);

    [[nodiscard]] std::span<const std::uint8_t> Bytes() const { return mBytes; }

private:
    void Unmap();

    std::span<const std::uint8_t> mBytes;
    /// Holds the bytes where they are read.
    std::unique_ptr<std::uint8_t[]> mCopy;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
