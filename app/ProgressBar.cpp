#include "ProgressBar.h"

#include <algorithm>
#include <cstddef>
#include <ostream>

namespace Tessel::Norn::Brindle::Program {

namespace {

/// Wide enough for the longest name of a phase.
constexpr std::size_t sPhaseWidth = 12;
constexpr std::size_t sWidestBar = 40;
/// Columns around the bar: its brackets, a space, three digits, the percent sign, and the last
/// column, in which some terminals begin a new line.
constexpr std::size_t sAroundBar = 8;
constexpr std::int64_t sHundred = 100;

} // namespace

ProgressBar::ProgressBar(std::ostream& stream, std::size_t width)
    : mStream(stream)
    , mBarWidth(std::min(sWidestBar, width - std::min(width, sPhaseWidth + sAroundBar)))
    , mLineWidth(std::max<std::size_t>(width, 1) - 1) {}

ProgressBar::~ProgressBar() {
    Draw({});
    mStream << '\r' << std::flush;
}

void ProgressBar::SetPhase(std::string_view phase) {
    mPhase = phase;
    mExtent = 0;
    mPercent = sNoBar;
    Draw(mPhase);
}

void ProgressBar::SetInterval(std::int32_t start, std::int32_t end) {
    mStart = start;
    mExtent = std::max<std::int64_t>(std::int64_t{end} - start, 0);
    SetPercent(mExtent == 0 ? sNoBar : 0);
}

void ProgressBar::SetValue(std::int32_t value) {
    if (mExtent != 0) {
        const std::int64_t reached = std::clamp<std::int64_t>(value - mStart, 0, mExtent);
        SetPercent(reached * sHundred / mExtent);
    }
}

void ProgressBar::SetPercent(std::int64_t percent) {
    if (percent == mPercent) {
        return;
    }
    mPercent = percent;
    std::string line = mPhase;
    if (percent != sNoBar) {
        const auto full = static_cast<std::size_t>(percent) * mBarWidth / sHundred;
        line.resize(std::max(sPhaseWidth, line.size()), ' ');
        line.append("[").append(full, '#').append(mBarWidth - full, '.').append("] ");
        line.append(std::to_string(percent)).append("%");
    }
    Draw(line);
}

void ProgressBar::Draw(const std::string& line) {
    const std::string_view shown = std::string_view(line).substr(0, mLineWidth);
    const std::size_t rest = mDrawnLength - std::min(shown.size(), mDrawnLength);
    mStream << '\r' << shown << std::string(rest, ' ') << std::flush;
    mDrawnLength = shown.size();
}

} // namespace Tessel::Norn::Brindle::Program
