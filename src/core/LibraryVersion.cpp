#include "core/LibraryVersion.h"

#include "core/Version.h"

namespace Tessel::Norn::Brindle {

const char* LibraryVersion() {
    return BRINDLE_VERSION;
}

} // namespace Tessel::Norn::Brindle
