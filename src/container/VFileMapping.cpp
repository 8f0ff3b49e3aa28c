#include "container/VFileMapping.h"

#include <utility>

#if __has_include(<sys/mman.h>)
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#else
#include "container/VInputStream.h"

#include <new>
#endif

namespace Tessel::Norn::Brindle::Reader::DWARF {

VFileMapping::~VFileMapping() {
    Unmap();
}

#if __has_include(<sys/mman.h>)

bool VFileMapping::Map(const std::string& path) {
    Unmap();
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    struct stat status = {};
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0 &&
        std::in_range<std::size_t>(status.st_size)) {
        const auto size = static_cast<std::size_t>(status.st_size);
        void* start = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
        if (start != MAP_FAILED) {
            mBytes = {static_cast<const std::uint8_t*>(start), size};
        }
    }
    close(file);
    return !mBytes.empty();
}

void VFileMapping::Unmap() {
    if (!mBytes.empty()) {
        munmap(const_cast<std::uint8_t*>(mBytes.data()), mBytes.size());
        mBytes = {};
    }
}

#else

bool VFileMapping::Map(const std::string& path) {
    Unmap();
    VInputStream stream;
    if (stream.Open(path) != 0) {
        return false;
    }
    const std::int64_t length = stream.Length();
    if (length <= 0 || !std::in_range<std::size_t>(length) || !stream.Seek(0)) {
        return false;
    }
    const auto size = static_cast<std::size_t>(length);
    mCopy.reset(new (std::nothrow) std::uint8_t[size]);
    if (mCopy && stream.Read(mCopy.get(), size) == size) {
        mBytes = {mCopy.get(), size};
    }
    return !mBytes.empty();
}

void VFileMapping::Unmap() {
    mBytes = {};
    mCopy.reset();
}

#endif

} // namespace Tessel::Norn::Brindle::Reader::DWARF
