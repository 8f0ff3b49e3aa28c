#include "container/VInputStream.h"

#include <cerrno>
#include <filesystem>
#include <limits>
#include <system_error>

namespace Tessel::Norn::Brindle::Reader::DWARF {

int VInputStream::Open(const std::string& path) {
    // Some systems open a directory like a file and fail at the first read only.
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) {
        return EISDIR;
    }
    errno = 0;
    mStream.open(path, std::ios::in | std::ios::binary);
    if (mStream.is_open()) {
        return 0;
    }
    return errno != 0 ? errno : EIO;
}

std::int64_t VInputStream::Length() {
    mStream.clear();
    mStream.seekg(0, std::ios::end);
    return mStream.tellg();
}

bool VInputStream::Seek(std::uint64_t filePosition) {
    if (filePosition > std::numeric_limits<std::int64_t>::max()) {
        return false;
    }
    mStream.clear();
    mStream.seekg(static_cast<std::streamoff>(filePosition));
    return mStream.good();
}

std::size_t VInputStream::Read(void* destination, std::size_t size) {
    mStream.read(static_cast<char*>(destination), static_cast<std::streamsize>(size));
    return static_cast<std::size_t>(mStream.gcount());
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
