// The output of results: a buffer before the program's standard output that notices when a write
// fails. The table and JSON writers write to it; messages never go here.
#pragma once

#include <cstddef>
#include <memory>
#include <streambuf>
#include <string_view>
#include <system_error>

namespace Tessel::Norn::Brindle::Program {

/// Results could not be written, for the reason in `code()`.
class OutputError : public std::system_error {
public:
    explicit OutputError(int systemError);

    /// True if the reader of the results has closed them, which deserves no message.
    [[nodiscard]] bool IsReaderGone() const;
};

/// Buffered output that fits RapidJSON's concept of an output stream. Each operation that writes
/// throws `OutputError` as soon as a write fails. What was not written by `Sync` is lost.
class ResultOutput {
public:
    using Ch = char;

    /// @param target receives the bytes; borrowed
    explicit ResultOutput(std::streambuf& target);

    void Put(char character) {
        if (mUsed == sCapacity) {
            Empty();
        }
        mBuffer[mUsed++] = character;
    }
    void Write(std::string_view text);
    /// Writes everything put in so far to the target.
    void Sync();
    /// Does nothing: RapidJSON calls it after each value, even after each line of a trace.
    void Flush() {}

private:
    static constexpr std::size_t sCapacity = 64 * 1024;

    void Empty();

    std::streambuf& mTarget;
    std::unique_ptr<char[]> mBuffer;
    std::size_t mUsed = 0;
};

} // namespace Tessel::Norn::Brindle::Program
