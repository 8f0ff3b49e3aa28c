#include "core/VString.h"

#include <algorithm>
#include <cctype>

namespace Tessel::Norn::Brindle::Reader::DWARF {

VString::VString(const std::string& text)
    : std::string(text) {}

VString::VString(const std::string& text, std::size_t position, std::size_t count)
    : std::string(text, position, count) {}

VString::VString(const char* text)
    : std::string(text == nullptr ? "" : text) {}

VString& VString::operator=(const char* text) {
    assign(text == nullptr ? "" : text);
    return *this;
}

VString& VString::operator=(char character) {
    if (character == '\0') {
        clear();
    } else {
        assign(1, character);
    }
    return *this;
}

bool VString::is_null() const {
    return empty();
}

bool VString::contains(char character) const {
    return find(character) != npos;
}

void VString::make_upper() {
    std::transform(begin(), end(), begin(), [](unsigned char character) {
        return static_cast<char>(std::toupper(character));
    });
}

void VString::make_lower() {
    std::transform(begin(), end(), begin(), [](unsigned char character) {
        return static_cast<char>(std::tolower(character));
    });
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
