// The bar that a person sees while a long read runs. A read session feeds it from the progress
// callbacks; it writes to the stream it is given and nowhere else.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>

namespace boost::timer {
class progress_display;
}

namespace Tessel::Norn::Brindle::Program {

/// Draws one bar for each progress interval. A bar that is not complete ends with the next
/// interval or with the object.
class ProgressBar {
public:
    /// @param stream where the bar is drawn; borrowed
    explicit ProgressBar(std::ostream& stream);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ProgressBar(ProgressBar&&) = delete;
    ProgressBar& operator=(ProgressBar&&) = delete;

    /// Heading of the bars that follow.
    void SetText(const std::string& text);
    /// Starts a bar. An interval without extent has none.
    void SetInterval(std::int32_t start, std::int32_t end);
    /// Moves the bar forward; values outside the interval count as its ends.
    void SetValue(std::int32_t value);

private:
    void EndBar();

    std::ostream& mStream;
    std::string mHeading;
    std::int64_t mStart = 0;
    std::unique_ptr<boost::timer::progress_display> mBar;
};

} // namespace Tessel::Norn::Brindle::Program
