// Regular expressions for EXPECT_THAT. Those of GoogleTest know no character sets on Windows.
#pragma once

#include <gmock/gmock.h>
#include <regex>
#include <string>

namespace Tessel::Norn::Brindle::Tests {

/// The whole text matches a regular expression of ECMAScript.
MATCHER_P(MatchesPattern, pattern, std::string("matches the pattern ") + pattern) {
    return std::regex_match(std::string(arg), std::regex(pattern));
}

} // namespace Tessel::Norn::Brindle::Tests
