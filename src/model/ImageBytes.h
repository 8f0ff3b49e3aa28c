// The contents of an image by address: the description of a file and, on demand, the bytes that its
// sections give the target's memory.
#pragma once

#include "host/ImageDescription.h"

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {

/// Longest run of bytes outside the file that is answered with zeros: 256 MiB.
inline constexpr std::uint64_t kLongestZeroRun = std::uint64_t{256} * 1024 * 1024;

/// One image. The file is opened by the first request for bytes and stays open, unless it lies in
/// memory. Requests that walk through the memory are served from a window of the file.
class ImageBytes {
public:
    ImageBytes() = default;
    explicit ImageBytes(ImageDescription description);

    [[nodiscard]] const ImageDescription& Description() const { return mDescription; }

    /// The initial bytes of a range of memory; see `Model::InitialBytes`.
    std::vector<std::uint8_t> At(std::uint64_t address, std::uint64_t size);

private:
    /// Copies bytes of the file; false if it doesn't have them all.
    bool ReadFile(std::uint64_t filePosition, std::vector<std::uint8_t>& bytes, std::size_t count);
    bool ReadDirectly(std::uint64_t filePosition, char* destination, std::size_t count);
    bool Open();

    ImageDescription mDescription;
    std::ifstream mFile;
    bool mIsOpenTried = false;
    /// Bytes of the file from `mWindowStart` on.
    std::vector<char> mWindow;
    std::uint64_t mWindowStart = 0;
};

} // namespace Tessel::Norn::Brindle::DataModel
