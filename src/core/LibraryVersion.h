// The version of the running library, which may differ from that of the headers.
#pragma once

#include "../core/Export.h"

namespace Tessel::Norn::Brindle {

/// Version of the library in the process, in the form of `BRINDLE_VERSION`. A host that was
/// compiled with headers of another version finds a difference here.
BRINDLE_EXPORT const char* LibraryVersion();

} // namespace Tessel::Norn::Brindle
