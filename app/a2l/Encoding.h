// Files in UTF-16 and UTF-32, which A2L allows beside ASCII, Latin-1 and UTF-8. A source is decoded
// when read and encoded when written; everything between sees UTF-8.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Program::A2l {

/// What the bytes of a file are, as its byte order mark says.
enum class Encoding : std::uint8_t {
    /// An encoding with ASCII in single bytes. It stays undecoded.
    Bytes,
    Utf16Little,
    Utf16Big,
    Utf32Little,
    Utf32Big,
};

Encoding EncodingOf(std::string_view bytes);

/// The text in UTF-8, its byte order mark included. Lone surrogates pass through as well, so that
/// `Encode` returns exactly the same bytes. Nothing if the bytes end within a character or aren't
/// valid in Unicode.
std::optional<std::string> Decode(std::string_view bytes, Encoding encoding);

/// The bytes of a text that `Decode` returned, or of a part of it that cuts no character.
std::string Encode(std::string_view text, Encoding encoding);

} // namespace Tessel::Norn::Brindle::Program::A2l
