// Where a command writes. A result over a file that the command reads, or over another result,
// would destroy it; commands ask here before they write anything.
#pragma once

#include "Phrases.h"

#include <string>
#include <string_view>
#include <unordered_map>

namespace Tessel::Norn::Brindle::Program {

class OutputPlaces {
public:
    /// Marks a file that must stay. An empty path is none.
    /// @param content what it contains, for messages
    void Take(const std::string& path, Phrase content);

    /// Takes a place for a result. A device or a pipe may receive several.
    /// @param path empty for standard output
    /// @param option the option that chose the place
    /// @return false, after a message, if the place is taken
    bool Claim(const std::string& path, std::string_view option);

private:
    /// The contents of the files, by their places.
    std::unordered_map<std::string, Phrase> mTaken;
};

} // namespace Tessel::Norn::Brindle::Program
