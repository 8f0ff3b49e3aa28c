#include "container/VWholeFile.h"

#include "container/VInputStream.h"

#include <new>
#include <utility>

namespace Tessel::Norn::Brindle::Reader::DWARF {

bool VWholeFile::Load(const std::string& path) {
    Take(nullptr);
    VInputStream stream;
    if (stream.Open(path) != 0) {
        return false;
    }
    const std::int64_t length = stream.Length();
    if (length <= 0 || !std::in_range<std::size_t>(length) || !stream.Seek(0)) {
        return false;
    }
    const auto size = static_cast<std::size_t>(length);
    mBytes.reset(new (std::nothrow) std::uint8_t[size]);
    if (!mBytes || stream.Read(mBytes.get(), size) != size) {
        mBytes.reset();
        return false;
    }
    mView = {mBytes.get(), size};
    return true;
}

bool VWholeFile::Take(FileContent content) {
    mBytes.reset();
    mContent = std::move(content);
    mView = {};
    if (mContent != nullptr) {
        mView = *mContent;
    }
    return !mView.empty();
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
