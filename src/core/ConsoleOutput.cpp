#include "core/ConsoleOutput.h"

#include <iostream>
#include <utility>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

thread_local bool gIsSilent = false;

} // namespace

std::ostream& ConsoleOutput() {
    // A stream without a buffer fails at the first write and drops everything after it.
    thread_local std::ostream sNowhere(nullptr);
    return gIsSilent ? sNowhere : std::cout;
}

ConsoleSilence::ConsoleSilence()
    : mWasSilent(std::exchange(gIsSilent, true)) {}

ConsoleSilence::~ConsoleSilence() {
    gIsSilent = mWasSilent;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
