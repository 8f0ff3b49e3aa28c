#include "CapturedStandardOutput.h"

#include "Message.h"

#include <algorithm>
#include <iostream>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

CapturedStandardOutput::CapturedStandardOutput()
    : mPrevious(std::cout.rdbuf(&mCaught)) {}

CapturedStandardOutput::~CapturedStandardOutput() {
    std::cout.rdbuf(mPrevious);
}

void CapturedStandardOutput::Tell(const std::string& file) const {
    std::string_view rest = mCaught.view();
    while (!rest.empty()) {
        const std::size_t length = std::min(rest.find('\n'), rest.size());
        if (length > 0) {
            Program::Tell(file, rest.substr(0, length));
        }
        rest.remove_prefix(std::min(length + 1, rest.size()));
    }
}

} // namespace Tessel::Norn::Brindle::Program
