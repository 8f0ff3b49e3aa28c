#include "ProgramVersion.h"

#include "Commit.h"

#include <string_view>

namespace Tessel::Norn::Brindle::Program {

std::string ProgramVersion() {
    constexpr std::string_view commit = BRINDLE_COMMIT;
    std::string text = "brindle " BRINDLE_VERSION;
    if (!commit.empty()) {
        text.append(" (").append(commit).append(")");
    }
    return text;
}

} // namespace Tessel::Norn::Brindle::Program
