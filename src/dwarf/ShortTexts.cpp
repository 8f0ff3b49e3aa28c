#include "dwarf/ShortTexts.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

ShortTexts::ShortTexts(std::string_view texts) {
    const std::size_t blockCount = (texts.size() + sBlockSize - 1) / sBlockSize;
    mIsTerminated.assign(blockCount + 1, true);
    for (std::size_t block = 0; block < blockCount; ++block) {
        const std::string_view bytes = texts.substr(block * sBlockSize, sBlockSize);
        if (bytes.find('\0') == std::string_view::npos) {
            mIsTerminated[block] = false;
            mAreAll = false;
        }
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
