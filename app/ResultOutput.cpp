#include "ResultOutput.h"

#include <cerrno>
#include <ios>
#include <utility>

namespace Tessel::Norn::Brindle::Program {

OutputError::OutputError(int systemError)
    : std::system_error(systemError, std::generic_category(), "standard output") {}

bool OutputError::IsReaderGone() const {
    return code() == std::errc::broken_pipe;
}

ResultOutput::ResultOutput(std::streambuf& target)
    : mTarget(target)
    , mBuffer(std::make_unique<char[]>(sCapacity)) {}

void ResultOutput::Write(std::string_view text) {
    while (!text.empty()) {
        if (mUsed == sCapacity) {
            Empty();
        }
        const std::size_t count = text.copy(mBuffer.get() + mUsed, sCapacity - mUsed);
        mUsed += count;
        text.remove_prefix(count);
    }
}

void ResultOutput::Sync() {
    Empty();
    errno = 0;
    if (mTarget.pubsync() != 0) {
        throw OutputError(errno != 0 ? errno : EIO);
    }
}

void ResultOutput::Empty() {
    const auto count = static_cast<std::streamsize>(std::exchange(mUsed, 0));
    errno = 0;
    if (mTarget.sputn(mBuffer.get(), count) != count) {
        throw OutputError(errno != 0 ? errno : EIO);
    }
}

} // namespace Tessel::Norn::Brindle::Program
