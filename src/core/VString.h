// The reader's string class: a standard byte string with a few additions. There is no null state
// apart from emptiness.
#pragma once

#include "../core/Export.h"

#include <cstddef>
#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// A byte string that accepts null pointers and can be searched for a character.
class BRINDLE_EXPORT VString : public std::string {
public:
    VString() = default;
    /// A copy of a standard string.
    VString(const std::string& text);
    /// Up to `count` characters of `text` from `position` on; `position` may not pass its end.
    VString(const std::string& text, std::size_t position, std::size_t count);
    /// A null pointer gives an empty string.
    VString(const char* text);

    /// A null pointer gives an empty string.
    VString& operator=(const char* text);
    /// The character zero gives an empty string.
    VString& operator=(char character);

    /// True for an empty string.
    [[nodiscard]] bool is_null() const;
    /// True if the character occurs in the string.
    [[nodiscard]] bool contains(char character) const;
    /// Converts to upper case in place, byte by byte, by the C locale in force.
    void make_upper();
    /// Converts to lower case in place, byte by byte, by the C locale in force.
    void make_lower();
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
