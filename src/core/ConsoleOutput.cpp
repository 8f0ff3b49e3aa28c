#include "core/ConsoleOutput.h"

#include <iostream>
#include <utility>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

thread_local bool sIsSilent = false;

} // namespace

std::ostream& ConsoleOutput() {
    // A stream without a buffer fails at the first write and drops everything after it.
    thread_local std::ostream sNowhere(nullptr);
    return sIsSilent ? sNowhere : std::cout;
}

ConsoleSilence::ConsoleSilence()
    : mWasSilent(std::exchange(sIsSilent, true)) {}

ConsoleSilence::~ConsoleSilence() {
    sIsSilent = mWasSilent;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
