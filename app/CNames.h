// Names for a C header: each is one that C takes, and none stands for two things.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>

namespace Tessel::Norn::Brindle::Program {

/// One space of names of C: that of tags, that of ordinary names, or the members of a structure.
class CNames {
public:
    /// A text as a name of C: letters, digits and underscores, no keyword and no name of the
    /// headers that a header with fixed-width types includes.
    static std::string Plain(std::string_view text);

    /// True if a header with fixed-width types has the name already.
    static bool IsTaken(std::string_view name);

    /// The name of a text that nothing else has; from the second on with a number.
    std::string Take(std::string_view text);

private:
    std::unordered_set<std::string> mTaken;
};

} // namespace Tessel::Norn::Brindle::Program
