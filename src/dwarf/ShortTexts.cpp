#include "dwarf/ShortTexts.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

ShortTexts::ShortTexts(std::string_view texts)
    : mHasTerminator((texts.size() / sBlockSize + 1) / sWordBits + 2) {
    std::size_t end = texts.find('\0');
    while (end != std::string_view::npos) {
        const std::size_t block = end / sBlockSize;
        NoteTerminator(block);
        // Once a block has a terminator, the search continues in the next one.
        end = texts.find('\0', (block + 1) * sBlockSize);
    }
    // A terminator follows the section, even if the file has none.
    NoteTerminator(texts.size() / sBlockSize + 1);
}

void ShortTexts::NoteTerminator(std::size_t block) {
    mHasTerminator[block / sWordBits] |= std::uint64_t{1} << (block % sWordBits);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
