// Names that A2L accepts, derived from names of a program: valid, unique, and stable from build to
// build.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>

namespace Tessel::Norn::Brindle::Program::A2l {

/// A name with the characters of A2L: letters, digits and "_", in parts separated by points, each
/// with indices in brackets at its end. "::" becomes a point, anything else "_". A name or part
/// that is too long is cut and ends in a hash of the whole.
std::string MakeIdentifier(std::string_view name);

/// A name of A2L in one part, without points and brackets.
std::string MakePartIdentifier(std::string_view name);

/// A text in quotes: `T<'"'>::v` becomes `"T<'\"'>::v"`. Line ends become "_".
std::string QuotedText(std::string_view text);

/// The text of what stands between quotes: a quote is written there as `\"` or `""`, a backslash as
/// `\\`. Other backslashes stay.
std::string UnquotedText(std::string_view content);

/// A hash of a text as 8 hexadecimal digits; always the same for the same text.
std::string ShortHash(std::string_view text);

/// Names of one kind, each given out once.
class IdentifierSet {
public:
    /// The name itself, or with "_2", "_3" and so on after it if it is taken.
    std::string Take(const std::string& name);

private:
    std::unordered_set<std::string> mTaken;
};

} // namespace Tessel::Norn::Brindle::Program::A2l
