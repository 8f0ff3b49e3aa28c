// Keeps what the library itself prints out of the results. A read session holds one for the length
// of each read.
#pragma once

#include <sstream>
#include <streambuf>
#include <string>

namespace Tessel::Norn::Brindle::Program {

/// From construction to destruction `std::cout` writes into memory.
class CapturedStandardOutput {
public:
    CapturedStandardOutput();
    ~CapturedStandardOutput();
    CapturedStandardOutput(const CapturedStandardOutput&) = delete;
    CapturedStandardOutput& operator=(const CapturedStandardOutput&) = delete;
    CapturedStandardOutput(CapturedStandardOutput&&) = delete;
    CapturedStandardOutput& operator=(CapturedStandardOutput&&) = delete;

    /// Prints what was captured on standard error, one message a line.
    void Tell(const std::string& file) const;

private:
    std::stringbuf mCaught;
    std::streambuf* mPrevious;
};

} // namespace Tessel::Norn::Brindle::Program
