#include "container/VInputStream.h"

#include "core/FilePath.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Reads of at least this size go to the file.
constexpr std::size_t sWindowSize = 8192;

/// Kept in front of a wanted position, since the search for unit headers steps back.
constexpr std::uint64_t sBytesOfReadAhead = 128;

} // namespace

int VInputStream::Open(const std::string& name) {
    const std::filesystem::path path = PathToOpen(name);
    // Some systems open a directory like a file, and fail only at the first read.
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(path, ignored);
    if (std::filesystem::is_directory(status)) {
        return EISDIR;
    }
    if (std::filesystem::is_fifo(status)) {
        return ESPIPE;
    }
    Open(FileContent());
    errno = 0;
    mStream.open(path, std::ios::in | std::ios::binary);
    if (mStream.is_open()) {
        return 0;
    }
    return errno != 0 ? errno : EIO;
}

void VInputStream::Open(FileContent content) {
    mStream.close();
    mContent = std::move(content);
    mLength = 0;
    mIsCut = false;
    mPosition = 0;
    mWindow.clear();
}

std::int64_t VInputStream::Length() {
    if (mContent != nullptr) {
        return static_cast<std::int64_t>(mContent->size());
    }
    mStream.clear();
    mStream.seekg(0, std::ios::end);
    const std::int64_t length = mStream.tellg();
    mLength = static_cast<std::uint64_t>(std::max<std::int64_t>(length, 0));
    return length;
}

bool VInputStream::Seek(std::uint64_t filePosition) {
    mPosition = filePosition;
    return IsOpen() && filePosition <= std::numeric_limits<std::int64_t>::max();
}

std::size_t VInputStream::Read(void* destination, std::size_t size) {
    if (mContent != nullptr) {
        return ReadContent(destination, size);
    }
    if (size >= sWindowSize) {
        const std::size_t count = ReadFile(mPosition, destination, size);
        mPosition += count;
        return count;
    }
    if (!WindowHolds(size)) {
        mWindowStart = mPosition - std::min(mPosition, sBytesOfReadAhead);
        mWindow.resize(sWindowSize + sBytesOfReadAhead);
        mWindow.resize(ReadFile(mWindowStart, mWindow.data(), mWindow.size()));
    }
    const std::uint64_t start = std::min(mPosition - mWindowStart, std::uint64_t{mWindow.size()});
    const std::size_t count = std::min(size, mWindow.size() - static_cast<std::size_t>(start));
    std::copy_n(mWindow.begin() + static_cast<std::ptrdiff_t>(start), count,
                static_cast<char*>(destination));
    mPosition += count;
    return count;
}

std::size_t VInputStream::ReadContent(void* destination, std::size_t size) {
    const std::uint64_t start = std::min(mPosition, std::uint64_t{mContent->size()});
    const std::size_t count = std::min(size, mContent->size() - static_cast<std::size_t>(start));
    std::copy_n(mContent->begin() + static_cast<std::ptrdiff_t>(start), count,
                static_cast<std::uint8_t*>(destination));
    mPosition += count;
    return count;
}

std::size_t VInputStream::ReadFile(std::uint64_t filePosition, void* destination,
                                   std::size_t size) {
    mStream.clear();
    mStream.seekg(static_cast<std::streamoff>(filePosition));
    mStream.read(static_cast<char*>(destination), static_cast<std::streamsize>(size));
    const auto count = static_cast<std::size_t>(mStream.gcount());
    const std::uint64_t told = mLength - std::min(filePosition, mLength);
    mIsCut = mIsCut || count < std::min<std::uint64_t>(size, told);
    return count;
}

bool VInputStream::WindowHolds(std::size_t size) const {
    const std::uint64_t windowEnd = mWindowStart + mWindow.size();
    return mPosition >= mWindowStart && mPosition <= windowEnd && size <= windowEnd - mPosition;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
