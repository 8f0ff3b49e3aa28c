#include "ProgressBar.h"

#include <algorithm>
#include <boost/timer/progress_display.hpp>
#include <ostream>

namespace Tessel::Norn::Brindle::Program {

ProgressBar::ProgressBar(std::ostream& stream)
    : mStream(stream) {}

ProgressBar::~ProgressBar() {
    EndBar();
}

void ProgressBar::SetText(const std::string& text) {
    mHeading = text.empty() ? text : text + '\n';
}

void ProgressBar::SetInterval(std::int32_t start, std::int32_t end) {
    EndBar();
    if (end <= start) {
        return;
    }
    mStart = start;
    const auto extent = static_cast<unsigned long>(std::int64_t{end} - mStart);
    mBar = std::make_unique<boost::timer::progress_display>(extent, mStream, mHeading);
}

void ProgressBar::SetValue(std::int32_t value) {
    if (!mBar || value <= mStart) {
        return;
    }
    const auto reached =
        std::min(static_cast<unsigned long>(value - mStart), mBar->expected_count());
    if (reached > mBar->count()) {
        *mBar += reached - mBar->count();
    }
}

void ProgressBar::EndBar() {
    if (mBar && mBar->count() < mBar->expected_count()) {
        mStream << std::endl;
    }
    mBar.reset();
}

} // namespace Tessel::Norn::Brindle::Program
