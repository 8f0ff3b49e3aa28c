// Names for a C header: each is valid in C, and none stands for two things.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>

namespace Tessel::Norn::Brindle::Program {

/// One namespace of C: that of tags, of ordinary names, or of the members of a structure.
class CNames {
public:
    /// A text as a name of C: letters, digits and underscores; neither a keyword nor a name of the
    /// headers that a header with fixed-width types includes.
    static std::string Plain(std::string_view text);

    /// True if a header with fixed-width types has the name already.
    static bool IsTaken(std::string_view name);

    /// A unique name for a text; from the second use on with a number.
    std::string Take(std::string_view text);

private:
    std::unordered_set<std::string> mTaken;
};

} // namespace Tessel::Norn::Brindle::Program
