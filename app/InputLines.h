// Arguments from standard input, one a line. Commands that take a list of things use it.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// The lines of an input without blanks around them; empty ones are left out.
std::vector<std::string> ReadLines(std::istream& input);

/// The arguments, with the lines of the input in place of the first "-".
std::vector<std::string> WithInputLines(const std::vector<std::string>& arguments,
                                        std::istream& input);

} // namespace Tessel::Norn::Brindle::Program
