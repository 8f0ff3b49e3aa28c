// The reader's lines on standard output: that a file can't be opened or read. A host that needs
// standard output for itself silences them for its thread.
#pragma once

#include <iosfwd>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Standard output, or a stream that drops everything while a `ConsoleSilence` lives in this
/// thread.
std::ostream& ConsoleOutput();

/// Keeps reads of its thread from writing to standard output. Scopes may nest.
class ConsoleSilence {
public:
    ConsoleSilence();
    ~ConsoleSilence();
    ConsoleSilence(const ConsoleSilence&) = delete;
    ConsoleSilence& operator=(const ConsoleSilence&) = delete;
    ConsoleSilence(ConsoleSilence&&) = delete;
    ConsoleSilence& operator=(ConsoleSilence&&) = delete;

private:
    bool mWasSilent;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
