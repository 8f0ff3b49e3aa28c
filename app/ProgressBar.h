// The bar that a person sees during a long read. A read session feeds it from the callbacks of the
// reader; it writes only to its stream.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// One line that is drawn over itself: what the read is doing, and how far it has come. The
/// destructor erases the line.
class ProgressBar {
public:
    /// @param stream a terminal; borrowed
    /// @param width columns of the terminal
    explicit ProgressBar(std::ostream& stream, std::size_t width = sUsualWidth);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ProgressBar(ProgressBar&&) = delete;
    ProgressBar& operator=(ProgressBar&&) = delete;

    /// Begins a phase, without any progress yet.
    void SetPhase(std::string_view phase);
    /// The first and last value of the phase. If they are equal, there is no bar.
    void SetInterval(std::int32_t start, std::int32_t end);
    /// Moves the bar; values outside the interval count as its ends.
    void SetValue(std::int32_t value);

private:
    static constexpr std::int64_t sNoBar = -1;
    static constexpr std::size_t sUsualWidth = 80;

    void SetPercent(std::int64_t percent);
    void Draw(const std::string& line);

    std::ostream& mStream;
    /// Characters of a full bar.
    std::size_t mBarWidth;
    /// Characters of a line.
    std::size_t mLineWidth;
    std::string mPhase;
    std::int64_t mStart = 0;
    std::int64_t mExtent = 0;
    std::int64_t mPercent = sNoBar;
    std::size_t mDrawnLength = 0;
};

} // namespace Tessel::Norn::Brindle::Program
