#include "PlainText.h"

namespace Tessel::Norn::Brindle::Program {

void ReplaceControlCharacters(std::string& text, std::size_t start) {
    for (std::size_t position = start; position < text.size(); ++position) {
        const auto byte = static_cast<unsigned char>(text[position]);
        const bool isHighControl =
            position > start && byte >= 0x80U && byte < 0xA0U && text[position - 1] == '\xC2';
        if (byte < 0x20U || byte == 0x7FU) {
            text[position] = '?';
        } else if (isHighControl) {
            text.replace(position - 1, 2, 2, '?');
        }
    }
}

} // namespace Tessel::Norn::Brindle::Program
