// Keeps the texts that the library itself prints out of the results. A read session holds one for
// the length of each read.
#pragma once

#include <sstream>
#include <streambuf>

namespace Tessel::Norn::Brindle::Program {

/// From construction to destruction `std::cout` writes into memory. The destructor gives
/// `std::cout` its buffer back and passes what was caught to standard error, one text a line.
class CapturedStandardOutput {
public:
    CapturedStandardOutput();
    ~CapturedStandardOutput();
    CapturedStandardOutput(const CapturedStandardOutput&) = delete;
    CapturedStandardOutput& operator=(const CapturedStandardOutput&) = delete;
    CapturedStandardOutput(CapturedStandardOutput&&) = delete;
    CapturedStandardOutput& operator=(CapturedStandardOutput&&) = delete;

private:
    std::stringbuf mCaught;
    std::streambuf* mPrevious;
};

} // namespace Tessel::Norn::Brindle::Program
